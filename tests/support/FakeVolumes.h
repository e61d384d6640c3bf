#pragma once

#include "VolumeSource.h"

/// Volumes as a test wants them: a path lies on the volume with the longest path above it.
class FakeVolumes : public VolumeSource
{
public:
    FakeVolumes() = default;
    explicit FakeVolumes(QList<Volume> list)
        : m_volumes(std::move(list))
    {
    }

    QList<Volume> volumes() const override { return m_volumes; }

    std::optional<Volume> volumeHolding(const QString &path) const override
    {
        std::optional<Volume> holder;
        for (const Volume &volume : m_volumes) {
            const bool isAbove = path == volume.path || path.startsWith(volume.path + u'/');
            if (isAbove && (!holder || volume.path.size() > holder->path.size()))
                holder = volume;
        }
        return holder;
    }

private:
    QList<Volume> m_volumes;
};
