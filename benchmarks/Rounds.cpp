#include "Rounds.h"

#include "Measuring.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>

namespace {

constexpr double secondsForACase = 3;
constexpr int fewestRounds = 5;

using Times = std::map<std::string, double>; // seconds, by variant

Times runRound(std::vector<Variant> &variants, std::mt19937 &random)
{
    std::shuffle(variants.begin(), variants.end(), random);
    Times times;
    for (const Variant &variant : variants) {
        if (variant.prepare)
            variant.prepare();
        const double start = threadSeconds();
        variant.run();
        times[variant.name] = threadSeconds() - start;
    }
    return times;
}

// The sum of the named variants; nothing when one is missing.
std::optional<double> sum(const Times &times, const std::vector<std::string> &names)
{
    double total = 0;
    for (const std::string &name : names) {
        const auto time = times.find(name);
        if (time == times.end())
            return std::nullopt;
        total += time->second;
    }
    return total;
}

const std::map<std::string, std::vector<std::string>> ratios{
    {"ours/(read+floor)", {"read", "floor"}},
    {"ours/plain", {"plain"}},
    {"ours/without", {"without"}},
};

void runRounds(benchmark::State &state, const Case &entry, int size, int mostRounds)
{
    Work work = entry.work(size);
    std::mt19937 random(std::random_device{}());
    std::map<std::string, std::vector<double>> samples;
    for ([[maybe_unused]] auto iteration : state) {
        runRound(work.variants, random); // warms up
        const double end = threadSeconds() + secondsForACase;
        for (int round = 0; round < mostRounds && (round < fewestRounds || threadSeconds() < end); ++round) {
            const Times times = runRound(work.variants, random);
            for (const auto &[name, seconds] : times)
                samples[name].push_back(seconds * 1e6);
            for (const auto &[name, divisors] : ratios) {
                if (const auto divisor = sum(times, divisors))
                    samples[name].push_back(times.at("ours") / *divisor);
            }
        }
        state.SetIterationTime(median(samples.at("ours")) * 1e-6);
    }
    for (const auto &[name, values] : samples)
        state.counters[name] = median(values);
    state.counters["rounds"] = static_cast<double>(samples.at("ours").size());
    if (const std::string complaint = work.complaint ? work.complaint() : std::string(); !complaint.empty())
        state.SkipWithError(complaint.c_str());
}

} // namespace

void registerCase(const Case &entry, int size, int mostRounds)
{
    benchmark::RegisterBenchmark((title(entry) + '/' + std::to_string(size)).c_str(),
                                 [=](benchmark::State &state) { runRounds(state, entry, size, mostRounds); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}
