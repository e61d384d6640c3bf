#include "Rounds.h"

#include <algorithm>
#include <random>

namespace {

using Times = std::map<std::string, double>; // of a round, by variant

double runOnce(const Variant &variant, const Plan &plan, Samples &samples)
{
    variant.prepare();
    const double residentBefore = plan.isMemoryMeasured ? beginPeak() : 0;
    const double wallBefore = wallSeconds();
    const double cpuBefore = plan.cpuSeconds();
    variant.run();
    const double cpu = (plan.cpuSeconds() - cpuBefore) / plan.pieces;
    samples[variant.name].push_back(cpu * 1e6);
    samples[variant.name + " wall"].push_back((wallSeconds() - wallBefore) / plan.pieces * 1e6);
    if (plan.isMemoryMeasured)
        samples[variant.name + " memory"].push_back((peak() - residentBefore) / 1024);
    return cpu;
}

void runRound(std::vector<Variant> &variants, const Plan &plan, Samples &samples)
{
    static std::mt19937 random(std::random_device{}());
    if (plan.isShuffled)
        std::shuffle(variants.begin(), variants.end(), random);
    Times times;
    for (const Variant &variant : variants)
        times[variant.name] = runOnce(variant, plan, samples);
    const double ours = times.at("ours");
    for (const auto &[name, seconds] : times) {
        if (name != "ours")
            samples["ours/" + name].push_back(ours / seconds);
    }
    if (times.contains("read") && times.contains("floor"))
        samples["ours/(read+floor)"].push_back(ours / (times["read"] + times["floor"]));
}

} // namespace

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
