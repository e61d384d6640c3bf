#pragma once

#include <QtGlobal>

#include <atomic>
#include <list>
#include <thread>

/// Stands in front of an SMB server on the loopback interface, hands on what both sides say, counts log-ons, and can
/// fail as servers do.
class SmbRelay
{
public:
    enum class Fault {
        None,
        Close, ///< ends the connection
        Reset, ///< ends it without the usual farewell
        Silence, ///< says nothing any more
        Garbage, ///< says what is no SMB
    };

    /// @param target the port of the server; 0: there is none, and each connection fails at once
    explicit SmbRelay(quint16 target);
    ~SmbRelay(); ///< ends all connections
    SmbRelay(const SmbRelay &) = delete;
    SmbRelay &operator=(const SmbRelay &) = delete;

    quint16 port() const { return m_port; } ///< 0 when the system gave none
    /// Each connection fails in this way when its server has said @p messages messages. Concerns those that are made
    /// from now on.
    void failAfter(int messages, Fault fault);

    int connections() const { return m_connections; }
    int acceptedLogOns() const { return m_acceptedLogOns; }
    int refusedLogOns() const { return m_refusedLogOns; }

private:
    struct Connection;

    void accept();
    void carry(int client, int messages, Fault fault);
    void count(const QByteArray &message);

    quint16 m_target;
    int m_socket = -1;
    quint16 m_port = 0;
    std::atomic<int> m_messages = 0;
    std::atomic<Fault> m_fault = Fault::None;
    std::atomic<bool> m_isEnding = false;
    std::atomic<int> m_connections = 0;
    std::atomic<int> m_acceptedLogOns = 0;
    std::atomic<int> m_refusedLogOns = 0;
    std::list<std::thread> m_carriers; // of the accepting thread
    std::thread m_acceptor;
};
