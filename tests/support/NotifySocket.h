#pragma once

#include "files/OpenFile.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>

/// The socket of a service manager, $NOTIFY_SOCKET of the service: hears what the service says.
class NotifySocket
{
public:
    explicit NotifySocket(const QString &path)
        : m_socket(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path);
        std::memcpy(address.sun_path, name.constData(),
                    std::min(static_cast<size_t>(name.size()), sizeof(address.sun_path) - 1));
        m_isBound = bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    }

    bool isBound() const { return m_isBound; }

    /// Every line so far.
    const QStringList &lines()
    {
        char buffer[4096];
        for (ssize_t size = 0; (size = recv(m_socket.get(), buffer, sizeof(buffer), 0)) > 0;)
            m_lines += QString::fromUtf8(buffer, size).split(u'\n', Qt::SkipEmptyParts);
        return m_lines;
    }

private:
    OpenFile m_socket;
    bool m_isBound = false;
    QStringList m_lines;
};
