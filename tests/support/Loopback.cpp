#include "Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}
} // namespace

SilentServer::SilentServer()
    : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = loopback(0);
    const auto target = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    constexpr int queue = 64;
    if (bind(m_socket, target, size) == 0 && listen(m_socket, queue) == 0 && getsockname(m_socket, target, &size) == 0)
        m_port = ntohs(address.sin_port);
}

SilentServer::~SilentServer()
{
    close(m_socket);
}

quint16 freePort()
{
    return SilentServer().port();
}

bool isListening(quint16 port)
{
    const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    const bool isConnected = connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    close(client);
    return isConnected;
}
