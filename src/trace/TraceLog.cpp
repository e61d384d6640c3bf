#include "TraceLog.h"

#include "TraceLibrary.h"

#include <cstdarg>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

constexpr char moduleName[] = "RecordingManagement";
constexpr int moduleNameLength = sizeof(moduleName) - 1;

#ifdef _WIN32
using LibraryHandle = HMODULE;

LibraryHandle loadLibrary()
{
    return LoadLibraryA("ZarnLogUtl.dll");
}

void *findExport(LibraryHandle handle, const char *name)
{
    return reinterpret_cast<void *>(GetProcAddress(handle, name));
}

void freeLibrary(LibraryHandle handle)
{
    FreeLibrary(handle);
}
#else
using LibraryHandle = void *;

LibraryHandle loadLibrary()
{
    return dlopen("libZarnLogUtl.so", RTLD_NOW | RTLD_LOCAL);
}

void *findExport(LibraryHandle handle, const char *name)
{
    return dlsym(handle, name);
}

void freeLibrary(LibraryHandle handle)
{
    dlclose(handle);
}
#endif

// Plain variables: an object that outlives this library's unloading still finds null here.
LibraryHandle library = nullptr;
LogTraceObject *logObject = nullptr;
std::uint32_t moduleNumber = 0;

LogTraceObject *openLogObject()
{
    const auto getGlobalObject =
        reinterpret_cast<LogTraceGetGlobalObject>(findExport(library, "LogTrace_GetGlobalObject"));
    if (!getGlobalObject)
        return nullptr;
    LogTraceObject *object = nullptr;
    getGlobalObject(0, &object);
    if (object && object->registerModule)
        object->registerModule(object->handle, moduleNameLength, moduleName, &moduleNumber);
    return object;
}

struct LibraryGuard
{
    LibraryGuard()
    {
        library = loadLibrary();
        if (library)
            logObject = openLogObject();
    }

    ~LibraryGuard()
    {
        logObject = nullptr;
        if (library)
            freeLibrary(library);
    }

    LibraryGuard(const LibraryGuard &) = delete;
    LibraryGuard &operator=(const LibraryGuard &) = delete;
};

const LibraryGuard libraryGuard;

} // namespace

bool TraceLog::shouldLog(Severity severity, const char *sourceFile, int line)
{
    if (!logObject || !logObject->handle || !logObject->shouldLog)
        return false;
    const std::uint32_t level = (moduleNumber << 8) | static_cast<std::uint32_t>(severity);
    return logObject->shouldLog(logObject->handle, level, 0, sourceFile, line) == 0;
}

void TraceLog::write(const char *format, ...)
{
    if (!logObject || !logObject->handle || !logObject->writeFormatted)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    logObject->writeFormatted(logObject->handle, format, arguments);
    va_end(arguments);
}
