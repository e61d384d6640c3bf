#pragma once

#include "RemoteListing.h"
#include "smb/SmbClient.h"

#include <QSet>

#include <chrono>
#include <deque>

/// A folder of a recording place to be read.
struct NasReadTask
{
    enum class Kind { Place, Camera, Day };
    Kind kind = Kind::Place;
    QString camera = {};
    QString day = {};
};

/// By the cameras' folders, the days' folders whose files are known.
using KnownDays = QHash<QString, QSet<QString>>;

/// What is left of a reading.
struct NasReadJob
{
    qint64 place = 0; ///< number of the recording place
    SmbPath path; ///< the group's path
    QString folder; ///< of the group below it
    SmbLogon logon;
    bool isFull = true; ///< else days that are known and older than the two newest are passed over
    KnownDays known;
    std::deque<NasReadTask> tasks;
};

/// What came of a part of a reading.
struct NasReadPart
{
    /// "0", or why the reading ends: "NasServerNotResponding", "LogonNASServerFaled", or "DirectoryNotFound" and
    /// "DirectoryNotReadable" of the group's path itself. Nothing else is told then.
    QString returnCode;
    RemoteListing listing;
    std::deque<NasReadTask> rest; ///< what is to be read next; empty: that was all
    QStringList unreadable; ///< folders that this user may not list, below the group's path
};

/// Reads on with @p job: at least one folder, and no new one once @p time has passed. Blocks.
/// @param limit how long one answer of the server may take
NasReadPart readOn(const NasReadJob &job, std::chrono::milliseconds limit, std::chrono::milliseconds time);
