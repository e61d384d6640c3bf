#include "SmbRelay.h"

#include <QByteArray>
#include <QtEndian>

#include <array>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
constexpr int look = 20; // milliseconds between two looks at whether it shall end
constexpr qsizetype lengthSize = 4; // in front of each message
constexpr qsizetype statusOffset = lengthSize + 8;
constexpr qsizetype commandOffset = lengthSize + 12;

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int connectTo(quint16 port)
{
    const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    if (connect(made, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return made;
    close(made);
    return -1;
}

void sendAll(int to, const QByteArray &bytes)
{
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t part = send(to, bytes.constData() + sent, static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (part <= 0)
            return;
        sent += part;
    }
}

/// Takes the first whole message from @p bytes; empty where there is none.
QByteArray takeMessage(QByteArray &bytes)
{
    if (bytes.size() < lengthSize)
        return {};
    const auto length = static_cast<qsizetype>(qFromBigEndian<quint32>(bytes.constData()) & 0xffffff);
    if (bytes.size() < lengthSize + length)
        return {};
    QByteArray message = bytes.left(lengthSize + length);
    bytes.remove(0, message.size());
    return message;
}

QByteArray garbageLike(const QByteArray &message)
{
    return message.left(lengthSize) + QByteArray(message.size() - lengthSize, '\x5a');
}
} // namespace

SmbRelay::SmbRelay(quint16 target)
    : m_target(target)
    , m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = loopback(0);
    const auto place = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    constexpr int queue = 64;
    if (bind(m_socket, place, size) == 0 && listen(m_socket, queue) == 0 && getsockname(m_socket, place, &size) == 0)
        m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { accept(); });
}

SmbRelay::~SmbRelay()
{
    m_isEnding = true;
    m_acceptor.join();
    for (std::thread &carrier : m_carriers)
        carrier.join();
    close(m_socket);
}

void SmbRelay::failAfter(int messages, Fault fault)
{
    m_messages = messages;
    m_fault = fault;
}

void SmbRelay::accept()
{
    while (!m_isEnding) {
        pollfd waiting = {m_socket, POLLIN, 0};
        if (poll(&waiting, 1, look) <= 0)
            continue;
        const int client = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            continue;
        ++m_connections;
        m_carriers.emplace_back(
            [this, client, messages = m_messages.load(), fault = m_fault.load()] { carry(client, messages, fault); });
    }
}

void SmbRelay::carry(int client, int messages, Fault fault)
{
    const int server = m_target == 0 ? -1 : connectTo(m_target);
    QByteArray said; // by the server, and not handed on yet
    std::array<char, 65536> part = {};
    bool isSilent = server < 0 && fault == Fault::Silence;
    bool isOver = (server < 0 || (messages == 0 && fault <= Fault::Reset && fault != Fault::None)) && !isSilent;
    while (!isOver && !m_isEnding) {
        std::array<pollfd, 2> both = {pollfd{client, POLLIN, 0}, pollfd{server, POLLIN, 0}};
        if (poll(both.data(), both.size(), look) <= 0)
            continue;
        if (both[0].revents != 0) {
            const ssize_t size = recv(client, part.data(), part.size(), 0);
            if (size <= 0)
                break;
            if (server >= 0)
                sendAll(server, QByteArray(part.data(), size));
        }
        if (both[1].revents != 0) {
            const ssize_t size = recv(server, part.data(), part.size(), 0);
            if (size <= 0)
                break;
            said.append(part.data(), size);
        }
        for (QByteArray message = takeMessage(said); !message.isEmpty() && !isOver; message = takeMessage(said)) {
            const bool isFaulty = fault != Fault::None && messages-- <= 0;
            if (isFaulty && fault == Fault::Garbage)
                message = garbageLike(message);
            isSilent = isFaulty && fault == Fault::Silence;
            isOver = isFaulty && (fault == Fault::Close || fault == Fault::Reset);
            if (isSilent || isOver)
                continue;
            count(message);
            sendAll(client, message);
        }
    }
    if (fault == Fault::Reset) {
        const linger none = {1, 0};
        setsockopt(client, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    }
    close(client);
    if (server >= 0)
        close(server);
}

void SmbRelay::count(const QByteArray &message)
{
    constexpr quint16 sessionSetup = 1;
    constexpr quint32 success = 0;
    constexpr quint32 moreProcessingRequired = 0xC0000016;
    if (message.size() <= commandOffset || message.mid(lengthSize, 4) != QByteArrayLiteral("\xfeSMB")
        || qFromLittleEndian<quint16>(message.constData() + commandOffset) != sessionSetup)
        return;
    const auto status = qFromLittleEndian<quint32>(message.constData() + statusOffset);
    if (status == success)
        ++m_acceptedLogOns;
    else if (status != moreProcessingRequired)
        ++m_refusedLogOns;
}
