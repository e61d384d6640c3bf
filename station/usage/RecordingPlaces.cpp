#include "RecordingPlaces.h"

#include "FolderReader.h"
#include "StationData.h"
#include "disk/DiskPath.h"
#include "store/Database.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr std::chrono::seconds patience(1); // with a disk that says nothing

/// An empty text is bound as such: a null QString would be NULL.
QVariant text(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}
} // namespace

RecordingPlaces::RecordingPlaces(StationData &data, const VolumeSource &volumes)
    : m_data(data)
    , m_volumes(volumes)
    , m_disks(patience)
{
}

void RecordingPlaces::update(const QList<RecordingGroup> &groups, const QString &backupFolder)
{
    QMap<Key, QString> wanted;
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths)
            wanted.insert({path.path, group.folder}, group.id);
    }
    if (!backupFolder.isEmpty())
        wanted.insert({backupFolder, QString()}, UsageGroup::backup);
    load();
    QMap<Key, QString> different = wanted;
    for (const RecordingPlace &place : std::as_const(m_places)) {
        const Key key{place.path, place.folder};
        const QString groupId = wanted.value(key);
        if (groupId == place.groupId)
            different.remove(key);
        else
            different.insert(key, groupId);
    }
    if (different.isEmpty() || m_data.database().limitation())
        return;
    write(different);
    load();
}

/// A place that comes to a group, new or from none, learns its volume anew when it is looked at.
void RecordingPlaces::write(const QMap<Key, QString> &groupIds)
{
    Database &database = m_data.database();
    Transaction transaction(database, Transaction::Patience::Short);
    for (auto place = groupIds.cbegin(); place != groupIds.cend(); ++place) {
        const auto &[path, folder] = place.key();
        if (place->isEmpty()) {
            database.run(QStringLiteral("UPDATE recording_place SET group_id = '' WHERE path = ? AND folder = ?"),
                         {path, text(folder)});
            continue;
        }
        database.run(QStringLiteral("INSERT INTO recording_place (path, folder, group_id, volume_path, volume_name)"
                                    " VALUES (?, ?, ?, '', '') ON CONFLICT (path, folder) DO UPDATE"
                                    " SET group_id = excluded.group_id, volume_path = '', volume_name = ''"
                                    " WHERE group_id <> excluded.group_id"),
                     {path, text(folder), *place});
        database.run(QStringLiteral("DELETE FROM recording_deletion WHERE place = (SELECT number FROM recording_place"
                                    " WHERE path = ? AND folder = ?)"),
                     {path, text(folder)});
    }
    transaction.commit();
}

void RecordingPlaces::load()
{
    m_places.clear();
    Rows rows = m_data.database().rows(QStringLiteral("SELECT number, path, folder, group_id, volume_path, volume_name,"
                                                      " read_at FROM recording_place ORDER BY path, folder"));
    while (rows.next()) {
        m_places.append({rows.value(0).toLongLong(), rows.value(1).toString(), rows.value(2).toString(),
                         rows.value(3).toString(), rows.value(4).toString(), rows.value(5).toString()});
        if (!rows.value(6).isNull())
            m_places.last().readAt = QDateTime::fromSecsSinceEpoch(rows.value(6).toLongLong()).toUTC();
    }
}

void RecordingPlaces::remember(RecordingPlace &place, const Volume &volume)
{
    if (place.volumePath == volume.path && place.volumeName == volume.name)
        return;
    Database &database = m_data.database();
    if (database.limitation())
        return;
    Transaction transaction(database, Transaction::Patience::Short);
    database.run(QStringLiteral("UPDATE recording_place SET volume_path = ?, volume_name = ? WHERE number = ?"),
                 {volume.path, volume.name, place.number});
    transaction.commit();
    place.volumePath = volume.path;
    place.volumeName = volume.name;
}

QHash<qint64, PlaceState> RecordingPlaces::look()
{
    QHash<QString, Sight> sights;
    QHash<qint64, PlaceState> states;
    for (RecordingPlace &place : m_places) {
        if (place.isNas())
            continue;
        auto sight = sights.constFind(place.path);
        if (sight == sights.cend())
            sight = sights.insert(place.path, lookAt(place.path));
        PlaceState &state = states[place.number];
        const std::optional<Volume> &volume = sight->volume;
        const bool isOnItsVolume = volume && (place.volumePath.isEmpty() || place.volumePath == volume->path);
        if (isOnItsVolume && !sight->isSilent) {
            const int writeError = volume->isReadOnly ? EROFS : sight->writeError;
            state = {UsagePlace::Storage::Present, *volume, false, writeError, true, sight->device};
            remember(place, *volume);
            continue;
        }
        state.isSilent = sight->isSilent;
        state.storage = sight->isSilent ? UsagePlace::Storage::Unknown : UsagePlace::Storage::Gone;
        state.isVolumeThere = sight->isSilent || isMounted(place.volumePath);
        state.volume.path = place.volumePath;
        state.volume.name = place.volumeName;
    }
    return states;
}

/// No volume where @p path is no folder.
RecordingPlaces::Sight RecordingPlaces::lookAt(const QString &path) const
{
    struct Found
    {
        DiskPath place;
        quint64 device = 0;
        int writeError = 0;
    };
    const auto find = [native = QFile::encodeName(path).toStdString()](DiskVisit &visit) {
        Found found{resolved(native, visit)};
        if (found.place.error != 0 || !found.place.isFolder)
            return found;
        const std::filesystem::path &folder = found.place.canonical;
        found.device = identify(QString::fromStdString(folder.native())).device;
        // A trial file every few seconds would wear the disk: that is left to edits.
        if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
            found.writeError = errno;
        return found;
    };
    const Found found = m_disks.await<Found>(find, {{{}, false, ETIMEDOUT}});
    if (found.place.error != 0 || found.device == 0)
        return {{}, 0, found.place.error == ETIMEDOUT};
    const QString canonical = QString::fromStdString(found.place.canonical.native());
    const std::optional<Volume> volume = m_volumes.volumeHolding(canonical);
    return {volume, found.device, !volume && m_volumes.isSilent(canonical), found.writeError};
}

bool RecordingPlaces::isMounted(const QString &volumePath) const
{
    if (volumePath.isEmpty())
        return true; // the path never was on a volume
    const std::optional<Volume> mounted = m_volumes.volumeHolding(volumePath);
    return mounted && mounted->path == volumePath;
}
