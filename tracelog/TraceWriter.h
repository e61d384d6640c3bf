#pragma once

#include "ErrorReceiver.h"
#include "TraceSettings.h"

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace spdlog {
class logger;
namespace sinks {
class sink;
}
} // namespace spdlog

/// Writes trace lines to a file that rotates, or to standard error. Every operation may be called from any thread.
class TraceWriter
{
public:
    /// Opens what @p settings name. A file that cannot be opened costs one line on standard error, which is written to
    /// from then on.
    explicit TraceWriter(const TraceSettings &settings);
    ~TraceWriter();

    TraceWriter(const TraceWriter &) = delete;
    TraceWriter &operator=(const TraceWriter &) = delete;

    /// The number of the module @p name, counted from 1; a name that is known keeps its number.
    std::uint32_t registerModule(std::string_view name);

    /// Whether a line of @p level (module number << 8 | severity) is to be written, or an error for the receiver. The
    /// level is remembered for the next write() of this thread, which is told neither module nor severity.
    bool shouldLog(std::uint32_t level) const;

    /// Formats with the rules of printf, to any length, and writes one line where the settings want it; control
    /// characters become spaces. The receiver gets an error line in any case.
    void write(const char *format, std::va_list arguments);

    /// As RecordingTrace_SetErrorReceiver.
    void setErrorReceiver(TraceErrorReceiver receiver, void *context);

private:
    std::shared_ptr<spdlog::logger> newLogger(std::string_view name) const;
    std::shared_ptr<spdlog::logger> loggerOf(std::uint32_t module);

    bool isWanted(int severity) const { return severity <= m_level; }

    int m_level;
    mutable std::mutex m_receiverMutex; // guards the two below, also while the receiver runs
    TraceErrorReceiver m_receiver = nullptr;
    void *m_receiverContext = nullptr; // not owned
    std::shared_ptr<spdlog::sinks::sink> m_sink;
    std::mutex m_mutex; // guards the loggers
    std::vector<std::shared_ptr<spdlog::logger>> m_loggers; // by module number; the first one: no module
};
