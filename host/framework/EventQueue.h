#pragma once

#include "StationMessage.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <list>

/// Events of the stations that a client is not directly connected to, on their way to its plug-ins: as many in a turn
/// of the event loop as it has time for, so that a site of a thousand stations never holds the window up. A station's
/// events keep their order; of its "VolumeChanged" that wait, the newest stands for all. Lives on the UI thread.
class EventQueue : public QObject
{
    Q_OBJECT
public:
    /// Hands an event on. May add others, and may end the queue's owner.
    using Deliver = std::function<void(const QString &relayPath, const StationEvent &event, bool isRepeated)>;

    explicit EventQueue(Deliver deliver); ///< holds nothing at first

    /// How long a turn may deliver; 8 ms at first. No time at all still delivers one event a turn.
    void setTimePerTurn(std::chrono::microseconds time);

    /// Delivers @p event within this call where nothing waits and the turn has time, else in a later turn.
    void add(const QString &relayPath, const StationEvent &event);
    /// Delivers figures that were delivered before once more, in a later turn, unless newer ones wait.
    void repeat(const QString &relayPath, const StationEvent &figures);
    /// Delivers what waits of a station within this call.
    void deliverNow(const QString &relayPath);
    void clear(); ///< drops what waits

    /// How many events wait.
    qsizetype size() const { return static_cast<qsizetype>(m_waiting.size()); }

private:
    struct Waiting
    {
        QString relayPath;
        StationEvent event;
        bool isRepeated;
    };
    using Place = std::list<Waiting>::iterator;

    void append(const Waiting &waiting);
    Waiting take(Place place);
    void deliver(const Waiting &waiting);
    void deliverSome();

    Deliver m_deliver;
    std::list<Waiting> m_waiting;
    QHash<QString, Place> m_figures; // by station: its "VolumeChanged" among them
    std::chrono::microseconds m_timePerTurn = std::chrono::milliseconds(8);
    std::chrono::microseconds m_spent{0}; // in this turn
    QTimer m_nextTurn;
};
