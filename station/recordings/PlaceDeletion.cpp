#include "PlaceDeletion.h"

#include "PlaceClaims.h"
#include "ServerVocabulary.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "disk/DiskVisit.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <cerrno>

namespace {
/// Nothing more may be deleted in the place.
struct PlaceRefused
{
    QString returnCode;
};

QString openRefusal(int error)
{
    return error == EACCES || error == EPERM ? StationReturnCode::PermissionDenied
                                             : StationReturnCode::DirectoryNotFound;
}

/// The groups in the station's database, and whether one of them has the folder of a place.
class Claims
{
public:
    Claims(const PlaceDeletion &deletion, Database &database, DiskVisit &visit)
        : m_deletion(deletion)
        , m_database(database)
        , m_visit(visit)
    {
    }

    /// Throws PlaceRefused where one has, or nobody can tell.
    void look()
    {
        const QStringList claimed = claimedFolders(GroupStore(m_database).groups(), m_deletion.backupFolder);
        if (m_isLookedAt && claimed == m_claimed)
            return;
        const QString root = m_deletion.place.root();
        const QString refusal =
            isClaimed(root, claimed) ? StationReturnCode::PlaceInUse : placeRefusal(root, claimed, m_visit);
        if (refusal != ReturnCode::Success)
            throw PlaceRefused{refusal};
        m_claimed = claimed;
        m_isLookedAt = true;
    }

private:
    const PlaceDeletion &m_deletion;
    Database &m_database;
    DiskVisit &m_visit;
    QStringList m_claimed;
    bool m_isLookedAt = false;
};

PlaceRemover::Days daysOf(const RecordingIndex &index, qint64 place)
{
    PlaceRemover::Days days;
    const QStringList cameras = index.cameras(place);
    for (const QString &camera : cameras) {
        QStringList names = index.days(place, camera);
        names.sort();
        days.insert(camera, names);
    }
    return days;
}

DeletionResult removed(const PlaceDeletion &deletion, DeletionProgress &progress, DiskVisit &visit)
{
    const PlaceTask &place = deletion.place;
    Database database(deletion.dataFolder, Database::Look::Shared);
    const RecordingIndex index(database);
    Claims claims(deletion, database, visit);
    claims.look();
    const PlaceRemover::Days days = daysOf(index, place.number);
    const PlaceFolder folder = PlaceFolder::of(place.path, place.folder);
    if (!folder.isOpen() || folder.device() != place.device)
        return {folder.isOpen() ? StationReturnCode::DirectoryNotFound : openRefusal(errno)};
    const auto files = [&](const QString &camera, const QString &day) {
        if (deletion.beforeDay)
            deletion.beforeDay(camera, day);
        // Of one moment: what the index has of a place that no group names was not recorded for one.
        const Snapshot snapshot(database);
        claims.look();
        return index.files({place.number, camera, day}).value_or(QHash<QString, qint64>());
    };
    const auto goesOn = [&] { return !progress.isCancelled && visit.goesOn(); };
    PlaceRemover remover(place.root(), folder, {files, goesOn}, progress);
    const bool isDone = remover.remove(days);
    DeletionResult result = remover.result();
    if (!isDone)
        result.returnCode = StationReturnCode::DeletionCancelled;
    else
        result.returnCode = result.leftFiles > 0 ? StationReturnCode::RecordingsLeft : ReturnCode::Success;
    if (isDone && !place.folder.isEmpty())
        PlaceFolder::of(place.path, {}).removeEmptyFolder(place.folder); // where something is left in it, it stays
    return result;
}
} // namespace

QString PlaceDeletion::check(const PlaceTask &place, const QStringList &claimed, DiskVisit &visit)
{
    if (const QString refusal = placeRefusal(place.root(), claimed, visit); refusal != ReturnCode::Success)
        return refusal;
    const PlaceFolder folder = PlaceFolder::of(place.path, place.folder);
    if (!folder.isOpen())
        return openRefusal(errno);
    return folder.device() == place.device ? ReturnCode::Success : StationReturnCode::DirectoryNotFound;
}

DeletionResult PlaceDeletion::run(DeletionProgress &progress, DiskVisit &visit) const
{
    try {
        return removed(*this, progress, visit);
    } catch (const PlaceRefused &refused) {
        return {refused.returnCode};
    } catch (const DatabaseError &error) {
        qCWarning(stationLog, "The recordings in %s: %s", qPrintable(place.root()), error.what());
        return {returnCodeOf(error.trouble())};
    } catch (...) {
        return {StationReturnCode::InternalError};
    }
}
