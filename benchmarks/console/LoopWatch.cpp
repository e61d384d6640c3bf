#include "LoopWatch.h"

#include "Measuring.h"

#include <QQuickWindow>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

constexpr double framesASecond = 60;
constexpr double longTurn = 1e-3; // seconds

} // namespace

LoopWatch::LoopWatch(QQuickWindow &window)
{
    connect(&window, &QQuickWindow::frameSwapped, this, &LoopWatch::noteFrame);
}

void LoopWatch::start()
{
    m_seen = {};
    m_lastTurn = m_lastFrame = wallSeconds();
    m_lastTurnCpu = threadSeconds();
    m_heart.start(0, this);
}

Smoothness LoopWatch::stop()
{
    beat();
    m_heart.stop();
    return m_seen;
}

double LoopWatch::wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void LoopWatch::timerEvent(QTimerEvent *)
{
    beat();
}

void LoopWatch::beat()
{
    const double now = wallSeconds();
    const double nowCpu = threadSeconds();
    const double turnCpu = nowCpu - m_lastTurnCpu;
    m_seen.longestTurn = std::max(m_seen.longestTurn, now - m_lastTurn);
    m_seen.longestTurnCpu = std::max(m_seen.longestTurnCpu, turnCpu);
    if (turnCpu > longTurn)
        m_seen.busyCpu += turnCpu;
    m_lastTurn = now;
    m_lastTurnCpu = nowCpu;
}

void LoopWatch::noteFrame()
{
    const double now = wallSeconds();
    m_seen.droppedFrames += std::max(0, static_cast<int>(std::lround((now - m_lastFrame) * framesASecond)) - 1);
    ++m_seen.frames;
    m_lastFrame = now;
}
