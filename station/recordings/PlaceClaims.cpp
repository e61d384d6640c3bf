#include "PlaceClaims.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "disk/DiskPath.h"
#include "disk/DiskVisit.h"
#include "files/FileName.h"

#include <algorithm>
#include <cerrno>

namespace {
bool isAtOrBelow(const QString &path, const QString &above)
{
    return path == above || path.startsWith(above.endsWith(u'/') ? above : above + u'/');
}

/// Links resolved as far as there is something; empty where a disk does not answer.
QString canonical(const QString &path, DiskVisit &visit)
{
    QString existing = path;
    QString missing;
    while (!existing.isEmpty()) {
        const DiskPath found = resolved(encodedName(existing).toStdString(), visit);
        if (found.error == 0)
            return decodedName(found.canonical.c_str()) + missing;
        if (found.error != ENOENT && found.error != ENOTDIR)
            return {};
        const qsizetype slash = existing.lastIndexOf(u'/');
        missing.prepend(existing.mid(slash));
        existing.truncate(slash);
    }
    return missing;
}
} // namespace

QStringList claimedFolders(const QList<RecordingGroup> &groups, const QString &backupFolder)
{
    QStringList folders;
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            if (path.kind == PathKind::Local)
                folders.append(path.path + u'/' + group.folder);
        }
    }
    if (!backupFolder.isEmpty())
        folders.append(backupFolder);
    return folders;
}

bool isClaimed(const QString &root, const QStringList &claimed)
{
    return std::any_of(claimed.cbegin(), claimed.cend(),
                       [&root](const QString &other) { return isAtOrBelow(root, other) || isAtOrBelow(other, root); });
}

QString placeRefusal(const QString &root, const QStringList &claimed, DiskVisit &visit)
{
    QStringList found;
    for (const QString &folder : claimed) {
        const QString place = canonical(folder, visit);
        if (!place.isEmpty())
            found.append(place);
    }
    const DiskPath own = resolved(encodedName(root).toStdString(), visit);
    if (own.error == ETIMEDOUT)
        return StationReturnCode::VolumeNotAnswering;
    if (own.error == EACCES || own.error == EPERM)
        return StationReturnCode::PermissionDenied;
    if (own.error != 0)
        return StationReturnCode::DirectoryNotFound;
    return isClaimed(decodedName(own.canonical.c_str()), found) ? StationReturnCode::PlaceInUse : ReturnCode::Success;
}
