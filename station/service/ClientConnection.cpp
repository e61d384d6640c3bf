#include "ClientConnection.h"

#include "ServerVocabulary.h"
#include "StationLog.h"
#include "StationThread.h"
#include "StationVocabulary.h"

#include <QPointer>

#include <utility>

#include <sys/socket.h>

namespace {
/// How much is given to the system's socket at a time: what was given cannot be replaced any more.
constexpr qint64 writeAhead = 256 * 1024;

bool statesHowThingsAre(const QString &event)
{
    return event == ServerEvent::VolumeChanged || event == StationEventName::AlarmsChanged
        || event == StationEventName::StorageScanProgress;
}

Goodbye otherVersion(const Hello &hello, const QString &version)
{
    const QString text =
        QStringLiteral(
            "The station is version %1 and speaks protocol %2, %3 is version %4 and speaks protocol %5. Bring both "
            "to the same version, and end the station when its last client has left.")
            .arg(version, QString::number(protocolVersion), hello.program, hello.version,
                 QString::number(hello.protocol));
    return {GoodbyeCode::OtherVersion, text};
}
} // namespace

ClientConnection::ClientConnection(std::unique_ptr<QLocalSocket> socket, QString user, const ServiceSettings &settings,
                                   StationThread &station)
    : m_socket(std::move(socket))
    , m_user(std::move(user))
    , m_settings(settings)
    , m_station(station)
    , m_stream(settings.messages)
    , m_queue(settings.queueLimit)
{
    m_socket->setParent(nullptr);
    m_socket->setReadBufferSize(writeAhead);
    connect(m_socket.get(), &QLocalSocket::readyRead, this, &ClientConnection::read);
    connect(m_socket.get(), &QLocalSocket::bytesWritten, this, [this] {
        m_readingTimer.start();
        write();
        closeOwnSide();
    });
    connect(m_socket.get(), &QLocalSocket::disconnected, this, &ClientConnection::end);
    m_greetingTimer.setSingleShot(true);
    m_greetingTimer.callOnTimeout(this, [this] {
        part({GoodbyeCode::BadMessage, QStringLiteral("The client has not said who it is.")});
    });
    m_greetingTimer.start(settings.greetingTime);
    m_readingTimer.setSingleShot(true);
    m_readingTimer.setInterval(settings.readingTime);
    m_readingTimer.callOnTimeout(this, [this] {
        if (m_queue.isEmpty())
            return;
        qCWarning(stationLog, "A client of %s is cut off: it has not read anything for too long",
                  qUtf8Printable(m_user));
        part({GoodbyeCode::TooSlow, QStringLiteral("The client has not read anything for too long.")});
    });
    QMetaObject::invokeMethod(this, &ClientConnection::read, Qt::QueuedConnection);
}

ClientConnection::~ClientConnection()
{
    m_socket->disconnect(this);
}

void ClientConnection::read()
{
    if (m_isEnding)
        m_socket->readAll(); // see part()
    if (m_isEnding || m_goodbye)
        return;
    try {
        while (!m_isEnding && m_underWay.size() < m_settings.commandLimit) {
            if (const std::optional<StationMessage> message = m_stream.next())
                take(*message);
            else if (m_socket->bytesAvailable() > 0)
                m_stream.append(m_socket->readAll());
            else
                return;
        }
    } catch (const MessageError &error) {
        qCWarning(stationLog, "A client of %s sent what is no message: %s", qUtf8Printable(m_user), error.what());
        part({GoodbyeCode::BadMessage, QStringLiteral("What the client sent is no message: %1.").arg(error.text())});
    }
}

void ClientConnection::take(const StationMessage &message)
{
    if (const auto *hello = std::get_if<Hello>(&message); hello && !m_hello)
        greet(*hello);
    else if (const auto *command = std::get_if<CommandMessage>(&message); command && m_hello)
        carryOut(*command);
    else if (std::holds_alternative<Goodbye>(message))
        end();
    else
        throw MessageError(m_hello ? QStringLiteral("a command was expected") : QStringLiteral("a hello was expected"));
}

void ClientConnection::greet(const Hello &hello)
{
    m_greetingTimer.stop();
    if (hello.protocol != protocolVersion) {
        part(otherVersion(hello, m_settings.version));
        return;
    }
    m_hello = hello;
    send(Welcome{protocolVersion, m_settings.version, m_settings.stationName, m_settings.relayPath});
}

void ClientConnection::carryOut(const CommandMessage &message)
{
    if (m_underWay.contains(message.correlation))
        throw MessageError(QStringLiteral("the number of a command that is under way came again"));
    m_underWay.insert(message.correlation);
    StationCommand command = message.command;
    if (command.client.isEmpty())
        command.client = m_hello->program;
    command.user = m_user;
    m_station.handle(command, [self = QPointer(this), correlation = message.correlation](const StationReply &reply) {
        if (self)
            self->sendReply(correlation, reply);
    });
}

void ClientConnection::sendReply(quint64 correlation, const StationReply &reply)
{
    if (m_isEnding || !m_underWay.contains(correlation))
        return;
    const bool wasFull = m_underWay.size() >= m_settings.commandLimit;
    if (reply.finish)
        m_underWay.remove(correlation);
    try {
        enqueue(framedMessage(ReplyMessage{correlation, reply}, m_settings.messages));
    } catch (const MessageError &error) {
        qCCritical(stationLog, "A reply cannot be sent: %s", error.what());
        enqueue(framedMessage(ReplyMessage{correlation, {StationReturnCode::InternalError, {}, reply.finish}}));
    }
    m_socket->flush(); // not only when the event loop comes round
    if (m_goodbye && m_underWay.isEmpty())
        part(*m_goodbye);
    else if (wasFull && reply.finish)
        QMetaObject::invokeMethod(this, &ClientConnection::read, Qt::QueuedConnection);
}

void ClientConnection::sendEvent(const QString &name, const QByteArray &frame)
{
    if (m_hello && !m_isEnding)
        enqueue(frame, statesHowThingsAre(name) ? name : QString());
}

void ClientConnection::send(const StationMessage &message)
{
    enqueue(framedMessage(message, m_settings.messages));
}

void ClientConnection::enqueue(const QByteArray &frame, const QString &replaces)
{
    if (m_queue.append(frame, replaces)) {
        write();
        return;
    }
    qCWarning(stationLog, "A client of %s is cut off: it does not read, and %lld bytes wait for it",
              qUtf8Printable(m_user), static_cast<long long>(m_queue.bytes()));
    part({GoodbyeCode::TooSlow, QStringLiteral("The client does not read what it is sent.")});
}

void ClientConnection::write()
{
    while (!m_isEnding && m_socket->bytesToWrite() < writeAhead) {
        const std::optional<QByteArray> frame = m_queue.takeNext();
        if (!frame)
            break;
        m_socket->write(*frame);
    }
    if (m_queue.isEmpty())
        m_readingTimer.stop();
    else if (!m_readingTimer.isActive())
        m_readingTimer.start();
}

void ClientConnection::finish(const Goodbye &goodbye)
{
    m_goodbye = goodbye;
    if (m_underWay.isEmpty())
        part(goodbye);
}

void ClientConnection::finishNow()
{
    const QSet<quint64> underWay = std::exchange(m_underWay, {});
    for (const quint64 correlation : underWay)
        enqueue(framedMessage(ReplyMessage{correlation, {StationReturnCode::StationStopping, {}, true}}));
    part(m_goodbye.value_or(Goodbye{GoodbyeCode::Stopping, QStringLiteral("The station ends.")}));
}

/// What waits goes first: replies that were given shall arrive where the client reads. The other side is left open
/// until the client closes it: a socket that is closed with something unread takes the last words away from the client.
void ClientConnection::part(const Goodbye &goodbye)
{
    if (m_isEnding)
        return;
    if (goodbye.code != GoodbyeCode::TooSlow) {
        while (const std::optional<QByteArray> frame = m_queue.takeNext())
            m_socket->write(*frame);
    }
    m_socket->write(framedMessage(goodbye));
    m_isEnding = true;
    m_greetingTimer.stop();
    m_readingTimer.stop();
    m_socket->readAll();
    closeOwnSide();
    QTimer::singleShot(m_settings.partingTime, this, [this] {
        m_socket->abort();
        end();
    });
}

/// Once all is written: nothing more will come.
void ClientConnection::closeOwnSide()
{
    if (m_isEnding && m_socket->bytesToWrite() == 0)
        shutdown(static_cast<int>(m_socket->socketDescriptor()), SHUT_WR);
}

void ClientConnection::end()
{
    m_isEnding = true;
    m_socket->disconnect(this);
    emit ended();
}
