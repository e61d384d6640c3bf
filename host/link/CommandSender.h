#pragma once

#include "LateOutcome.h"
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
/// dropped, but for what came of an edit: see lateOutcomeCame(). An answer never comes from within send(). Several
/// senders may share a link: each ignores the others' numbers.
///
/// A command for the directly connected station, with the empty relay path, is for the one that had that place when it
/// was sent. When another one takes the place, such commands are answered with HostReturnCode::OtherStation, so that
/// nothing of the one is taken for the other's; what comes of their edits is told by lateOutcomeCame().
class CommandSender : public QObject
{
    Q_OBJECT
public:
    /// Takes every part of an answer, on the sender's thread. May send, forget or close.
    using OnPart = std::function<void(quint64 correlation, const StationReply &part)>;

    /// Says what an edit is about, when it is sent: see LateOutcome::subject.
    using Describe = std::function<QString(const StationCommand &command)>;

    /// Who numbers commands on a link; each has a range of its own.
    enum class Range : quint64 { Plugins = 0, Station = quint64(1) << 63 };

    /// @param link not owned; must outlive the sender
    CommandSender(StationLink &link, Range range);

    /// How long a station may take for a command, or for the next part of an answer in several; 30 s at first. Holds
    /// for what is sent from then on; at least 1 ms.
    void setReplyTimeout(std::chrono::milliseconds timeout);

    /// Without one, edits have no subject.
    void setDescribe(const Describe &describe);

    /// Sends @p command to the station behind @p relayPath, where that is empty to the one that its data names (see
    /// stationOf()), else to the directly connected one, under an id of its own unless it has one. Nothing may be sent
    /// after close().
    void send(const QString &relayPath, const StationCommand &command, const OnPart &onPart);

    /// Whether the last part for @p correlation is still to come.
    bool isOutstanding(quint64 correlation) const;

    /// Answers everything outstanding with HostReturnCode::Closing, in the order of sending.
    void close();

signals:
    /// What came of an edit that was answered with HostReturnCode::NoAnswer. Once for each, unless the sender closes
    /// before: the station has answered, or it was lost and it stays open (HostReturnCode::StationLost), or the edit
    /// had not been sent yet and never will be (LinkDown).
    void lateOutcomeCame(const LateOutcome &outcome);

private:
    struct Command
    {
        QString relayPath; // as it was addressed, by envelope or data
        QString station; // the one that it was sent to
        OnPart onPart;
        QDeadlineTimer deadline;
        bool isSent = false; // else it waits in the link
        LateOutcome outcome; // of an edit: of its parts so far
        bool isAnyDone = false; // of them
    };

    void followState(const QString &relayPath, const StationState &state);
    void followDirectStation(const QString &relayPath);
    bool concerns(const QString &relayPath, const StationState &state, const Command &command) const;
    void deliver(quint64 correlation, const StationReply &part);
    void takeLate(quint64 correlation, const StationReply &part);
    static void note(Command &command, const StationReply &part);
    void giveUp(quint64 correlation);
    QList<LateOutcome> followGivenUp(const QString &relayPath, const StationState &state);
    void refuseAll(const QList<quint64> &correlations, const QString &returnCode);
    void watchDeadline();
    void refuseOverdue();

    StationLink &m_link;
    QString m_idPrefix; // unique among all senders
    quint64 m_lastCorrelation;
    Describe m_describe;
    QMap<quint64, Command> m_outstanding; // by correlation, that is in the order of sending
    QMap<quint64, Command> m_givenUp; // edits that were answered with NoAnswer, likewise
    std::chrono::milliseconds m_replyTimeout = std::chrono::seconds(30);
    QTimer m_timer; // fires no later than the earliest deadline
};
