#include "Display.h"

#include <QByteArray>
#include <QList>
#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <algorithm>
#include <cstddef>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#endif

#ifdef Q_OS_LINUX
namespace {

/// @param path a leading zero byte names a socket without a file
bool isAnswered(const QByteArray &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof(address.sun_path)))
        return false;
    std::copy(path.cbegin(), path.cend(), address.sun_path);
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (handle < 0)
        return false;
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(path.size()));
    const bool answered = connect(handle, reinterpret_cast<const sockaddr *>(&address), size) == 0;
    close(handle);
    return answered;
}

bool hasWayland()
{
    const QByteArray name = qgetenv("WAYLAND_DISPLAY");
    if (name.isEmpty())
        return false;
    return isAnswered(name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name);
}

bool hasX11()
{
    const QByteArray display = qgetenv("DISPLAY");
    const qsizetype colon = display.lastIndexOf(':');
    if (colon < 0)
        return false;
    const QByteArray host = display.left(colon);
    if (!host.isEmpty() && host != "unix")
        return true;
    const QByteArray path = "/tmp/.X11-unix/X" + display.mid(colon + 1).split('.').constFirst();
    return isAnswered('\0' + path) || isAnswered(path);
}

} // namespace
#endif

bool hasDisplay()
{
#ifdef Q_OS_LINUX
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || hasWayland() || hasX11();
#else
    return true;
#endif
}
