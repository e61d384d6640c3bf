#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Kinds of storage behind a path of a recording group; the numbers travel on the wire and stand in the database.
enum class PathKind { Local = 0, NetHost = 1, NetDomain = 2 };

/// A place where a recording group stores video.
struct GroupPath
{
    QString path; ///< absolute for local paths, //host/share/folder for those on the network
    PathKind kind = PathKind::Local;
    qint64 reservedMegabytes = 0;
    bool isRecovery = false; ///< takes recordings that are fetched later from cameras that were cut off

    friend bool operator==(const GroupPath &, const GroupPath &) = default;
};

/// A stream of a camera that a recording group records.
struct GroupMember
{
    QString camera;
    int stream = 0; ///< from 0
    bool timeShift = false;
    bool seamless = false;

    friend bool operator==(const GroupMember &, const GroupMember &) = default;
};

/// A set of cameras that are recorded onto a set of paths.
struct RecordingGroup
{
    QString id; ///< a UUID with braces
    QString name; ///< unique in the station
    QString folder; ///< below each path; made of the name when the group is made, and kept when it is renamed
    QList<GroupPath> paths; ///< in the order in which they were added
    QList<GroupMember> members; ///< likewise
    QStringList nodeIds; ///< likewise
    int reservedMinutes = 0;
    bool isReservedTimeEnabled = false; ///< else reservedMinutes is only remembered

    friend bool operator==(const RecordingGroup &, const RecordingGroup &) = default;
};

/// A camera that the station knows.
struct Camera
{
    QString name;
    int streams = 1;

    friend bool operator==(const Camera &, const Camera &) = default;
};
