#pragma once

#include <QtGlobal>

/// A socket of the loopback interface that takes connections, as many as wait in a queue, and never says a word.
class SilentServer
{
public:
    SilentServer();
    ~SilentServer();
    SilentServer(const SilentServer &) = delete;
    SilentServer &operator=(const SilentServer &) = delete;

    /// 0 when the system gave none.
    quint16 port() const { return m_port; }

private:
    int m_socket = -1;
    quint16 m_port = 0;
};

/// A port of the loopback interface that nobody listens on at the moment.
quint16 freePort();

/// Whether something takes connections on that port of the loopback interface.
bool isListening(quint16 port);
