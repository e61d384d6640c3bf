#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// One way of doing a piece of work.
struct Variant
{
    std::string name; ///< "ours", or what it is compared with
    std::function<void()> run; ///< measured; what it throws ends the benchmark with its text
    std::function<void()> prepare = {}; ///< before every run, not measured; may be empty
};

/// What one run took of this process.
struct Cost
{
    double cpu = 0; ///< microseconds of all threads together
    double wall = 0; ///< microseconds
    double memory = 0; ///< where it was measured: KB by which the resident memory was larger than before, at most
};

/// Measuring the memory gives the free heap back to the system before, which slows the run a little.
enum class Memory { Ignored, Measured };

Cost costOf(const std::function<void()> &run, Memory memory = Memory::Ignored);

/// By the variant's name, in the order of the rounds.
using Costs = std::map<std::string, std::vector<Cost>>;

/// In a round each variant runs once, in random order. With more than one round a further one goes before.
Costs runRounds(std::vector<Variant> variants, int rounds, Memory memory = Memory::Ignored);

/// Medians as counters: "<variant>" and "<variant> wall" in microseconds, "<variant> memory" in KB where it was
/// measured; "ours/<variant>" taken within the rounds, in CPU time; "rounds"; and "slope" of ours against the size
/// before under that @p name, on double logarithmic axes.
void report(benchmark::State &state, const std::string &name, int size, const Costs &costs);

/// CPU time of ours in microseconds that was reported under @p name for @p size; none where that did not run yet.
std::optional<double> reported(const std::string &name, int size);

/// Registers @p work under "<name>/<size>", as one iteration. What it throws is the benchmark's error.
void add(const std::string &name, int size, const std::function<void(benchmark::State &)> &work);
