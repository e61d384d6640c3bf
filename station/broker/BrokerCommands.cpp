#include "BrokerCommands.h"

#include "CommandKind.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttMessages.h"
#include "mqtt/MqttTopics.h"
#include "service/StationThread.h"

#include <QPointer>

namespace {
QString nameOf(const QString &user)
{
    return user.isEmpty() ? QStringLiteral("a client without a user name") : user;
}
} // namespace

BrokerCommands::BrokerCommands(MqttConnection &connection, StationThread &station, const BrokerSettings &settings)
    : m_connection(connection)
    , m_station(station)
    , m_settings(settings)
{
}

void BrokerCommands::take(const MqttMessage &message, const QString &user)
{
    if (MqttTopics::read(message.responseTopic).kind != MqttTopics::Address::Kind::Replies) {
        qCWarning(stationLog, "A command of %s is left alone: it wants its reply under \"%s\"",
                  qUtf8Printable(nameOf(user)), qUtf8Printable(message.responseTopic));
        return;
    }
    Asker asker{message.responseTopic, message.correlation};
    StationCommand command;
    try {
        asker.form = bodyForm(message.contentType).value_or(BodyForm::Cbor);
        command = commandFromMap(decodeBody(message.payload, message.contentType, m_settings.messages));
    } catch (const MessageError &error) {
        qCWarning(stationLog, "What %s sent is no command: %s", qUtf8Printable(nameOf(user)), error.what());
        reply(asker, {StationReturnCode::BadRequest, {}});
        return;
    }
    if (const QString code = refusal(command, user); !code.isEmpty()) {
        reply(asker, {code, {}});
        return;
    }
    command.client = message.client;
    command.user = user;
    const quint64 number = ++m_lastNumber;
    m_underWay.insert(number, asker);
    m_station.handle(command, [self = QPointer(this), number](const StationReply &part) {
        if (!self)
            return;
        const auto found = self->m_underWay.find(number);
        if (found == self->m_underWay.end())
            return;
        self->reply(*found, part);
        if (!part.finish)
            return;
        self->m_underWay.erase(found);
        self->end();
    });
}

/// The code that @p command is refused with before the station hears of it; empty: none.
QString BrokerCommands::refusal(const StationCommand &command, const QString &user) const
{
    const BrokerRole role = m_roles.of(user);
    if (m_isFinishing)
        return StationReturnCode::StationStopping;
    if (role == BrokerRole::Nobody)
        return StationReturnCode::UserRefused;
    if (role == BrokerRole::Viewer && changesAnything(command.name))
        return StationReturnCode::OperatorNeeded;
    if (m_underWay.size() >= m_settings.commandLimit)
        return StationReturnCode::TooManyCommands;
    return {};
}

void BrokerCommands::reply(Asker &asker, const StationReply &reply)
{
    if (!publish(asker, reply))
        publish(asker, {StationReturnCode::ReplyTooLarge, {}, reply.finish});
    ++asker.parts;
}

/// False where it is too large. Where the connection is gone the client asks again when it is back.
bool BrokerCommands::publish(const Asker &asker, const StationReply &reply)
{
    MqttMessage message;
    message.topic = asker.responseTopic;
    message.correlation = asker.correlation;
    try {
        const MqttBody body = encodeBody(replyMap({asker.parts, reply}), asker.form, m_settings.messages);
        message.payload = body.bytes;
        message.contentType = body.contentType;
    } catch (const MessageError &error) {
        qCCritical(stationLog, "A reply cannot be sent: %s", error.what());
        return false;
    }
    return m_connection.publish(message).outcome != MqttConnection::Publication::Outcome::TooLarge;
}

void BrokerCommands::finish()
{
    m_isFinishing = true;
    end();
}

void BrokerCommands::finishNow()
{
    for (Asker &asker : m_underWay)
        reply(asker, {StationReturnCode::StationStopping, {}});
    m_underWay.clear();
    finish();
}

void BrokerCommands::end()
{
    if (m_isFinishing && m_underWay.isEmpty())
        QMetaObject::invokeMethod(this, &BrokerCommands::finished, Qt::QueuedConnection);
}
