#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class RecordingIndex;

/// The files in a day's folder.
struct RemoteDay
{
    QString camera; ///< the camera's folder
    QString day; ///< "yyyy-mm-dd"
    bool isThere = true; ///< else it went away since its camera's folder was read
    QHash<QString, qint64> sizes; ///< bytes of each file, by its name
};

/// What a reading of a recording place on a NAS server, or a part of one, found.
struct RemoteListing
{
    qint64 place = 0; ///< number of the recording place
    std::optional<QStringList> cameras; ///< all cameras' folders; none: they were not read
    QHash<QString, QStringList> days; ///< all days' folders of each camera whose folder was read
    QList<RemoteDay> files;
    /// When the reading began, in UTC, where this is its last part and everything could be read; null otherwise.
    QDateTime readAt;
};

/// Brings @p index in line with @p listing: what is not in it any more goes, and what was not read stays. Throws
/// DatabaseError.
void applyListing(RecordingIndex &index, const RemoteListing &listing);
