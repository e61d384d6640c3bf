#pragma once

#include "PlaceTask.h"

#include <QStringList>

class DiskVisit;

/// What came of moving recordings.
struct DayMoveResult
{
    QString returnCode;
    QString target = {}; ///< the folder of the group that they are in now
    qint64 days = 0; ///< folders that were moved
    QStringList existing = {}; ///< what is in the way in the group's folder, in order; at most 1000
};

/// Gives the recordings of a place to a recording group: the folders of the days of each camera are moved into the
/// group's folder on the same file system. Work beside the station's thread.
struct DayMove
{
    PlaceTask place;
    QStringList targets; ///< the local paths of the group, in the order in which they are tried
    QString targetFolder; ///< of the group in each of them
    QStringList claimed; ///< as claimedFolders() has them

    /// Moves all of them or none: nothing is moved where a day is there already, and what was moved is moved back where
    /// the disk refuses one, or nobody waits for @p visit any more. Nothing is copied, nothing is overwritten.
    DayMoveResult run(DiskVisit &visit) const;
};
