#pragma once

#include "FigurePace.h"
#include "MqttCommands.h"
#include "StationLink.h"
#include "StationPresence.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttMessages.h"

#include <QByteArray>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <QTimer>

/// The way to all stations behind one broker; the URL names the directly connected one. docs/mqtt.md says what goes
/// over the broker.
///
/// While the connection to the broker or a station is lost, commands are kept and sent again when it is back, edits
/// under their ids: the station carries each out once. A station counts as lost for good after 20 s. One that hangs, or
/// is cut off, is silent: its heartbeat ceases before the broker notices.
class MqttLink : public StationLink
{
    Q_OBJECT
public:
    /// @param station the relay path of the directly connected one; not empty
    MqttLink(const MqttSettings &settings, const QString &station, const Client &client, QObject *parent = nullptr);

    /// "mqtt://[USER@]BROKER[:PORT]/STATION" and "mqtts://...", as readMqttUrl() and addMqttEnvironment() tell.
    static QList<Kind> kinds();

    void start() override;
    StationState state(const QString &relayPath = {}) const override;
    QList<StationPresence> stations() const override;
    StationPresence presence(const QString &relayPath = {}) const override;
    bool reachesMany() const override { return true; }
    QString whyIncomplete() const override;
    QString directStation() const override { return m_direct; }
    bool setDirectStation(const QString &relayPath) override;
    void send(quint64 correlation, const QString &relayPath, const StationCommand &command) override;

private:
    struct Station
    {
        StationPresence presence;
        QString instance;
        QDateTime startedAt; // that instance
        QDateTime lostAt; // of that instance
        bool isHeard = false; // since the broker was connected last
        QDateTime upSince;
        std::chrono::seconds heartbeat{0}; // of that instance; 0: it promises none
        QElapsedTimer heard; // since it said that it is up, or its last event
        QDeadlineTimer patience{QDeadlineTimer::Forever}; // until it counts as lost for good
        QDeadlineTimer awaited{0}; // likewise, for what happened to it while the broker was away
    };

    /// What the broker keeps of stations: coming, here, or here at some time, as it does not take the question.
    enum class Listing { UnderWay, Complete, Unknown };

    static Kind kind(const QString &scheme, bool isEncrypted);
    void followConnection();
    void followBrokerLoss();
    void noteSubscription(const QString &filter, bool isTaken);
    void askForTheEnd();
    void noteAcknowledgement(int number, int reason);
    void settle();
    void endPatience();
    void take(const MqttMessage &message);
    void takeStatus(const QString &relayPath, const MqttMessage &message);
    void noteUnreadableStatus(const QString &relayPath, const QString &error);
    void takeEvent(const QString &relayPath, const QString &name, const MqttMessage &message);
    void tellEvent(const QString &relayPath, const QString &name, const MqttMessage &message);
    void noteFigures(const QString &relayPath, const StationEvent &event, bool isKept);
    void noteEvent(const QString &relayPath);
    void lookForSilence();
    void noteMissing(const QString &relayPath);
    void loseForGood(const QString &relayPath, const QString &reason);
    void tryAgain(const QString &relayPath);
    void setState(const QString &relayPath, const StationState &state, const QDateTime &since);
    void emitState(const QString &relayPath, const StationState &state);
    void setBrokerState(const StationState &state);

    MqttConnection m_connection;
    MqttCommands m_commands;
    FigurePace m_pace; // of the stations but the directly connected one
    QString m_direct;
    QHash<QString, Station> m_stations; // by relay path
    bool m_followsOthers; // else the events of the directly connected one alone are subscribed
    StationState m_brokerState;
    QDeadlineTimer m_brokerPatience{0};
    QTimer m_settleTimer; // until the broker has told what it keeps
    QTimer m_patienceTimer;
    QElapsedTimer m_looked; // for silence
    bool m_isSettled = false;
    Listing m_listing = Listing::UnderWay;
    QByteArray m_question; // that ends it
    int m_questionNumber = 0;
    bool m_hearsEvents = false; // over this connection; the broker's rules may keep them from this user
};
