#pragma once

#include <string>
#include <vector>

class Trees;

/// Registers the benchmarks of each kind with Google Benchmark. @p trees must outlive their run.
void addReading(Trees &trees);
void addChanges(Trees &trees);
void addEvents(const std::vector<int> &groups);
/// @param folder for the data of the stations
void addLink(const std::string &folder, const std::vector<int> &records);
