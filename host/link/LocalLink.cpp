#include "LocalLink.h"

#include "LocalEndpoint.h"
#include "StationPresence.h"
#include "framework/HostReturnCode.h"

#include <QSignalBlocker>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto firstPause = 250ms;
constexpr auto longestPause = 10s;
constexpr auto greetingTime = 5s;
constexpr auto longestAttempt = 10s;
} // namespace

LocalLink::LocalLink(QString folder, Client client, QObject *parent)
    : StationLink(parent)
    , m_folder(std::move(folder))
    , m_client(std::move(client))
    , m_pause(firstPause)
{
    connect(&m_socket, &QLocalSocket::connected, this, &LocalLink::greet);
    connect(&m_socket, &QLocalSocket::errorOccurred, this, &LocalLink::takeError, Qt::QueuedConnection);
    connect(&m_socket, &QLocalSocket::disconnected, this, &LocalLink::lose, Qt::QueuedConnection);
    connect(&m_socket, &QLocalSocket::readyRead, this, &LocalLink::read);
    connect(&m_program, &StationProgram::finished, this, &LocalLink::takeStart);
    m_answerTimer.setSingleShot(true);
    m_answerTimer.callOnTimeout(this, [this] {
        fail(QStringLiteral("The station of %1 does not answer: %2 holds the folder. It may hang; end it, or wait.")
                 .arg(m_folder, stationHolder(m_folder)));
    });
    m_retryTimer.setSingleShot(true);
    m_retryTimer.callOnTimeout(this, [this] { connectToStation(m_mayRestart); });
}

LocalLink::~LocalLink()
{
    m_socket.disconnect(this);
    m_program.disconnect(this);
}

StationLink::Kind LocalLink::kind()
{
    const auto open = [](const QString &place, const Client &client, QString *error) -> std::unique_ptr<StationLink> {
        if (place.startsWith(QStringLiteral("//"))) {
            *error = QStringLiteral(
                         "\"local:%1\" has two slashes, as if it named a host: expected local:DIR, a folder of this "
                         "machine.")
                         .arg(place);
            return {};
        }
        const QString folder = place.isEmpty() ? defaultStationFolder() : place;
        if (folder.isEmpty()) {
            *error = QStringLiteral("There is no folder for the station's data: HOME is not set. Name one: local:DIR.");
            return {};
        }
        return std::make_unique<LocalLink>(normalizedFolder(folder), client);
    };
    return {QStringLiteral("local"), QStringLiteral("local:DIR"), open};
}

void LocalLink::start()
{
    if (m_state.kind == StationState::Kind::Unknown)
        connectToStation(true);
}

StationState LocalLink::state(const QString &) const
{
    return m_state;
}

QList<StationPresence> LocalLink::stations() const
{
    return {{.relayPath = m_relayPath,
             .name = m_name,
             .address = {},
             .version = m_version,
             .state = m_state,
             .since = m_since}};
}

void LocalLink::send(quint64 correlation, const QString &relayPath, const StationCommand &command)
{
    if (m_state.kind == StationState::Kind::Unknown)
        return;
    const Waiting waiting{correlation, relayPath, command};
    if (m_state.kind == StationState::Kind::Up) {
        write(waiting);
        return;
    }
    m_waiting.push_back(waiting);
    if (m_state.kind == StationState::Kind::Down)
        QMetaObject::invokeMethod(this, &LocalLink::tryAgain, Qt::QueuedConnection);
}

void LocalLink::tryAgain()
{
    if (m_state.kind == StationState::Kind::Down)
        connectToStation(true);
}

void LocalLink::connectToStation(bool mayStartIt)
{
    m_mayStart = mayStartIt;
    m_attempt.setRemainingTime(longestAttempt);
    if (mayStartIt)
        setState({StationState::Kind::Connecting});
    connectSocket();
}

void LocalLink::connectSocket()
{
    m_retryTimer.stop();
    m_stream = MessageStream();
    m_sockets = stationSocketPaths(m_folder);
    connectToNextSocket();
}

void LocalLink::connectToNextSocket()
{
    closeSocket();
    m_socket.connectToServer(m_sockets.takeFirst());
}

void LocalLink::takeError(QLocalSocket::LocalSocketError error)
{
    if (m_state.kind == StationState::Kind::Up || error == QLocalSocket::PeerClosedError
        || m_socket.state() != QLocalSocket::UnconnectedState)
        return; // lose() does the rest
    if (!m_sockets.isEmpty())
        connectToNextSocket();
    else if (!m_mayStart)
        retryLater();
    else if (m_attempt.hasExpired())
        fail(QStringLiteral("No station of %1 takes clients: %2.").arg(m_folder, m_socket.errorString()));
    else
        m_program.start(m_folder); // also where one ended just now
}

void LocalLink::takeStart(const QString &error)
{
    if (error.isEmpty())
        connectSocket();
    else
        fail(error);
}

void LocalLink::greet()
{
    m_answerTimer.start(greetingTime);
    m_socket.write(framedMessage(Hello{protocolVersion, m_client.program, m_client.version}));
}

void LocalLink::read()
{
    m_stream.append(m_socket.readAll());
    try {
        while (const std::optional<StationMessage> message = m_stream.next())
            take(*message);
    } catch (const MessageError &error) {
        fail(QStringLiteral("What the station of %1 sent is no message: %2.").arg(m_folder, error.text()), false);
    }
}

void LocalLink::take(const StationMessage &message)
{
    if (const auto *station = std::get_if<Welcome>(&message))
        welcome(*station);
    else if (const auto *reply = std::get_if<ReplyMessage>(&message))
        emit replyReceived(reply->correlation, reply->reply);
    else if (const auto *event = std::get_if<StationEvent>(&message))
        emit eventReceived({}, *event);
    else if (const auto *goodbye = std::get_if<Goodbye>(&message))
        fail(goodbye->text, false);
    else
        throw MessageError(QStringLiteral("a reply or an event was expected"));
}

void LocalLink::welcome(const Welcome &station)
{
    m_answerTimer.stop();
    m_relayPath = station.relayPath;
    m_name = station.name;
    m_version = station.version;
    m_pause = firstPause;
    m_mayRestart = true;
    setState({StationState::Kind::Up});
    const std::deque<Waiting> waiting = std::exchange(m_waiting, {});
    for (const Waiting &command : waiting)
        write(command);
}

void LocalLink::write(const Waiting &command)
{
    if (!command.relayPath.isEmpty() && command.relayPath != m_relayPath) {
        answerLater(command.correlation, HostReturnCode::UnknownStation);
        return;
    }
    if (m_socket.state() != QLocalSocket::ConnectedState)
        return; // lose() is on its way
    try {
        m_socket.write(framedMessage(CommandMessage{command.correlation, command.command}));
        m_socket.flush(); // not only when the event loop comes round
    } catch (const MessageError &error) {
        qWarning("A command cannot be sent: %s", error.what());
        answerLater(command.correlation, HostReturnCode::CannotBeSent);
    }
}

/// The connection ended without a word.
void LocalLink::lose()
{
    m_answerTimer.stop();
    if (m_socket.state() != QLocalSocket::UnconnectedState)
        return;
    if (m_state.kind == StationState::Kind::Up)
        connectToStation(true);
    else if (m_state.kind != StationState::Kind::Connecting)
        return; // why it is down was said already
    else if (m_attempt.hasExpired())
        fail(QStringLiteral("The station of %1 ends as soon as it has started.").arg(m_folder));
    else
        m_program.start(m_folder); // that one was about to end
}

/// @param mayStartIt whether a later attempt that nobody asked for may start a station
void LocalLink::fail(const QString &reason, bool mayStartIt)
{
    m_answerTimer.stop();
    closeSocket();
    m_waiting.clear();
    m_mayRestart = mayStartIt;
    retryLater();
    setState({StationState::Kind::Down, reason});
}

void LocalLink::retryLater()
{
    m_retryTimer.start(m_pause);
    m_pause = std::min<std::chrono::milliseconds>(m_pause * 2, longestPause);
}

/// Without a word of it to us.
void LocalLink::closeSocket()
{
    const QSignalBlocker blocker(m_socket);
    m_socket.abort();
}

void LocalLink::setState(const StationState &state)
{
    if (m_state == state)
        return;
    if (m_state.kind != state.kind)
        m_since = QDateTime::currentDateTimeUtc();
    m_state = state;
    emit stateChanged({}, state);
}

void LocalLink::answerLater(quint64 correlation, const QString &returnCode)
{
    QMetaObject::invokeMethod(
        this,
        [this, correlation, returnCode] {
            emit replyReceived(correlation, {returnCode, {}});
        },
        Qt::QueuedConnection);
}
