#pragma once

#include "VolumeSource.h"

/// The storage volumes mounted on this machine; MountTable says which mounts count. Reads the table of mounts at every
/// call, so volumes that come and go are seen. A volume that does not answer with its size is left out, the root never.
class MountedVolumes : public VolumeSource
{
public:
    QList<Volume> volumes() const override;
    std::optional<Volume> volumeHolding(const QString &path) const override;
};
