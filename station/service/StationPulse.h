#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

class StationThread;

/// Finds out again and again whether a station's own thread still answers: one that hangs shall not pass for one that
/// lives because the rest of its process goes on.
class StationPulse : public QObject
{
    Q_OBJECT
public:
    /// @param station not owned; must outlive this object
    explicit StationPulse(StationThread &station, QObject *parent = nullptr);

    /// Asks every @p interval, first when one has passed; begins anew where it runs. Nothing is asked while an answer
    /// is awaited.
    void start(std::chrono::milliseconds interval);
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

signals:
    /// The thread answered. Not emitted after stop().
    void felt();

private:
    void ask();

    StationThread &m_station;
    QTimer m_timer;
    bool m_isAsked = false; // and the thread has not answered yet
};
