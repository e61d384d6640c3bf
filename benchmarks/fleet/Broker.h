#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// Debian's mosquitto on a free port of the loopback interface, without TLS and passwords, which leaves nothing behind.
class Broker
{
public:
    /// Starts it and waits until it serves. Throws std::runtime_error where it does not.
    Broker();
    ~Broker();
    Broker(const Broker &) = delete;
    Broker &operator=(const Broker &) = delete;

    /// Ends it without a word to anybody, as a crash does, and starts it anew on the same port. Nothing that it knew is
    /// kept.
    void crashAndRestart();

    quint16 port() const { return m_port; }
    /// "mqtt://127.0.0.1:PORT/STATION"
    QString url(const QString &station = {}) const;
    double cpuSeconds() const; ///< since its last start
    double residentBytes() const;

private:
    void start();

    QTemporaryDir m_folder;
    QProcess m_process;
    quint16 m_port = 0;
};
