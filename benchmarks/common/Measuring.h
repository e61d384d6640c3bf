#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

// Clocks, in seconds.
/// CPU time of the calling thread.
double threadSeconds();
/// CPU time of all threads of this process.
double processSeconds();
/// On a clock that is never set.
double wallSeconds();

// Memory of this process, in bytes.
/// What is allocated on the heap and not freed.
double heapInUse();
/// Gives what is free back to the system and begins to watch the peak. Returns the resident set as it is now.
double beginPeak();
/// The resident set of the process with that number; -1 where there is none.
double residentBytes(const std::string &process);
/// The largest resident set since beginPeak(); -1 where the system does not tell it.
double peak();

/// The value that @p share (0 to 1) of all others do not exceed. There has to be one.
double quantile(std::vector<double> values, double share);

/// One way of doing a piece of work.
struct Variant
{
    std::string name; ///< "ours", or what it is compared with
    std::function<void()> run; ///< measured; what it throws ends the benchmark with its text
    std::function<void()> prepare = [] {}; ///< before every run, not measured
};

/// How often the variants run and what is measured.
struct Plan
{
    int rounds; ///< at most; with more than one a further round goes before, which is not counted
    int fewest = 5;
    double seconds = std::numeric_limits<double>::infinity(); ///< after which no round begins but for the fewest
    double (*cpuSeconds)() = threadSeconds;
    bool isMemoryMeasured = false; ///< gives the free heap back to the system before, which slows a run a little
    bool isShuffled = true; ///< else the variants run in their order
    int pieces = 1; ///< that a run is made of: costs are those of one
};

/// Values by the name of a counter.
using Samples = std::map<std::string, std::vector<double>>;

/// The medians as counters.
void report(benchmark::State &state, const Samples &samples);

/// In a round each variant runs once, in random order. Reported are for each variant "<variant>" (CPU time) and
/// "<variant> wall", both in microseconds and medians, "<variant> p99 wall", of 100 runs the slowest but one, and where
/// it was measured "<variant> memory", KB by which the resident memory was larger than before at most; the medians of
/// ratios in CPU time that are taken within a round, "ours/<variant>" and, with these variants, "ours/(read+floor)" or
/// "ours/(codec+floor)"; and "rounds".
void measure(benchmark::State &state, std::vector<Variant> variants, const Plan &plan);
