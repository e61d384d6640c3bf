#pragma once

#include "PathCheck.h"

class VolumeSource;

/// Folders on the station's own volumes.
///
/// A path is refused with PathNotAbsolute, NameRefused, DirectoryNotFound, NotADirectory, OutsideVolumes or
/// PathNotWritable, in this order. The reason of the last is PermissionDenied, VolumeReadOnly, VolumeFull or
/// CannotCreate.
class LocalPaths : public PathCheck
{
public:
    /// @param volumes must outlive this object
    explicit LocalPaths(const VolumeSource &volumes);

    PathFacts look(const QString &path) const override;
    /// A path that does not exist at the moment has no volume: what is there belongs to whatever lies under its place.
    PathFacts volumeOf(const QString &path) const override;
    /// Stops where the thread is asked to end.
    qint64 bytesBelow(const QString &folder) const override;

private:
    const VolumeSource &m_volumes;
};
