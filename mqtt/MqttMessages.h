#pragma once

#include "StationMessage.h"

#include <QDateTime>
#include <QVariantMap>

#include <chrono>
#include <optional>

/// What a station says of itself to everybody, retained.
struct StationStatus
{
    enum class State {
        Up, ///< it takes commands
        Stopped, ///< it was told to end, or left the broker on its own
        Lost, ///< the broker lost it; its last will
    };

    State state = State::Up;
    QString name; ///< as it calls itself
    QString address; ///< the name of its machine
    QString version; ///< of its program
    QString instance; ///< tells one start of the program from all others
    QDateTime startedAt; ///< when that start was, in UTC, by the clock of its machine
    QDateTime since; ///< since when it is in that state, likewise; invalid: unknown
    std::chrono::seconds heartbeat{0}; ///< of Up: an event follows another one at the latest after so long; 0: not said

    bool operator==(const StationStatus &) const = default;
};

/// What stations of one ID say to each other.
struct InstanceWord
{
    bool isQuestion = true; ///< "Does another serve this ID?"; else "I do."
    QString instance;
    QString address; ///< the name of its machine
    QDateTime startedAt; ///< in UTC

    bool operator==(const InstanceWord &) const = default;
};

/// One part of a reply.
struct ReplyPart
{
    int number = 0; ///< from 0
    StationReply reply;
};

/// The maps that are the bodies of messages; docs/mqtt.md has their keys. Those that read throw MessageError where a
/// key that is needed is missing or of another type.
QVariantMap commandMap(const StationCommand &command);
StationCommand commandFromMap(const QVariantMap &map);
QVariantMap replyMap(const ReplyPart &part);
ReplyPart replyFromMap(const QVariantMap &map);
QVariantMap eventMap(const StationEvent &event);
/// @param name as the topic has it
StationEvent eventFromMap(const QString &name, const QVariantMap &map);
QVariantMap statusMap(const StationStatus &status);
StationStatus statusFromMap(const QVariantMap &map);
QVariantMap instanceMap(const InstanceWord &word);
InstanceWord instanceFromMap(const QVariantMap &map);
