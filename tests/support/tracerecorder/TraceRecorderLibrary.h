#pragma once

#include <cstddef>
#include <cstdint>

/// What the recording stand-in of the trace library (libZarnLogUtl.so) and the tests share. No Qt: the library loads
/// before anything else.

/// One line as it was written.
struct TraceRecord
{
    std::uint32_t level; ///< module number and severity
    int line;
    char sourceFile[64]; ///< the name alone, without folders
    char text[256];
};

/// The number that the library gives to the module that registers.
inline constexpr std::uint32_t traceRecorderModule = 7;

/// Export "TraceRecorder_Take": the lines since the last call, which forgets them. Valid until the next line is
/// written.
using TraceRecorderTake = const TraceRecord *(*)(std::size_t *recordCount);
