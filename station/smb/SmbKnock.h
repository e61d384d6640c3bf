#pragma once

#include "SmbPath.h"

#include <chrono>

/// Whether an SMB server answers at the host of @p place: connects, says what a client says first, and waits for the
/// first byte. Gives the system's error number, 0 when something came. Logs nobody on.
int knockAt(const SmbPath &place, std::chrono::milliseconds timeout);
