#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

struct mosquitto;

/// The library for MQTT alone: what a message there and back costs without any code of ours. Each waits for the socket
/// itself, and uses the quality of service that commands have. Throws std::runtime_error for whatever fails.
class BareClient
{
public:
    /// Connects, and subscribes to @p listenTopic. @param port of a broker on the loopback interface
    BareClient(quint16 port, const QByteArray &listenTopic);
    ~BareClient();
    BareClient(const BareClient &) = delete;
    BareClient &operator=(const BareClient &) = delete;

    void publish(const QByteArray &topic, const QByteArray &payload);
    /// Waits for a message; null after ten seconds without one.
    QByteArray next();

private:
    struct Callbacks;

    void waitUntil(const bool &isSo, const char *what);
    bool turn(int milliseconds);

    std::unique_ptr<mosquitto, void (*)(mosquitto *)> m_client;
    QByteArray m_received;
    bool m_isConnected = false;
    bool m_isSubscribed = false;
    bool m_hasReceived = false;
};

/// Prints a line once it listens, and answers every message to @p askTopic with @p replySize bytes to @p answerTopic,
/// until one is empty, or ten seconds pass without one.
void runBareEcho(quint16 port, const QByteArray &askTopic, const QByteArray &answerTopic, qsizetype replySize);
