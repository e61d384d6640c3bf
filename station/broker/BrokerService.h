#pragma once

#include "BrokerCommands.h"
#include "BrokerPresence.h"
#include "BrokerSettings.h"
#include "StationMessage.h"
#include "mqtt/MqttConnection.h"
#include "service/StationPulse.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

class StationThread;

/// One station for the clients of a broker: connects out to it, says that the station is there, takes commands and
/// sends replies and events. docs/mqtt.md tells what goes over the broker.
class BrokerService : public QObject
{
    Q_OBJECT
public:
    /// @param station not owned; must outlive this object
    BrokerService(StationThread &station, const BrokerSettings &settings, QObject *parent = nullptr);

    void start();
    void setName(const QString &name) { m_presence.setName(name); }
    void setRoles(const BrokerRoles &roles) { m_commands.setRoles(roles); }
    void setLimits(const MessageLimits &limits);

    /// Takes no more commands, waits for what is under way as long as BrokerSettings::endTime, says that the station
    /// ends and leaves the broker; stopped() follows.
    void stop();

    bool isServing() const { return m_isServing; }

signals:
    /// The station can be reached over the broker, or cannot any more.
    void servingChanged(bool serving);
    /// Another station serves the ID since before this one came; an English sentence. This one is not to serve clients.
    /// Only at the start: one that has served for a while waits until the ID is free.
    void idTaken(const QString &reason);
    void stopped();

private:
    void followConnection();
    void takePlace();
    void losePlace(const QString &reason);
    void noteSubscription(const QString &filter, bool isTaken);
    void take(const MqttMessage &message);
    void raiseEvent(const StationEvent &raised);
    void publishEvent(const StationEvent &event);
    void noteAcknowledgement(int number, int reason);
    void setServing(bool serving);
    void leave();

    BrokerSettings m_settings;
    MqttConnection m_connection;
    BrokerPresence m_presence;
    BrokerCommands m_commands;
    QHash<QString, StationEvent> m_states; // the last events that say how things are, by name
    QHash<int, QString> m_onTheirWay; // names of such events by number of the publication
    QSet<QString> m_waiting; // names of such events that are newer than the one on its way
    QSet<QString> m_subscribed;
    StationPulse m_pulse; // since the last event; a station that hangs is as silent as one that is cut off
    QTimer m_returnTimer;
    QTimer m_endTimer;
    QString m_lastReason;
    bool m_isRefusalLogged = false; // of this connection
    bool m_isServing = false;
    bool m_hasLeft = false;
    QElapsedTimer m_servedFirst; // since then
    bool m_isStopping = false;
};
