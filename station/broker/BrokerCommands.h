#pragma once

#include "BrokerRoles.h"
#include "BrokerSettings.h"
#include "mqtt/MqttBody.h"

#include <QObject>
#include <QSet>

class MqttConnection;
class StationThread;
struct MqttMessage;
struct StationCommand;
struct StationReply;

/// Commands that come over a broker, and their replies.
class BrokerCommands : public QObject
{
    Q_OBJECT
public:
    /// @param connection, station not owned; must outlive this object
    BrokerCommands(MqttConnection &connection, StationThread &station, const BrokerSettings &settings);

    void setRoles(const BrokerRoles &roles) { m_roles = roles; }
    void setLimits(const MessageLimits &limits) { m_settings.messages = limits; }

    /// Takes a message of the station's topics for commands.
    /// @param user as its topic says; may be empty
    void take(const MqttMessage &message, const QString &user);

    /// Takes no more commands; finished() follows once those under way are answered.
    void finish();
    /// Answers those under way with "StationStopping".
    void finishNow();

signals:
    void finished();

private:
    /// A command under way.
    struct Asker
    {
        QString responseTopic;
        QByteArray correlation;
        BodyForm form = BodyForm::Cbor;
        int parts = 0; // that were sent
    };

    QString refusal(const StationCommand &command, const QString &user) const;
    void reply(Asker &asker, const StationReply &reply);
    bool publish(const Asker &asker, const StationReply &reply);
    void end();

    MqttConnection &m_connection;
    StationThread &m_station;
    BrokerSettings m_settings;
    BrokerRoles m_roles;
    QHash<quint64, Asker> m_underWay; // by a number of their own
    quint64 m_lastNumber = 0;
    bool m_isFinishing = false;
};
