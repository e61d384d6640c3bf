#include "ServiceManager.h"

#include "ServiceLog.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include <systemd/sd-daemon.h>

namespace {
void tell(const QByteArray &state)
{
    if (const int result = sd_notify(0, state.constData()); result < 0)
        qCWarning(serviceLog, "The service manager cannot be told \"%s\": %s", state.simplified().constData(),
                  qUtf8Printable(qt_error_string(-result)));
}

/// Half of the time after which the manager gives the service up; 0 where it does not watch.
std::chrono::milliseconds watchdogPause()
{
    uint64_t microseconds = 0;
    if (sd_watchdog_enabled(0, &microseconds) <= 0)
        return std::chrono::milliseconds(0);
    const auto half = std::chrono::microseconds(microseconds / 2);
    return std::max(std::chrono::duration_cast<std::chrono::milliseconds>(half), std::chrono::milliseconds(1));
}

/// The clock that the manager puts a reload in order with.
qint64 monotonicMicroseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr qint64 perSecond = 1'000'000;
    constexpr qint64 nanosecondsEach = 1000;
    return now.tv_sec * perSecond + now.tv_nsec / nanosecondsEach;
}
} // namespace

ServiceManager::ServiceManager(StationThread &station, QObject *parent)
    : QObject(parent)
    , m_pulse(station)
{
    connect(&m_pulse, &StationPulse::felt, this, [] { tell("WATCHDOG=1"); });
}

void ServiceManager::tellReady()
{
    tell("READY=1");
    if (const auto pause = watchdogPause(); pause.count() > 0 && !m_pulse.isRunning())
        m_pulse.start(pause);
}

void ServiceManager::tellReloading()
{
    tell("RELOADING=1\nMONOTONIC_USEC=" + QByteArray::number(monotonicMicroseconds()));
}

void ServiceManager::tellStopping()
{
    tell("STOPPING=1\nSTATUS=Ending");
}

void ServiceManager::tellClients(int clients)
{
    tell(clients == 1 ? QByteArray("STATUS=Serving 1 client")
                      : "STATUS=Serving " + QByteArray::number(clients) + " clients");
}

void ServiceManager::leave()
{
    for (const char *const name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"})
        qunsetenv(name);
}
