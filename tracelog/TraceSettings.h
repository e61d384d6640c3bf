#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// How the trace library writes, as the environment of the process tells.
struct TraceSettings
{
    static constexpr int Off = -1;
    static constexpr int ErrorSeverity = 2;
    static constexpr int TraceSeverity = 5;

    int level = ErrorSeverity; ///< lines of this severity and below are written; Off: none
    std::string file; ///< where to; empty: standard error
    std::size_t maxBytes = 10 * 1024 * 1024; ///< size at which a file is closed and a new one begun
    std::size_t files = 5; ///< how many files are kept, the current one included
    std::vector<std::string> complaints; ///< one line for each variable whose value was not understood
};

/// Reads RECORDING_TRACE_LEVEL, RECORDING_TRACE_FILE, RECORDING_TRACE_MAX_BYTES and RECORDING_TRACE_FILES.
///
/// @param variable gives the value of an environment variable, or null. An unset or empty one means the default; a
/// value
///        that is not understood means the default, too, and a complaint.
TraceSettings readTraceSettings(const std::function<const char *(const char *name)> &variable);
