#pragma once

#include <QBasicTimer>
#include <QObject>

class QQuickWindow;

/// What a window and its thread's event loop went through in a span of time; times in seconds.
struct Smoothness
{
    double longestTurn = 0; ///< the longest time in which the event loop did not come round
    double longestTurnCpu = 0; ///< likewise, in CPU time of the thread
    double busyCpu = 0; ///< CPU time of the turns that took longer than a millisecond
    int droppedFrames = 0; ///< that an animation of 60 frames a second needed and the window did not swap
    int frames = 0; ///< that were swapped
};

/// Watches a window in which an animation runs, and the event loop of its thread, which is this object's, too. The loop
/// does not sleep meanwhile: a timer without interval beats in each of its turns.
class LoopWatch : public QObject
{
    Q_OBJECT
public:
    explicit LoopWatch(QQuickWindow &window);

    void start();
    Smoothness stop();

    /// Seconds on a clock that is never set.
    static double wallSeconds();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void beat();
    void noteFrame();

    QBasicTimer m_heart;
    Smoothness m_seen;
    double m_lastTurn = 0;
    double m_lastTurnCpu = 0;
    double m_lastFrame = 0;
};
