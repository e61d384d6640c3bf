#pragma once

#include <QString>

/// Every topic that clients and stations use, made and read here alone. docs/mqtt.md says what goes over them.
///
/// An identifier in a topic is percent-encoded as in a URL, one level for one identifier: whatever is no ASCII letter,
/// digit, "-", ".", "_" or "~" is written as "%" and two capital hexadecimal digits for each byte of its UTF-8. The
/// empty one is "%". A user is written as it stands, as the broker's access rules compare it so.
namespace MqttTopics {

QString status(const QString &station);
/// Where stations of one ID tell each other that they live.
QString instances(const QString &station);
/// @param user who sends; empty: a client without a user name
QString commands(const QString &station, const QString &user = {});
/// A filter for the commands of all users.
QString commandsOfUsers(const QString &station);
QString event(const QString &station, const QString &name);
QString replies(const QString &client);

/// Filters for those of all stations.
QString everyStatus();
QString everyEvent();
/// A filter for those of one station.
QString eventsOf(const QString &station);

/// Whether @p user can be a level of a topic: not empty, and without "+", "#", "/" and control characters.
bool canBeUser(const QString &user);

/// What a topic is for.
struct Address
{
    enum class Kind { None, Status, Instances, Commands, Event, Replies };

    Kind kind = Kind::None; ///< None: no topic of ours, or one that is written in another way than this does
    QString station = {};
    QString name = {}; ///< of Event: which; of Commands: the user, may be empty; of Replies: the client
};

Address read(const QString &topic);

} // namespace MqttTopics
