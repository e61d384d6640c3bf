#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

class Database;

/// A NAS server as the station keeps it.
struct NasServer
{
    QString id; ///< a UUID with braces
    QString host; ///< as SmbPath::parseHost() reads it, spelt as the operator wrote it
    QString logonDomain; ///< "Host" for the server's own accounts
    QString userName;
    QByteArray sealedPassword; ///< of PasswordVault
};

/// The NAS servers in the station's database. Throws DatabaseError.
class NasStore
{
public:
    /// @param database must outlive this object
    explicit NasStore(Database &database);

    QList<NasServer> servers() const; ///< in the order in which they were added
    std::optional<NasServer> server(const QString &id) const;
    /// Whether a server other than @p id has the user of that host, capitals of the host aside.
    bool isTaken(const QString &host, const QString &userName, const QString &id = {}) const;

    void insert(const NasServer &server);
    void replace(const NasServer &server); ///< found by its id
    bool remove(const QString &id); ///< false when there is none

private:
    Database &m_database;
};
