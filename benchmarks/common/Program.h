#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// The frame of every benchmark program: Google Benchmark with its options, and a few of our own.

/// Takes the flag @p name out of the command line; false: it is not there.
bool takeFlag(std::string_view name, int &count, char **arguments);

/// Registers @p work, which runs once and reports counters. What it throws is the benchmark's error.
void add(const std::string &name, const std::function<void(benchmark::State &)> &work);
/// Registers it in each size under "<name>/<size>".
void add(const std::string &name, const std::vector<int> &sizes,
         const std::function<void(benchmark::State &, int size)> &work);

/// Runs what is registered and left in by the options. Returns an exit status.
int runBenchmarks(int count, char **arguments);

/// Throws std::runtime_error with the text @p otherwise unless @p isSo: a benchmark of wrong results fails.
void require(bool isSo, const std::string &otherwise);
