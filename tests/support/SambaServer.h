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

    quint16 port() const { return m_port; }
    /// Sends @p signal to smbd and all its processes; false while it does not run.
    bool signalAll(int signal);

    /// The user has @p password from now on; false with error() set when that failed.
    bool setPassword(const QString &password);
    /// The server locks the account after @p attempts wrong passwords, until setPassword(); 0: never.
    bool setLockout(int attempts);

    /// Makes a share and its folder; also while the server runs.
    /// @param options more lines of its configuration
    void addShare(const QString &name, const QStringList &options = {});
    /// Takes the share away from those who use it, too. Its folder stays.
    bool removeShare(const QString &name);
    /// The folder that the share @p name shows.
    QString folderOf(const QString &name) const;

private:
    bool makeUser();
    bool edit(const QStringList &arguments, const QString &input = {});
    bool startOnce();
    void waitForHeirs() const;
    QString file(const QString &name) const { return m_folder.filePath(name); }
    void writeConfiguration() const;

    QTemporaryDir m_folder;
    QProcess m_process; // makes a session of its own
    QMap<QString, QStringList> m_shares; // options by name
    QString m_password; // not the same twice, so that it can be searched for
    QString m_error;
    quint16 m_port = 0;
};
