#pragma once

#include <QHash>
#include <QString>
#include <QVariantList>

/// What clients show of a recording group: the entries of "VolumeChanged" that name it, added up.
struct GroupFigures
{
    qint64 recordedDays = -1; ///< -1, as with the next two: not known
    qint64 remainingDays = -1;
    qint64 bytesPerDay = -1;
    qint64 available = 0; ///< KB, of all its volumes
};

/// @p entries as usageEntries() makes them; the answer is by the group's id.
QHash<QString, GroupFigures> groupFigures(const QVariantList &entries);

/// Days that @p availableKilobytes are enough for, as a client reckons them: in whole KB, and none where less than one
/// of them is recorded in a day. -1 where nobody knows how much that is.
qint64 remainingDays(qint64 availableKilobytes, qint64 bytesPerDay);
