#pragma once

#include "alarms/StationTrouble.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// A place of a station that stores data: a mounted file system.
struct Volume
{
    QString path; ///< its root, absolute, with forward slashes
    QString name; ///< what an operator knows it by, never empty
    qint64 bytesTotal = 0;
    qint64 bytesAvailable = 0; ///< what a user without privileges may still write
    bool isSystem = false; ///< holds the operating system
    bool isReadOnly = false; ///< nothing can be written to it at the moment
    qint64 bytesFree = -1; ///< what root may still write; -1: not known
};

/// Where a station's volumes come from. Asked on the station's thread, may block there, for a bounded time.
class VolumeSource
{
public:
    virtual ~VolumeSource() = default;

    /// The volumes as they are now, one whose path begins another's behind it: clients take the first volume that
    /// begins a path for the one that holds it.
    virtual QList<Volume> volumes() const = 0;

    /// The volume that stores what lies under @p path; none when that is not one of the station's volumes.
    /// @param path of an existing folder, absolute, symbolic links resolved
    virtual std::optional<Volume> volumeHolding(const QString &path) const = 0;

    /// The same for each of @p paths, in their order.
    virtual QList<std::optional<Volume>> volumesHolding(const QStringList &paths) const
    {
        QList<std::optional<Volume>> volumes;
        for (const QString &path : paths)
            volumes.append(volumeHolding(path));
        return volumes;
    }

    /// Whether the volume that holds @p path did not answer when it was asked last: then volumeHolding() gives none.
    virtual bool isSilent(const QString &) const { return false; }

    /// The volumes that do not answer.
    virtual QList<StationTrouble> troubles() const { return {}; }
};
