#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// A place on an SMB server: the server itself, a share of it, or a folder in a share.
struct SmbPath
{
    QString host; ///< a host name or IPv4 address, never empty
    quint16 port = 0; ///< 0: the port that SMB servers listen on
    QString share; ///< empty for the server itself
    QStringList folders; ///< from the share down

    /// Reads `\\host\share\folder`, `//host/share/folder` and `smb://host/share/folder`; a port may follow the host
    /// (`//host:1445/share`). Names are taken as they are written, a "%" too. "." is left out and ".." leads up, no
    /// further than the server. None for everything else, and for names that no SMB server has.
    static std::optional<SmbPath> parse(const QString &text);

    /// Reads `host` or `host:port`, as a NAS server is registered. None for everything else.
    static std::optional<SmbPath> parseHost(const QString &text);

    /// "//host:port/share/folder": the same for everything that parse() takes for the same place.
    QString text() const;
    /// The address for libsmbclient, special characters escaped.
    QByteArray url() const;
    /// The address of @p name in this folder.
    QByteArray urlOf(const QString &name) const;

    /// The server alone.
    SmbPath server() const;
    /// "host:port" in small letters: the same for everything on one server.
    QString hostKey() const;
    /// "//host:port/share" in small letters: the same for everything on one share, however it is written, since names
    /// on these servers are the same in capitals and small letters.
    QString shareKey() const;
    /// Whether @p other is on the same server, capitals of the host aside.
    bool isOnHostOf(const SmbPath &other) const;
};
