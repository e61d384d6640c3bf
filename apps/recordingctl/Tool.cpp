#include "Tool.h"

#include "CommandReply.h"
#include "Commands.h"
#include "CoreDumps.h"
#include "Output.h"
#include "PluginHost.h"
#include "StationLog.h"
#include "embedded/EmbeddedLink.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

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

/// Whether the command is about more stations than one.
bool isOfTheSite(const CommandLine &line)
{
    return line.command == QStringLiteral("stations") || line.command == QStringLiteral("each")
        || line.has(QStringLiteral("all"));
}

/// Makes the station of --station the directly connected one, where the link has not begun with it: a link that knows
/// one station alone. False with @p error where there is no such station. One that is not up is left to the command.
bool chooseStation(ClientSession &session, const CommandLine &line, QString *error)
{
    const QString station = line.value(QStringLiteral("station"));
    if (station.isEmpty() || session.directStation() == station)
        return true;
    QEventLoop loop;
    const auto isSettled = [&session] {
        const StationState::Kind kind = session.stationState().kind;
        return kind == StationState::Kind::Up || kind == StationState::Kind::Down;
    };
    QObject::connect(&session, &ClientSession::stationStateChanged, &loop, [&] {
        if (isSettled())
            loop.quit();
    });
    QTimer::singleShot(line.timeout.value_or(defaultTimeout), &loop, &QEventLoop::quit);
    if (!isSettled())
        loop.exec();
    return !session.isConnected() || session.setDirectStation(station, error);
}

/// The session has ended when this returns, or is left behind.
ExitCode runSession(const ClientSession::Options &options, const CommandLine &line)
{
    ClientSession session;
    if (!session.start(options)) {
        printFailure(line, session.plugin() ? ToolErrorCode::WrongUse : ToolErrorCode::PluginNotLoaded,
                     session.error().simplified());
        return ExitCode::WrongUse;
    }
    QString error;
    if (!chooseStation(session, line, &error)) {
        printFailure(line, ToolErrorCode::NotFound, error);
        return ExitCode::Refused;
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

    CommandLine line = CommandLine::parse(QCoreApplication::arguments());
    if (const std::optional<int> unreadable = unreadableArgument(argc, argv))
        line.error = QStringLiteral("argument %1 is not valid UTF-8").arg(*unreadable);
    if (!line.error.isEmpty()) {
        printFailure(line, ToolErrorCode::WrongUse, line.error);
        return static_cast<int>(ExitCode::WrongUse);
    }
    if (!line.text.isEmpty()) {
        printText(line.text);
        return static_cast<int>(afterWriting(ExitCode::Done));
    }

    keepStationLogPrintable();
    keepTraceQuiet();
    PluginHost::loadTraceLibrary(PluginHost::traceLibraryOfPrograms());
    options.url = line.url;
    options.station = line.value(QStringLiteral("station"));
    options.followsOthers = isOfTheSite(line);
    options.replyTimeout = line.timeout.value_or(defaultTimeout);
    const ExitCode exitCode = runSession(options, line);
    if (StationThread::isAnythingLeftBehind())
        std::_Exit(static_cast<int>(exitCode));
    return static_cast<int>(exitCode);
}
