#include "CommandRun.h"

#include "ClientSession.h"
#include "Commands.h"
#include "OutcomeText.h"
#include "Output.h"
#include "PluginInterface.h"
#include "StationProtocol.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QEventLoop>
#include <QTimer>

namespace {

void printErrors(const CallOutcome &outcome)
{
    if (!outcome.error.isEmpty())
        printError(outcome.error);
    const QStringList lines = refusalLines(outcome);
    for (const QString &line : lines)
        printError(line);
}

} // namespace

CommandRun::CommandRun(ClientSession &session, const CommandLine &line)
    : m_session(session)
    , m_line(line)
    , m_caller(*session.plugin(), *session.framework(), timeout())
{
}

CallOutcome CommandRun::call(const QString &name, const QVariantList &arguments)
{
    QString error;
    const QMetaMethod method = PluginInterface(*plugin().metaObject()).find(name, arguments.size(), &error);
    if (!method.isValid())
        return {ExitCode::WrongUse, error};
    QVariantList values = arguments;
    for (int index = 0; index < method.parameterCount(); ++index) {
        if (!values[index].convert(method.parameterMetaType(index)))
            return {ExitCode::WrongUse, QStringLiteral("%1: argument %2 is of another type").arg(name).arg(index + 1)};
    }
    return m_caller.call(method, values);
}

CallOutcome CommandRun::callStation(const QString &command, const QVariant &data)
{
    CallOutcome outcome;
    QEventLoop loop;
    const auto takePart = [&](const StationReply &part) {
        outcome.parts.append(part);
        if (outcome.returnCode.isEmpty() || outcome.returnCode == QStringLiteral("0"))
            outcome.returnCode = part.returnCode;
        if (part.finish)
            loop.quit();
    };
    const auto send = [&] { m_session.stationCalls()->send(command, data, &loop, takePart); };
    QTimer::singleShot(timeout(), &loop, [&] {
        if (!m_session.isConnected())
            takePart({HostReturnCode::NoAnswer, {}}); // once sent, the command's own time counts
    });
    if (m_session.isConnected())
        send();
    else
        QObject::connect(&m_session, &ClientSession::connectedChanged, &loop, send, Qt::SingleShotConnection);
    loop.exec();

    if (outcome.returnCode == HostReturnCode::NoAnswer) {
        outcome.exitCode = ExitCode::NoAnswer;
        outcome.error = QStringLiteral("%1: no answer within %2 s")
                            .arg(command)
                            .arg(std::chrono::duration<double>(timeout()).count());
    } else if (outcome.returnCode != QStringLiteral("0")) {
        outcome.exitCode = ExitCode::Refused;
        outcome.error = QStringLiteral("%1: the station refused: %2").arg(command, outcome.returnCode);
    }
    return outcome;
}

ExitCode CommandRun::end(const QString &name, const CallOutcome &outcome, const std::function<void()> &printResult)
{
    return end(outcome, outcomeJson(name, outcome), printResult);
}

ExitCode CommandRun::end(const CallOutcome &outcome, const QJsonObject &json, const std::function<void()> &printResult)
{
    if (m_line.json)
        printLine(indentedJson(json));
    else if (outcome.exitCode == ExitCode::Done && printResult)
        printResult();
    printErrors(outcome);
    if (outcome.returnCode.startsWith(QStringLiteral("Database"))) {
        printStationErrors(stationAlarms());
        return outcome.exitCode;
    }
    if (outcome.exitCode != ExitCode::Done || outcome.returnCode.isEmpty())
        return outcome.exitCode;
    // What was read from a damaged database may lack something, or be wrong.
    QVariantList alarms = stationAlarms();
    alarms.removeIf([](const QVariant &alarm) {
        return alarm.toMap().value(StationKey::kind) != StationReturnCode::DatabaseDamaged;
    });
    printStationErrors(alarms);
    return alarms.isEmpty() ? ExitCode::Done : ExitCode::Refused;
}

/// Empty where the station does not tell them.
QVariantList CommandRun::stationAlarms()
{
    const CallOutcome asked = callStation(StationOwnCommandName::listAlarms);
    if (asked.exitCode != ExitCode::Done)
        return {};
    return asked.parts.constLast().data.toMap().value(StationKey::alarms).toList();
}

QObject &CommandRun::plugin() const
{
    return *m_session.plugin();
}

std::chrono::milliseconds CommandRun::timeout() const
{
    return m_line.timeout.value_or(defaultTimeout);
}

bool isStationError(const QVariant &alarm)
{
    return alarm.toMap().value(StationKey::severity) == StationSeverity::error;
}

void printStationErrors(const QVariantList &alarms)
{
    for (const QVariant &alarm : alarms) {
        const QVariantMap map = alarm.toMap();
        if (isStationError(alarm))
            printError(map.value(StationKey::text).toString() + u' ' + map.value(StationKey::remedy).toString());
    }
}

ExitCode refused(const QString &error)
{
    printError(error);
    return ExitCode::Refused;
}

ExitCode wrongUse(const QString &error)
{
    printError(error);
    return ExitCode::WrongUse;
}
