#include "PluginCaller.h"

#include "AnswerTable.h"
#include "CommandKind.h"
#include "PluginInterface.h"
#include "StationVocabulary.h"
#include "framework/HostFramework.h"
#include "framework/HostReturnCode.h"

#include <QCoreApplication>
#include <QHash>
#include <QScopeGuard>
#include <QTimer>

#include <array>

namespace {

const QString success = QStringLiteral("0");

QString nameOf(const QMetaMethod &method)
{
    return QString::fromLatin1(method.name());
}

/// Whether the plug-in said no by returning @p result: false for a command sent, or no id for it.
bool isRefusal(const QVariant &result)
{
    return result.typeId() == QMetaType::Bool ? !result.toBool() : result.toString().isEmpty();
}

} // namespace

QVariant CallOutcome::answered(const char *parameter) const
{
    const Emission answer = answers.value(0);
    return answer.arguments.value(answer.signal.parameterNames().indexOf(parameter));
}

PluginCaller::PluginCaller(QObject &plugin, HostFramework &framework, std::chrono::milliseconds timeout)
    : m_plugin(plugin)
    , m_timeout(timeout)
    , m_connectCommands(commandsOnConnect())
    , m_tap(&plugin, [this](const QMetaMethod &signal, const QVariantList &arguments) {
        if (m_onSignal)
            m_onSignal(signal, arguments);
    })
{
    connect(&framework, &HostFramework::commandAnswered, this,
            [this](const QString &command, const QString &returnCode, const QVariant &data, bool finish) {
                if (m_onAnswer)
                    m_onAnswer(command, {returnCode, data, finish});
                else if (finish && returnCode != HostReturnCode::NoAnswer)
                    m_connectCommands.removeOne(command);
            });
}

void setFailure(CallOutcome &outcome, const QString &name, const QString &command, std::chrono::milliseconds timeout)
{
    static const QHash<QString, QString> unanswered{
        {HostReturnCode::StationLost, QStringLiteral("%1: the station was lost before it answered")},
        {HostReturnCode::NoAnswer, QStringLiteral("%1: no answer within %2 s")},
        {HostReturnCode::BadReply, QStringLiteral("%1: what the station answered cannot be read")},
        {StationReturnCode::StationStopping, QStringLiteral("%1: the station ended before it was done")},
    };
    static const QHash<QString, QString> inWords{
        {HostReturnCode::TooLargeForBroker, QStringLiteral("%1: the request is larger than the broker takes")},
        {HostReturnCode::CannotBeSent, QStringLiteral("%1: the request is too large, or holds what cannot be sent")},
        {HostReturnCode::BrokerRefused,
         QStringLiteral("%1: the broker does not let this user send commands to the station")},
        {StationReturnCode::ReplyTooLarge,
         QStringLiteral("%1: what the station answered is larger than the broker takes")},
    };
    const auto found = unanswered.constFind(outcome.returnCode);
    if (found != unanswered.constEnd()) {
        outcome.exitCode = ExitCode::NoAnswer;
        outcome.error = found->arg(name);
        if (outcome.returnCode == HostReturnCode::NoAnswer)
            outcome.error = outcome.error.arg(std::chrono::duration<double>(timeout).count());
        if (isEdit(command))
            outcome.error += QStringLiteral("; it may take effect all the same");
    } else if (outcome.returnCode == HostReturnCode::LinkDown) {
        outcome.exitCode = ExitCode::NoAnswer;
        outcome.error = QStringLiteral("%1: the station cannot be reached").arg(name);
    } else {
        outcome.exitCode = ExitCode::Refused;
        outcome.error = inWords.contains(outcome.returnCode)
            ? inWords.value(outcome.returnCode).arg(name)
            : QStringLiteral("%1: the station refused: %2").arg(name, outcome.returnCode);
        if (outcome.returnCode == StationReturnCode::ReplyTooLarge && isEdit(command))
            outcome.error += QStringLiteral("; it took effect");
    }
}

CallOutcome PluginCaller::call(const QMetaMethod &method, const QVariantList &arguments)
{
    if (!waitUntilReady()) {
        CallOutcome outcome;
        outcome.returnCode = HostReturnCode::NoAnswer;
        setFailure(outcome, nameOf(method), {}, m_timeout);
        return outcome;
    }
    if (const auto answer = answerOf(nameOf(method), *m_plugin.metaObject()))
        return send(*answer, method, arguments);
    const CallOutcome fetched = fetchFor(method, arguments);
    return fetched.exitCode == ExitCode::Done ? invoke(method, arguments) : fetched;
}

CallOutcome PluginCaller::fetchFor(const QMetaMethod &query, const QVariantList &arguments)
{
    const PluginInterface interface(*m_plugin.metaObject());
    const qsizetype relay = query.parameterNames().indexOf("relayPath");
    const QStringList requests = requestsBefore(nameOf(query));
    for (const QString &request : requests) {
        QMetaMethod method;
        if (relay >= 0)
            method = interface.find(request, 1);
        const bool takesRelay = method.isValid() && method.parameterNames().value(0) == "relayPath";
        if (!takesRelay)
            method = interface.find(request, 0);
        const auto answer = answerOf(request, *m_plugin.metaObject());
        Q_ASSERT(answer && method.isValid());
        CallOutcome outcome = send(*answer, method, takesRelay ? QVariantList{arguments.at(relay)} : QVariantList{});
        if (outcome.exitCode != ExitCode::Done) {
            outcome.error = QStringLiteral("%1 needs %2 first: %3").arg(nameOf(query), request, outcome.error);
            return outcome;
        }
    }
    return {};
}

CallOutcome PluginCaller::invoke(const QMetaMethod &method, const QVariantList &arguments)
{
    constexpr std::size_t most = 10;
    std::array<QGenericArgument, most> values;
    const QList<QByteArray> types = method.parameterTypes(); // as they are declared: an enumeration without its class
    for (qsizetype index = 0; index < arguments.size(); ++index)
        values.at(static_cast<std::size_t>(index)) =
            QGenericArgument(types.at(index).constData(), arguments[index].constData());

    CallOutcome outcome;
    const QMetaType type = method.returnMetaType();
    const bool returns = type.id() != QMetaType::Void;
    if (returns)
        outcome.result = QVariant(type);
    const QGenericReturnArgument result(returns ? type.name() : nullptr, returns ? outcome.result.data() : nullptr);
    if (!method.invoke(&m_plugin, Qt::DirectConnection, result, values[0], values[1], values[2], values[3], values[4],
                       values[5], values[6], values[7], values[8], values[9]))
        return {ExitCode::Refused, QStringLiteral("%1 could not be called").arg(nameOf(method))};
    outcome.model = qobject_cast<QAbstractItemModel *>(outcome.result.value<QObject *>());
    outcome.modelGetter = outcome.model ? nameOf(method) : QString();
    return outcome;
}

CallOutcome PluginCaller::send(const AnswerRow &answer, const QMetaMethod &method, const QVariantList &arguments)
{
    QList<CallOutcome::Emission> emissions;
    QList<StationReply> parts;
    QString returnCode;
    bool finished = false;
    m_onSignal = [&](const QMetaMethod &signal, const QVariantList &values) {
        if (signal.name() == answer.signal)
            emissions.append({signal, values});
    };
    m_onAnswer = [&](const QString &command, const StationReply &part) {
        if (finished || command.toLatin1() != answer.command)
            return;
        if (returnCode.isEmpty() || returnCode == success)
            returnCode = part.returnCode;
        parts.append(part);
        finished = part.finish;
        restartClock();
    };
    const auto forget = qScopeGuard([this] {
        m_onSignal = nullptr;
        m_onAnswer = nullptr;
    });

    m_pluginErrors.forget();
    CallOutcome outcome = invoke(method, arguments);
    const bool answeredAtOnce = !emissions.isEmpty();
    if (isRefusal(outcome.result) && !answeredAtOnce) {
        outcome.exitCode = ExitCode::Refused;
        outcome.error = refusedByPlugin(method);
        return outcome;
    }
    const auto isOurs = [&](const CallOutcome::Emission &emission) {
        return !answer.carriesRequestId || emission.arguments.value(0) == outcome.result;
    };
    const auto isComplete = [&] {
        emissions.removeIf([&](const CallOutcome::Emission &emission) { return !isOurs(emission); });
        return answeredAtOnce || (finished && (returnCode != success || !emissions.isEmpty()));
    };
    const bool complete = waitUntil(isComplete);
    outcome.parts = parts;
    outcome.answers = emissions;
    outcome.returnCode = returnCode;
    if (!complete)
        outcome.returnCode = HostReturnCode::NoAnswer;
    if (!complete || (!answeredAtOnce && returnCode != success)) {
        setFailure(outcome, nameOf(method), QLatin1String(answer.command), m_timeout);
    } else if (answer.model) {
        outcome.model = modelFrom(answer.model);
        outcome.modelGetter = QString::fromLatin1(answer.model);
    }
    return outcome;
}

QAbstractItemModel *PluginCaller::modelFrom(const char *getter) const
{
    QObject *model = nullptr;
    QMetaObject::invokeMethod(&m_plugin, getter, Qt::DirectConnection, Q_RETURN_ARG(QObject *, model));
    return qobject_cast<QAbstractItemModel *>(model);
}

bool PluginCaller::waitUntilReady()
{
    return waitUntil([this] { return m_connectCommands.isEmpty(); });
}

bool PluginCaller::waitUntil(const std::function<bool()> &done)
{
    QTimer wake; // ends the wait for the next event
    wake.setSingleShot(true);
    wake.setTimerType(Qt::PreciseTimer);
    restartClock();
    while (!done()) {
        if (m_deadline.hasExpired())
            return false;
        wake.start(std::chrono::ceil<std::chrono::milliseconds>(m_deadline.remainingTimeAsDuration()));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

QString PluginCaller::refusedByPlugin(const QMetaMethod &method) const
{
    const QString fact = m_pluginErrors.lastFact();
    const QString text = QStringLiteral("%1: the plug-in refused and sent nothing").arg(nameOf(method));
    return fact.isEmpty() ? text + QStringLiteral("; with RECORDING_TRACE_LEVEL=error it says why")
                          : text + QStringLiteral(": ") + fact;
}

void PluginCaller::restartClock()
{
    m_deadline.setRemainingTime(m_timeout);
}
