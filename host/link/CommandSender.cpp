#include "CommandSender.h"

#include "CommandKind.h"
#include "CommandRoute.h"
#include "ServerVocabulary.h"
#include "framework/HostReturnCode.h"

#include <QUuid>

#include <algorithm>
#include <utility>

CommandSender::CommandSender(StationLink &link, Range range)
    : m_link(link)
    , m_idPrefix(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_lastCorrelation(static_cast<quint64>(range))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CommandSender::refuseOverdue);
    connect(&m_link, &StationLink::replyReceived, this, &CommandSender::deliver);
    connect(&m_link, &StationLink::stateChanged, this, &CommandSender::followState);
    connect(&m_link, &StationLink::directStationChanged, this, &CommandSender::followDirectStation);
}

void CommandSender::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_replyTimeout = std::max(timeout, std::chrono::milliseconds(1));
}

void CommandSender::setDescribe(const Describe &describe)
{
    m_describe = describe;
}

void CommandSender::send(const QString &relayPath, const StationCommand &command, const OnPart &onPart)
{
    const quint64 correlation = ++m_lastCorrelation;
    const QString addressed = stationOf(relayPath, command);
    const QString station = addressed.isEmpty() ? m_link.directStation() : addressed;
    const StationState::Kind state = m_link.state(station).kind;
    Command outstanding{addressed, station, onPart, QDeadlineTimer(m_replyTimeout), state == StationState::Kind::Up,
                        {},        false};
    if (isEdit(command.name)) {
        outstanding.outcome.command = command.name;
        outstanding.outcome.subject = m_describe ? m_describe(command) : QString();
        outstanding.outcome.relayPath = station;
    }
    m_outstanding.insert(correlation, outstanding);
    if (state != StationState::Kind::Unknown) {
        watchDeadline();
        StationCommand sent = command;
        if (sent.id.isEmpty())
            sent.id = QStringLiteral("%1-%2").arg(m_idPrefix, QString::number(correlation, 16));
        sent.timeLimit = m_replyTimeout;
        m_link.send(correlation, station, sent);
    } else {
        const auto refuse = [this, correlation] { deliver(correlation, {HostReturnCode::LinkDown, {}}); };
        QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
    }
}

/// Whether news of the station behind @p relayPath is news for who waits for @p command. Under the empty relay path a
/// link speaks of the directly connected station, and one that knows no other speaks of that one, however it was
/// addressed.
bool CommandSender::concerns(const QString &relayPath, const StationState &state, const Command &command) const
{
    const QString direct = m_link.directStation();
    const QString &station = command.station.isEmpty() ? direct : command.station;
    if (station == (relayPath.isEmpty() ? direct : relayPath))
        return true;
    return relayPath.isEmpty() && m_link.state(command.station).kind == state.kind;
}

void CommandSender::followDirectStation(const QString &relayPath)
{
    QList<quint64> ofAnother;
    for (auto command = m_outstanding.cbegin(); command != m_outstanding.cend(); ++command) {
        if (command->relayPath.isEmpty() && command->station != relayPath)
            ofAnother.append(command.key());
    }
    for (const quint64 correlation : std::as_const(ofAnother))
        giveUp(correlation);
    refuseAll(ofAnother, HostReturnCode::OtherStation);
}

void CommandSender::followState(const QString &relayPath, const StationState &state)
{
    if (!relayPath.isEmpty() && relayPath == m_link.directStation())
        return; // which is told with the empty one, too
    const bool isUp = state.kind == StationState::Kind::Up;
    QList<quint64> lost;
    QList<quint64> unsent;
    for (auto command = m_outstanding.begin(); command != m_outstanding.end(); ++command) {
        if (!concerns(relayPath, state, *command))
            continue;
        if (isUp)
            command->isSent = true;
        else if (command->isSent && state.keepsCommands)
            continue;
        else if (command->isSent)
            lost.append(command.key());
        else if (state.kind == StationState::Kind::Down)
            unsent.append(command.key());
    }
    const QList<LateOutcome> late = followGivenUp(relayPath, state);
    refuseAll(lost, HostReturnCode::StationLost);
    refuseAll(unsent, HostReturnCode::LinkDown);
    for (const LateOutcome &outcome : late)
        emit lateOutcomeCame(outcome);
}

/// What came of those edits that no station will tell of any more.
QList<LateOutcome> CommandSender::followGivenUp(const QString &relayPath, const StationState &state)
{
    using Kind = StationState::Kind;
    QList<LateOutcome> ended;
    for (auto edit = m_givenUp.begin(); edit != m_givenUp.end();) {
        const bool isAddressed = concerns(relayPath, state, *edit);
        if (isAddressed && state.kind == Kind::Up)
            edit->isSent = true;
        const bool isKept = edit->isSent ? state.keepsCommands : state.kind != Kind::Down;
        if (!isAddressed || state.kind == Kind::Up || isKept) {
            ++edit;
            continue;
        }
        LateOutcome outcome = edit->outcome;
        outcome.returnCode = edit->isSent ? HostReturnCode::StationLost : HostReturnCode::LinkDown;
        outcome.isDoneInPart = edit->isAnyDone;
        ended.append(outcome);
        edit = m_givenUp.erase(edit);
    }
    return ended;
}

bool CommandSender::isOutstanding(quint64 correlation) const
{
    return m_outstanding.contains(correlation);
}

void CommandSender::close()
{
    m_link.disconnect(this);
    m_givenUp.clear();
    refuseAll(m_outstanding.keys(), HostReturnCode::Closing);
}

void CommandSender::deliver(quint64 correlation, const StationReply &part)
{
    const auto found = m_outstanding.find(correlation);
    if (found == m_outstanding.end())
        return takeLate(correlation, part);
    note(*found, part);
    const OnPart onPart = found->onPart;
    if (part.finish) {
        m_outstanding.erase(found);
    } else {
        found->deadline = QDeadlineTimer(m_replyTimeout);
        watchDeadline();
    }
    onPart(correlation, part);
}

/// Of an edit that was given up on. Whatever else comes is another sender's, late or once too often.
void CommandSender::takeLate(quint64 correlation, const StationReply &part)
{
    const auto found = m_givenUp.find(correlation);
    if (found == m_givenUp.end())
        return;
    note(*found, part);
    if (!part.finish)
        return;
    LateOutcome outcome = found->outcome;
    outcome.isDoneInPart = found->isAnyDone && outcome.returnCode != ReturnCode::Success;
    m_givenUp.erase(found);
    emit lateOutcomeCame(outcome);
}

void CommandSender::note(Command &command, const StationReply &part)
{
    QString &returnCode = command.outcome.returnCode;
    if (returnCode.isEmpty() || returnCode == ReturnCode::Success)
        returnCode = part.returnCode;
    command.isAnyDone = command.isAnyDone || part.returnCode == ReturnCode::Success;
}

/// Keeps an edit until its outcome is known.
void CommandSender::giveUp(quint64 correlation)
{
    const auto found = m_outstanding.constFind(correlation);
    if (found == m_outstanding.constEnd() || found->outcome.command.isEmpty())
        return;
    m_givenUp.insert(correlation, *found);
    Command &edit = m_givenUp[correlation];
    edit.onPart = {};
    edit.outcome.timedOutAt = QDateTime::currentDateTimeUtc();
}

void CommandSender::refuseAll(const QList<quint64> &correlations, const QString &returnCode)
{
    for (const quint64 correlation : correlations)
        deliver(correlation, {returnCode, {}});
}

void CommandSender::watchDeadline()
{
    if (!m_timer.isActive() || m_timer.remainingTimeAsDuration() > m_replyTimeout)
        m_timer.start(m_replyTimeout);
}

void CommandSender::refuseOverdue()
{
    QList<quint64> overdue;
    for (auto command = m_outstanding.cbegin(); command != m_outstanding.cend(); ++command) {
        if (command->deadline.hasExpired())
            overdue.append(command.key());
    }
    for (const quint64 correlation : overdue)
        giveUp(correlation);
    refuseAll(overdue, HostReturnCode::NoAnswer);
    if (m_outstanding.isEmpty())
        return;
    const auto earliest =
        std::min_element(m_outstanding.cbegin(), m_outstanding.cend(),
                         [](const Command &one, const Command &other) { return one.deadline < other.deadline; });
    m_timer.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(earliest->deadline.remainingTimeAsDuration()),
                           std::chrono::milliseconds(1)));
}
