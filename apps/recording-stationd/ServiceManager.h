#pragma once

#include "service/StationPulse.h"

#include <QObject>

class StationThread;

/// Tells the service manager that started this process how it goes, over $NOTIFY_SOCKET (sd_notify(3)); without one
/// nothing is sent.
///
/// Where the manager watches the service ($WATCHDOG_USEC), it hears at half of that time that the station lives: only
/// once the station's own thread answered too, so that a station that hangs is started again.
class ServiceManager : public QObject
{
    Q_OBJECT
public:
    /// @param station not owned; must outlive this object
    explicit ServiceManager(StationThread &station, QObject *parent = nullptr);

    void tellReady(); ///< clients are taken; the watchdog hears from now on
    void tellReloading(); ///< the configuration is read again; tellReady() follows
    void tellStopping();
    void tellClients(int clients); ///< the line that the manager shows

    /// Processes that are started from now on, and this one, speak to no service manager.
    static void leave();

private:
    StationPulse m_pulse;
};
