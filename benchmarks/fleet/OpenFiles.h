#pragma once

/// Lets this process, and those that it starts, have as many files and sockets open as the system allows.
/// @return how many that are
long raiseOpenFiles();

/// Throws std::runtime_error with what to do about it unless @p count connections fit into one process.
void requireConnections(int count);
