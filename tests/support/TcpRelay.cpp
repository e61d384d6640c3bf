#include "TcpRelay.h"

#include <QByteArray>

#include <array>
#include <cerrno>
#include <chrono>
#include <deque>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using Clock = std::chrono::steady_clock;

namespace {
constexpr int look = 5; // milliseconds between two looks at what is wanted

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

void setNoDelay(int socket)
{
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

int connectTo(quint16 port)
{
    const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    setNoDelay(made);
    if (connect(made, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return made;
    close(made);
    return -1;
}

/// Without the usual farewell.
void reset(int socket)
{
    if (socket < 0)
        return;
    const linger none = {1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    close(socket);
}
} // namespace

struct TcpRelay::Connection
{
    struct Piece
    {
        Clock::time_point due;
        QByteArray bytes;
        bool isLast; // the connection is cut behind it
    };

    std::array<int, 2> sockets; // the client's and the server's
    std::array<std::deque<Piece>, 2> pieces; // for each of them
    bool isOver = false;

    /// Hands on what is due.
    void deliver()
    {
        for (std::size_t side = 0; side < sockets.size(); ++side) {
            std::deque<Piece> &waiting = pieces[side];
            while (!waiting.empty() && waiting.front().due <= Clock::now() && !isOver) {
                Piece &piece = waiting.front();
                const ssize_t sent = send(sockets[side], piece.bytes.constData(),
                                          static_cast<std::size_t>(piece.bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
                if (sent < 0 && errno != EAGAIN)
                    isOver = true;
                if (sent < 0)
                    break;
                piece.bytes.remove(0, sent);
                if (!piece.bytes.isEmpty())
                    break;
                isOver = isOver || piece.isLast;
                waiting.pop_front();
            }
        }
    }
};

TcpRelay::TcpRelay(quint16 target)
    : m_target(target)
    , m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = loopback(0);
    const auto place = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    constexpr int queue = 64;
    if (bind(m_socket, place, size) == 0 && listen(m_socket, queue) == 0 && getsockname(m_socket, place, &size) == 0)
        m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { run(); });
}

TcpRelay::~TcpRelay()
{
    m_isEnding = true;
    m_thread.join();
    close(m_socket);
}

void TcpRelay::run()
{
    std::list<Connection> connections;
    int cuts = 0;
    while (!m_isEnding) {
        std::vector<pollfd> waiting{{m_socket, POLLIN, 0}};
        for (const Connection &connection : connections) {
            for (const int socket : connection.sockets)
                waiting.push_back({socket, static_cast<short>(m_isSilent ? 0 : POLLIN), 0});
        }
        poll(waiting.data(), waiting.size(), look);
        const bool isCut = cuts != m_cuts;
        cuts = m_cuts;
        std::size_t place = 1;
        for (Connection &connection : connections) {
            for (int side = 0; side < 2; ++side, ++place) {
                if (!m_isSilent && (waiting[place].revents & (POLLIN | POLLHUP | POLLERR)) && !connection.isOver)
                    connection.isOver = !carry(connection, waiting[place].fd, 1 - side);
            }
            if (!m_isSilent)
                connection.deliver();
            connection.isOver = connection.isOver || isCut;
        }
        connections.remove_if([](const Connection &connection) {
            if (connection.isOver) {
                reset(connection.sockets[0]);
                reset(connection.sockets[1]);
            }
            return connection.isOver;
        });
        if (waiting[0].revents & POLLIN)
            accept(connections);
    }
    for (const Connection &connection : connections) {
        reset(connection.sockets[0]);
        reset(connection.sockets[1]);
    }
}

void TcpRelay::accept(std::list<Connection> &connections)
{
    const int client = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0)
        return;
    ++m_connections;
    const int server = m_isRefusing ? -1 : connectTo(m_target);
    if (server < 0)
        return reset(client);
    setNoDelay(client);
    connections.push_back({{client, server}, {}, false});
}

/// False where that side has ended.
bool TcpRelay::carry(Connection &connection, int from, int side)
{
    std::array<char, 65536> part = {};
    const ssize_t size = recv(from, part.data(), part.size(), MSG_DONTWAIT);
    if (size <= 0)
        return size < 0 && errno == EAGAIN;
    const bool isHalf = size > 1 && m_halve.exchange(false);
    const ssize_t taken = isHalf ? size / 2 : size;
    const auto due = Clock::now() + std::chrono::milliseconds(m_delay.load());
    const int times = m_repeat.exchange(false) ? 2 : 1;
    for (int i = 0; i < times; ++i)
        connection.pieces[static_cast<std::size_t>(side)].push_back({due, QByteArray(part.data(), taken), isHalf});
    return true;
}
