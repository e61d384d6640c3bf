#pragma once

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
/// The largest resident set since beginPeak(); -1 where the system does not tell it.
double peak();

/// The value that @p share (0 to 1) of all others do not exceed. There has to be one.
double quantile(std::vector<double> values, double share);
