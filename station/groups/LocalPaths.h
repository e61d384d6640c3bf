#pragma once

#include "PathCheck.h"
#include "disk/DiskWork.h"

class VolumeSource;

/// Folders on the station's own volumes.
///
/// A path is refused with PathNotAbsolute, NameRefused, DirectoryNotFound, NotADirectory, OutsideVolumes or
/// PathNotWritable, in this order. The reason of the last is PermissionDenied, VolumeReadOnly, VolumeFull,
/// VolumeNotAnswering or CannotCreate.
class LocalPaths : public PathCheck
{
public:
    /// @param volumes must outlive this object
    /// @param limit how long a disk may say nothing
    explicit LocalPaths(const VolumeSource &volumes, std::chrono::milliseconds limit = std::chrono::seconds(3));

    PathFacts look(const QString &path) const override;
    /// A path that does not exist at the moment has no volume: what is there belongs to whatever lies under its place.
    PathFacts volumeOf(const QString &path) const override;
    /// Stops where the thread is asked to end, or the disk does not answer.
    qint64 bytesBelow(const QString &folder) const override;

private:
    struct Place
    {
        PathFacts facts;
        bool isReadOnly = false;
    };
    Place placeOf(const QString &path) const;

    const VolumeSource &m_volumes;
    DiskWork m_disks;
};
