#pragma once

#include "PlaceRemover.h"
#include "PlaceTask.h"

#include <functional>

class DiskVisit;

/// The deletion of the recordings of one place, as work beside the station's thread: nothing here belongs to that.
struct PlaceDeletion
{
    PlaceTask place;
    QString dataFolder; ///< of the station, whose database it reads
    QString backupFolder; ///< of the station; empty: there is none
    /// Called before each day of a camera is looked at, on the deleting thread; may be empty.
    std::function<void(const QString &camera, const QString &day)> beforeDay = {};

    /// Whether the folder of the place is there, is on the file system where it was seen, and belongs to no recording
    /// group and no backup area wherever links lead; else the code of the refusal. "0" where all is well.
    /// @param claimed as claimedFolders() has them
    static QString check(const PlaceTask &place, const QStringList &claimed, DiskVisit &visit);

    /// Deletes. Looks at the recording groups again before each day, so that no file goes that was recorded for a group
    /// which came to name the place meanwhile; stops then, when @p progress says so, and when nobody waits for
    /// @p visit any more. Throws nothing.
    DeletionResult run(DeletionProgress &progress, DiskVisit &visit) const;
};
