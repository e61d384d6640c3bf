#pragma once

#include "CommandTable.h"
#include "VolumeSource.h"

/// The commands about volumes and folders: getVolume, getServerDir, createDirectory.
class VolumeCommands
{
public:
    /// @param volumes must outlive this object
    explicit VolumeCommands(const VolumeSource &volumes);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    void getVolume(const QVariant &data, const Answer &answer) const;
    void getServerDir(const QVariant &data, const Answer &answer) const;
    void createDirectory(const QVariant &data, const Answer &answer) const;

    const VolumeSource &m_volumes;
};
