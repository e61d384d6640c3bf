#pragma once

#include "StationMessage.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttMessages.h"

#include <QHash>
#include <QMap>
#include <QObject>

#include <array>
#include <chrono>

/// A station that is nothing but what goes over the broker: its presence, its events and its answers are those of a
/// real one, the figures are made up, and what is edited is kept in memory. Lives on one thread.
class LightStation : public QObject
{
    Q_OBJECT
public:
    /// What it has done since its start.
    struct Counts
    {
        quint64 events = 0; ///< published
        quint64 commands = 0; ///< delivered, repeated ones among them
        quint64 edits = 0; ///< that took effect
        quint64 repeated = 0; ///< edits that were delivered again, and answered as before
        quint64 unreadable = 0; ///< messages that were no command
    };

    /// @param interval between two of its events
    LightStation(const QString &id, const MqttSettings &broker, std::chrono::milliseconds interval,
                 QObject *parent = nullptr);

    void start();
    /// Says goodbye to the broker, and to who watches presence.
    void stop();
    /// Publishes the next figures; nothing without a connection.
    void publishFigures();

    const QString &id() const { return m_id; }
    /// Whether the broker has what makes it reachable: its commands, its presence and its figures.
    bool isReady() const { return m_acknowledgementsMissing == 0 && m_connection.isUp(); }
    const Counts &counts() const { return m_counts; }

signals:
    void readyChanged();

private:
    void follow();
    void introduce();
    void noteAcknowledgement();
    void take(const MqttMessage &message);
    StationReply answer(const StationCommand &command);
    StationReply edit(const StationCommand &command);
    StationReply carryOutEdit(const StationCommand &command);
    MqttMessage statusMessage(StationStatus::State state) const;

    QString m_id;
    StationStatus m_status;
    MqttConnection m_connection;
    QMap<QString, int> m_cameras; // streams, by name
    QHash<QString, StationReply> m_edits; // by the id of their command
    Counts m_counts;
    int m_variant = 0;
    int m_acknowledgementsMissing = 0;
    bool m_isReady = false;
};
