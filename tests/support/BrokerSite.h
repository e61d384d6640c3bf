#pragma once

#include "MqttBroker.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "link/CommandSender.h"
#include "link/LocalLink.h"
#include "link/MqttLink.h"

#include <QDir>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <memory>

/// A station as a process of its own, in a folder of the test's.
class StationProcess
{
public:
    /// @param arguments besides the data folder, the ID and the broker
    StationProcess(const QString &folder, QString id, const QString &broker, const QStringList &arguments = {})
        : m_id(std::move(id))
        , m_arguments(QStringList{QStringLiteral("--data"), folder + u'/' + m_id, QStringLiteral("--id"), m_id,
                                  QStringLiteral("--broker"), broker}
                      + arguments)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~StationProcess() { stop(); }

    void start()
    {
        m_process.start(QString::fromLocal8Bit(qgetenv("RECORDING_STATIOND")), m_arguments);
        m_process.waitForStarted();
    }
    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.terminate();
        if (!m_process.waitForFinished(20000))
            kill();
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(20000);
    }
    /// SIGSTOP and SIGCONT, for instance.
    void signal(int number) { ::kill(static_cast<pid_t>(m_process.processId()), number); }

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    int exitCode() const { return m_process.exitCode(); }
    QString id() const { return m_id; }
    QString dataFolder() const { return m_arguments.at(1); }
    /// What it said so far.
    QString log()
    {
        m_log += QString::fromUtf8(m_process.readAll());
        return m_log;
    }

private:
    QString m_id;
    QStringList m_arguments;
    QProcess m_process;
    QString m_log;
};

/// A client of the stations behind a broker: its link, and what it was told.
class BrokerClient
{
public:
    /// @param url with the station; null link() where it is wrong
    explicit BrokerClient(const QString &url, std::chrono::milliseconds figuresPause = {})
    {
        StationLink::Client client{QStringLiteral("test"), QStringLiteral("1"), {}};
        client.figuresPause = figuresPause;
        m_link = StationLink::open(url, MqttLink::kinds(), client, &error);
        if (!m_link)
            return;
        m_sender = std::make_unique<CommandSender>(*m_link, CommandSender::Range::Station);
        QObject::connect(m_link.get(), &StationLink::eventReceived, m_link.get(),
                         [this](const QString &station, const StationEvent &event) {
                             events.append(station + u' ' + event.name);
                             lastData.insert(station + u' ' + event.name, event.data);
                         });
        QObject::connect(m_link.get(), &StationLink::stateChanged, m_link.get(),
                         [this](const QString &station, const StationState &state) {
                             if (!station.isEmpty())
                                 states[station].append(state);
                         });
        m_link->start();
    }
    ~BrokerClient()
    {
        if (m_sender)
            m_sender->close();
    }

    StationLink &link() { return *m_link; }
    CommandSender &sender() { return *m_sender; }
    bool isUp(const QString &station = {}) const { return m_link && m_link->isUp(station); }
    QString reason(const QString &station = {}) const { return m_link->state(station).reason; }

    /// Sends a command; its parts come to @ref replies under the number that is returned.
    int send(const QString &command, const QVariant &data = {}, const QString &station = {})
    {
        const int number = ++m_sent;
        m_sender->send(station, {command, data},
                       [this, number](quint64, const StationReply &part) { replies[number].append(part); });
        return number;
    }
    /// Of the last part; empty while that has not come.
    QString code(int number) const
    {
        const QList<StationReply> parts = replies.value(number);
        return parts.isEmpty() || !parts.constLast().finish ? QString() : parts.constLast().returnCode;
    }
    QVariant data(int number) const
    {
        const QList<StationReply> parts = replies.value(number);
        return parts.isEmpty() ? QVariant() : parts.constLast().data;
    }

    QString error;
    QHash<int, QList<StationReply>> replies;
    QStringList events; ///< "STATION NAME"
    QHash<QString, QVariant> lastData; ///< likewise
    QHash<QString, QList<StationState>> states; ///< that each station was in

private:
    std::unique_ptr<StationLink> m_link;
    std::unique_ptr<CommandSender> m_sender;
    int m_sent = 0;
};

inline QVariantMap cameraMap(const QString &name)
{
    return {{FieldKey::camName, name}, {StationKey::streams, 1}};
}

/// The names in what "station.listCameras" answered.
inline QStringList cameraNames(const QVariant &list)
{
    QStringList names;
    const QVariantList cameras = list.toList();
    for (const QVariant &camera : cameras)
        names.append(camera.toMap().value(FieldKey::camName).toString());
    return names;
}
