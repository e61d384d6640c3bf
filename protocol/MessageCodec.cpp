#include "MessageCodec.h"

#include "CborVariant.h"

const QString GoodbyeCode::OtherVersion = QStringLiteral("OtherVersion");
const QString GoodbyeCode::NotAllowed = QStringLiteral("NotAllowed");
const QString GoodbyeCode::BadMessage = QStringLiteral("BadMessage");
const QString GoodbyeCode::TooManyClients = QStringLiteral("TooManyClients");
const QString GoodbyeCode::TooSlow = QStringLiteral("TooSlow");
const QString GoodbyeCode::Stopping = QStringLiteral("Stopping");

namespace {

/// Keys of the map that a message is.
namespace Key {
const QString type = QStringLiteral("type");
const QString protocol = QStringLiteral("protocol");
const QString program = QStringLiteral("program");
const QString version = QStringLiteral("version");
const QString name = QStringLiteral("name");
const QString relayPath = QStringLiteral("relayPath");
const QString code = QStringLiteral("code");
const QString text = QStringLiteral("text");
const QString correlation = QStringLiteral("correlation");
const QString id = QStringLiteral("id");
const QString client = QStringLiteral("client");
const QString data = QStringLiteral("data");
const QString returnCode = QStringLiteral("returnCode");
const QString finish = QStringLiteral("finish");
} // namespace Key

namespace Type {
const QString hello = QStringLiteral("hello");
const QString welcome = QStringLiteral("welcome");
const QString goodbye = QStringLiteral("goodbye");
const QString command = QStringLiteral("command");
const QString reply = QStringLiteral("reply");
const QString event = QStringLiteral("event");
} // namespace Type

QVariantMap toMap(const Hello &hello)
{
    return {{Key::type, Type::hello},
            {Key::protocol, hello.protocol},
            {Key::program, hello.program},
            {Key::version, hello.version}};
}

QVariantMap toMap(const Welcome &welcome)
{
    return {{Key::type, Type::welcome},
            {Key::protocol, welcome.protocol},
            {Key::version, welcome.version},
            {Key::name, welcome.name},
            {Key::relayPath, welcome.relayPath}};
}

QVariantMap toMap(const Goodbye &goodbye)
{
    return {{Key::type, Type::goodbye}, {Key::code, goodbye.code}, {Key::text, goodbye.text}};
}

QVariantMap toMap(const CommandMessage &message)
{
    return {{Key::type, Type::command},
            {Key::correlation, static_cast<qint64>(message.correlation)},
            {Key::name, message.command.name},
            {Key::id, message.command.id},
            {Key::client, message.command.client},
            {Key::data, message.command.data}};
}

QVariantMap toMap(const ReplyMessage &message)
{
    return {{Key::type, Type::reply},
            {Key::correlation, static_cast<qint64>(message.correlation)},
            {Key::returnCode, message.reply.returnCode},
            {Key::finish, message.reply.finish},
            {Key::data, message.reply.data}};
}

QVariantMap toMap(const StationEvent &event)
{
    return {{Key::type, Type::event}, {Key::name, event.name}, {Key::data, event.data}};
}

/// Reads the map of a message.
class Fields
{
public:
    explicit Fields(QVariantMap map)
        : m_map(std::move(map))
    {
    }

    QString text(const QString &key) const
    {
        const QVariant value = m_map.value(key);
        require(value.typeId() == QMetaType::QString, key, QStringLiteral("a text"));
        return value.toString();
    }

    qint64 number(const QString &key) const
    {
        const QVariant value = m_map.value(key);
        require(value.typeId() == QMetaType::LongLong, key, QStringLiteral("a whole number"));
        return value.toLongLong();
    }

    bool truth(const QString &key) const
    {
        const QVariant value = m_map.value(key);
        require(value.typeId() == QMetaType::Bool, key, QStringLiteral("true or false"));
        return value.toBool();
    }

    /// A version that does not fit into an int is none that anybody speaks.
    int version() const
    {
        const qint64 found = number(Key::protocol);
        return found == static_cast<int>(found) ? static_cast<int>(found) : -1;
    }

    QVariant data() const { return m_map.value(Key::data); }

private:
    static void require(bool isTrue, const QString &key, const QString &expected)
    {
        if (!isTrue)
            throw MessageError(QStringLiteral("\"%1\" of the message has to be %2").arg(key, expected));
    }

    QVariantMap m_map;
};

} // namespace

QByteArray encodeMessage(const StationMessage &message)
{
    return std::visit([](const auto &kind) { return cborFromVariant(toMap(kind)); }, message);
}

StationMessage decodeMessage(QByteArrayView bytes, const MessageLimits &limits)
{
    const QVariant value = variantFromCbor(bytes, limits);
    if (value.typeId() != QMetaType::QVariantMap)
        throw MessageError(QStringLiteral("a message has to be a map"));
    const Fields fields(value.toMap());
    const QString type = fields.text(Key::type);
    if (type == Type::hello)
        return Hello{fields.version(), fields.text(Key::program), fields.text(Key::version)};
    if (type == Type::welcome)
        return Welcome{fields.version(), fields.text(Key::version), fields.text(Key::name),
                       fields.text(Key::relayPath)};
    if (type == Type::goodbye)
        return Goodbye{fields.text(Key::code), fields.text(Key::text)};
    if (type == Type::command) {
        return CommandMessage{
            static_cast<quint64>(fields.number(Key::correlation)),
            {fields.text(Key::name), fields.data(), fields.text(Key::id), fields.text(Key::client), {}}};
    }
    if (type == Type::reply) {
        return ReplyMessage{static_cast<quint64>(fields.number(Key::correlation)),
                            {fields.text(Key::returnCode), fields.data(), fields.truth(Key::finish)}};
    }
    if (type == Type::event)
        return StationEvent{fields.text(Key::name), fields.data()};
    throw MessageError(QStringLiteral("a message of the type \"%1\" is not known").arg(type.left(40)));
}
