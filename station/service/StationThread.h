#pragma once

#include "CommandTable.h"

#include <QObject>

#include <functional>
#include <memory>

class Station;

/// Runs one station on a thread of its own, so that a slow disk blocks nobody else.
///
/// Commands are begun one after the other; one that waits for a NAS server does not hold up those behind it. The end
/// waits a second for the command that runs at that moment (a station sees QThread::isInterruptionRequested() then) and
/// for the station's end; the other commands are dropped. A station that hangs longer is left behind with its thread.
class StationThread : public QObject
{
    Q_OBJECT
public:
    using MakeStation = std::function<std::unique_ptr<Station>()>;

    /// @param makeStation called on the station's thread, where the station lives and ends. Neither it nor the station
    /// may use what ends before the process does, as the station may be left behind.
    explicit StationThread(MakeStation makeStation, QObject *parent = nullptr);
    ~StationThread() override;

    /// Whether a thread hangs that was left behind: a station's, or one of those that look at disks for it. Then the
    /// process has to end with std::_Exit(): it must not take away what the thread uses when its disk answers at last.
    static bool isAnythingLeftBehind();

    /// Starts the station; started() follows when it runs, failed() when @p makeStation made none. A second start does
    /// nothing.
    void start();
    bool isStarted() const { return m_started; }

    /// Has the station carry @p command out, once it runs. Every part of the reply is given to @p answer on the thread
    /// that this object lives on, in one order with eventRaised(), and never from within this call.
    void handle(const StationCommand &command, const Answer &answer);

    /// Has @p done called on this object's thread when the station's thread comes to it.
    void whenIdle(const std::function<void()> &done);

signals:
    void started();
    void failed();
    void eventRaised(const StationEvent &event);

private:
    struct StationSide;

    std::shared_ptr<StationSide> m_stationSide; // kept for good when it is left behind
    bool m_started = false;
};
