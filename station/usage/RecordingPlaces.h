#pragma once

#include "UsageFigures.h"
#include "disk/DiskWork.h"
#include "groups/RecordingGroup.h"

#include <QDateTime>
#include <QHash>
#include <QMap>

#include <utility>

class StationData;

/// A folder that holds recordings: what a recording group stored below one of its paths, or the backup area.
struct RecordingPlace
{
    qint64 number = 0;
    QString path; ///< of the group, or of the backup area
    QString folder; ///< of the group below the path; empty: the path itself
    QString groupId; ///< empty when the group, or its path, was removed; UsageGroup::backup: the backup area
    QString volumePath; ///< where the path lay when it came to the group; empty when it never existed
    QString volumeName;
    QDateTime readAt = {}; ///< on a NAS server: when all of it was read last, in UTC; null where that never was

    /// Local paths are kept with single slashes.
    bool isNas() const { return path.startsWith(QStringLiteral("//")); }
    QString root() const { return folder.isEmpty() ? path : path + u'/' + folder; }
};

/// Whether and where a place is at the moment.
struct PlaceState
{
    UsagePlace::Storage storage = UsagePlace::Storage::Gone;
    Volume volume; ///< as in UsagePlace
    bool isSilent = false; ///< its disk does not answer
    int writeError = 0; ///< a number of the system: why the station may not write there; 0 where it may
    bool isVolumeThere = false; ///< the volume that the place came to the group on is mounted
    quint64 device = 0; ///< number of the file system that the place's path is on, while it is present
};

/// The recording places in the station's database. A place remembers its volume: where a disk is not mounted, the
/// folder that it would be mounted on lies on another one. Throws DatabaseError.
class RecordingPlaces
{
public:
    /// Both must outlive this object.
    RecordingPlaces(StationData &data, const VolumeSource &volumes);

    /// Brings the places in line with the paths of @p groups and the backup area. What belongs to no group any
    /// more is kept, as its files are. Writes only what is different, and nothing where the database can only be read.
    void update(const QList<RecordingGroup> &groups, const QString &backupFolder);

    const QList<RecordingPlace> &places() const { return m_places; } ///< as of the last update
    /// By the number of the place, of those that are not on a NAS server. Asks each volume once; waits a moment at most
    /// for disks that hang.
    QHash<qint64, PlaceState> look();

private:
    /// Path and folder of a place.
    using Key = std::pair<QString, QString>;
    void write(const QMap<Key, QString> &groupIds);
    void load();
    /// What is known of a path at the moment.
    struct Sight
    {
        std::optional<Volume> volume;
        quint64 device = 0;
        bool isSilent = false;
        int writeError = 0;
    };
    QHash<QString, Sight> sights() const;
    bool isMounted(const QString &volumePath) const;
    void remember(const QHash<qint64, PlaceState> &states);

    StationData &m_data;
    const VolumeSource &m_volumes;
    DiskWork m_disks;
    QList<RecordingPlace> m_places;
};
