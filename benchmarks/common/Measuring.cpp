#include "Measuring.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <string>

#include <malloc.h>

namespace {

double secondsOf(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// A line of the process's status, such as "VmHWM:     20304 kB".
double statusBytes(const std::string &key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key + ':'))
            return std::stod(line.substr(key.size() + 1)) * 1024;
    }
    return -1;
}

} // namespace

double threadSeconds()
{
    return secondsOf(CLOCK_THREAD_CPUTIME_ID);
}

double processSeconds()
{
    return secondsOf(CLOCK_PROCESS_CPUTIME_ID);
}

double wallSeconds()
{
    return secondsOf(CLOCK_MONOTONIC);
}

double heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double beginPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5"; // sets the peak back to what is resident
    return statusBytes("VmRSS");
}

double peak()
{
    return statusBytes("VmHWM");
}

double quantile(std::vector<double> values, double share)
{
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * share);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}
