#include "MqttTopics.h"

#include <QStringList>

#include <algorithm>
#include <optional>

namespace {
const QString stationsRoot = QStringLiteral("recording/1/stations/");
const QString clientsRoot = QStringLiteral("recording/1/clients/");
const QString emptyLevel = QStringLiteral("%");

QString level(const QString &identifier)
{
    return identifier.isEmpty() ? emptyLevel : QString::fromLatin1(identifier.toUtf8().toPercentEncoding());
}

/// None where level() does not write it so: there is one way alone.
std::optional<QString> identifier(const QString &written)
{
    if (written == emptyLevel)
        return QString();
    QString found = QString::fromUtf8(QByteArray::fromPercentEncoding(written.toLatin1()));
    if (found.isEmpty() || level(found) != written)
        return {};
    return found;
}

QString ofStation(const QString &station, const QString &rest)
{
    return stationsRoot + level(station) + u'/' + rest;
}

MqttTopics::Address readStation(const QStringList &levels)
{
    using Kind = MqttTopics::Address::Kind;
    const std::optional<QString> station = identifier(levels.constFirst());
    if (!station || levels.size() < 2 || levels.size() > 3)
        return {};
    const QString &kind = levels.at(1);
    if (levels.size() == 2) {
        if (kind == QStringLiteral("status"))
            return {Kind::Status, *station, {}};
        if (kind == QStringLiteral("instances"))
            return {Kind::Instances, *station, {}};
        if (kind == QStringLiteral("commands"))
            return {Kind::Commands, *station, {}};
        return {};
    }
    if (kind == QStringLiteral("commands") && MqttTopics::canBeUser(levels.at(2)))
        return {Kind::Commands, *station, levels.at(2)};
    const std::optional<QString> name = identifier(levels.at(2));
    if (kind == QStringLiteral("events") && name)
        return {Kind::Event, *station, *name};
    return {};
}
} // namespace

QString MqttTopics::status(const QString &station)
{
    return ofStation(station, QStringLiteral("status"));
}

QString MqttTopics::instances(const QString &station)
{
    return ofStation(station, QStringLiteral("instances"));
}

QString MqttTopics::commands(const QString &station, const QString &user)
{
    const QString topic = ofStation(station, QStringLiteral("commands"));
    return user.isEmpty() ? topic : topic + u'/' + user;
}

QString MqttTopics::commandsOfUsers(const QString &station)
{
    return ofStation(station, QStringLiteral("commands/+"));
}

QString MqttTopics::event(const QString &station, const QString &name)
{
    return ofStation(station, QStringLiteral("events/") + level(name));
}

QString MqttTopics::replies(const QString &client)
{
    return clientsRoot + level(client) + QStringLiteral("/replies");
}

QString MqttTopics::everyStatus()
{
    return stationsRoot + QStringLiteral("+/status");
}

QString MqttTopics::everyEvent()
{
    return stationsRoot + QStringLiteral("+/events/+");
}

QString MqttTopics::eventsOf(const QString &station)
{
    return ofStation(station, QStringLiteral("events/+"));
}

bool MqttTopics::canBeUser(const QString &user)
{
    const auto isRefused = [](QChar character) {
        return character == u'+' || character == u'#' || character == u'/'
            || character.category() == QChar::Other_Control || character.isNonCharacter() || character.isSurrogate();
    };
    return !user.isEmpty() && std::none_of(user.begin(), user.end(), isRefused);
}

MqttTopics::Address MqttTopics::read(const QString &topic)
{
    if (topic.startsWith(stationsRoot))
        return readStation(topic.mid(stationsRoot.size()).split(u'/'));
    if (!topic.startsWith(clientsRoot))
        return {};
    const QStringList levels = topic.mid(clientsRoot.size()).split(u'/');
    const std::optional<QString> client = identifier(levels.constFirst());
    if (!client || levels.size() != 2 || levels.constLast() != QStringLiteral("replies"))
        return {};
    return {Address::Kind::Replies, {}, *client};
}
