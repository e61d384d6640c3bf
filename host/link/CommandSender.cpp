#include "CommandSender.h"

#include "framework/HostReturnCode.h"

#include <algorithm>

CommandSender::CommandSender(StationLink &link, Range range)
    : m_link(link)
    , m_lastCorrelation(static_cast<quint64>(range))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &CommandSender::refuseOverdue);
    connect(&m_link, &StationLink::replyReceived, this, &CommandSender::deliver);
    connect(&m_link, &StationLink::upChanged, this, [this](bool up) {
        if (!up)
            refuseAll(m_outstanding.keys(), HostReturnCode::LinkDown);
    });
}

void CommandSender::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_replyTimeout = std::max(timeout, std::chrono::milliseconds(1));
}

void CommandSender::send(const QString &relayPath, const StationCommand &command, const OnPart &onPart)
{
    const quint64 correlation = ++m_lastCorrelation;
    m_outstanding.insert(correlation, {onPart, QDeadlineTimer(m_replyTimeout)});
    if (m_link.isUp()) {
        watchDeadline();
        m_link.send(correlation, relayPath, command);
    } else {
        const auto refuse = [this, correlation] { deliver(correlation, {HostReturnCode::LinkDown, {}}); };
        QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
    }
}

bool CommandSender::isOutstanding(quint64 correlation) const
{
    return m_outstanding.contains(correlation);
}

void CommandSender::close()
{
    m_link.disconnect(this);
    refuseAll(m_outstanding.keys(), HostReturnCode::Closing);
}

void CommandSender::deliver(quint64 correlation, const StationReply &part)
{
    const auto found = m_outstanding.find(correlation);
    if (found == m_outstanding.end())
        return; // another sender's, late or once too often
    const OnPart onPart = found->onPart;
    if (part.finish) {
        m_outstanding.erase(found);
    } else {
        found->deadline = QDeadlineTimer(m_replyTimeout);
        watchDeadline();
    }
    onPart(correlation, part);
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
    refuseAll(overdue, HostReturnCode::NoAnswer);
    if (m_outstanding.isEmpty())
        return;
    const auto earliest =
        std::min_element(m_outstanding.cbegin(), m_outstanding.cend(),
                         [](const Command &one, const Command &other) { return one.deadline < other.deadline; });
    m_timer.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(earliest->deadline.remainingTimeAsDuration()),
                           std::chrono::milliseconds(1)));
}
