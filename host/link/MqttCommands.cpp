#include "MqttCommands.h"

#include "CommandKind.h"
#include "framework/HostReturnCode.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttMessages.h"
#include "mqtt/MqttTopics.h"

#include <QSet>
#include <QUuid>
#include <QtEndian>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto defaultTimeLimit = 30s;
constexpr auto grace = 2s; // the sender answers first
constexpr int noMatchingSubscribers = 16; // reasons of MQTT 5
constexpr int firstFailure = 128;
constexpr int packetTooLarge = 149;

/// With a random rest, so that no other station than the one that is asked can answer.
QByteArray correlationBytes(quint64 correlation)
{
    QByteArray bytes(sizeof correlation, Qt::Uninitialized);
    qToBigEndian(correlation, bytes.data());
    return bytes + QUuid::createUuid().toRfc4122();
}
} // namespace

MqttCommands::MqttCommands(MqttConnection &connection, QString program)
    : m_connection(connection)
    , m_program(std::move(program))
{
    connect(&m_connection, &MqttConnection::published, this, &MqttCommands::takeAcknowledgement);
    m_timer.setInterval(1s);
    m_timer.callOnTimeout(this, &MqttCommands::endOverdue);
}

void MqttCommands::add(quint64 correlation, const QString &station, const StationCommand &command, bool isUp)
{
    Command added;
    added.station = station;
    added.timeLimit = command.timeLimit > 0ms ? command.timeLimit : std::chrono::milliseconds(defaultTimeLimit);
    added.deadline = QDeadlineTimer(added.timeLimit + grace);
    added.isEdit = isEdit(command.name);
    try {
        const MqttBody body = encodeBody(commandMap(command));
        added.message.payload = body.bytes;
        added.message.contentType = body.contentType;
    } catch (const MessageError &error) {
        qWarning("A command cannot be sent: %s", error.what());
        answerLater(correlation, HostReturnCode::CannotBeSent);
        return;
    }
    added.message.topic = MqttTopics::commands(station, m_connection.settings().user);
    added.message.responseTopic = MqttTopics::replies(m_connection.clientId());
    added.message.correlation = correlationBytes(correlation);
    added.message.client = m_program;
    m_commands.insert(correlation, added);
    if (!m_timer.isActive())
        m_timer.start();
    if (isUp)
        publish(correlation);
}

void MqttCommands::publish(quint64 correlation)
{
    using Outcome = MqttConnection::Publication::Outcome;
    Command &command = m_commands[correlation];
    command.isSent = true; // also where the connection breaks just now: nobody knows
    const auto left = std::chrono::ceil<std::chrono::seconds>(command.deadline.remainingTimeAsDuration() - grace);
    command.message.expiry = static_cast<quint32>(std::max<qint64>(left.count(), 1));
    const MqttConnection::Publication publication = m_connection.publish(command.message);
    switch (publication.outcome) {
    case Outcome::Sent:
        m_published.insert(publication.number, correlation);
        break;
    case Outcome::NotConnected:
        break; // sendAll() follows when it is
    case Outcome::TooLarge:
        answerLater(correlation, HostReturnCode::TooLargeForBroker);
        break;
    case Outcome::Failed:
        answerLater(correlation, HostReturnCode::CannotBeSent);
        break;
    }
}

void MqttCommands::sendAll(const QString &station)
{
    const QList<quint64> correlations = m_commands.keys();
    for (const quint64 correlation : correlations) {
        const Command &command = m_commands[correlation];
        if (command.station == station && !command.isOver)
            publish(correlation);
    }
}

void MqttCommands::drop(const QString &station)
{
    m_commands.removeIf([&station](const auto &entry) { return entry.value().station == station; });
}

void MqttCommands::dropUnsent(const QString &station)
{
    m_commands.removeIf(
        [&station](const auto &entry) { return entry.value().station == station && !entry.value().isSent; });
}

void MqttCommands::refuseOthers(const QSet<QString> &stations)
{
    const QList<quint64> correlations = m_commands.keys();
    for (const quint64 correlation : correlations) {
        if (m_commands.contains(correlation) && !stations.contains(m_commands[correlation].station))
            answer(correlation, HostReturnCode::UnknownStation);
    }
}

void MqttCommands::connectionLost()
{
    m_published.clear();
    const QList<quint64> correlations = m_commands.keys();
    for (const quint64 correlation : correlations) {
        if (m_commands.contains(correlation) && m_commands[correlation].isOver)
            answer(correlation, HostReturnCode::StationLost);
    }
}

void MqttCommands::takeAcknowledgement(int number, int reason)
{
    const auto published = m_published.constFind(number);
    if (published == m_published.constEnd())
        return;
    const quint64 correlation = *published;
    m_published.erase(published);
    const auto command = m_commands.constFind(correlation);
    if (command == m_commands.constEnd())
        return;
    if (reason == noMatchingSubscribers)
        emit stationMissing(QString(command->station));
    else if (reason == packetTooLarge)
        answer(correlation, HostReturnCode::TooLargeForBroker);
    else if (reason >= firstFailure)
        answer(correlation, HostReturnCode::BrokerRefused);
}

void MqttCommands::take(const MqttMessage &message)
{
    if (message.correlation.size() < qsizetype(sizeof(quint64)))
        return;
    const auto correlation = qFromBigEndian<quint64>(message.correlation.constData());
    const auto command = m_commands.find(correlation);
    if (command == m_commands.end() || command->message.correlation != message.correlation)
        return;
    ReplyPart part;
    try {
        part = replyFromMap(decodeBody(message.payload, message.contentType));
    } catch (const MessageError &error) {
        qWarning("What the station %s answered is no reply: %s", qUtf8Printable(command->station), error.what());
        answer(correlation, HostReturnCode::BadReply);
        return;
    }
    if (part.number != command->nextPart)
        return; // delivered twice, or again from the first part on
    ++command->nextPart;
    command->deadline = QDeadlineTimer(command->timeLimit + grace);
    if (part.reply.finish)
        m_commands.erase(command);
    emit answered(correlation, part.reply);
}

void MqttCommands::answer(quint64 correlation, const QString &returnCode)
{
    if (m_commands.remove(correlation) > 0)
        emit answered(correlation, {returnCode, {}});
}

void MqttCommands::answerLater(quint64 correlation, const QString &returnCode)
{
    QMetaObject::invokeMethod(
        this,
        [this, correlation, returnCode] {
            m_commands.remove(correlation);
            emit answered(correlation, {returnCode, {}});
        },
        Qt::QueuedConnection);
}

/// An edit that was published may be answered yet, and its sender wants to know. What was not published never will be.
void MqttCommands::endOverdue()
{
    const QList<quint64> correlations = m_commands.keys();
    for (const quint64 correlation : correlations) {
        const auto command = m_commands.find(correlation);
        if (command == m_commands.end() || command->isOver || !command->deadline.hasExpired())
            continue;
        if (!command->isEdit)
            m_commands.erase(command);
        else if (command->isSent)
            command->isOver = true;
        else
            answer(correlation, HostReturnCode::LinkDown);
    }
    if (m_commands.isEmpty())
        m_timer.stop();
}
