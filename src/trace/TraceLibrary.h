#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

/// The trace-logging library's own layout, as far as it is read here.
struct LogTraceObject
{
    using RegisterModule = void (*)(void *handle, int nameLength, const char *name, std::uint32_t *moduleNumber);
    using ShouldLog = int (*)(void *handle, std::uint32_t level, int zero, const char *sourceFile, int line);
    using WriteFormatted = void (*)(void *handle, const char *format, std::va_list arguments);

    std::byte unused0[24];
    void *handle; ///< first argument of every operation
    std::byte unused32[40];
    RegisterModule registerModule; ///< may be null, like the two below
    std::byte unused80[32];
    ShouldLog shouldLog; ///< 0: the line is to be written
    WriteFormatted writeFormatted;
};

static_assert(offsetof(LogTraceObject, handle) == 24);
static_assert(offsetof(LogTraceObject, registerModule) == 72);
static_assert(offsetof(LogTraceObject, shouldLog) == 112);
static_assert(offsetof(LogTraceObject, writeFormatted) == 120);

/// Export "LogTrace_GetGlobalObject": fills the pointer with the logging object.
using LogTraceGetGlobalObject = int (*)(int zero, LogTraceObject **result);
