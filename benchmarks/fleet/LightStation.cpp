#include "LightStation.h"

#include "CommandKind.h"
#include "Figures.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "mqtt/MqttTopics.h"

#include <QHostInfo>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace {
constexpr std::chrono::seconds longestSilence(3);

using FigureBodies = std::array<MqttBody, Figures::variantCount>;

/// Made once for all stations, so that many of them fit on one machine.
const FigureBodies &figureBodies()
{
    static const FigureBodies bodies = [] {
        FigureBodies made;
        for (int variant = 0; variant < Figures::variantCount; ++variant) {
            const StationEvent event{ServerEvent::VolumeChanged, Figures::volumeEntries(variant)};
            made[static_cast<std::size_t>(variant)] = encodeBody(eventMap(event));
        }
        return made;
    }();
    return bodies;
}
} // namespace

LightStation::LightStation(const QString &id, const MqttSettings &broker, std::chrono::milliseconds interval,
                           QObject *parent)
    : QObject(parent)
    , m_id(id)
    , m_connection(broker, QStringLiteral("fleet-%1-%2").arg(id, QUuid::createUuid().toString(QUuid::Id128)))
{
    m_status.name = QStringLiteral("Station %1").arg(id);
    m_status.address = QHostInfo::localHostName();
    m_status.version = QStringLiteral("1");
    m_status.instance = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_status.startedAt = QDateTime::currentDateTimeUtc();
    m_status.since = m_status.startedAt;
    m_status.heartbeat = std::max(longestSilence, std::chrono::ceil<std::chrono::seconds>(interval));
    m_connection.setWill(statusMessage(StationStatus::State::Lost));
    connect(&m_connection, &MqttConnection::stateChanged, this, &LightStation::follow);
    connect(&m_connection, &MqttConnection::received, this, &LightStation::take);
    connect(&m_connection, &MqttConnection::subscribed, this, &LightStation::noteAcknowledgement);
    connect(&m_connection, &MqttConnection::published, this, &LightStation::noteAcknowledgement);
}

void LightStation::start()
{
    m_connection.start();
}

void LightStation::stop()
{
    m_connection.publish(statusMessage(StationStatus::State::Stopped));
    m_connection.stop();
}

void LightStation::follow()
{
    if (m_connection.isUp())
        introduce();
    else if (std::exchange(m_isReady, false))
        emit readyChanged();
}

/// Commands first: who hears that the station is there may send one at once.
void LightStation::introduce()
{
    m_acknowledgementsMissing = 4;
    m_connection.subscribe(MqttTopics::commands(m_id));
    m_connection.subscribe(MqttTopics::commandsOfUsers(m_id));
    m_connection.publish(statusMessage(StationStatus::State::Up));
    publishFigures();
}

/// Events are acknowledged, too; once the station is ready nobody counts.
void LightStation::noteAcknowledgement()
{
    if (m_acknowledgementsMissing == 0 || --m_acknowledgementsMissing > 0)
        return;
    m_isReady = true;
    emit readyChanged();
}

void LightStation::publishFigures()
{
    if (!m_connection.isUp())
        return;
    const MqttBody &body = figureBodies()[static_cast<std::size_t>(m_variant)];
    m_variant = (m_variant + 1) % Figures::variantCount;
    MqttMessage message;
    message.topic = MqttTopics::event(m_id, ServerEvent::VolumeChanged);
    message.payload = body.bytes;
    message.contentType = body.contentType;
    message.isRetained = true;
    if (m_connection.publish(message).outcome == MqttConnection::Publication::Outcome::Sent)
        ++m_counts.events;
}

void LightStation::take(const MqttMessage &message)
{
    try {
        const StationCommand command = commandFromMap(decodeBody(message.payload, message.contentType));
        ++m_counts.commands;
        const MqttBody body =
            encodeBody(replyMap({0, answer(command)}), bodyForm(message.contentType).value_or(BodyForm::Cbor));
        MqttMessage reply;
        reply.topic = message.responseTopic;
        reply.payload = body.bytes;
        reply.contentType = body.contentType;
        reply.correlation = message.correlation;
        m_connection.publish(reply);
    } catch (const MessageError &error) {
        ++m_counts.unreadable;
        qWarning("Station %s cannot read a message: %s", qPrintable(m_id), error.what());
    }
}

StationReply LightStation::answer(const StationCommand &command)
{
    if (isEdit(command.name))
        return edit(command);
    if (command.name == ServerCommand::getVolume)
        return {ReturnCode::Success, Figures::volumes()};
    if (command.name == ServerCommand::retrieveRecordingGroupTreeModel
        || command.name == ServerCommand::getRecordingGroup)
        return {ReturnCode::Success, Figures::recordingGroups(m_id)};
    if (command.name == StationCommandName::listAlarms)
        return {ReturnCode::Success,
                QVariantMap{{StationKey::alarms, QVariantList()}, {StationKey::pending, QVariantList()}}};
    if (command.name == StationCommandName::listCameras) {
        QVariantList cameras;
        for (auto camera = m_cameras.cbegin(); camera != m_cameras.cend(); ++camera)
            cameras.append(QVariantMap{{FieldKey::camName, camera.key()}, {StationKey::streams, camera.value()}});
        return {ReturnCode::Success, cameras};
    }
    return {StationReturnCode::UnknownCommand, {}};
}

/// An edit takes effect once, however often it is delivered under its id.
StationReply LightStation::edit(const StationCommand &command)
{
    const auto known = m_edits.constFind(command.id);
    if (known != m_edits.cend()) {
        ++m_counts.repeated;
        return *known;
    }
    const StationReply reply = carryOutEdit(command);
    if (!command.id.isEmpty())
        m_edits.insert(command.id, reply);
    return reply;
}

StationReply LightStation::carryOutEdit(const StationCommand &command)
{
    if (command.name != StationCommandName::addCamera)
        return {StationReturnCode::UnknownCommand, {}};
    const QVariantMap camera = command.data.toMap();
    const QString name = camera.value(FieldKey::camName).toString();
    if (m_cameras.contains(name))
        return {StationReturnCode::CameraExists, {}};
    m_cameras.insert(name, camera.value(StationKey::streams).toInt());
    ++m_counts.edits;
    return {ReturnCode::Success, {}};
}

MqttMessage LightStation::statusMessage(StationStatus::State state) const
{
    StationStatus status = m_status;
    status.state = state;
    if (state == StationStatus::State::Lost)
        status.since = {};
    else
        status.since = QDateTime::currentDateTimeUtc();
    const MqttBody body = encodeBody(statusMap(status));
    MqttMessage message;
    message.topic = MqttTopics::status(m_id);
    message.payload = body.bytes;
    message.contentType = body.contentType;
    message.isRetained = true;
    return message;
}
