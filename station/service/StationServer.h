#pragma once

#include "ServiceSettings.h"

#include <QLocalServer>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

class ClientConnection;
class StationThread;

/// One station for many clients: listens on the data folder's local socket, hands commands to the station, replies to
/// who asked and events to all. Clients of this user and of root alone are taken.
class StationServer : public QObject
{
    Q_OBJECT
public:
    /// @param station not owned; must outlive this object
    StationServer(StationThread &station, ServiceSettings settings, QObject *parent = nullptr);
    ~StationServer() override;

    /// Listens for clients of the station of @p folder, whose lock the caller holds. False with error() set.
    bool listen(const QString &folder);
    const QString &error() const { return m_error; }

    /// Other settings from now on: the name and the limits for clients that come later; what is sent obeys the limit of
    /// messages at once. Nobody who is connected is sent away. ServiceSettings::relayPath stays, as it is the
    /// station's.
    void setSettings(ServiceSettings settings);

    int clients() const { return static_cast<int>(m_clients.size()); }

    /// Takes no more clients and commands, waits for what is under way as long as ServiceSettings::endTime, and parts
    /// from all clients; stopped() follows.
    void stop();

signals:
    void clientsChanged(int clients);
    void stopped();

private:
    void takeClients();
    void raiseEvent(const StationEvent &event);
    void remove(ClientConnection *client);

    StationThread &m_station;
    ServiceSettings m_settings;
    QLocalServer m_server;
    std::vector<std::unique_ptr<ClientConnection>> m_clients;
    QTimer m_endTimer;
    QString m_socketPath;
    QString m_error;
    bool m_isStopping = false;
};
