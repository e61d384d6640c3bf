#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

// The frame of every benchmark program: Google Benchmark with its options, and a few of our own.

/// The value of "<name>=value" or, for a flag, an empty text; taken out of the command line. None: it is not there.
std::optional<std::string> takeOption(const std::string &name, int &count, char **arguments);

/// Registers @p work, which runs once and reports counters. What it throws is the benchmark's error.
void add(const std::string &name, const std::function<void(benchmark::State &)> &work);
/// Registers it in each size under "<name>/<size>".
void add(const std::string &name, const std::vector<int> &sizes,
         const std::function<void(benchmark::State &, int size)> &work);

/// Runs what is registered and left in by the options. Returns an exit status.
int runBenchmarks(int count, char **arguments);

/// Throws std::runtime_error with the text @p otherwise unless @p isSo: a benchmark of wrong results fails.
void require(bool isSo, const std::string &otherwise);
