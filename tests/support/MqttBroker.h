#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// Debian's mosquitto on the loopback interface, on a free port, with a configuration of its own. Needs no privileges,
/// and leaves nothing behind.
class MqttBroker
{
public:
    MqttBroker();
    ~MqttBroker(); ///< stops it

    /// Starts the broker and waits until it serves; false with error() set when that failed. May be started again, on
    /// the same port, after stop() or kill().
    bool start();
    void stop();
    /// Ends it without a word to anybody.
    void kill();
    /// Why start() failed, with what the broker said.
    QString error() const { return m_error; }

    quint16 port() const { return m_port; }
    /// "mqtt://127.0.0.1:port".
    QString url() const;
    /// More lines of its configuration; before start().
    void addLines(const QStringList &lines) { m_lines += lines; }

    /// Before start(): the configuration, access rules and certificates of share/broker, for users whose password is
    /// their name backwards. The broker's name is "localhost". False with error() set when that failed.
    bool useExample(const QStringList &users);
    /// A file of the broker's folder, "ca.pem" for instance.
    QString file(const QString &name) const { return m_folder.filePath(name); }
    /// "mqtts://USER@localhost:port".
    QString encryptedUrl(const QString &user) const;
    /// The file with the password of @p user.
    QString passwordFile(const QString &user) const { return file(user + QStringLiteral(".password")); }

    qint64 processId() const { return m_process.processId(); }

private:
    bool startOnce();
    bool run(const QString &program, const QStringList &arguments);
    QString configuration() const;

    QTemporaryDir m_folder;
    QProcess m_process;
    QStringList m_lines;
    QString m_example; // configuration, but for the port
    QString m_error;
    quint16 m_port = 0;
};
