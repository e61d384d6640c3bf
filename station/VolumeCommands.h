#pragma once

#include "CommandTable.h"
#include "VolumeSource.h"
#include "disk/DiskWork.h"

struct NewFolder;

/// The commands about volumes and folders: getVolume, getServerDir, createDirectory. Folders are listed and made beside
/// the station's thread: a disk that hangs holds up nobody but who asks for it, and is refused after a while.
class VolumeCommands
{
public:
    /// @param volumes must outlive this object
    /// @param limit how long a disk may say nothing
    explicit VolumeCommands(const VolumeSource &volumes, std::chrono::milliseconds limit = std::chrono::seconds(5));

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    void getVolume(const QVariant &data, const Answer &answer) const;
    void getServerDir(const QVariant &data, const Answer &answer);
    void createDirectory(const std::shared_ptr<Edit> &edit);
    void make(const NewFolder &folder, const std::shared_ptr<Edit> &edit);

    const VolumeSource &m_volumes;
    DiskWork m_disks;
};
