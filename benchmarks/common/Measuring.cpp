#include "Measuring.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <random>
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
double statusBytes(const std::string &key, const std::string &process = "self")
{
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key + ':'))
            return std::stod(line.substr(key.size() + 1)) * 1024;
    }
    return -1;
}

/// The allocator joins small blocks that were freed when somebody asks for a large one: what was freed before a
/// measurement shall not be joined within it.
void settleHeap()
{
    constexpr std::size_t large = 65'536;
    void *const volatile block = std::malloc(large); // not left out by the compiler
    std::free(block);
}

void runRound(std::vector<Variant> &variants, const Plan &plan, Samples &samples)
{
    static std::mt19937 random(std::random_device{}());
    if (plan.isShuffled)
        std::shuffle(variants.begin(), variants.end(), random);
    std::map<std::string, double> times;
    for (const Variant &variant : variants) {
        variant.prepare();
        settleHeap();
        const double residentBefore = plan.isMemoryMeasured ? beginPeak() : 0;
        const double wallBefore = wallSeconds();
        const double cpuBefore = plan.cpuSeconds();
        variant.run();
        times[variant.name] = (plan.cpuSeconds() - cpuBefore) / plan.pieces * 1e6;
        samples[variant.name].push_back(times[variant.name]);
        samples[variant.name + " wall"].push_back((wallSeconds() - wallBefore) / plan.pieces * 1e6);
        if (plan.isMemoryMeasured)
            samples[variant.name + " memory"].push_back((peak() - residentBefore) / 1024);
    }
    if (times.contains("read") && times.contains("floor"))
        times["(read+floor)"] = times["read"] + times["floor"];
    for (const auto &[name, time] : times) {
        if (name != "ours")
            samples["ours/" + name].push_back(times["ours"] / time);
    }
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

double residentBytes(const std::string &process)
{
    return statusBytes("VmRSS", process);
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

void report(benchmark::State &state, const Samples &samples)
{
    for (const auto &[name, values] : samples)
        state.counters[name] = quantile(values, 0.5);
}

void measure(benchmark::State &state, std::vector<Variant> variants, const Plan &plan)
{
    Samples samples;
    if (plan.rounds > 1) {
        runRound(variants, plan, samples);
        samples.clear();
    }
    const double end = wallSeconds() + plan.seconds;
    for (int round = 0; round < plan.rounds && (round < plan.fewest || wallSeconds() < end); ++round)
        runRound(variants, plan, samples);
    report(state, samples);
    for (const Variant &variant : variants)
        state.counters[variant.name + " p99 wall"] = quantile(samples[variant.name + " wall"], 0.99);
    state.counters["rounds"] = static_cast<double>(samples["ours"].size());
}
