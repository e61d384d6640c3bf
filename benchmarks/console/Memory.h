#pragma once

/// This process's memory, in bytes.
namespace Memory {

/// What is allocated and not freed.
double heapInUse();

/// Gives what is free back to the system and begins to watch the peak. Returns the resident set as it is now.
double beginPeak();
/// The largest resident set since beginPeak(); -1 where the system does not tell it.
double peak();

} // namespace Memory
