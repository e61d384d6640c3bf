#include "Tool.h"

#include "Commands.h"
#include "Output.h"

#include <QCoreApplication>

#include <cstdlib>

namespace {

/// The plug-in's log goes to standard error unless told otherwise, where scripts look for one line.
void keepTraceQuiet()
{
    constexpr auto level = "RECORDING_TRACE_LEVEL";
    if (!qEnvironmentVariableIsSet(level) && !qEnvironmentVariableIsSet("RECORDING_TRACE_FILE"))
        qputenv(level, "off");
}

} // namespace

int runTool(int argc, char **argv, ClientSession::Options options)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("recordingctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(RECORDING_VERSION));

    const CommandLine line = CommandLine::parse(QCoreApplication::arguments());
    if (!line.error.isEmpty()) {
        printError(line.error);
        return static_cast<int>(ExitCode::WrongUse);
    }
    if (!line.text.isEmpty()) {
        printText(line.text);
        return static_cast<int>(ExitCode::Done);
    }

    keepTraceQuiet();
    options.replyTimeout = line.timeout.value_or(defaultTimeout);
    ClientSession session;
    if (!session.start(options)) {
        printError(session.error().simplified());
        return static_cast<int>(ExitCode::WrongUse);
    }
    const ExitCode exitCode = runCommand(session, line);
    // A station that hangs in the file system, on a network disk that is gone, cannot be waited for.
    if (exitCode == ExitCode::NoAnswer)
        std::_Exit(static_cast<int>(exitCode));
    return static_cast<int>(exitCode);
}
