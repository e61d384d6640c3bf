// Writes lines through the trace library named first: every further argument is a module name, or a level and a text
// as 2:text, written by the module named last. "receive:" prints error lines from there on, "ignore:" no more.

#include "ErrorReceiver.h"

#include "trace/TraceLibrary.h"

#include <dlfcn.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void write(const LogTraceObject &object, const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    object.writeFormatted(object.handle, format, arguments);
    va_end(arguments);
}

void receive(void *context, const char *module, const char *text)
{
    std::printf("%s: %s, %s\n", static_cast<const char *>(context), module, text);
}

} // namespace

int main(int argc, char **argv)
{
    void *const library = argc > 1 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!library)
        return 2;
    const auto getGlobalObject = reinterpret_cast<LogTraceGetGlobalObject>(dlsym(library, "LogTrace_GetGlobalObject"));
    LogTraceObject *object = nullptr;
    if (!getGlobalObject || getGlobalObject(0, &object) != 0 || !object)
        return 3;
    const auto setReceiver = reinterpret_cast<TraceSetErrorReceiver>(dlsym(library, "RecordingTrace_SetErrorReceiver"));
    if (!setReceiver)
        return 4;
    char context[] = "received";
    std::uint32_t module = 0;
    for (int i = 2; i < argc; ++i) {
        const char *const text = std::strchr(argv[i], ':');
        if (!text) {
            object->registerModule(object->handle, static_cast<int>(std::strlen(argv[i])), argv[i], &module);
            std::printf("%s is %u\n", argv[i], module);
            continue;
        }
        if (const bool begin = std::strcmp(argv[i], "receive:") == 0; begin || std::strcmp(argv[i], "ignore:") == 0) {
            setReceiver(begin ? receive : nullptr, context);
            continue;
        }
        const auto severity = static_cast<std::uint32_t>(std::stoul(argv[i]));
        const int suppressed = object->shouldLog(object->handle, (module << 8) | severity, 0, __FILE__, __LINE__);
        std::printf("%u %s\n", severity, suppressed ? "suppressed" : "written");
        if (!suppressed)
            write(*object, "%s, %s", "client", text + 1);
    }
    object = nullptr;
    return dlclose(library);
}
