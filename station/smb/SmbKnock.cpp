#include "SmbKnock.h"

#include <QDeadlineTimer>

#include <cerrno>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
/// SMB2 NEGOTIATE for the dialects 2.02 and 2.1; see MS-SMB2, 2.2.3.
QByteArray negotiation()
{
    constexpr char length[] = {0, 0, 0, 104};
    constexpr char header[] = {'\xfe', 'S', 'M', 'B', 64, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0};
    constexpr char body[] = {36, 0, 2, 0, 1, 0, 0, 0};
    constexpr char dialects[] = {'\x02', '\x02', '\x10', '\x02'};
    constexpr qsizetype headerSize = 64;
    constexpr qsizetype bodySize = 36;
    return QByteArray(length, sizeof length) + QByteArray(header, sizeof header).leftJustified(headerSize, '\0')
        + QByteArray(body, sizeof body).leftJustified(bodySize, '\0') + QByteArray(dialects, sizeof dialects);
}

/// Waits until @p what is possible.
int waitFor(int descriptor, short what, const QDeadlineTimer &deadline)
{
    pollfd waiting = {descriptor, what, 0};
    const int count = poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
    if (count == 0)
        return ETIMEDOUT;
    return count < 0 ? errno : 0;
}

int converse(int descriptor, const addrinfo &address, const QDeadlineTimer &deadline)
{
    if (connect(descriptor, address.ai_addr, address.ai_addrlen) != 0 && errno != EINPROGRESS)
        return errno;
    if (const int error = waitFor(descriptor, POLLOUT, deadline))
        return error;
    int failure = 0;
    socklen_t size = sizeof failure;
    if (getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &failure, &size) != 0 || failure != 0)
        return failure != 0 ? failure : errno;
    const QByteArray request = negotiation();
    if (send(descriptor, request.constData(), static_cast<size_t>(request.size()), MSG_NOSIGNAL) != request.size())
        return errno;
    if (const int error = waitFor(descriptor, POLLIN, deadline))
        return error;
    char first = 0;
    const ssize_t count = recv(descriptor, &first, 1, 0);
    if (count < 0)
        return errno;
    return count == 0 ? ECONNRESET : 0;
}
} // namespace

int knockAt(const SmbPath &place, std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    const QByteArray port = place.hostKey().section(u':', -1).toLatin1();
    if (getaddrinfo(place.host.toLatin1().constData(), port.constData(), &hints, &found) != 0)
        return EHOSTUNREACH;
    int error = EHOSTUNREACH;
    for (const addrinfo *address = found; address && error != 0; address = address->ai_next) {
        const int descriptor = socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (descriptor < 0)
            continue;
        error = converse(descriptor, *address, deadline);
        close(descriptor);
    }
    freeaddrinfo(found);
    return error;
}
