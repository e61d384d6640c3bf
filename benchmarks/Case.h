#pragma once

#include <functional>
#include <string>
#include <vector>

/// One way of doing the work of a case.
struct Variant
{
    std::string name; ///< "ours", "plain", "read", "floor" or "without" (what "ours" is with)
    std::function<void()> run; ///< measured
    std::function<void()> prepare = {}; ///< before every run, not measured; may be empty
};

/// A row of the table in one size: its variants, what they work on held inside them.
struct Work
{
    std::vector<Variant> variants;
    /// After every variant has run: why the results are wrong, empty when they are right.
    std::function<std::string()> complaint = {};
};

/// A row of the table that is measured in thread-CPU time.
struct Case
{
    int row; ///< of the table
    std::string name;
    std::vector<int> sizes;
    std::function<Work(int size)> work;
    std::vector<int> growth = {}; ///< the two sizes between which instructions are counted; empty where they are not
};

/// Row and name, as the table has them: "01 volume reply".
inline std::string title(const Case &entry)
{
    return (entry.row < 10 ? "0" : "") + std::to_string(entry.row) + ' ' + entry.name;
}

std::vector<Case> replyCases();
std::vector<Case> treeCases();
std::vector<Case> eventCases();
std::vector<Case> queryCases();
std::vector<Case> viewCases();

/// Rows of the table that are exact, and the cost of a parent with many models.
void registerSignalCounts();
void registerHeapCounts();
void registerManyModels(const std::vector<int> &sizes);

/// Under callgrind (--instr-atstart=no): runs every case that has growth sizes ten times, in both, and
/// dumps the instructions of "ours" alone under the name "<title>/<size>". Returns an exit status.
int countInstructions(const std::vector<Case> &cases);
