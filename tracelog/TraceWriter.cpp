#include "TraceWriter.h"

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace {

constexpr auto linePattern = "%Y-%m-%dT%H:%M:%S.%e%z %l %n: %v";

thread_local std::uint32_t askedLevel = 0;

constexpr int severityOf(std::uint32_t level)
{
    return static_cast<int>(level & 0xffU);
}

constexpr std::uint32_t moduleOf(std::uint32_t level)
{
    return level >> 8;
}

constexpr bool isError(std::uint32_t level)
{
    return severityOf(level) <= TraceSettings::ErrorSeverity;
}

void complain(const std::string &text)
{
    std::fprintf(stderr, "libZarnLogUtl: %s\n", text.c_str());
}

std::shared_ptr<spdlog::sinks::sink> openSink(const TraceSettings &settings)
{
    if (!settings.file.empty()) {
        try {
            return std::make_shared<spdlog::sinks::rotating_file_sink_mt>(settings.file, settings.maxBytes,
                                                                          settings.files - 1);
        } catch (const std::exception &error) {
            complain("cannot write to RECORDING_TRACE_FILE \"" + settings.file + "\" (" + error.what()
                     + "); using standard error");
        }
    }
    return std::make_shared<spdlog::sinks::stderr_sink_mt>();
}

#if defined(__GNUC__)
__attribute__((format(printf, 1, 0)))
#endif
std::string
formatted(const char *format, std::va_list arguments)
{
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return format;
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace

TraceWriter::TraceWriter(const TraceSettings &settings)
    : m_level(settings.level)
{
    for (const std::string &line : settings.complaints)
        complain(line);
    m_sink = openSink(settings);
    m_sink->set_formatter(std::make_unique<spdlog::pattern_formatter>(linePattern));
    m_loggers.push_back(newLogger("(no module)"));
}

TraceWriter::~TraceWriter() = default;

std::shared_ptr<spdlog::logger> TraceWriter::newLogger(std::string_view name) const
{
    auto logger = std::make_shared<spdlog::logger>(std::string(name), m_sink);
    logger->set_level(spdlog::level::trace);
    logger->flush_on(spdlog::level::trace);
    logger->set_error_handler([told = false](const std::string &error) mutable {
        if (!told) // a full disk would fail with every line
            complain("a line was not written: " + error);
        told = true;
    });
    return logger;
}

std::uint32_t TraceWriter::registerModule(std::string_view name)
{
    const std::scoped_lock lock(m_mutex);
    const auto known = std::find_if(m_loggers.begin() + 1, m_loggers.end(),
                                    [name](const auto &logger) { return logger->name() == name; });
    const auto number = known - m_loggers.begin();
    if (known == m_loggers.end())
        m_loggers.push_back(newLogger(name));
    return static_cast<std::uint32_t>(number);
}

bool TraceWriter::shouldLog(std::uint32_t level) const
{
    askedLevel = level;
    if (isWanted(severityOf(level)))
        return true;
    const std::scoped_lock lock(m_receiverMutex);
    return m_receiver && isError(level);
}

void TraceWriter::setErrorReceiver(TraceErrorReceiver receiver, void *context)
{
    const std::scoped_lock lock(m_receiverMutex);
    m_receiver = receiver;
    m_receiverContext = context;
}

std::shared_ptr<spdlog::logger> TraceWriter::loggerOf(std::uint32_t module)
{
    const std::scoped_lock lock(m_mutex);
    return m_loggers[module < m_loggers.size() ? module : 0];
}

void TraceWriter::write(const char *format, std::va_list arguments)
{
    std::string text = formatted(format, arguments);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char letter) { return letter < 0x20 || letter == 0x7f; }, ' ');
    const bool error = isError(askedLevel);
    const std::shared_ptr<spdlog::logger> logger = loggerOf(moduleOf(askedLevel));
    if (isWanted(severityOf(askedLevel)))
        logger->log(error ? spdlog::level::err : spdlog::level::trace, spdlog::string_view_t(text));
    const std::scoped_lock lock(m_receiverMutex);
    if (error && m_receiver)
        m_receiver(m_receiverContext, logger->name().c_str(), text.c_str());
}
