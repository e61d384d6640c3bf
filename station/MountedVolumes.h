#pragma once

#include "MountTable.h"
#include "VolumeSource.h"

#include <chrono>
#include <functional>
#include <memory>

/// The storage volumes mounted on this machine; MountTable says which mounts count. Reads the table of mounts at every
/// call, so volumes that come and go are seen. A volume that does not tell its size is left out, the root never.
///
/// A mount may hang: all are asked side by side on threads of their own, and a call waits for them no longer than a
/// limit. One that did not answer is a trouble from then on, and is asked again at intervals, never twice at a time.
class MountedVolumes : public VolumeSource
{
public:
    using ReadTable = std::function<MountTable()>;

    /// What a look at a mount tells.
    struct Look
    {
        bool isFile = false; ///< a single file is mounted there
        std::optional<Volume>
            volume; ///< none: it does not tell its size, or is gone and its folder shows another mount
    };
    /// May hang; called on any thread, also after the end of the object.
    using LookAt = std::function<Look(const MountRecord &)>;

    struct Limits
    {
        std::chrono::milliseconds answer = std::chrono::seconds(1); ///< for one call, whatever the number of mounts
        std::chrono::milliseconds pause =
            std::chrono::seconds(60); ///< before a mount that did not answer is asked again
    };

    MountedVolumes();
    /// @param readTable reads the table of mounts, @param lookAt looks at one; without them, as the kernel has them
    explicit MountedVolumes(ReadTable readTable, LookAt lookAt = {});
    MountedVolumes(ReadTable readTable, LookAt lookAt, Limits limits);
    ~MountedVolumes() override;

    QList<Volume> volumes() const override;
    /// Asks that volume alone.
    std::optional<Volume> volumeHolding(const QString &path) const override;
    /// Asks each of their volumes once, side by side.
    QList<std::optional<Volume>> volumesHolding(const QStringList &paths) const override;
    bool isSilent(const QString &path) const override;
    QList<StationTrouble> troubles() const override;

private:
    struct Looks;

    ReadTable m_readTable;
    std::shared_ptr<Looks> m_looks; // shared with the threads
};
