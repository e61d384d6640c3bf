#include "MountedVolumes.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {
/// The device that the folder "/" lies on, as the table of mounts writes it.
QString rootDevice()
{
    struct stat status = {};
    if (stat("/", &status) != 0)
        return {};
    return QStringLiteral("%1:%2").arg(major(status.st_dev)).arg(minor(status.st_dev));
}

MountTable readMountTable()
{
    QFile file(QStringLiteral("/proc/self/mountinfo"));
    QList<MountRecord> records;
    if (file.open(QIODevice::ReadOnly))
        records = MountTable::parse(file.readAll());
    for (MountRecord &record : records)
        record.isFolder = QFileInfo(record.mountPoint).isDir();
    return MountTable(std::move(records), rootDevice());
}

/// The volume that @p mount is; none when it does not tell its size, or is gone and its folder shows another mount.
std::optional<Volume> readVolume(const MountRecord &mount)
{
    const QStorageInfo info(mount.mountPoint);
    const bool isRoot = mount.mountPoint == u'/';
    Volume volume;
    volume.path = mount.mountPoint;
    volume.name = volumeName(mount, info.name());
    volume.isSystem = isSystemMount(mount);
    volume.isReadOnly = mount.isReadOnly;
    // Where a changed root hides the mount of a path, Qt names no device and may take the path itself for a mount.
    const bool isMounted = info.rootPath() == mount.mountPoint && !info.device().isEmpty();
    if (isMounted && info.isValid() && info.isReady()) {
        volume.bytesTotal = info.bytesTotal();
        volume.bytesAvailable = info.bytesAvailable();
    } else if (isRoot) {
        std::error_code error;
        const std::filesystem::space_info space = std::filesystem::space("/", error);
        volume.bytesTotal = error ? 0 : static_cast<qint64>(space.capacity);
        volume.bytesAvailable = error ? 0 : static_cast<qint64>(space.available);
    }
    if (volume.bytesTotal <= 0 && !isRoot)
        return {};
    return volume;
}
} // namespace

MountedVolumes::MountedVolumes(ReadTable readTable)
    : m_readTable(readTable ? std::move(readTable) : readMountTable)
{
}

QList<Volume> MountedVolumes::volumes() const
{
    QList<Volume> volumes;
    const QList<MountRecord> mounts = m_readTable().volumes();
    for (const MountRecord &mount : mounts) {
        if (const std::optional<Volume> volume = readVolume(mount))
            volumes.append(*volume);
    }
    return volumes;
}

std::optional<Volume> MountedVolumes::volumeHolding(const QString &path) const
{
    const MountTable table = m_readTable();
    const MountRecord &holder = table.holding(path);
    const QList<MountRecord> mounts = table.volumes();
    for (const MountRecord &mount : mounts) {
        if (mount.device != holder.device)
            continue;
        std::optional<Volume> volume = readVolume(mount);
        if (volume)
            volume->isReadOnly = holder.isReadOnly; // one file system can be mounted both ways
        return volume;
    }
    return {};
}
