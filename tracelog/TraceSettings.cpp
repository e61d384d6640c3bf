#include "TraceSettings.h"

#include <charconv>
#include <string_view>

namespace {

constexpr struct
{
    std::string_view word;
    int level;
} levels[] = {
    {"error", TraceSettings::ErrorSeverity},
    {"trace", TraceSettings::TraceSeverity},
    {"off", TraceSettings::Off},
};

constexpr struct
{
    const char *variable;
    std::size_t TraceSettings::*member;
    std::size_t smallest;
    std::size_t largest;
} numbers[] = {
    {"RECORDING_TRACE_MAX_BYTES", &TraceSettings::maxBytes, 1024, std::size_t{1} << 40},
    {"RECORDING_TRACE_FILES", &TraceSettings::files, 1, 1000},
};

std::string complaint(std::string_view variable, std::string_view value, const std::string &expected,
                      const std::string &used)
{
    return std::string(variable) + " is \"" + std::string(value) + "\", expected " + expected + "; using " + used;
}

bool readLevel(std::string_view value, int &level)
{
    for (const auto &entry : levels) {
        if (entry.word == value) {
            level = entry.level;
            return true;
        }
    }
    return false;
}

bool readNumber(std::string_view value, std::size_t smallest, std::size_t largest, std::size_t &number)
{
    std::size_t read = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), read);
    if (error != std::errc() || end != value.data() + value.size() || read < smallest || read > largest)
        return false;
    number = read;
    return true;
}

} // namespace

TraceSettings readTraceSettings(const std::function<const char *(const char *name)> &variable)
{
    const auto valueOf = [&variable](const char *name) {
        const char *const value = variable(name);
        return std::string_view(value ? value : "");
    };

    TraceSettings settings;
    settings.file = valueOf("RECORDING_TRACE_FILE");
    const std::string_view level = valueOf("RECORDING_TRACE_LEVEL");
    if (!level.empty() && !readLevel(level, settings.level))
        settings.complaints.push_back(complaint("RECORDING_TRACE_LEVEL", level, "error, trace or off", "error"));
    for (const auto &entry : numbers) {
        std::size_t &number = settings.*entry.member;
        const std::string_view value = valueOf(entry.variable);
        if (!value.empty() && !readNumber(value, entry.smallest, entry.largest, number)) {
            const std::string range =
                "a number from " + std::to_string(entry.smallest) + " to " + std::to_string(entry.largest);
            settings.complaints.push_back(complaint(entry.variable, value, range, std::to_string(number)));
        }
    }
    return settings;
}
