#include "Rounds.h"

#include "Measuring.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fstream>
#include <random>

#include <malloc.h>

namespace {
double processMicroseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

/// In KB; "VmRSS" or "VmHWM", which is the most since forgetPeak().
double resident(const char *which)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(which, 0) == 0)
            return std::stod(line.substr(std::strlen(which) + 1));
    }
    return 0;
}

void forgetPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::map<std::string, std::map<int, double>> measured; // CPU time of ours by name and size

std::vector<double> column(const std::vector<Cost> &costs, double Cost::*what)
{
    std::vector<double> values;
    for (const Cost &cost : costs)
        values.push_back(cost.*what);
    return values;
}
} // namespace

Cost costOf(const std::function<void()> &run, Memory memory)
{
    double before = 0;
    if (memory == Memory::Measured) {
        forgetPeak();
        before = resident("VmRSS:");
    }
    const auto wall = std::chrono::steady_clock::now();
    const double cpu = processMicroseconds();
    run();
    Cost cost;
    cost.cpu = processMicroseconds() - cpu;
    cost.wall = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - wall).count();
    if (memory == Memory::Measured)
        cost.memory = resident("VmHWM:") - before;
    return cost;
}

Costs runRounds(std::vector<Variant> variants, int rounds, Memory memory)
{
    static std::mt19937 random(std::random_device{}());
    Costs costs;
    const int warmUps = rounds > 1 ? 1 : 0;
    for (int round = 0; round < warmUps + rounds; ++round) {
        std::shuffle(variants.begin(), variants.end(), random);
        for (const Variant &variant : variants) {
            if (variant.prepare)
                variant.prepare();
            const Cost cost = costOf(variant.run, memory);
            if (round >= warmUps)
                costs[variant.name].push_back(cost);
        }
    }
    return costs;
}

void report(benchmark::State &state, const std::string &name, int size, const Costs &costs)
{
    const std::vector<Cost> &ours = costs.at("ours");
    for (const auto &[variant, all] : costs) {
        state.counters[variant] = median(column(all, &Cost::cpu));
        state.counters[variant + " wall"] = median(column(all, &Cost::wall));
        if (const double memory = median(column(all, &Cost::memory)); memory > 0)
            state.counters[variant + " memory"] = memory;
        if (variant == "ours" || all.size() != ours.size())
            continue;
        std::vector<double> ratios;
        for (std::size_t i = 0; i < all.size(); ++i)
            ratios.push_back(ours[i].cpu / all[i].cpu);
        state.counters["ours/" + variant] = median(ratios);
    }
    state.counters["rounds"] = static_cast<double>(ours.size());
    const double cpu = state.counters["ours"];
    const auto other = measured[name].lower_bound(size);
    if (other != measured[name].begin() && std::prev(other)->first > 0) {
        const auto &[smaller, before] = *std::prev(other);
        state.counters["slope"] = std::log(cpu / before) / std::log(double(size) / smaller);
    }
    measured[name][size] = cpu;
}

std::optional<double> reported(const std::string &name, int size)
{
    const auto found = measured[name].find(size);
    return found == measured[name].end() ? std::nullopt : std::optional(found->second);
}

void add(const std::string &name, int size, const std::function<void(benchmark::State &)> &work)
{
    benchmark::RegisterBenchmark((name + '/' + std::to_string(size)).c_str(),
                                 [work](benchmark::State &state) {
                                     for ([[maybe_unused]] auto iteration : state) {
                                         try {
                                             work(state);
                                         } catch (const std::exception &error) {
                                             state.SkipWithError(error.what());
                                         }
                                     }
                                 })
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}
