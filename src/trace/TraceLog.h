#pragma once

#include <cstdint>

/// Trace lines through the client's trace-logging library, which is loaded by name while this library is initialised.
/// Where the library, one of its entries or its logging object is missing, nothing is written. Not thread-safe: all
/// lines come from the UI thread.
namespace TraceLog {

enum class Severity : std::uint32_t {
    Error = 2,
    Trace = 5,
};

/// Asks the library whether a line of @p severity from this place of the source is to be written.
bool shouldLog(Severity severity, const char *sourceFile, int line);

/// Passes a printf format and its arguments to the library. Call it only after shouldLog() returned true.
#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void write(const char *format, ...);

} // namespace TraceLog

/// Writes an error line as if from @p line of this file; the arguments are evaluated only when it is to be written.
#define TRACE_ERROR_AT(line, ...)                                                                                      \
    do {                                                                                                               \
        if (TraceLog::shouldLog(TraceLog::Severity::Error, __FILE__, (line)))                                          \
            TraceLog::write(__VA_ARGS__);                                                                              \
    } while (false)

/// Writes an error line from here.
#define TRACE_ERROR(...) TRACE_ERROR_AT(__LINE__, __VA_ARGS__)
