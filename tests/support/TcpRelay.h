#pragma once

#include <QtGlobal>

#include <atomic>
#include <list>
#include <mutex>
#include <thread>

/// A bad network between a client and a server of the loopback interface: hands on what both sides say, late, in
/// halves, twice or not at all, and cuts connections. What it does holds for the connections that there are and for new
/// ones.
class TcpRelay
{
public:
    /// @param target the port of the server
    explicit TcpRelay(quint16 target);
    ~TcpRelay(); ///< ends all connections
    TcpRelay(const TcpRelay &) = delete;
    TcpRelay &operator=(const TcpRelay &) = delete;

    quint16 port() const { return m_port; } ///< 0 when the system gave none

    /// Everything arrives later by as many milliseconds, in its order.
    void setDelay(int milliseconds) { m_delay = milliseconds; }
    /// Nothing is handed on any more, and nobody hears why; what was said meanwhile goes on when this ends.
    void setSilent(bool silent) { m_isSilent = silent; }
    /// Ends all connections, without the usual farewell.
    void cut() { ++m_cuts; }
    /// Of the next piece that somebody says only the first half goes on, and then its connection is cut.
    void halveNext() { m_halve = true; }
    /// The next piece that somebody says goes on twice.
    void repeatNext() { m_repeat = true; }
    /// New connections are cut at once.
    void setRefusing(bool refusing) { m_isRefusing = refusing; }

    int connections() const { return m_connections; } ///< that were made so far

private:
    struct Connection;

    void run();
    void accept(std::list<Connection> &connections);
    bool carry(Connection &connection, int from, int side);

    quint16 m_target;
    int m_socket = -1;
    quint16 m_port = 0;
    std::atomic<int> m_delay = 0;
    std::atomic<bool> m_isSilent = false;
    std::atomic<int> m_cuts = 0;
    std::atomic<bool> m_halve = false;
    std::atomic<bool> m_repeat = false;
    std::atomic<bool> m_isRefusing = false;
    std::atomic<bool> m_isEnding = false;
    std::atomic<int> m_connections = 0;
    std::thread m_thread;
};
