#include "Memory.h"

#include <malloc.h>

#include <fstream>
#include <string>

namespace {

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

double Memory::beginPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5"; // sets the peak back to what is resident
    return statusBytes("VmRSS");
}

double Memory::peak()
{
    return statusBytes("VmHWM");
}
