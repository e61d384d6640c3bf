#pragma once

/// Keeps the system from writing this process's memory to a file when it crashes, and others of the same user from
/// reading it: it may hold passwords. For a program's main().
void forbidCoreDumps();
