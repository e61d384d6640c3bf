#pragma once

#include <functional>

/// Threads for calls that a disk may keep in the system for good. Nobody waits for them: one that hangs is left behind
/// when the process ends.
namespace DiskThreads {

/// Runs @p work on a thread that has nothing to do, or on a new one. It must not use what may end before it does, and
/// what it throws is lost. Throws std::system_error when there can be no more threads.
void start(std::function<void()> work);

/// How many threads are at work.
int busyThreads();

} // namespace DiskThreads
