#include "RecordingPlaces.h"

#include "FolderReader.h"
#include "store/Database.h"

#include <QFileInfo>

RecordingPlaces::RecordingPlaces(Database &database, const VolumeSource &volumes)
    : m_database(database)
    , m_volumes(volumes)
{
}

void RecordingPlaces::update(const QList<RecordingGroup> &groups, const QString &backupFolder)
{
    Transaction transaction(m_database);
    m_database.run(QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS wanted_place (path TEXT, folder TEXT)"));
    m_database.run(QStringLiteral("DELETE FROM wanted_place"));
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            if (path.kind == PathKind::Local)
                enter(path.path, group.folder, group.id);
        }
    }
    if (!backupFolder.isEmpty())
        enter(backupFolder, QLatin1String(""), UsageGroup::backup);
    m_database.run(QStringLiteral("UPDATE recording_place SET group_id = '' WHERE group_id <> ''"
                                  " AND (path, folder) NOT IN (SELECT path, folder FROM wanted_place)"));
    transaction.commit();
    load();
}

/// A place that comes to a group, new or from none, learns its volume anew when it is looked at.
void RecordingPlaces::enter(const QString &path, const QString &folder, const QString &groupId)
{
    m_database.run(QStringLiteral("INSERT INTO wanted_place (path, folder) VALUES (?, ?)"), {path, folder});
    m_database.run(QStringLiteral("INSERT INTO recording_place (path, folder, group_id, volume_path, volume_name)"
                                  " VALUES (?, ?, ?, '', '') ON CONFLICT (path, folder) DO UPDATE"
                                  " SET group_id = excluded.group_id, volume_path = '', volume_name = ''"
                                  " WHERE group_id <> excluded.group_id"),
                   {path, folder, groupId});
}

void RecordingPlaces::load()
{
    m_places.clear();
    QSqlQuery query = m_database.run(QStringLiteral("SELECT number, path, folder, group_id, volume_path, volume_name"
                                                    " FROM recording_place ORDER BY path, folder"));
    while (query.next()) {
        m_places.append({query.value(0).toLongLong(), query.value(1).toString(), query.value(2).toString(),
                         query.value(3).toString(), query.value(4).toString(), query.value(5).toString()});
    }
}

void RecordingPlaces::remember(RecordingPlace &place, const Volume &volume)
{
    if (place.volumePath == volume.path && place.volumeName == volume.name)
        return;
    m_database.run(QStringLiteral("UPDATE recording_place SET volume_path = ?, volume_name = ? WHERE number = ?"),
                   {volume.path, volume.name, place.number});
    place.volumePath = volume.path;
    place.volumeName = volume.name;
}

QHash<qint64, PlaceState> RecordingPlaces::look()
{
    struct Found
    {
        std::optional<Volume> volume;
        quint64 device = 0;
    };
    QHash<QString, Found> paths;
    QHash<qint64, PlaceState> states;
    for (RecordingPlace &place : m_places) {
        auto found = paths.constFind(place.path);
        if (found == paths.cend()) {
            const QString canonical = QFileInfo(place.path).canonicalFilePath();
            Found now;
            if (!canonical.isEmpty())
                now = {m_volumes.volumeHolding(canonical), identify(canonical).device};
            found = paths.insert(place.path, now);
        }
        PlaceState &state = states[place.number];
        const std::optional<Volume> &volume = found->volume;
        const bool isPresent = volume && found->device != 0 // a folder
            && (place.volumePath.isEmpty() || place.volumePath == volume->path);
        if (isPresent) {
            state = {UsagePlace::Storage::Present, *volume, found->device};
            remember(place, *volume);
        } else {
            state.volume.path = place.volumePath;
            state.volume.name = place.volumeName;
        }
    }
    return states;
}
