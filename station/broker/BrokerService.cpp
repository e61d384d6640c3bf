#include "BrokerService.h"

#include "ServerVocabulary.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "mqtt/MqttTopics.h"
#include "service/StationThread.h"

#include <QDateTime>
#include <QUuid>

#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto returnPause = 30s; // until the place of another station is asked for again
constexpr std::chrono::milliseconds startTime = 10s; // in which two that start together find each other
constexpr auto farewellTime = 300ms; // for the last words to leave

bool statesHowThingsAre(const QString &event)
{
    return event == ServerEvent::VolumeChanged || event == StationEventName::AlarmsChanged
        || event == StationEventName::StorageScanProgress;
}

QString newClientId(const QString &station)
{
    return QStringLiteral("station-") + QString::fromLatin1(station.toUtf8().toPercentEncoding()) + u'-'
        + QUuid::createUuid().toString(QUuid::WithoutBraces);
}
} // namespace

BrokerService::BrokerService(StationThread &station, const BrokerSettings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_connection(settings.mqtt, newClientId(settings.stationId))
    , m_presence(m_connection, settings)
    , m_commands(m_connection, station, settings)
    , m_pulse(station)
{
    connect(&m_connection, &MqttConnection::stateChanged, this, &BrokerService::followConnection);
    connect(&m_connection, &MqttConnection::subscribed, this, &BrokerService::noteSubscription);
    connect(&m_connection, &MqttConnection::received, this, &BrokerService::take);
    connect(&m_connection, &MqttConnection::published, this, &BrokerService::noteAcknowledgement);
    connect(&m_presence, &BrokerPresence::placeTaken, this, &BrokerService::takePlace);
    connect(&m_presence, &BrokerPresence::placeLost, this, &BrokerService::losePlace);
    connect(&m_commands, &BrokerCommands::finished, this, &BrokerService::leave);
    connect(&station, &StationThread::eventRaised, this, &BrokerService::raiseEvent);
    connect(&m_pulse, &StationPulse::felt, this, [this] { publishEvent({StationEventName::Heartbeat, {}}); });
    m_returnTimer.setSingleShot(true);
    m_returnTimer.setInterval(returnPause);
    m_returnTimer.callOnTimeout(&m_connection, &MqttConnection::start);
    m_endTimer.setSingleShot(true);
    m_endTimer.callOnTimeout(&m_commands, &BrokerCommands::finishNow);
}

void BrokerService::start()
{
    if (!m_isStopping)
        m_connection.start();
}

void BrokerService::setLimits(const MessageLimits &limits)
{
    m_settings.messages = limits;
    m_commands.setLimits(limits);
}

void BrokerService::followConnection()
{
    using Kind = MqttConnection::State::Kind;
    const MqttConnection::State &state = m_connection.state();
    if (state.kind == Kind::Up) {
        m_lastReason.clear();
        m_isRefusalLogged = false;
        m_subscribed.clear();
        m_presence.begin();
        return;
    }
    m_presence.interrupt();
    m_onTheirWay.clear();
    m_waiting.clear();
    setServing(false);
    if (state.kind == Kind::Waiting && std::exchange(m_lastReason, state.reason) != state.reason)
        qCWarning(stationLog, "No clients over the broker: %s. It is tried again and again",
                  qUtf8Printable(state.reason));
    if (m_isStopping)
        leave();
}

void BrokerService::takePlace()
{
    m_connection.subscribe(MqttTopics::commands(m_settings.stationId));
    m_connection.subscribe(MqttTopics::commandsOfUsers(m_settings.stationId));
}

/// Events first: whoever sees that the station is up finds its figures.
void BrokerService::noteSubscription(const QString &filter, bool isTaken)
{
    m_presence.noteSubscription(filter, isTaken);
    const QSet<QString> wanted{MqttTopics::commands(m_settings.stationId),
                               MqttTopics::commandsOfUsers(m_settings.stationId)};
    if (!m_presence.hasPlace() || !wanted.contains(filter))
        return;
    if (!isTaken)
        qCCritical(stationLog, "The broker does not let this station read %s", qUtf8Printable(filter));
    m_subscribed.insert(filter);
    if (m_subscribed != wanted)
        return;
    for (const StationEvent &event : std::as_const(m_states))
        publishEvent(event);
    m_presence.announce();
    setServing(true);
}

void BrokerService::losePlace(const QString &reason)
{
    m_connection.stop();
    setServing(false);
    if (m_isStopping)
        return leave();
    qCCritical(stationLog, "%s", qUtf8Printable(reason));
    if (m_servedFirst.isValid() && m_servedFirst.hasExpired(startTime.count()))
        m_returnTimer.start();
    else
        emit idTaken(reason);
}

void BrokerService::take(const MqttMessage &message)
{
    const MqttTopics::Address address = MqttTopics::read(message.topic);
    if (address.kind == MqttTopics::Address::Kind::Commands && address.station == m_settings.stationId) {
        if (m_presence.hasPlace())
            m_commands.take(message, address.name);
    } else {
        m_presence.take(message);
    }
}

/// An event that says how things are waits for the one before it, and replaces what waits: a slow broker gets no more
/// than it takes.
void BrokerService::raiseEvent(const StationEvent &raised)
{
    StationEvent event = raised;
    event.at = QDateTime::currentDateTimeUtc();
    const bool isState = statesHowThingsAre(event.name);
    if (isState)
        m_states.insert(event.name, event);
    if (!m_isServing)
        return;
    if (isState && m_onTheirWay.values().contains(event.name))
        m_waiting.insert(event.name);
    else
        publishEvent(event);
}

void BrokerService::publishEvent(const StationEvent &event)
{
    MqttMessage message;
    message.topic = MqttTopics::event(m_settings.stationId, event.name);
    message.isRetained = event.name == ServerEvent::VolumeChanged;
    try {
        const MqttBody body = encodeBody(eventMap(event), BodyForm::Cbor, m_settings.messages);
        message.payload = body.bytes;
        message.contentType = body.contentType;
    } catch (const MessageError &error) {
        qCCritical(stationLog, "The event %s cannot be sent: %s", qUtf8Printable(event.name), error.what());
        return;
    }
    if (m_pulse.isRunning())
        m_pulse.start(m_settings.heartbeat);
    using Outcome = MqttConnection::Publication::Outcome;
    const MqttConnection::Publication publication = m_connection.publish(message);
    if (publication.outcome == Outcome::TooLarge)
        qCCritical(stationLog, "The event %s is larger than the broker takes", qUtf8Printable(event.name));
    else if (publication.outcome == Outcome::Sent && statesHowThingsAre(event.name))
        m_onTheirWay.insert(publication.number, event.name);
}

void BrokerService::noteAcknowledgement(int number, int reason)
{
    constexpr int firstFailure = 128;
    if (reason >= firstFailure && !std::exchange(m_isRefusalLogged, true))
        qCWarning(stationLog, "The broker refuses what this station publishes (reason %d of MQTT 5)", reason);
    const QString event = m_onTheirWay.take(number);
    if (m_waiting.remove(event))
        publishEvent(m_states.value(event));
}

void BrokerService::setServing(bool serving)
{
    if (serving && !m_servedFirst.isValid())
        m_servedFirst.start();
    if (std::exchange(m_isServing, serving) == serving)
        return;
    if (serving)
        m_pulse.start(m_settings.heartbeat);
    else
        m_pulse.stop();
    emit servingChanged(serving);
}

void BrokerService::stop()
{
    if (std::exchange(m_isStopping, true))
        return;
    m_returnTimer.stop();
    m_endTimer.start(m_settings.endTime);
    m_commands.finish();
}

/// All is answered.
void BrokerService::leave()
{
    if (std::exchange(m_hasLeft, true))
        return;
    m_endTimer.stop();
    const bool isThere = m_presence.hasPlace();
    m_presence.sayGoodbye();
    QTimer::singleShot(isThere ? farewellTime : 0ms, this, [this] {
        m_connection.stop();
        emit stopped();
    });
}
