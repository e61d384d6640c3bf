#include "StationServer.h"

#include "ClientConnection.h"
#include "LocalSocket.h"
#include "StationLog.h"
#include "StationThread.h"

#include <QFile>
#include <QSysInfo>

#include <algorithm>
#include <utility>

namespace {
ServiceSettings named(ServiceSettings settings)
{
    if (settings.stationName.isEmpty())
        settings.stationName = QSysInfo::machineHostName();
    return settings;
}
} // namespace

StationServer::StationServer(StationThread &station, ServiceSettings settings, QObject *parent)
    : QObject(parent)
    , m_station(station)
    , m_settings(named(std::move(settings)))
{
    connect(&m_server, &QLocalServer::newConnection, this, &StationServer::takeClients);
    connect(&m_station, &StationThread::eventRaised, this, &StationServer::raiseEvent);
    m_endTimer.setSingleShot(true);
    m_endTimer.callOnTimeout(this, [this] {
        for (const auto &client : m_clients)
            client->finishNow();
    });
}

StationServer::~StationServer()
{
    if (!m_socketPath.isEmpty())
        QFile::remove(m_socketPath);
}

bool StationServer::listen(const QString &folder)
{
    ListeningSocket socket = listenFor(folder);
    if (!socket.descriptor.isOpen()) {
        m_error = socket.error;
        return false;
    }
    m_socketPath = socket.path;
    if (!m_server.listen(socket.descriptor.release())) {
        m_error = QStringLiteral("The socket %1 cannot be used: %2.").arg(socket.path, m_server.errorString());
        return false;
    }
    return true;
}

void StationServer::setSettings(ServiceSettings settings)
{
    settings.relayPath = m_settings.relayPath;
    m_settings = named(std::move(settings)); // clients refer to it
}

void StationServer::takeClients()
{
    while (m_server.hasPendingConnections()) {
        std::unique_ptr<QLocalSocket> socket(m_server.nextPendingConnection());
        const Peer peer = peerOf(socket->socketDescriptor());
        auto client = std::make_unique<ClientConnection>(std::move(socket), peer.name, m_settings, m_station);
        connect(client.get(), &ClientConnection::ended, this, [this, gone = client.get()] { remove(gone); });
        if (!peer.isAllowed) {
            qCWarning(stationLog, "A client of %s was sent away", qUtf8Printable(peer.name));
            client->part({GoodbyeCode::NotAllowed,
                          QStringLiteral("The station serves the user that it runs as, and not %1.").arg(peer.name)});
        } else if (clients() >= m_settings.clientLimit) {
            client->part({GoodbyeCode::TooManyClients,
                          QStringLiteral("The station serves %1 clients already, and takes no more.").arg(clients())});
        }
        m_clients.push_back(std::move(client));
        emit clientsChanged(clients());
    }
}

void StationServer::raiseEvent(const StationEvent &event)
{
    if (m_clients.empty())
        return;
    QByteArray frame;
    try {
        frame = framedMessage(event, m_settings.messages);
    } catch (const MessageError &error) {
        qCCritical(stationLog, "The event %s cannot be sent: %s", qUtf8Printable(event.name), error.what());
        return;
    }
    for (const auto &client : m_clients)
        client->sendEvent(event.name, frame);
}

void StationServer::remove(ClientConnection *client)
{
    const auto found =
        std::find_if(m_clients.begin(), m_clients.end(), [client](const auto &one) { return one.get() == client; });
    if (found == m_clients.end())
        return;
    found->release()->deleteLater();
    m_clients.erase(found);
    emit clientsChanged(clients());
    if (m_isStopping && m_clients.empty())
        emit stopped();
}

void StationServer::stop()
{
    if (std::exchange(m_isStopping, true))
        return;
    m_server.close();
    if (m_clients.empty()) {
        QMetaObject::invokeMethod(this, &StationServer::stopped, Qt::QueuedConnection);
        return;
    }
    m_endTimer.start(m_settings.endTime);
    for (const auto &client : m_clients)
        client->finish({GoodbyeCode::Stopping, QStringLiteral("The station was told to end.")});
}
