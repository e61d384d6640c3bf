#include "MqttLink.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttTopics.h"

#include <QPointer>
#include <QSet>
#include <QUuid>

using namespace std::chrono_literals;

namespace {
constexpr auto patience = 20s; // for a station or a broker that was lost
constexpr auto lookPause = 1s; // for those whose time is over
constexpr auto settlingTime = 2s; // in which a broker tells everything that it keeps

QString newClientId(const QString &program)
{
    return program + u'-' + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString sentence(const QString &clause)
{
    return clause.isEmpty() ? QString() : clause.left(1).toUpper() + clause.mid(1) + u'.';
}
} // namespace

MqttLink::MqttLink(const MqttSettings &settings, const QString &station, const Client &client, QObject *parent)
    : StationLink(parent)
    , m_connection(settings, newClientId(client.program))
    , m_commands(m_connection, client.program)
    , m_pace(client.figuresPause,
             [this](const QString &relayPath, const MqttMessage &message) {
                 tellEvent(relayPath, ServerEvent::VolumeChanged, message);
             })
    , m_direct(client.station.isEmpty() ? station : client.station)
    , m_followsOthers(client.followsOthers)
{
    m_stations[m_direct].presence.relayPath = m_direct;
    connect(&m_connection, &MqttConnection::published, this, &MqttLink::noteAcknowledgement);
    connect(&m_connection, &MqttConnection::stateChanged, this, &MqttLink::followConnection);
    connect(&m_connection, &MqttConnection::subscribed, this, &MqttLink::noteSubscription);
    connect(&m_connection, &MqttConnection::received, this, &MqttLink::take);
    connect(&m_commands, &MqttCommands::answered, this, &MqttLink::replyReceived);
    connect(&m_commands, &MqttCommands::stationMissing, this, &MqttLink::noteMissing);
    m_settleTimer.setSingleShot(true);
    m_settleTimer.setInterval(settlingTime);
    m_settleTimer.callOnTimeout(this, &MqttLink::settle);
    m_patienceTimer.setInterval(lookPause);
    m_patienceTimer.callOnTimeout(this, &MqttLink::endPatience);
    m_patienceTimer.callOnTimeout(this, &MqttLink::lookForSilence);
}

QList<StationLink::Kind> MqttLink::kinds()
{
    return {kind(QStringLiteral("mqtt"), false), kind(QStringLiteral("mqtts"), true)};
}

StationLink::Kind MqttLink::kind(const QString &scheme, bool isEncrypted)
{
    const auto open = [scheme, isEncrypted](const QString &place, const Client &client,
                                            QString *error) -> std::unique_ptr<StationLink> {
        std::optional<MqttUrl> url = readMqttUrl(place, isEncrypted, error);
        if (!url)
            return {};
        addMqttEnvironment(url->settings);
        *error = mqttSettingsError(url->settings);
        if (error->isEmpty() && url->station.isEmpty())
            *error = QStringLiteral("\"%1:%2\" names no station: expected %1://[USER@]BROKER[:PORT]/STATION.")
                         .arg(scheme, place);
        if (!error->isEmpty())
            return {};
        return std::make_unique<MqttLink>(url->settings, url->station, client);
    };
    return {scheme, scheme + QStringLiteral("://BROKER/STATION"), open};
}

void MqttLink::start()
{
    if (m_connection.state().kind != MqttConnection::State::Kind::Off)
        return;
    m_brokerState = {StationState::Kind::Connecting};
    m_connection.start();
    m_patienceTimer.start();
    setState(m_direct, m_brokerState, QDateTime::currentDateTimeUtc());
}

StationState MqttLink::state(const QString &relayPath) const
{
    const QString path = relayPath.isEmpty() ? m_direct : relayPath;
    const auto station = m_stations.constFind(path);
    if (station != m_stations.constEnd())
        return station->presence.state;
    if (!m_isSettled) // it may be told yet
        return m_brokerState.kind == StationState::Kind::Up ? StationState{StationState::Kind::Connecting}
                                                            : m_brokerState;
    return {StationState::Kind::Down, QStringLiteral("The broker knows no station \"%1\".").arg(path)};
}

QList<StationPresence> MqttLink::stations() const
{
    QList<StationPresence> list;
    list.reserve(m_stations.size());
    for (const Station &station : m_stations)
        list.append(station.presence);
    return list;
}

StationPresence MqttLink::presence(const QString &relayPath) const
{
    return m_stations.value(relayPath.isEmpty() ? m_direct : relayPath).presence;
}

bool MqttLink::setDirectStation(const QString &relayPath)
{
    if (!m_stations.contains(relayPath))
        return false;
    if (m_direct == relayPath)
        return true;
    const QPointer<MqttLink> self(this);
    m_pace.deliverNow(relayPath);
    if (!self)
        return true;
    m_direct = relayPath;
    m_stations[relayPath].heard.start();
    if (!m_followsOthers)
        m_connection.subscribe(MqttTopics::eventsOf(relayPath));
    emit directStationChanged(relayPath);
    if (self && m_direct == relayPath)
        emit stateChanged({}, state());
    return true;
}

void MqttLink::send(quint64 correlation, const QString &relayPath, const StationCommand &command)
{
    if (m_brokerState.kind == StationState::Kind::Unknown)
        return;
    const QString path = relayPath.isEmpty() ? m_direct : relayPath;
    const StationState::Kind kind = state(path).kind;
    m_commands.add(correlation, path, command, kind == StationState::Kind::Up);
    if (kind == StationState::Kind::Down)
        QMetaObject::invokeMethod(
            this, [this, path] { tryAgain(path); }, Qt::QueuedConnection);
}

/// Of a station, its status is all that there is to try; it would have come.
void MqttLink::tryAgain(const QString &relayPath)
{
    const auto station = m_stations.constFind(relayPath);
    if (m_brokerState.kind == StationState::Kind::Down) {
        m_connection.retryNow();
        setBrokerState({StationState::Kind::Connecting, m_brokerState.reason});
    } else if (station == m_stations.constEnd() && m_isSettled) {
        const QList<QString> known = m_stations.keys();
        m_commands.refuseOthers({known.begin(), known.end()});
    } else if (station != m_stations.constEnd() && station->presence.state.kind == StationState::Kind::Down) {
        const StationState same = station->presence.state;
        m_commands.dropUnsent(relayPath);
        emitState(relayPath, same);
    }
}

void MqttLink::followConnection()
{
    if (m_connection.isUp()) {
        m_isSettled = false;
        m_hearsEvents = false;
        m_brokerState = {StationState::Kind::Connecting};
        for (const QString &filter : {MqttTopics::replies(m_connection.clientId()), MqttTopics::everyStatus(),
                                      m_followsOthers ? MqttTopics::everyEvent() : MqttTopics::eventsOf(m_direct)})
            m_connection.subscribe(filter);
        askForTheEnd();
        return;
    }
    m_listing = Listing::UnderWay;
    if (m_connection.state().kind == MqttConnection::State::Kind::Off)
        return;
    if (m_brokerState.kind == StationState::Kind::Up) {
        m_brokerPatience.setRemainingTime(patience);
        m_settleTimer.stop();
        m_isSettled = false;
        for (Station &station : m_stations) {
            const bool isUp = station.presence.state.kind == StationState::Kind::Up;
            if (isUp || !station.patience.isForever())
                station.awaited = isUp ? m_brokerPatience : station.patience;
        }
    }
    followBrokerLoss();
}

void MqttLink::followBrokerLoss()
{
    const MqttConnection::State &connection = m_connection.state();
    if (connection.reason.isEmpty())
        return; // the first attempt goes on
    const bool keeps = !m_brokerPatience.hasExpired();
    const bool isWaiting = connection.kind == MqttConnection::State::Kind::Waiting;
    if (!keeps && !isWaiting)
        return; // it is down until an attempt succeeds
    m_commands.connectionLost();
    setBrokerState({keeps ? StationState::Kind::Connecting : StationState::Kind::Down, sentence(connection.reason),
                    connection.retryAt, keeps});
}

/// While the broker cannot be reached, no station can.
void MqttLink::setBrokerState(const StationState &state)
{
    m_brokerState = state;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QStringList paths = m_stations.keys();
    for (const QString &path : paths) {
        Station &station = m_stations[path];
        station.isHeard = false;
        station.patience = QDeadlineTimer(QDeadlineTimer::Forever);
        if (state.kind == StationState::Kind::Down)
            m_commands.drop(path);
        setState(path, state, station.presence.state.kind == state.kind ? station.presence.since : now);
    }
    if (state.kind == StationState::Kind::Down)
        m_commands.refuseOthers({paths.begin(), paths.end()});
}

void MqttLink::noteSubscription(const QString &filter, bool isTaken)
{
    if (!isTaken)
        qWarning("The broker does not let this client hear of %s", qUtf8Printable(filter));
    if (filter == MqttTopics::everyStatus()) {
        m_brokerState = {StationState::Kind::Up};
        m_settleTimer.start();
    }
}

/// The broker tells a client in order: when this comes back, all that it keeps of stations has come before.
void MqttLink::askForTheEnd()
{
    MqttMessage question;
    question.topic = MqttTopics::replies(m_connection.clientId());
    question.correlation = QUuid::createUuid().toRfc4122();
    m_listing = Listing::UnderWay;
    m_question = question.correlation;
    m_questionNumber = m_connection.publish(question).number;
}

void MqttLink::noteAcknowledgement(int number, int reason)
{
    constexpr int firstFailure = 128;
    if (number != m_questionNumber || reason < firstFailure || m_listing != Listing::UnderWay)
        return;
    m_listing = Listing::Unknown;
    emit completenessChanged();
}

QString MqttLink::whyIncomplete() const
{
    const QString &host = m_connection.settings().host;
    if (m_brokerState.kind != StationState::Kind::Up)
        return m_brokerState.reason.isEmpty() ? QStringLiteral("The broker %1 has not answered yet.").arg(host)
                                              : m_brokerState.reason;
    switch (m_listing) {
    case Listing::Complete:
        break;
    case Listing::UnderWay:
        return QStringLiteral("The broker %1 has not told all its stations yet.").arg(host);
    case Listing::Unknown:
        return QStringLiteral(
                   "Whether the broker %1 told all its stations is not known: it has to let this client write "
                   "the topic %2, too.")
            .arg(host, MqttTopics::replies(m_connection.clientId()));
    }
    return {};
}

/// Stations that were there before the connection was lost may need some time to come back.
void MqttLink::settle()
{
    m_isSettled = true;
    const QStringList paths = m_stations.keys();
    for (const QString &path : paths) {
        Station &station = m_stations[path];
        if (station.isHeard)
            continue;
        station.patience = station.awaited;
    }
    m_commands.refuseOthers({paths.begin(), paths.end()});
    endPatience();
}

void MqttLink::endPatience()
{
    if (m_brokerState.kind == StationState::Kind::Connecting && m_brokerState.keepsCommands
        && m_brokerPatience.hasExpired())
        followBrokerLoss();
    const QStringList paths = m_stations.keys();
    for (const QString &path : paths) {
        const Station &station = m_stations[path];
        if (!station.patience.hasExpired())
            continue;
        loseForGood(path,
                    station.isHeard
                        ? station.presence.state.reason
                        : QStringLiteral("The broker %1 has heard nothing of the station \"%2\", or does not "
                                         "let this user know.")
                              .arg(m_connection.settings().host, path));
    }
}

void MqttLink::loseForGood(const QString &relayPath, const QString &reason)
{
    Station &station = m_stations[relayPath];
    station.patience = QDeadlineTimer(QDeadlineTimer::Forever);
    m_commands.drop(relayPath);
    const StationState &before = station.presence.state;
    const bool wasDown = before.kind == StationState::Kind::Down;
    setState(relayPath, {.kind = StationState::Kind::Down, .reason = reason, .isSilent = before.isSilent},
             wasDown ? station.presence.since : QDateTime::currentDateTimeUtc());
}

void MqttLink::take(const MqttMessage &message)
{
    using AddressKind = MqttTopics::Address::Kind;
    const MqttTopics::Address address = MqttTopics::read(message.topic);
    if (address.kind == AddressKind::Replies && message.correlation == m_question) {
        m_listing = Listing::Complete;
        emit completenessChanged();
    } else if (address.kind == AddressKind::Replies) {
        m_commands.take(message);
    } else if (address.kind == AddressKind::Status)
        takeStatus(address.station, message);
    else if (address.kind == AddressKind::Event)
        takeEvent(address.station, address.name, message);
}

void MqttLink::takeStatus(const QString &relayPath, const MqttMessage &message)
{
    if (message.payload.isEmpty()) {
        if (m_stations.contains(relayPath))
            loseForGood(relayPath, QStringLiteral("The broker was told to forget the station."));
        return;
    }
    StationStatus status;
    try {
        status = statusFromMap(decodeBody(message.payload, message.contentType));
    } catch (const MessageError &error) {
        noteUnreadableStatus(relayPath, error.text());
        return;
    }
    Station &station = m_stations[relayPath];
    const bool wasSilent = station.presence.state.isSilent;
    const QDeadlineTimer patienceBefore = station.patience;
    station.isHeard = true;
    station.patience = QDeadlineTimer(QDeadlineTimer::Forever);
    station.heartbeat = status.heartbeat;
    station.heard.start();
    const bool isLost = status.state == StationStatus::State::Lost;
    if (isLost && !message.isRetained)
        station.lostAt = wasSilent ? station.presence.since : QDateTime::currentDateTimeUtc();
    else if (!isLost || station.instance != status.instance)
        station.lostAt = {};
    station.instance = status.instance;
    station.startedAt = status.startedAt;
    station.presence.relayPath = relayPath;
    station.presence.name = status.name;
    station.presence.address = status.address;
    station.presence.version = status.version;
    switch (status.state) {
    case StationStatus::State::Up:
        station.upSince = status.since;
        m_commands.sendAll(relayPath); // before those that somebody sends when he hears that it is up
        setState(relayPath, {StationState::Kind::Up}, status.since);
        break;
    case StationStatus::State::Stopped:
        m_commands.drop(relayPath);
        setState(relayPath, {StationState::Kind::Down, QStringLiteral("The station was ended.")}, status.since);
        break;
    case StationStatus::State::Lost:
        m_commands.dropUnsent(relayPath);
        station.patience = message.isRetained ? station.awaited : wasSilent ? patienceBefore : QDeadlineTimer(patience);
        setState(relayPath,
                 {StationState::Kind::Down,
                  QStringLiteral("The broker lost the station: it, its machine or its network "
                                 "failed."),
                  {},
                  true},
                 station.lostAt);
        break;
    }
}

/// It is one of the broker's stations all the same, and what keeps this client from it has to be seen.
void MqttLink::noteUnreadableStatus(const QString &relayPath, const QString &error)
{
    Station &station = m_stations[relayPath];
    station.presence.relayPath = relayPath;
    station.isHeard = true;
    if (station.presence.state.kind == StationState::Kind::Up)
        return;
    station.patience = QDeadlineTimer(QDeadlineTimer::Forever);
    setState(
        relayPath,
        {StationState::Kind::Down, QStringLiteral("What the station says of itself cannot be read: %1.").arg(error)},
        {});
}

void MqttLink::takeEvent(const QString &relayPath, const QString &name, const MqttMessage &message)
{
    if (message.payload.isEmpty())
        return;
    const QPointer<MqttLink> self(this);
    m_hearsEvents = true;
    if (!message.isRetained)
        noteEvent(relayPath);
    if (!self || name == StationEventName::Heartbeat)
        return;
    if (name == ServerEvent::VolumeChanged && relayPath != m_direct)
        return m_pace.add(relayPath, message);
    m_pace.deliverNow(relayPath); // what the station said before
    if (self)
        tellEvent(relayPath, name, message);
}

void MqttLink::tellEvent(const QString &relayPath, const QString &name, const MqttMessage &message)
{
    try {
        const StationEvent event = eventFromMap(name, decodeBody(message.payload, message.contentType));
        if (name == ServerEvent::VolumeChanged)
            noteFigures(relayPath, event, message.isRetained);
        emit eventReceived(relayPath, event);
    } catch (const MessageError &error) {
        qWarning("An event of the station %s cannot be read: %s", qUtf8Printable(relayPath), error.what());
    }
}

/// What the broker kept may be old. Where it does not say of when it is, it is no older than the station's start.
void MqttLink::noteFigures(const QString &relayPath, const StationEvent &event, bool isKept)
{
    const auto station = m_stations.find(relayPath);
    if (station != m_stations.end())
        station->presence.figuresAt = event.at.isValid() ? event.at
            : isKept                                     ? station->startedAt
                                                         : QDateTime::currentDateTimeUtc();
}

/// A station that was silent took the commands meanwhile, or not: they are sent again.
void MqttLink::noteEvent(const QString &relayPath)
{
    const auto station = m_stations.find(relayPath);
    if (station == m_stations.end())
        return;
    station->heard.start();
    if (!station->presence.state.isSilent)
        return;
    station->patience = QDeadlineTimer(QDeadlineTimer::Forever);
    m_commands.sendAll(relayPath);
    setState(relayPath, {StationState::Kind::Up}, QDateTime(station->upSince));
}

/// A client that did not run for a while has what came meanwhile still before it.
void MqttLink::lookForSilence()
{
    const bool wasAway = m_looked.isValid() && m_looked.hasExpired(std::chrono::milliseconds(3 * lookPause).count());
    m_looked.start();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (!m_hearsEvents)
        return;
    const QStringList paths = m_followsOthers ? m_stations.keys() : QStringList(m_direct);
    for (const QString &path : paths) {
        Station &station = m_stations[path];
        if (station.heartbeat == 0s || station.presence.state.kind != StationState::Kind::Up)
            continue;
        const std::chrono::milliseconds silence(station.heard.elapsed());
        if (wasAway)
            station.heard.start();
        else if (2 * silence > 5 * station.heartbeat) {
            station.patience.setRemainingTime(patience);
            setState(
                path,
                {.kind = StationState::Kind::Down,
                 .reason = QStringLiteral("Nothing was heard of the station for %1 s: it hangs, or it, its machine "
                                          "or its network failed.")
                               .arg(silence / 1s),
                 .keepsCommands = true,
                 .isSilent = true},
                now.addMSecs(-silence.count()));
        }
    }
}

/// Its status says that it is up, and it does not listen: the broker has not noticed yet that it is gone.
void MqttLink::noteMissing(const QString &relayPath)
{
    const auto station = m_stations.find(relayPath);
    if (station == m_stations.end() || station->presence.state.kind != StationState::Kind::Up)
        return;
    station->patience.setRemainingTime(patience);
    setState(relayPath,
             {StationState::Kind::Down, QStringLiteral("The station takes no commands from the broker."), {}, true},
             QDateTime::currentDateTimeUtc());
}

void MqttLink::setState(const QString &relayPath, const StationState &state, const QDateTime &since)
{
    StationPresence &presence = m_stations[relayPath].presence;
    const bool isOther = presence.state != state;
    presence.state = state;
    presence.since = since;
    const QPointer<MqttLink> self(this);
    if (isOther)
        emitState(relayPath, state);
    if (self)
        emit presenceChanged(relayPath);
}

void MqttLink::emitState(const QString &relayPath, const StationState &state)
{
    const QPointer<MqttLink> self(this);
    const bool isDirect = relayPath == m_direct;
    emit stateChanged(relayPath, state);
    if (self && isDirect)
        emit stateChanged({}, state);
}
