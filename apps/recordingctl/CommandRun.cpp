#include "CommandRun.h"

#include "ClientSession.h"
#include "Commands.h"
#include "JsonFields.h"
#include "OutcomeText.h"
#include "Output.h"
#include "PluginInterface.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QEventLoop>
#include <QTimer>

namespace {

CallOutcome stationUnreachable(const QString &reason)
{
    CallOutcome outcome{ExitCode::NoAnswer, QStringLiteral("the station cannot be reached: %1").arg(reason)};
    outcome.returnCode = HostReturnCode::LinkDown;
    return outcome;
}

} // namespace

CommandRun::CommandRun(ClientSession &session, const CommandLine &line)
    : m_session(session)
    , m_line(line)
    , m_caller(*session.plugin(), *session.framework(), timeout())
    , m_reply(line.command)
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
    const QString unreachable = waitForStation();
    if (!unreachable.isEmpty())
        return stationUnreachable(unreachable);
    return m_caller.call(method, values);
}

QString CommandRun::waitForStation() const
{
    QEventLoop loop;
    QObject::connect(&m_session, &ClientSession::stationStateChanged, &loop, [&loop](const StationState &state) {
        if (state.kind == StationState::Kind::Up || state.kind == StationState::Kind::Down)
            loop.quit();
    });
    QTimer::singleShot(timeout(), &loop, &QEventLoop::quit);
    const StationState::Kind before = m_session.stationState().kind;
    if (before == StationState::Kind::Unknown || before == StationState::Kind::Connecting)
        loop.exec();
    const StationState state = m_session.stationState();
    if (state.kind == StationState::Kind::Up)
        return {};
    return state.reason.isEmpty() ? QStringLiteral("it takes too long to start.") : state.reason;
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
    const QString unreachable = waitForStation();
    if (!unreachable.isEmpty())
        return stationUnreachable(unreachable);
    m_session.stationCalls()->send(command, data, &loop, takePart);
    loop.exec();
    if (outcome.returnCode != ReturnCode::Success)
        setFailure(outcome, command, command, timeout());
    return outcome;
}

void CommandRun::show(const ResultView &view)
{
    if (m_line.json)
        m_reply.setData(view.json ? view.json() : QJsonValue());
    else if (view.print)
        view.print();
}

ExitCode CommandRun::end(const CallOutcome &outcome, const ResultView &view)
{
    if (outcome.exitCode != ExitCode::Done)
        fail(outcome);
    else if (view.json || view.print)
        show(view);
    if (outcome.returnCode.startsWith(QStringLiteral("Database"))) {
        reportBroken(stationAlarms());
        return outcome.exitCode;
    }
    if (outcome.exitCode != ExitCode::Done || outcome.returnCode.isEmpty())
        return outcome.exitCode;
    // What was read from a damaged database may lack something, or be wrong.
    QVariantList alarms = stationAlarms();
    alarms.removeIf([](const QVariant &alarm) {
        return alarm.toMap().value(StationKey::kind) != StationReturnCode::DatabaseDamaged;
    });
    return reportBroken(alarms) ? ExitCode::Refused : ExitCode::Done;
}

ExitCode CommandRun::refused(const QString &code, const QString &error)
{
    fail(code, error);
    return ExitCode::Refused;
}

ExitCode CommandRun::wrongUse(const QString &error)
{
    fail(ToolErrorCode::WrongUse, error);
    return ExitCode::WrongUse;
}

ExitCode CommandRun::noAnswer(const QString &error)
{
    fail(HostReturnCode::NoAnswer, error);
    return ExitCode::NoAnswer;
}

void CommandRun::fail(const QString &code, const QString &error)
{
    printError(error);
    m_reply.addError(code, error);
}

void CommandRun::fail(const CallOutcome &outcome)
{
    fail(errorCodeOf(outcome), outcome.error);
    const QStringList lines = refusalLines(outcome);
    for (const QString &line : lines)
        printError(line);
    const QJsonArray elements = refusedElementsJson(outcome);
    for (const QJsonValue &element : elements)
        m_reply.addElement(element.toObject());
}

bool CommandRun::reportBroken(const QVariantList &alarms)
{
    bool isAnyBroken = false;
    for (const QVariant &alarm : alarms) {
        if (!isStationError(alarm))
            continue;
        isAnyBroken = true;
        fail(alarm.toMap().value(StationKey::kind).toString(), alarmLine(alarm));
    }
    return isAnyBroken;
}

void CommandRun::reportUnknown(const QVariant &pending, const QString &line)
{
    printError(line);
    QVariantMap fields;
    for (const QString &key : {StationKey::kind, StationKey::subject, StationKey::text, StationKey::since})
        fields.insert(key, pending.toMap().value(key));
    m_reply.addUnknown(fieldsJson(fields));
}

/// Empty where the station does not tell them.
QVariantList CommandRun::stationAlarms()
{
    const CallOutcome asked = callStation(StationCommandName::listAlarms);
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

QString alarmLine(const QVariant &alarm)
{
    const QVariantMap map = alarm.toMap();
    return map.value(StationKey::text).toString() + u' ' + map.value(StationKey::remedy).toString();
}
