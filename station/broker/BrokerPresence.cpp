#include "BrokerPresence.h"

#include "StationLog.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttTopics.h"

#include <QSysInfo>
#include <QUuid>

#include <tuple>

BrokerPresence::BrokerPresence(MqttConnection &connection, const BrokerSettings &settings)
    : m_connection(connection)
    , m_settings(settings)
    , m_instance(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_address(QSysInfo::machineHostName())
    , m_startedAt(QDateTime::currentDateTimeUtc())
{
    m_questionTimer.setSingleShot(true);
    m_questionTimer.setInterval(m_settings.questionTime);
    m_questionTimer.callOnTimeout(this, &BrokerPresence::takePlace);
    setName(settings.stationName);
}

void BrokerPresence::setName(const QString &name)
{
    m_settings.stationName = name.isEmpty() ? m_address : name;
    const MqttBody body = encodeBody(statusMap(status(StationStatus::State::Lost)));
    MqttMessage will;
    will.topic = MqttTopics::status(m_settings.stationId);
    will.payload = body.bytes;
    will.contentType = body.contentType;
    will.isRetained = true;
    m_connection.setWill(will);
    if (m_isAnnounced)
        publish(status(StationStatus::State::Up));
}

void BrokerPresence::begin()
{
    m_stage = Stage::Subscribing;
    m_subscriptions = 0;
    m_isAnnounced = false;
    m_otherInstance.clear();
    m_connection.subscribe(MqttTopics::status(m_settings.stationId));
    m_connection.subscribe(MqttTopics::instances(m_settings.stationId));
}

void BrokerPresence::interrupt()
{
    m_stage = Stage::Away;
    m_isAnnounced = false;
    m_questionTimer.stop();
}

/// The question comes back to its sender, too, and then everything that the broker keeps has come before it.
void BrokerPresence::noteSubscription(const QString &filter, bool isTaken)
{
    const bool isOurs =
        filter == MqttTopics::status(m_settings.stationId) || filter == MqttTopics::instances(m_settings.stationId);
    if (!isOurs || m_stage != Stage::Subscribing)
        return;
    if (!isTaken)
        qCCritical(stationLog, "The broker does not let this station read %s", qUtf8Printable(filter));
    else if (++m_subscriptions == 2) {
        m_stage = Stage::Looking;
        say(true);
    }
}

void BrokerPresence::take(const MqttMessage &message)
{
    using Kind = MqttTopics::Address::Kind;
    const MqttTopics::Address address = MqttTopics::read(message.topic);
    try {
        if (address.kind == Kind::Status && address.station == m_settings.stationId)
            takeStatus(message);
        else if (address.kind == Kind::Instances && address.station == m_settings.stationId)
            takeWord(message);
    } catch (const MessageError &error) {
        qCWarning(stationLog, "What came over %s cannot be read: %s", qUtf8Printable(message.topic), error.what());
    }
}

/// What another one says of this place while it is ours is put right, unless that one was here first.
void BrokerPresence::takeStatus(const MqttMessage &message)
{
    if (message.payload.isEmpty()) {
        if (m_isAnnounced)
            publish(status(StationStatus::State::Up));
        return;
    }
    const StationStatus found = statusFromMap(decodeBody(message.payload, message.contentType, m_settings.messages));
    const bool isUp = found.state == StationStatus::State::Up;
    if (found.instance == m_instance) {
        if (m_isAnnounced && !isUp) // the will of a connection before this one
            publish(status(StationStatus::State::Up));
        return;
    }
    if (m_stage == Stage::Looking || m_stage == Stage::Subscribing)
        m_otherInstance = isUp ? found.instance : QString();
    else if (hasPlace() && isUp && isBefore(found.instance, found.startedAt))
        yieldTo(found.address, found.startedAt);
    else if (m_isAnnounced)
        publish(status(StationStatus::State::Up));
}

void BrokerPresence::takeWord(const MqttMessage &message)
{
    const InstanceWord word = instanceFromMap(decodeBody(message.payload, message.contentType, m_settings.messages));
    if (word.instance == m_instance) {
        if (m_stage != Stage::Looking || !word.isQuestion)
            return;
        if (m_otherInstance.isEmpty())
            return takePlace();
        m_stage = Stage::Asking;
        m_questionTimer.start();
    } else if (!word.isQuestion) {
        if (m_stage == Stage::Looking || m_stage == Stage::Asking
            || (hasPlace() && isBefore(word.instance, word.startedAt)))
            yieldTo(word.address, word.startedAt);
    } else if (hasPlace()) {
        say(false);
    }
}

void BrokerPresence::takePlace()
{
    m_questionTimer.stop();
    m_stage = Stage::Serving;
    m_upSince = QDateTime::currentDateTimeUtc();
    emit placeTaken();
}

void BrokerPresence::yieldTo(const QString &address, const QDateTime &startedAt)
{
    interrupt();
    emit placeLost(
        QStringLiteral("Another station serves the ID \"%1\": the one on %2, which was started at %3. Give this "
                       "one an ID of its own, or end the other one.")
            .arg(m_settings.stationId, address, startedAt.toString(Qt::ISODate)));
}

/// Whether another start was before this one; never true for both of them.
bool BrokerPresence::isBefore(const QString &instance, const QDateTime &startedAt) const
{
    return std::tie(startedAt, instance) < std::tie(m_startedAt, m_instance);
}

StationStatus BrokerPresence::status(StationStatus::State state) const
{
    StationStatus status{state,     m_settings.stationName, m_address, m_settings.version, m_instance, m_startedAt,
                         m_upSince, m_settings.heartbeat};
    if (state == StationStatus::State::Stopped)
        status.since = QDateTime::currentDateTimeUtc();
    else if (state == StationStatus::State::Lost)
        status.since = {}; // nobody knows yet
    return status;
}

void BrokerPresence::announce()
{
    m_isAnnounced = true;
    publish(status(StationStatus::State::Up));
}

void BrokerPresence::sayGoodbye()
{
    if (hasPlace())
        publish(status(StationStatus::State::Stopped));
    interrupt();
}

void BrokerPresence::publish(const StationStatus &status)
{
    const MqttBody body = encodeBody(statusMap(status));
    MqttMessage message;
    message.topic = MqttTopics::status(m_settings.stationId);
    message.payload = body.bytes;
    message.contentType = body.contentType;
    message.isRetained = true;
    m_connection.publish(message);
}

void BrokerPresence::say(bool isQuestion)
{
    const MqttBody body = encodeBody(instanceMap({isQuestion, m_instance, m_address, m_startedAt}));
    MqttMessage message;
    message.topic = MqttTopics::instances(m_settings.stationId);
    message.payload = body.bytes;
    message.contentType = body.contentType;
    m_connection.publish(message);
}
