#pragma once

#include "MessageStream.h"
#include "SendQueue.h"
#include "ServiceSettings.h"

#include <QLocalSocket>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>

class StationThread;

/// One client at the other end of a socket: greets it, hands its commands to the station and its replies and the events
/// to it. A client that does not read holds up nobody: what waits for it is bounded, and it is cut off.
class ClientConnection : public QObject
{
    Q_OBJECT
public:
    /// @param user on whose behalf the client runs
    /// @param station not owned; must outlive this object
    ClientConnection(std::unique_ptr<QLocalSocket> socket, QString user, const ServiceSettings &settings,
                     StationThread &station);
    ~ClientConnection() override;

    /// Sends an event that was framed once for all clients.
    void sendEvent(const QString &name, const QByteArray &frame);

    /// Reads no more commands, and parts when those under way are answered.
    void finish(const Goodbye &goodbye);
    /// Answers what is under way with "StationStopping", and parts.
    void finishNow();

    /// Parts at once.
    void part(const Goodbye &goodbye);

signals:
    /// The client has gone, or was cut off. The object may be destroyed once control is back in the event loop.
    void ended();

private:
    void read();
    void take(const StationMessage &message);
    void greet(const Hello &hello);
    void carryOut(const CommandMessage &message);
    void sendReply(quint64 correlation, const StationReply &reply);
    void send(const StationMessage &message);
    void enqueue(const QByteArray &frame, const QString &replaces = {});
    void write();
    void closeOwnSide();
    void end();

    std::unique_ptr<QLocalSocket> m_socket;
    QString m_user;
    const ServiceSettings &m_settings;
    StationThread &m_station;
    MessageStream m_stream;
    SendQueue m_queue;
    QTimer m_greetingTimer;
    QTimer m_readingTimer;
    QSet<quint64> m_underWay; // by correlation
    std::optional<Hello> m_hello;
    std::optional<Goodbye> m_goodbye; // to be said when all is answered
    bool m_isEnding = false;
};
