#pragma once

#include "StationLink.h"

#include <QDeadlineTimer>
#include <QMap>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

/// Numbers commands, sends them over a link and keeps the time of each.
///
/// Every command is answered exactly once, that is with exactly one last part: when the link is down, when the station
/// does not answer in time and when the sender closes, with a code of HostReturnCode. Whatever arrives after that is
/// dropped. An answer never comes from within send(). Several senders may share a link: each ignores the others'
/// numbers.
class CommandSender : public QObject
{
    Q_OBJECT
public:
    /// Takes every part of an answer, on the sender's thread. May send, forget or close.
    using OnPart = std::function<void(quint64 correlation, const StationReply &part)>;

    /// Who numbers commands on a link; each has a range of its own.
    enum class Range : quint64 { Plugins = 0, Station = quint64(1) << 63 };

    /// @param link not owned; must outlive the sender
    CommandSender(StationLink &link, Range range);

    /// How long a station may take for a command, or for the next part of an answer in several; 30 s at first. Holds
    /// for what is sent from then on; at least 1 ms.
    void setReplyTimeout(std::chrono::milliseconds timeout);

    /// Sends @p command to the station behind @p relayPath. Nothing may be sent after close().
    void send(const QString &relayPath, const StationCommand &command, const OnPart &onPart);

    /// Whether the last part for @p correlation is still to come.
    bool isOutstanding(quint64 correlation) const;

    /// Answers everything outstanding with HostReturnCode::Closing, in the order of sending.
    void close();

private:
    struct Command
    {
        OnPart onPart;
        QDeadlineTimer deadline;
    };

    void deliver(quint64 correlation, const StationReply &part);
    void refuseAll(const QList<quint64> &correlations, const QString &returnCode);
    void watchDeadline();
    void refuseOverdue();

    StationLink &m_link;
    quint64 m_lastCorrelation;
    QMap<quint64, Command> m_outstanding; // by correlation, that is in the order of sending
    std::chrono::milliseconds m_replyTimeout = std::chrono::seconds(30);
    QTimer m_timer; // fires no later than the earliest deadline
};
