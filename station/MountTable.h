#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// One row of the kernel's table of mounts.
struct MountRecord
{
    int id = 0;
    int parentId = 0; ///< of the mount that this one is mounted on
    QString device; ///< "major:minor"; all mounts of one file system have the same
    QString root; ///< which folder of the file system is mounted; "/" unless a bind mount or a subvolume
    QString mountPoint;
    QString fileSystem; ///< the type, ext4 for instance
    QString source; ///< the block device or the network share
    bool isReadOnly = false;
    bool isFolder = true; ///< containers also mount single files
};

/// Whether @p mount holds the operating system or starts it.
bool isSystemMount(const MountRecord &mount);

/// What an operator knows the volume @p mount by: its label, else "System" for the root, the share for a network mount,
/// and the last folder of the mount point for any other.
/// @param label of its file system, may be empty
QString volumeName(const MountRecord &mount, const QString &label);

/// The mounts of a machine, and which of them are storage volumes. Only looks at the rows that it was given.
class MountTable
{
public:
    /// @param rootDevice the device of the folder "/", for a table without its mount: a changed root need not be one
    explicit MountTable(QList<MountRecord> records, const QString &rootDevice = {});

    /// The rows of @p mountInfo, which is text as in /proc/self/mountinfo. Lines that do not have that form are left
    /// out.
    static QList<MountRecord> parse(const QByteArray &mountInfo);
    /// That of the kernel, read now; no mount is touched. Files that are mounted count as folders: see markAsFile().
    static MountTable ofThisMachine();

    const QList<MountRecord> &records() const { return m_records; }
    /// Notes that the mount @p id shows a single file.
    void markAsFile(int id);

    /// The mounts that are listed as volumes: one for each file system that stores data and can be reached. They are
    /// sorted by mount point, but one whose path begins another's comes behind it, and the root last: clients take the
    /// first volume that begins a path for the one that holds it.
    ///
    /// The root is always there, whatever its type. Left out are pseudo file systems and those in memory,
    /// read-only images, further mounts of a file system (bind mounts, subvolumes), single files, and mounts hidden
    /// under others.
    QList<MountRecord> volumes() const;

    /// The mount that @p path lies on. The path is absolute, symbolic links resolved.
    const MountRecord &holding(const QString &path) const;

private:
    /// Whether the mount that @p record is mounted on is not in the table.
    bool isOutermost(const MountRecord &record) const;
    bool isMountedOn(const MountRecord &record, const MountRecord &parent) const;

    QList<MountRecord> m_records;
    qsizetype m_root = -1; // the mount that the way to every path starts from
};
