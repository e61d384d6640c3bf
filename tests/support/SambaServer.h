#pragma once

#include <QMap>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// Debian's smbd on the loopback interface, on a free port, with a configuration, a data base of passwords and one user
/// of its own. Needs no privileges, and leaves nothing behind.
class SambaServer
{
public:
    SambaServer();
    ~SambaServer(); ///< stops it

    /// Starts smbd and waits until it serves; false with error() set when that failed. May be started again, on the
    /// same port, after stop().
    bool start();
    void stop();
    /// Why start() failed, with what smbd said.
    QString error() const { return m_error; }

    /// "127.0.0.1:port", as a NAS server is registered.
    QString host() const;
    QString userName() const { return QStringLiteral("camera"); }
    QString password() const { return m_password; }

    /// Makes a share and its folder; also while the server runs.
    /// @param options more lines of its configuration
    void addShare(const QString &name, const QStringList &options = {});
    /// Takes the share away from those who use it, too. Its folder stays.
    bool removeShare(const QString &name);
    /// The folder that the share @p name shows.
    QString folderOf(const QString &name) const;

private:
    bool makeUser();
    bool startOnce();
    QString file(const QString &name) const { return m_folder.filePath(name); }
    void writeConfiguration() const;

    QTemporaryDir m_folder;
    QProcess m_process;
    QMap<QString, QStringList> m_shares; // options by name
    QString m_password; // not the same twice, so that it can be searched for
    QString m_error;
    quint16 m_port = 0;
};
