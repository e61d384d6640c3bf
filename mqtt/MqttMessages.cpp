#include "MqttMessages.h"

#include "MessageCodec.h"

#include <array>
#include <utility>

namespace {
namespace Key {
const QString name = QStringLiteral("name");
const QString id = QStringLiteral("id");
const QString data = QStringLiteral("data");
const QString returnCode = QStringLiteral("returnCode");
const QString finish = QStringLiteral("finish");
const QString part = QStringLiteral("part");
const QString state = QStringLiteral("state");
const QString address = QStringLiteral("address");
const QString version = QStringLiteral("version");
const QString instance = QStringLiteral("instance");
const QString startedAt = QStringLiteral("startedAt");
const QString since = QStringLiteral("since");
const QString heartbeat = QStringLiteral("heartbeat");
const QString at = QStringLiteral("at");
const QString says = QStringLiteral("says");
} // namespace Key

const QString serves = QStringLiteral("serves");
const QString asks = QStringLiteral("asks");

const std::array<std::pair<StationStatus::State, QString>, 3> states{{
    {StationStatus::State::Up, QStringLiteral("up")},
    {StationStatus::State::Stopped, QStringLiteral("stopped")},
    {StationStatus::State::Lost, QStringLiteral("lost")},
}};

[[noreturn]] void refuse(const QString &key, const char *expected)
{
    throw MessageError(QStringLiteral("\"%1\" of the message has to be %2").arg(key, QLatin1String(expected)));
}

QString text(const QVariantMap &map, const QString &key)
{
    const QVariant value = map.value(key);
    if (value.typeId() != QMetaType::QString)
        refuse(key, "a text");
    return value.toString();
}

/// Empty where the key is missing.
QString textIfThere(const QVariantMap &map, const QString &key)
{
    return map.contains(key) ? text(map, key) : QString();
}

QDateTime timeIfThere(const QVariantMap &map, const QString &key)
{
    return QDateTime::fromString(textIfThere(map, key), Qt::ISODateWithMs).toUTC();
}

QDateTime time(const QVariantMap &map, const QString &key)
{
    const QDateTime found = timeIfThere(map, key);
    if (!found.isValid())
        refuse(key, "a time, ISO 8601");
    return found;
}

std::chrono::seconds secondsIfThere(const QVariantMap &map, const QString &key)
{
    constexpr int longest = 3600;
    bool isNumber = false;
    const int found = map.value(key, 0).toInt(&isNumber);
    if (!isNumber || found < 0 || found > longest)
        refuse(key, "a whole number of seconds, an hour at most");
    return std::chrono::seconds(found);
}

void insertTime(QVariantMap &map, const QString &key, const QDateTime &when)
{
    if (when.isValid())
        map.insert(key, when.toUTC().toString(Qt::ISODateWithMs));
}
} // namespace

QVariantMap commandMap(const StationCommand &command)
{
    QVariantMap map{{Key::name, command.name}};
    if (!command.id.isEmpty())
        map.insert(Key::id, command.id);
    if (command.data.isValid())
        map.insert(Key::data, command.data);
    return map;
}

StationCommand commandFromMap(const QVariantMap &map)
{
    return {text(map, Key::name), map.value(Key::data), textIfThere(map, Key::id)};
}

QVariantMap replyMap(const ReplyPart &part)
{
    QVariantMap map{
        {Key::returnCode, part.reply.returnCode}, {Key::finish, part.reply.finish}, {Key::part, part.number}};
    if (part.reply.data.isValid())
        map.insert(Key::data, part.reply.data);
    return map;
}

ReplyPart replyFromMap(const QVariantMap &map)
{
    const QVariant finish = map.value(Key::finish);
    if (finish.typeId() != QMetaType::Bool)
        refuse(Key::finish, "true or false");
    bool isNumber = false;
    const int number = map.value(Key::part).toInt(&isNumber);
    if (!isNumber || number < 0)
        refuse(Key::part, "a whole number from 0");
    return {number, {text(map, Key::returnCode), map.value(Key::data), finish.toBool()}};
}

QVariantMap eventMap(const StationEvent &event)
{
    QVariantMap map{{Key::data, event.data}};
    insertTime(map, Key::at, event.at);
    return map;
}

StationEvent eventFromMap(const QString &name, const QVariantMap &map)
{
    return {name, map.value(Key::data), timeIfThere(map, Key::at)};
}

QVariantMap statusMap(const StationStatus &status)
{
    QVariantMap map{{Key::name, status.name},
                    {Key::address, status.address},
                    {Key::version, status.version},
                    {Key::instance, status.instance}};
    for (const auto &[state, word] : states) {
        if (state == status.state)
            map.insert(Key::state, word);
    }
    insertTime(map, Key::startedAt, status.startedAt);
    insertTime(map, Key::since, status.since);
    if (status.heartbeat.count() > 0)
        map.insert(Key::heartbeat, static_cast<int>(status.heartbeat.count()));
    return map;
}

StationStatus statusFromMap(const QVariantMap &map)
{
    StationStatus status{StationStatus::State::Up,       textIfThere(map, Key::name),
                         textIfThere(map, Key::address), textIfThere(map, Key::version),
                         text(map, Key::instance),       time(map, Key::startedAt),
                         timeIfThere(map, Key::since),   secondsIfThere(map, Key::heartbeat)};
    const QString found = text(map, Key::state);
    for (const auto &[state, word] : states) {
        if (word == found) {
            status.state = state;
            return status;
        }
    }
    refuse(Key::state, "\"up\", \"stopped\" or \"lost\"");
}

QVariantMap instanceMap(const InstanceWord &word)
{
    QVariantMap map{
        {Key::says, word.isQuestion ? asks : serves}, {Key::instance, word.instance}, {Key::address, word.address}};
    insertTime(map, Key::startedAt, word.startedAt);
    return map;
}

InstanceWord instanceFromMap(const QVariantMap &map)
{
    const QString said = text(map, Key::says);
    if (said != asks && said != serves)
        refuse(Key::says, "\"asks\" or \"serves\"");
    return {said == asks, text(map, Key::instance), textIfThere(map, Key::address), time(map, Key::startedAt)};
}
