#pragma once

#include "MqttMessage.h"
#include "MqttSettings.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <variant>

struct MqttAttempt;
struct mosquitto;

/// A connection to a broker that is made again whenever it ends, with growing pauses of chance length between attempts.
///
/// Lives on one thread and uses its event loop; what may block (names, files) is done on another one. Each connection
/// begins afresh: nothing that was subscribed or is on its way outlasts it, whoever needs that sends it again. A broker
/// that is silent for about ten seconds counts as gone.
class MqttConnection : public QObject
{
    Q_OBJECT
public:
    struct State
    {
        enum class Kind {
            Off, ///< not started, or stopped
            Connecting,
            Up,
            Waiting, ///< for the next attempt
        };

        Kind kind = Kind::Off;
        QString reason =
            {}; ///< of Waiting, and of Connecting after it: why the last connection or attempt ended; a clause
        QDateTime retryAt = {}; ///< of Waiting: when the next attempt begins; in UTC
    };

    /// What came of publish().
    struct Publication
    {
        enum class Outcome { Sent, NotConnected, TooLarge, Failed };

        Outcome outcome = Outcome::NotConnected;
        int number = 0; ///< of Sent: the one that published() will tell
    };

    /// @param clientId unique among all clients of the broker
    MqttConnection(MqttSettings settings, QString clientId, QObject *parent = nullptr);
    ~MqttConnection() override; ///< as stop()

    /// What the broker says to all when it loses this connection; counts from the next connection on.
    void setWill(const MqttMessage &will) { m_will = will; }

    void start();
    /// Ends the connection in an orderly way: the last will is not told. What was published is given to the system
    /// before, as far as it takes it.
    void stop();
    /// Ends a pause.
    void retryNow();

    const State &state() const { return m_state; }
    bool isUp() const { return m_state.kind == State::Kind::Up; }
    const QString &clientId() const { return m_clientId; }
    const MqttSettings &settings() const { return m_settings; }

    /// Sends @p message; delivered at least once as long as this connection lasts. Never blocks.
    Publication publish(const MqttMessage &message);
    /// Subscribes to @p filter; subscribed() follows. Nothing while there is no connection.
    void subscribe(const QString &filter);

signals:
    // None of them is emitted from within a call.

    void stateChanged();
    /// The broker took the subscription, or, with @p isTaken false, refused it.
    void subscribed(const QString &filter, bool isTaken);
    /// The broker answered publication @p number.
    /// @param reason of MQTT 5: below 128 it was taken, 16: by nobody at the moment; 135: not allowed
    void published(int number, int reason);
    void received(const MqttMessage &message);

private:
    struct Ticket;
    struct Greeting
    {
        int reason;
    };
    struct Farewell
    {
        int reason;
    };
    struct Subscription
    {
        int number;
        bool isTaken;
    };
    struct Acknowledgement
    {
        int number;
        int reason;
    };
    using Occurrence = std::variant<Greeting, Farewell, Subscription, Acknowledgement, MqttMessage>;
    struct Callbacks; // of the library: they note what occurs

    void attempt();
    void take(const MqttAttempt &attempt);
    void watchSocket();
    void watchWriting();
    void read();
    void write();
    bool hasFailedToConnect();
    void lookAfter();
    void judge(int code);
    void scheduleDelivery();
    void deliver(bool isAll);
    void handle(const Occurrence &occurrence);
    QString failureText(int code);
    void lose(const QString &reason);
    void close();
    void setState(State state);

    MqttSettings m_settings;
    QString m_clientId;
    std::optional<MqttMessage> m_will;
    State m_state;
    std::shared_ptr<Ticket> m_ticket; // of the attempt that another thread prepares
    std::shared_ptr<mosquitto> m_client;
    std::unique_ptr<QSocketNotifier> m_reading;
    std::unique_ptr<QSocketNotifier> m_writing;
    QTimer m_careTimer; // keep-alive
    QTimer m_retryTimer;
    QDeadlineTimer m_attemptDeadline;
    std::chrono::milliseconds m_pause;
    std::deque<Occurrence> m_occurrences;
    std::deque<std::pair<int, QString>> m_filters; // subscriptions under way, by number
    QString m_detail; // what the library said of TLS
    int m_attempts = 0;
    bool m_isConnected = false; // the broker's machine took the connection
    int m_places = 0; // of the broker's name
    int m_failures = 0; // among them, since the last pause
    bool m_isDelivering = false;
    bool m_isDeliveryScheduled = false;
};
