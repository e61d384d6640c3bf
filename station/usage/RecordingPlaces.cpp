#include "RecordingPlaces.h"

#include "FolderReader.h"
#include "StationData.h"
#include "disk/DiskPath.h"
#include "store/Database.h"

#include <QFile>
#include <QThread>

#include <cerrno>
#include <memory>
#include <mutex>

#include <fcntl.h>
#include <unistd.h>

namespace {
constexpr std::chrono::seconds patience(1); // with a disk that says nothing

/// An empty text is bound as such: a null QString would be NULL.
QVariant text(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

/// What a folder's own disk tells of it.
struct FolderSight
{
    DiskPath place;
    quint64 device = 0; // 0: it is no folder
    int writeError = 0;
};

FolderSight seeFolder(const QString &path, DiskVisit &visit)
{
    FolderSight sight{resolved(QFile::encodeName(path).toStdString(), visit)};
    if (sight.place.error != 0 || !sight.place.isFolder)
        return sight;
    const std::filesystem::path &folder = sight.place.canonical;
    sight.device = identify(QString::fromStdString(folder.native())).device;
    // A trial file every few seconds would wear the disk: that is left to edits.
    if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        sight.writeError = errno;
    return sight;
}

/// Of each of @p paths, in their order. One visit sees as many of them as answer; where it hangs, another goes on
/// behind the first path that does not.
QList<FolderSight> seeFolders(const QStringList &paths, const DiskWork &disks)
{
    struct Progress
    {
        std::mutex mutex;
        QList<FolderSight> sights;
    };
    const FolderSight silent{{{}, false, ETIMEDOUT}};
    QList<FolderSight> sights;
    while (sights.size() < paths.size() && !QThread::currentThread()->isInterruptionRequested()) {
        const auto progress = std::make_shared<Progress>();
        const auto see = [progress, left = paths.mid(sights.size())](DiskVisit &visit) {
            for (const QString &path : left) {
                const FolderSight sight = seeFolder(path, visit);
                if (!visit.goesOn())
                    return false;
                const std::lock_guard lock(progress->mutex);
                progress->sights.append(sight);
            }
            return true;
        };
        const bool isThrough = disks.await<bool>(see, false);
        const std::lock_guard lock(progress->mutex);
        sights += progress->sights;
        if (!isThrough && progress->sights.isEmpty())
            sights.append(silent);
    }
    sights.resize(paths.size(), silent);
    return sights;
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

/// The volume of each place that is on one which it has not been on before.
void RecordingPlaces::remember(const QHash<qint64, PlaceState> &states)
{
    QList<RecordingPlace *> moved;
    for (RecordingPlace &place : m_places) {
        const auto state = states.constFind(place.number);
        const bool isThere = state != states.cend() && state->storage == UsagePlace::Storage::Present;
        if (isThere && (place.volumePath != state->volume.path || place.volumeName != state->volume.name))
            moved.append(&place);
    }
    if (moved.isEmpty() || m_data.database().limitation()) // the first makes no database
        return;
    Database &database = m_data.database();
    Transaction transaction(database, Transaction::Patience::Short);
    for (const RecordingPlace *place : std::as_const(moved)) {
        const Volume &volume = states.constFind(place->number)->volume;
        database.run(QStringLiteral("UPDATE recording_place SET volume_path = ?, volume_name = ? WHERE number = ?"),
                     {volume.path, volume.name, place->number});
    }
    transaction.commit();
    for (RecordingPlace *place : std::as_const(moved)) {
        place->volumePath = states.constFind(place->number)->volume.path;
        place->volumeName = states.constFind(place->number)->volume.name;
    }
}

QHash<qint64, PlaceState> RecordingPlaces::look()
{
    const QHash<QString, Sight> seen = sights();
    QHash<qint64, PlaceState> states;
    QHash<QString, bool> mounted; // by the path of a volume
    const auto isVolumeThere = [&](const QString &volumePath) {
        auto known = mounted.constFind(volumePath);
        if (known == mounted.cend())
            known = mounted.insert(volumePath, isMounted(volumePath));
        return *known;
    };
    for (const RecordingPlace &place : std::as_const(m_places)) {
        if (place.isNas())
            continue;
        const Sight &sight = *seen.constFind(place.path);
        PlaceState &state = states[place.number];
        const std::optional<Volume> &volume = sight.volume;
        const bool isOnItsVolume = volume && (place.volumePath.isEmpty() || place.volumePath == volume->path);
        if (isOnItsVolume && !sight.isSilent) {
            const int writeError = volume->isReadOnly ? EROFS : sight.writeError;
            state = {UsagePlace::Storage::Present, *volume, false, writeError, true, sight.device};
            continue;
        }
        state.isSilent = sight.isSilent;
        state.storage = sight.isSilent ? UsagePlace::Storage::Unknown : UsagePlace::Storage::Gone;
        state.isVolumeThere = sight.isSilent || isVolumeThere(place.volumePath);
        state.volume.path = place.volumePath;
        state.volume.name = place.volumeName;
    }
    remember(states);
    return states;
}

/// By the local path of a place; no volume where that is no folder.
QHash<QString, RecordingPlaces::Sight> RecordingPlaces::sights() const
{
    QHash<QString, Sight> seen;
    for (const RecordingPlace &place : m_places) {
        if (!place.isNas())
            seen.insert(place.path, {});
    }
    const QStringList paths = seen.keys();
    const QList<FolderSight> folders = seeFolders(paths, m_disks);
    QStringList asked; // those of the paths that are folders, and where they are
    QStringList canonical;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const FolderSight &folder = folders[i];
        seen[paths[i]] = {{}, folder.device, folder.place.error == ETIMEDOUT, folder.writeError};
        if (folder.place.error != 0 || folder.device == 0)
            continue;
        asked.append(paths[i]);
        canonical.append(QString::fromStdString(folder.place.canonical.native()));
    }
    const QList<std::optional<Volume>> volumes = m_volumes.volumesHolding(canonical);
    for (qsizetype i = 0; i < asked.size(); ++i) {
        Sight &sight = seen[asked[i]];
        sight.volume = volumes[i];
        sight.isSilent = !sight.volume && m_volumes.isSilent(canonical[i]);
    }
    return seen;
}

bool RecordingPlaces::isMounted(const QString &volumePath) const
{
    if (volumePath.isEmpty())
        return true; // the path never was on a volume
    const std::optional<Volume> mounted = m_volumes.volumeHolding(volumePath);
    return mounted && mounted->path == volumePath;
}
