// A trace library that writes every call it gets to the file FAKE_TRACE_FILE, one line for each, and lacks what
// FAKE_TRACE_LACKS names: object, handle, RegisterModule, ShouldLog or WriteFormatted. With FAKE_TRACE_FILTER=1 its
// filter suppresses every line.

#include "trace/TraceLibrary.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
void note(const char *format, ...)
{
    const char *const path = std::getenv("FAKE_TRACE_FILE");
    std::FILE *const file = path ? std::fopen(path, "a") : nullptr;
    if (!file)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(file, format, arguments);
    va_end(arguments);
    std::fclose(file);
}

__attribute__((constructor)) void loaded()
{
    note("loaded\n");
}

__attribute__((destructor)) void unloaded()
{
    note("unloaded\n");
}

#ifndef WITHOUT_EXPORT

bool isSet(const char *name, const char *value)
{
    const char *const found = std::getenv(name);
    return found && std::strcmp(found, value) == 0;
}

bool lacks(const char *what)
{
    return isSet("FAKE_TRACE_LACKS", what);
}

constexpr std::uint32_t moduleNumber = 0x123; // more than 8 bits
int theHandle = 0; // its address is what counts

const char *handleText(const void *handle)
{
    if (!handle)
        return "null";
    return handle == &theHandle ? "own" : "foreign";
}

void registerModule(void *handle, int nameLength, const char *name, std::uint32_t *number)
{
    note("register handle=%s length=%d name=%s number=%u\n", handleText(handle), nameLength, name, *number);
    *number = moduleNumber;
}

int shouldLog(void *handle, std::uint32_t level, int zero, const char *sourceFile, int line)
{
    note("ask handle=%s level=%x zero=%d line=%d file=%s\n", handleText(handle), level, zero, line, sourceFile);
    return isSet("FAKE_TRACE_FILTER", "1") ? 1 : 0;
}

#if defined(__GNUC__)
__attribute__((format(printf, 2, 0)))
#endif
void writeFormatted(void *handle, const char *format, std::va_list arguments)
{
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    note("write handle=%s format=[%s] text=[%s]\n", handleText(handle), format, text);
}

LogTraceObject record{};

#endif

} // namespace

#ifndef WITHOUT_EXPORT
extern "C" __attribute__((visibility("default"))) int LogTrace_GetGlobalObject(int zero, LogTraceObject **result)
{
    note("object zero=%d result=%s\n", zero, *result ? "set" : "null");
    record.handle = lacks("handle") ? nullptr : &theHandle;
    record.registerModule = lacks("RegisterModule") ? nullptr : registerModule;
    record.shouldLog = lacks("ShouldLog") ? nullptr : shouldLog;
    record.writeFormatted = lacks("WriteFormatted") ? nullptr : writeFormatted;
    if (!lacks("object"))
        *result = &record;
    return 77; // nobody looks at it
}
#endif
