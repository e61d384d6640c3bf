#include "NasStore.h"

#include "smb/SmbPath.h"
#include "store/Database.h"

#include <algorithm>

namespace {
/// The same for every spelling of a host.
QString hostKey(const QString &host)
{
    const std::optional<SmbPath> place = SmbPath::parseHost(host);
    return (place ? place->text() : host).toLower();
}
} // namespace

NasStore::NasStore(Database &database)
    : m_database(database)
{
}

QList<NasServer> NasStore::servers() const
{
    QList<NasServer> servers;
    Rows rows = m_database.rows(
        QStringLiteral("SELECT id, host, logon_domain, user_name, sealed_password FROM nas_server ORDER BY number"));
    while (rows.next()) {
        servers.append({rows.value(0).toString(), rows.value(1).toString(), rows.value(2).toString(),
                        rows.value(3).toString(), rows.value(4).toByteArray()});
    }
    return servers;
}

std::optional<NasServer> NasStore::server(const QString &id) const
{
    const QList<NasServer> all = servers();
    const auto found = std::find_if(all.begin(), all.end(), [&id](const NasServer &other) { return other.id == id; });
    return found == all.end() ? std::optional<NasServer>() : *found;
}

bool NasStore::isTaken(const QString &host, const QString &userName, const QString &id) const
{
    return m_database
        .value(QStringLiteral("SELECT 1 FROM nas_server WHERE host_key = ? AND user_name = ? AND id <> ?"),
               {hostKey(host), boundText(userName), boundText(id)})
        .isValid();
}

void NasStore::insert(const NasServer &server)
{
    m_database.run(
        QStringLiteral("INSERT INTO nas_server (id, host, host_key, logon_domain, user_name, sealed_password)"
                       " VALUES (?, ?, ?, ?, ?, ?)"),
        {server.id, server.host, hostKey(server.host), boundText(server.logonDomain), boundText(server.userName),
         server.sealedPassword});
}

void NasStore::replace(const NasServer &server)
{
    m_database.run(QStringLiteral("UPDATE nas_server SET host = ?, host_key = ?, logon_domain = ?, user_name = ?,"
                                  " sealed_password = ? WHERE id = ?"),
                   {server.host, hostKey(server.host), boundText(server.logonDomain), boundText(server.userName),
                    server.sealedPassword, server.id});
}

bool NasStore::remove(const QString &id)
{
    return m_database.run(QStringLiteral("DELETE FROM nas_server WHERE id = ?"), {boundText(id)}).rows > 0;
}
