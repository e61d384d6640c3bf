#include "StationPulse.h"

#include "StationThread.h"

#include <QPointer>

#include <utility>

StationPulse::StationPulse(StationThread &station, QObject *parent)
    : QObject(parent)
    , m_station(station)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout(this, &StationPulse::ask);
}

void StationPulse::start(std::chrono::milliseconds interval)
{
    m_timer.start(interval);
}

void StationPulse::stop()
{
    m_timer.stop();
}

void StationPulse::ask()
{
    if (std::exchange(m_isAsked, true))
        return;
    m_station.whenIdle([self = QPointer(this)] {
        if (!self)
            return;
        self->m_isAsked = false;
        if (self->isRunning())
            emit self->felt();
    });
}
