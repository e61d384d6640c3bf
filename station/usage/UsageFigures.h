#pragma once

#include "VolumeSource.h"

#include <QDate>
#include <QDateTime>
#include <QMap>
#include <QVariantList>

#include <optional>

/// What the recorded files of one day come to.
struct DaySum
{
    qint64 files = 0;
    qint64 bytes = 0;

    friend bool operator==(const DaySum &, const DaySum &) = default;
};

/// Days with recordings, each with at least one file.
using DaySums = QMap<QDate, DaySum>;

/// One pair of recording group and path, with everything that its usage figures are made of.
struct UsagePlace
{
    enum class Storage {
        Unknown, ///< nothing can be told of it
        Gone, ///< it was there, and is not mounted now
        Present,
    };

    QString groupId; ///< empty: the path's recordings belong to no group; UsageGroup::backup: the backup area
    QString groupName;
    int reservedMinutes = 0; ///< 0 where no reserved time applies
    QString path;
    qint64 reservedMegabytes = 0;
    bool isNas = false;
    Storage storage = Storage::Unknown;
    Volume volume; ///< Present: as it is now; Gone: its path and name as they were
    std::optional<DaySums> days; ///< none: the recordings were never read through
    bool isCounted = false; ///< the days are as the folders are, and follow their changes; on a NAS share, in rounds
    /// UTC: when that was so last; null: never, or, but for NAS shares, not since the start of the station.
    QDateTime countedAt;
};

namespace UsageGroup {
/// The id under which the backup area's figures are told.
extern const QString backup;
} // namespace UsageGroup

/// The data of the event "VolumeChanged": one map for each of @p places, in their order, those without a group behind
/// them once for each path. docs/station-protocol.md tells what the figures are.
/// @param today invalid: the clock cannot be believed, and nobody knows which days are over
QVariantList usageEntries(const QList<UsagePlace> &places, const QDate &today);

/// Whether @p day has not come yet. Tomorrow may have come where the camera is.
bool isOfTheFuture(const QDate &day, const QDate &today);

/// Whether a client that was told @p sent has to hear @p now: any difference counts, but for free space that moved by
/// less than a thousandth of its volume without coming to nothing or from nothing.
bool isWorthTelling(const QVariantList &sent, const QVariantList &now);

/// @p total in whole parts as @p weights have it, which add up to it exactly; nothing where all weights are 0.
QList<qint64> partsOf(qint64 total, const QList<qint64> &weights);
