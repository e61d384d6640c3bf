#include "LocalSocket.h"

#include "LocalEndpoint.h"
#include "files/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include <pwd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {
std::optional<sockaddr_un> addressOf(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (static_cast<size_t>(name.size()) >= sizeof(address.sun_path))
        return {};
    std::memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
    return address;
}

OpenFile newSocket()
{
    return OpenFile(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

QString systemError(const QString &path)
{
    return QStringLiteral("The socket %1 cannot be made: %2.").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
}

/// Somebody else could have made a folder below /tmp.
bool isOursAlone(const QString &folder)
{
    struct stat status = {};
    return lstat(QFile::encodeName(folder).constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
ListeningSocket listenAt(const QString &path)
{
    ListeningSocket made;
    made.path = path;
    const QString parent = QFileInfo(path).path();
    if (parent == stationRuntimeFolder() && (!PrivateFolder::make(parent) || !isOursAlone(parent))) {
        made.error = QStringLiteral("The folder %1 has to be this user's alone.").arg(parent);
        return made;
    }
    const std::optional<sockaddr_un> address = addressOf(path);
    OpenFile listening = newSocket();
    if (!address || !listening.isOpen()) {
        made.error = systemError(path);
        return made;
    }
    unlink(QFile::encodeName(path).constData());
    const mode_t before = umask(S_IRWXG | S_IRWXO | S_IXUSR);
    const bool isBound = bind(listening.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof(*address)) == 0;
    umask(before);
    constexpr int waitingClients = 64;
    if (!isBound || listen(listening.get(), waitingClients) != 0) {
        made.error = systemError(path);
        return made;
    }
    made.descriptor = std::move(listening);
    return made;
}

bool isListeningAt(const QString &path)
{
    const std::optional<sockaddr_un> address = addressOf(path);
    const OpenFile client = newSocket();
    if (!address || !client.isOpen())
        return false;
    const bool isTaken = connect(client.get(), reinterpret_cast<const sockaddr *>(&*address), sizeof(*address)) == 0;
    return isTaken || errno == EAGAIN; // as many wait as may
}
} // namespace

QString userName(unsigned int user)
{
    passwd entry = {};
    passwd *found = nullptr;
    std::array<char, 4096> texts{};
    if (getpwuid_r(user, &entry, texts.data(), texts.size(), &found) == 0 && found)
        return QString::fromLocal8Bit(found->pw_name);
    return QString::number(user);
}

ListeningSocket listenFor(const QString &folder)
{
    ListeningSocket made;
    const QStringList paths = stationSocketPaths(folder);
    for (const QString &path : paths) {
        made = listenAt(path);
        if (made.descriptor.isOpen())
            break;
    }
    return made;
}

bool isListening(const QString &folder)
{
    const QStringList paths = stationSocketPaths(folder);
    return std::any_of(paths.cbegin(), paths.cend(), isListeningAt);
}

Peer peerOf(qintptr descriptor)
{
    ucred credentials = {};
    socklen_t size = sizeof(credentials);
    if (getsockopt(static_cast<int>(descriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return {QStringLiteral("an unknown user"), false};
    return {userName(credentials.uid), credentials.uid == geteuid() || credentials.uid == 0};
}
