#include "TraceWriter.h"

#include "trace/TraceLibrary.h"

#include <cstdlib>

namespace {

constexpr int suppress = 1;

// Runs @p body and keeps its exceptions from the client, which may have been written in C.
template<typename Body>
void guarded(Body body) noexcept
{
    try {
        body();
    } catch (...) {
    }
}

TraceWriter &writerOf(void *handle)
{
    return *static_cast<TraceWriter *>(handle);
}

void registerModule(void *handle, int nameLength, const char *name, std::uint32_t *moduleNumber)
{
    if (!handle || !name || nameLength < 0 || !moduleNumber)
        return;
    guarded([&] { *moduleNumber = writerOf(handle).registerModule({name, static_cast<std::size_t>(nameLength)}); });
}

int shouldLog(void *handle, std::uint32_t level, int, const char *, int)
{
    return handle && writerOf(handle).shouldLog(level) ? 0 : suppress;
}

void writeFormatted(void *handle, const char *format, std::va_list arguments)
{
    if (handle && format)
        guarded([&] { writerOf(handle).write(format, arguments); });
}

LogTraceObject recordOf(TraceWriter &writer)
{
    LogTraceObject record{};
    record.handle = &writer;
    record.registerModule = registerModule;
    record.shouldLog = shouldLog;
    record.writeFormatted = writeFormatted;
    return record;
}

TraceWriter &globalWriter()
{
    static TraceWriter writer(readTraceSettings([](const char *name) { return std::getenv(name); }));
    return writer;
}

LogTraceObject *globalObject()
{
    static LogTraceObject record = recordOf(globalWriter());
    return &record;
}

} // namespace

/// What modules ask for. The first call reads the environment and opens the log. Returns 0, or 1 when there is no
/// logging object; @p result is null then.
extern "C" __attribute__((visibility("default"))) int LogTrace_GetGlobalObject(int, LogTraceObject **result)
{
    if (!result)
        return 1;
    *result = nullptr;
    guarded([&] { *result = globalObject(); });
    return *result ? 0 : 1;
}

/// What a client asks for, see ErrorReceiver.h.
extern "C" __attribute__((visibility("default"))) void RecordingTrace_SetErrorReceiver(TraceErrorReceiver receiver,
                                                                                       void *context)
{
    guarded([&] { globalWriter().setErrorReceiver(receiver, context); });
}
