#include "StationPlugin.h"

#include <QSysInfo>

#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>

namespace {

/// In numbers; empty for what is no address of the internet protocols.
QString addressText(const sockaddr *address)
{
    const int family = address ? address->sa_family : AF_UNSPEC;
    if (family != AF_INET && family != AF_INET6)
        return {};
    char text[NI_MAXHOST] = {};
    const socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    return getnameinfo(address, size, text, sizeof text, nullptr, 0, NI_NUMERICHOST) == 0 ? QString::fromLatin1(text)
                                                                                          : QString();
}

QString firstAddress()
{
    ifaddrs *list = nullptr;
    if (getifaddrs(&list) == 0) {
        const std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> owner(list, freeifaddrs);
        for (const ifaddrs *entry = list; entry; entry = entry->ifa_next) {
            QString text = entry->ifa_flags & IFF_LOOPBACK ? QString() : addressText(entry->ifa_addr);
            if (!text.isEmpty())
                return text;
        }
    }
    return QStringLiteral("127.0.0.1");
}

} // namespace

const QString StationPlugin::pluginId = QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD");

StationPlugin::StationPlugin(const QString &name, const QString &relayPath, QObject *parent)
    : QObject(parent)
{
    setStation(name, {}, relayPath);
}

void StationPlugin::setStation(const QString &name, const QString &address, const QString &relayPath)
{
    m_station = {{QStringLiteral("name"), name.isEmpty() ? QSysInfo::machineHostName() : name},
                 {QStringLiteral("ip"), address.isEmpty() ? firstAddress() : address},
                 {QStringLiteral("relayPath"), relayPath},
                 {QStringLiteral("type"), QStringLiteral("RecordingServer")}};
}

QVariant StationPlugin::getStationTree() const
{
    return m_station;
}
