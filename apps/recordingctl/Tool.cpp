#include "Tool.h"

#include "Commands.h"
#include "CoreDumps.h"
#include "Output.h"
#include "StationLog.h"
#include "StationSettings.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

/// The plug-in's log goes to standard error unless told otherwise, where scripts look for one line.
void keepTraceQuiet()
{
    constexpr auto level = "RECORDING_TRACE_LEVEL";
    if (!qEnvironmentVariableIsSet(level) && !qEnvironmentVariableIsSet("RECORDING_TRACE_FILE"))
        qputenv(level, "off");
}

/// The first argument whose bytes are no text, and would reach the station as another name.
std::optional<int> unreadableArgument(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (QString::fromLocal8Bit(argv[i]).toLocal8Bit() != argv[i])
            return i;
    }
    return {};
}

/// A result that could not be written was not given.
ExitCode afterWriting(ExitCode exitCode)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return exitCode;
    printError(QStringLiteral("standard output could not be written"));
    return ExitCode::WrongUse;
}

QString noStationFolder()
{
    return QStringLiteral("there is no folder for the station's data: HOME is not set; name one with --data");
}

/// The session has ended when this returns, or is left behind.
ExitCode runSession(const ClientSession::Options &options, const CommandLine &line)
{
    ClientSession session;
    if (!session.start(options)) {
        printError(session.error().simplified());
        return ExitCode::WrongUse;
    }
    return afterWriting(runCommand(session, line));
}

} // namespace

int runTool(int argc, char **argv, ClientSession::Options options)
{
    forbidCoreDumps();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("recordingctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(RECORDING_VERSION));

    if (const std::optional<int> unreadable = unreadableArgument(argc, argv)) {
        printError(QStringLiteral("argument %1 is not valid UTF-8").arg(*unreadable));
        return static_cast<int>(ExitCode::WrongUse);
    }
    const CommandLine line = CommandLine::parse(QCoreApplication::arguments());
    if (!line.error.isEmpty()) {
        printError(line.error);
        return static_cast<int>(ExitCode::WrongUse);
    }
    if (!line.text.isEmpty()) {
        printText(line.text);
        return static_cast<int>(afterWriting(ExitCode::Done));
    }

    keepStationLogPrintable();
    keepTraceQuiet();
    if (!line.dataFolder.isEmpty())
        options.dataFolder = line.dataFolder;
    if (options.dataFolder.isEmpty() && !options.makeStation && defaultStationFolder().isEmpty()) {
        printError(noStationFolder());
        return static_cast<int>(ExitCode::WrongUse);
    }
    options.replyTimeout = line.timeout.value_or(defaultTimeout);
    const ExitCode exitCode = runSession(options, line);
    if (EmbeddedLink::isAnythingLeftBehind())
        std::_Exit(static_cast<int>(exitCode));
    return static_cast<int>(exitCode);
}
