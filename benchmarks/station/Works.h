#pragma once

#include <vector>

class Trees;

/// Registers the benchmarks of each kind with Google Benchmark. @p trees must outlive their run.
void addReading(Trees &trees);
void addChanges(Trees &trees);
void addEvents(const std::vector<int> &groups);
void addLink(const std::vector<int> &records);
