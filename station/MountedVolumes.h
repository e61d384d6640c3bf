#pragma once

#include "MountTable.h"
#include "VolumeSource.h"

#include <functional>

/// The storage volumes mounted on this machine; MountTable says which mounts count. Reads the table of mounts at every
/// call, so volumes that come and go are seen. A volume that does not answer with its size is left out, the root never.
class MountedVolumes : public VolumeSource
{
public:
    using ReadTable = std::function<MountTable()>;

    /// @param readTable reads the table of mounts; without it, the kernel's
    explicit MountedVolumes(ReadTable readTable = {});

    QList<Volume> volumes() const override;
    std::optional<Volume> volumeHolding(const QString &path) const override;

private:
    ReadTable m_readTable;
};
