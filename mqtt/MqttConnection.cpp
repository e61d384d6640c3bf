#include "MqttConnection.h"

#include "MqttAttempt.h"

#include <QPointer>
#include <QRandomGenerator>
#include <QSignalBlocker>

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {
constexpr auto firstPause = 250ms;
constexpr auto longestPause = 4s;
constexpr auto longestAttempt = 10s;
constexpr auto careInterval = 1s;
constexpr auto turnLimit = 5ms; // of one turn of the event loop
constexpr int packetsAtOnce = 50;

/// The text that libmosquitto allocated.
QString taken(char *text)
{
    const std::unique_ptr<char, void (*)(void *)> owner(text, std::free);
    return QString::fromUtf8(text);
}

QString stringProperty(const mosquitto_property *properties, int identifier)
{
    char *text = nullptr;
    return mosquitto_property_read_string(properties, identifier, &text, false) ? taken(text) : QString();
}

MqttMessage messageOf(const mosquitto_message &message, const mosquitto_property *properties)
{
    MqttMessage found;
    found.topic = QString::fromUtf8(message.topic);
    found.payload = QByteArray(static_cast<const char *>(message.payload), message.payloadlen);
    found.isRetained = message.retain;
    found.contentType = stringProperty(properties, MQTT_PROP_CONTENT_TYPE);
    found.responseTopic = stringProperty(properties, MQTT_PROP_RESPONSE_TOPIC);
    void *data = nullptr;
    quint16 size = 0;
    if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &data, &size, false)) {
        found.correlation = QByteArray(static_cast<const char *>(data), size);
        std::free(data);
    }
    mosquitto_property_read_int32(properties, MQTT_PROP_MESSAGE_EXPIRY_INTERVAL, &found.expiry, false);
    char *name = nullptr;
    char *value = nullptr;
    for (const mosquitto_property *next =
             mosquitto_property_read_string_pair(properties, MQTT_PROP_USER_PROPERTY, &name, &value, false);
         next; next = mosquitto_property_read_string_pair(next, MQTT_PROP_USER_PROPERTY, &name, &value, true)) {
        const QString key = taken(name);
        const QString text = taken(value);
        if (key == QStringLiteral("client"))
            found.client = text;
    }
    return found;
}

/// Properties of one publication.
class Properties
{
public:
    explicit Properties(const MqttMessage &message)
    {
        if (!message.contentType.isEmpty())
            mosquitto_property_add_string(&m_list, MQTT_PROP_CONTENT_TYPE, message.contentType.toUtf8().constData());
        if (!message.responseTopic.isEmpty())
            mosquitto_property_add_string(&m_list, MQTT_PROP_RESPONSE_TOPIC,
                                          message.responseTopic.toUtf8().constData());
        if (!message.correlation.isEmpty())
            mosquitto_property_add_binary(&m_list, MQTT_PROP_CORRELATION_DATA, message.correlation.constData(),
                                          static_cast<quint16>(message.correlation.size()));
        if (message.expiry > 0)
            mosquitto_property_add_int32(&m_list, MQTT_PROP_MESSAGE_EXPIRY_INTERVAL, message.expiry);
        if (!message.client.isEmpty())
            mosquitto_property_add_string_pair(&m_list, MQTT_PROP_USER_PROPERTY, "client",
                                               message.client.toUtf8().constData());
    }
    ~Properties() { mosquitto_property_free_all(&m_list); }
    Properties(const Properties &) = delete;
    Properties &operator=(const Properties &) = delete;

    const mosquitto_property *get() const { return m_list; }

private:
    mosquitto_property *m_list = nullptr;
};
} // namespace

/// Joins an attempt on another thread with the connection that waits for it, if it still does.
struct MqttConnection::Ticket
{
    std::mutex mutex;
    MqttConnection *owner;
};

struct MqttConnection::Callbacks
{
    static void add(void *connection, Occurrence occurrence)
    {
        static_cast<MqttConnection *>(connection)->m_occurrences.push_back(std::move(occurrence));
    }

    static void set(mosquitto *client, MqttConnection *connection)
    {
        mosquitto_user_data_set(client, connection);
        mosquitto_connect_v5_callback_set(
            client,
            [](mosquitto *, void *self, int reason, int, const mosquitto_property *) { add(self, Greeting{reason}); });
        mosquitto_disconnect_v5_callback_set(
            client,
            [](mosquitto *, void *self, int reason, const mosquitto_property *) { add(self, Farewell{reason}); });
        mosquitto_subscribe_v5_callback_set(
            client, [](mosquitto *, void *self, int number, int count, const int *granted, const mosquitto_property *) {
                add(self, Subscription{number, count > 0 && granted[0] < 128});
            });
        mosquitto_publish_v5_callback_set(
            client, [](mosquitto *, void *self, int number, int reason, const mosquitto_property *) {
                add(self, Acknowledgement{number, reason});
            });
        mosquitto_message_v5_callback_set(
            client,
            [](mosquitto *, void *self, const mosquitto_message *message, const mosquitto_property *properties) {
                add(self, messageOf(*message, properties));
            });
        mosquitto_log_callback_set(client, [](mosquitto *, void *self, int level, const char *text) {
            if (level == MOSQ_LOG_ERR)
                static_cast<MqttConnection *>(self)->m_detail = QString::fromLocal8Bit(text);
        });
    }
};

MqttConnection::MqttConnection(MqttSettings settings, QString clientId, QObject *parent)
    : QObject(parent)
    , m_settings(std::move(settings))
    , m_clientId(std::move(clientId))
    , m_pause(firstPause)
{
    m_careTimer.setInterval(careInterval);
    m_careTimer.callOnTimeout(this, &MqttConnection::lookAfter);
    m_retryTimer.setSingleShot(true);
    m_retryTimer.callOnTimeout(this, &MqttConnection::attempt);
}

MqttConnection::~MqttConnection()
{
    const QSignalBlocker blocker(this);
    stop();
}

void MqttConnection::start()
{
    if (m_state.kind != State::Kind::Off)
        return;
    m_state.kind = State::Kind::Connecting;
    m_attemptDeadline.setRemainingTime(longestAttempt);
    m_retryTimer.start(0ms);
}

void MqttConnection::stop()
{
    if (m_client && isUp())
        mosquitto_disconnect_v5(m_client.get(), 0, nullptr);
    close();
    m_isConnected = false;
    m_failures = 0;
    m_retryTimer.stop();
    m_occurrences.clear();
    m_state = {};
}

void MqttConnection::retryNow()
{
    if (m_state.kind == State::Kind::Waiting)
        m_retryTimer.start(0ms);
}

void MqttConnection::attempt()
{
    m_attemptDeadline.setRemainingTime(longestAttempt);
    m_ticket = std::make_shared<Ticket>();
    m_ticket->owner = this;
    std::thread([ticket = m_ticket, settings = m_settings, clientId = m_clientId, will = m_will, number = m_attempts] {
        const MqttAttempt attempt = attemptMqtt(settings, clientId, will, number);
        const std::lock_guard lock(ticket->mutex);
        if (MqttConnection *const owner = ticket->owner)
            QMetaObject::invokeMethod(
                owner,
                [owner, ticket, attempt] {
                    if (owner->m_ticket == ticket)
                        owner->take(attempt);
                },
                Qt::QueuedConnection);
    }).detach();
    ++m_attempts;
    m_careTimer.start();
    setState({State::Kind::Connecting, m_state.reason, {}});
}

void MqttConnection::take(const MqttAttempt &attempt)
{
    m_ticket.reset();
    m_places = attempt.places;
    if (!attempt.client)
        return lose(attempt.error);
    m_client = attempt.client;
    m_detail.clear();
    Callbacks::set(m_client.get(), this);
    watchSocket();
}

void MqttConnection::watchSocket()
{
    const int socket = mosquitto_socket(m_client.get());
    if (socket < 0)
        return lose(QStringLiteral("the connection ended at once"));
    m_reading = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    m_writing = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    connect(m_reading.get(), &QSocketNotifier::activated, this, &MqttConnection::read);
    connect(m_writing.get(), &QSocketNotifier::activated, this, &MqttConnection::write);
    watchWriting();
}

void MqttConnection::watchWriting()
{
    if (m_writing)
        m_writing->setEnabled(mosquitto_want_write(m_client.get()));
}

void MqttConnection::read()
{
    if (hasFailedToConnect())
        return;
    judge(mosquitto_loop_read(m_client.get(), packetsAtOnce));
}

void MqttConnection::write()
{
    if (hasFailedToConnect())
        return;
    judge(mosquitto_loop_write(m_client.get(), packetsAtOnce));
}

/// Where TLS is to follow, the library takes no notice of a machine that refuses, and asks it again and again.
bool MqttConnection::hasFailedToConnect()
{
    if (m_isConnected)
        return false;
    const int socket = mosquitto_socket(m_client.get());
    sockaddr_storage peer = {};
    socklen_t peerSize = sizeof peer;
    int failure = 0;
    socklen_t failureSize = sizeof failure;
    getsockopt(socket, SOL_SOCKET, SO_ERROR, &failure, &failureSize);
    m_isConnected = failure == 0 && getpeername(socket, reinterpret_cast<sockaddr *>(&peer), &peerSize) == 0;
    if (m_isConnected)
        return false;
    errno = failure != 0 ? failure : ECONNREFUSED; // the library read it, where it came at once
    lose(mqttConnectError(m_settings, MOSQ_ERR_ERRNO, {}));
    return true;
}

/// Keeps the connection alive, and notices when it is not.
void MqttConnection::lookAfter()
{
    if (m_state.kind == State::Kind::Connecting && m_attemptDeadline.hasExpired())
        return lose(QStringLiteral("the broker %1 does not answer").arg(m_settings.host));
    if (m_client)
        judge(mosquitto_loop_misc(m_client.get()));
}

void MqttConnection::judge(int code)
{
    if (code == MOSQ_ERR_SUCCESS && mosquitto_socket(m_client.get()) >= 0) {
        watchWriting();
        deliver(false);
        return;
    }
    const QString reason = failureText(code); // before anything else changes errno
    const QPointer<MqttConnection> self(this);
    if (m_reading) {
        m_reading->setEnabled(false);
        m_writing->setEnabled(false);
    }
    deliver(true);
    if (self && m_client)
        lose(reason);
}

QString MqttConnection::failureText(int code)
{
    const int failure = errno;
    for (const Occurrence &occurrence : m_occurrences) {
        if (const auto *greeting = std::get_if<Greeting>(&occurrence); greeting && greeting->reason != 0)
            return QStringLiteral("the broker %1 refuses the connection: %2")
                .arg(m_settings.host, QString::fromLatin1(mosquitto_reason_string(greeting->reason)).remove(u'.'));
    }
    for (const Occurrence &occurrence : m_occurrences) {
        if (const auto *farewell = std::get_if<Farewell>(&occurrence); farewell && farewell->reason >= 128)
            return QStringLiteral("the broker %1 ended the connection: %2")
                .arg(m_settings.host, QString::fromLatin1(mosquitto_reason_string(farewell->reason)).remove(u'.'));
    }
    if (code == MOSQ_ERR_KEEPALIVE)
        return QStringLiteral("the broker %1 has been silent for too long").arg(m_settings.host);
    if (!isUp()) {
        errno = failure;
        return mqttConnectError(m_settings, code, m_detail);
    }
    return QStringLiteral("the connection to the broker %1 was lost").arg(m_settings.host);
}

void MqttConnection::scheduleDelivery()
{
    if (!std::exchange(m_isDeliveryScheduled, true))
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isDeliveryScheduled = false;
                deliver(false);
            },
            Qt::QueuedConnection);
}

/// @param isAll however long it takes; else the rest waits for the next turn
void MqttConnection::deliver(bool isAll)
{
    if (std::exchange(m_isDelivering, true))
        return;
    const QPointer<MqttConnection> self(this);
    const QDeadlineTimer turn(turnLimit);
    while (!m_occurrences.empty() && (isAll || !turn.hasExpired())) {
        const Occurrence occurrence = std::move(m_occurrences.front());
        m_occurrences.pop_front();
        handle(occurrence);
        if (!self)
            return;
    }
    m_isDelivering = false;
    if (!m_occurrences.empty())
        scheduleDelivery();
}

void MqttConnection::handle(const Occurrence &occurrence)
{
    if (const auto *greeting = std::get_if<Greeting>(&occurrence)) {
        if (greeting->reason != 0)
            return; // the connection ends, and failureText() had it
        m_pause = firstPause;
        setState({State::Kind::Up, {}, {}});
    } else if (const auto *subscription = std::get_if<Subscription>(&occurrence)) {
        const auto found = std::find_if(m_filters.begin(), m_filters.end(),
                                        [subscription](const auto &one) { return one.first == subscription->number; });
        if (found == m_filters.end())
            return;
        const QString filter = found->second;
        m_filters.erase(found);
        emit subscribed(filter, subscription->isTaken);
    } else if (const auto *acknowledgement = std::get_if<Acknowledgement>(&occurrence)) {
        emit published(acknowledgement->number, acknowledgement->reason);
    } else if (const auto *message = std::get_if<MqttMessage>(&occurrence)) {
        emit received(*message);
    }
}

MqttConnection::Publication MqttConnection::publish(const MqttMessage &message)
{
    using Outcome = Publication::Outcome;
    if (!m_client || !isUp())
        return {};
    const Properties properties(message);
    int number = 0;
    const int code = mosquitto_publish_v5(m_client.get(), &number, message.topic.toUtf8().constData(),
                                          static_cast<int>(message.payload.size()), message.payload.constData(), 1,
                                          message.isRetained, properties.get());
    if (code == MOSQ_ERR_OVERSIZE_PACKET || code == MOSQ_ERR_PAYLOAD_SIZE)
        return {Outcome::TooLarge};
    watchWriting();
    if (code == MOSQ_ERR_SUCCESS)
        return {Outcome::Sent, number};
    const bool isGone =
        code == MOSQ_ERR_NO_CONN || code == MOSQ_ERR_CONN_LOST || code == MOSQ_ERR_ERRNO || code == MOSQ_ERR_TLS;
    return {isGone ? Outcome::NotConnected : Outcome::Failed};
}

void MqttConnection::subscribe(const QString &filter)
{
    if (!m_client || !isUp())
        return;
    int number = 0;
    if (mosquitto_subscribe_v5(m_client.get(), &number, filter.toUtf8().constData(), 1, 0, nullptr) == MOSQ_ERR_SUCCESS)
        m_filters.emplace_back(number, filter);
    watchWriting();
}

void MqttConnection::lose(const QString &reason)
{
    close();
    const bool wasThere = std::exchange(m_isConnected, false);
    m_failures = wasThere ? 0 : m_failures + 1;
    if (m_failures > 0 && m_failures < m_places)
        return attempt(); // at the next address of the same name
    m_failures = 0;
    const double chance = 0.5 + QRandomGenerator::global()->generateDouble();
    const auto pause = std::chrono::milliseconds(static_cast<qint64>(static_cast<double>(m_pause.count()) * chance));
    m_pause = std::min<std::chrono::milliseconds>(m_pause * 2, longestPause);
    m_retryTimer.start(pause);
    setState({State::Kind::Waiting, reason, QDateTime::currentDateTimeUtc().addMSecs(pause.count())});
}

void MqttConnection::close()
{
    if (m_ticket) {
        const std::lock_guard lock(m_ticket->mutex);
        m_ticket->owner = nullptr;
    }
    m_ticket.reset();
    for (auto *notifier : {&m_reading, &m_writing}) {
        if (!*notifier)
            continue;
        (*notifier)->setEnabled(false);
        notifier->release()->deleteLater(); // it may be what called
    }
    m_filters.clear();
    m_careTimer.stop();
    m_client.reset();
}

void MqttConnection::setState(State state)
{
    m_state = std::move(state);
    emit stateChanged();
}
