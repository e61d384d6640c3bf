#pragma once

#include "BrokerSettings.h"
#include "mqtt/MqttMessages.h"

#include <QObject>
#include <QTimer>

class MqttConnection;
struct MqttMessage;

/// A station's place at a broker: whether it has it, and what it says of itself there, retained.
///
/// One station of an ID may have it. Whoever connects reads what is kept there, and where that is another start of the
/// station that is up, asks it; when it answers, the newcomer leaves. Two that come at the same time hear each other,
/// and the one that was started later leaves.
class BrokerPresence : public QObject
{
    Q_OBJECT
public:
    /// @param connection not owned; must outlive this object. Its last will is set here
    BrokerPresence(MqttConnection &connection, const BrokerSettings &settings);

    /// The connection is up: begins to ask for the place.
    void begin();
    /// The connection is gone, and the place with it until begin().
    void interrupt();
    /// Takes a message of the topics of this object; others are left alone.
    void take(const MqttMessage &message);
    void noteSubscription(const QString &filter, bool isTaken);

    bool hasPlace() const { return m_stage == Stage::Serving; }
    void setName(const QString &name);
    /// Says that the station takes commands now. The place has to be its own.
    void announce();
    /// Says that the station ends.
    void sayGoodbye();

signals:
    /// The place is this station's; commands can be subscribed.
    void placeTaken();
    /// Another station has it; an English sentence says which.
    void placeLost(const QString &reason);

private:
    enum class Stage {
        Away,
        Subscribing,
        Looking, ///< waits for its own question, behind what the broker keeps
        Asking, ///< another one is said to be up, and may answer
        Serving,
    };

    void takeStatus(const MqttMessage &message);
    void takeWord(const MqttMessage &message);
    void takePlace();
    void yieldTo(const QString &address, const QDateTime &startedAt);
    bool isBefore(const QString &instance, const QDateTime &startedAt) const;
    StationStatus status(StationStatus::State state) const;
    void publish(const StationStatus &status);
    void say(bool isQuestion);

    MqttConnection &m_connection;
    BrokerSettings m_settings;
    QString m_instance;
    QString m_address;
    QDateTime m_startedAt;
    QDateTime m_upSince;
    Stage m_stage = Stage::Away;
    int m_subscriptions = 0; // that the broker took
    bool m_isAnnounced = false;
    QString m_otherInstance; // that is said to be up
    QTimer m_questionTimer;
};
