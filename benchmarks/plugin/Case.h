#pragma once

#include "Measuring.h"

/// Takes the variants of a piece of work and measures them.
using Measure = std::function<void(const std::vector<Variant> &variants)>;

/// A row of the table.
struct Case
{
    std::string name; ///< as the table has it
    std::vector<int> sizes;
    /// Lays out the work in one size, has its variants measured, and then throws where their results differ.
    std::function<void(int size, const Measure &measure)> run;
    std::vector<int> growth = {}; ///< the two sizes between which instructions are counted; empty where they are not
};

std::vector<Case> replyCases();
std::vector<Case> eventCases();
std::vector<Case> queryCases();
std::vector<Case> viewCases();

/// Registers the rows that are exact.
void addSignalCounts();
void addHeapCounts();
