#pragma once

#include "groups/RecordingGroup.h"

#include <QString>
#include <QStringList>

class DiskVisit;

/// The folders on this machine's disks that recordings belong to: those of @p groups below their paths, and the backup
/// area, where there is one.
QStringList claimedFolders(const QList<RecordingGroup> &groups, const QString &backupFolder);

/// Whether the folder @p root is one of @p claimed, lies in one or holds one, as they are written.
bool isClaimed(const QString &root, const QStringList &claimed);

/// Why recordings in the folder @p root may not be touched: "PlaceInUse" where isClaimed(), wherever symbolic links
/// lead, or the code of what keeps the station from looking; "0" where nothing does. Touches disks; what a claimed
/// folder on one that does not answer would lead to is passed over. @p visit is on the disk of @p root at the end.
QString placeRefusal(const QString &root, const QStringList &claimed, DiskVisit &visit);
