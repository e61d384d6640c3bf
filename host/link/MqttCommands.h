#pragma once

#include "StationMessage.h"
#include "mqtt/MqttMessage.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QTimer>

class MqttConnection;

/// The commands of one link that are not answered yet. Publishes them, again when their station comes back, and puts
/// their replies in order: each part is given on once, however often it is delivered.
class MqttCommands : public QObject
{
    Q_OBJECT
public:
    /// @param program the sender's name
    /// @param connection not owned; must outlive this object
    MqttCommands(MqttConnection &connection, QString program);

    /// Takes a command over, and publishes it at once where its station @p isUp. Else it waits for sendAll().
    void add(quint64 correlation, const QString &station, const StationCommand &command, bool isUp);

    /// Publishes everything that is for @p station and not answered, in the order of add().
    void sendAll(const QString &station);
    /// Forgets what is for @p station: whoever sent it knows that it is lost.
    void drop(const QString &station);
    /// Forgets what is for @p station and was never published.
    void dropUnsent(const QString &station);
    /// Answers what is for none of @p stations with HostReturnCode::UnknownStation.
    void refuseOthers(const QSet<QString> &stations);
    /// The connection is gone. Edits whose time is over are not sent again: HostReturnCode::StationLost answers them.
    void connectionLost();

    /// Takes a reply from the broker.
    void take(const MqttMessage &message);

signals:
    /// As StationLink::replyReceived().
    void answered(quint64 correlation, const StationReply &reply);
    /// The broker has nobody who takes commands for @p station at the moment.
    void stationMissing(const QString &station);

private:
    struct Command
    {
        QString station;
        MqttMessage message;
        std::chrono::milliseconds timeLimit{0};
        QDeadlineTimer deadline; // somewhat later than the sender's own
        int nextPart = 0;
        bool isEdit = false;
        bool isSent = false;
        bool isOver = false; // the sender gave it up
    };

    void publish(quint64 correlation);
    void takeAcknowledgement(int number, int reason);
    void answer(quint64 correlation, const QString &returnCode);
    void answerLater(quint64 correlation, const QString &returnCode);
    void endOverdue();

    MqttConnection &m_connection;
    QString m_program;
    QMap<quint64, Command> m_commands; // by correlation, that is in the order of sending
    QHash<int, quint64> m_published; // correlations by number of the publication
    QTimer m_timer;
};
