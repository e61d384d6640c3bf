#include "TraceRecorderLibrary.h"

#include "trace/TraceLibrary.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

// Fixed storage: the tests let memory run out while lines are written.
constexpr std::size_t capacity = 4096;
std::array<TraceRecord, capacity> records;
std::size_t count = 0;
TraceRecord pending; // what the filter was asked last

template<std::size_t Size>
void copyText(char (&target)[Size], const char *text)
{
    std::snprintf(target, Size, "%s", text);
}

void registerModule(void *, int, const char *, std::uint32_t *moduleNumber)
{
    *moduleNumber = traceRecorderModule;
}

int shouldLog(void *, std::uint32_t level, int, const char *sourceFile, int line)
{
    pending.level = level;
    pending.line = line;
    const char *const slash = std::strrchr(sourceFile, '/');
    copyText(pending.sourceFile, slash ? slash + 1 : sourceFile);
    return 0;
}

#if defined(__GNUC__)
__attribute__((format(printf, 2, 0)))
#endif
void writeFormatted(void *, const char *format, std::va_list arguments)
{
    std::vsnprintf(pending.text, sizeof pending.text, format, arguments);
    records[std::min(count, capacity - 1)] = pending;
    count = std::min(count + 1, capacity);
}

LogTraceObject logObject = [] {
    LogTraceObject object{};
    object.handle = &logObject;
    object.registerModule = registerModule;
    object.shouldLog = shouldLog;
    object.writeFormatted = writeFormatted;
    return object;
}();

} // namespace

extern "C" {

__attribute__((visibility("default"))) int LogTrace_GetGlobalObject(int, LogTraceObject **result)
{
    *result = &logObject;
    return 0;
}

__attribute__((visibility("default"))) const TraceRecord *TraceRecorder_Take(std::size_t *recordCount)
{
    *recordCount = std::exchange(count, 0);
    return records.data();
}
}
