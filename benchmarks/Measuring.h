#pragma once

#include <vector>

/// CPU seconds of the calling thread.
double threadSeconds();

/// What this process has allocated on the heap and not freed, in bytes.
double heapInUse();

/// The value in the middle; the upper one of two. There has to be one.
double median(std::vector<double> values);

/// Takes @p argument out of the command line; false when it is not there.
bool takeArgument(const char *argument, int &count, char **arguments);
