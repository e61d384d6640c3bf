#pragma once

/// How much memory this process has in use, in bytes.
namespace Memory {

/// Gives what is free back to the system and begins to watch the peak. Returns the resident set as it is now.
double beginPeak();
/// The largest resident set since beginPeak(); -1 where the system does not tell it.
double peak();

} // namespace Memory
