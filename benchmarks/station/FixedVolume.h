#pragma once

#include "VolumeSource.h"

/// One volume for every path, of which nothing is used up: what is told of it changes with the recordings alone.
class FixedVolume : public VolumeSource
{
public:
    explicit FixedVolume(Volume volume)
        : m_volume(std::move(volume))
    {
    }

    QList<Volume> volumes() const override { return {m_volume}; }
    std::optional<Volume> volumeHolding(const QString &) const override { return m_volume; }

private:
    Volume m_volume;
};
