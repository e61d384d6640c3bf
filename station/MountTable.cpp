#include "MountTable.h"

#include <QFile>
#include <QSet>

#include <libmount/libmount.h>

#include <algorithm>
#include <cstdio>
#include <memory>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {
/// File systems that store data though no block device of this machine is behind them.
bool storesWithoutDevice(const QString &fileSystem)
{
    static const QSet<QString> types{
        QStringLiteral("9p"),
        QStringLiteral("afs"),
        QStringLiteral("beegfs"),
        QStringLiteral("ceph"),
        QStringLiteral("cifs"),
        QStringLiteral("fuse.ceph"),
        QStringLiteral("fuse.glusterfs"),
        QStringLiteral("fuse.mergerfs"),
        QStringLiteral("fuse.sshfs"),
        QStringLiteral("gpfs"),
        QStringLiteral("lustre"),
        QStringLiteral("nfs"),
        QStringLiteral("nfs4"),
        QStringLiteral("smb3"),
        QStringLiteral("smbfs"),
        QStringLiteral("virtiofs"),
        QStringLiteral("zfs"),
    };
    return types.contains(fileSystem);
}

/// File systems that can only be read.
bool isImage(const QString &fileSystem)
{
    static const QSet<QString> types{
        QStringLiteral("cramfs"),          QStringLiteral("erofs"),    QStringLiteral("iso9660"),
        QStringLiteral("romfs"),           QStringLiteral("squashfs"), QStringLiteral("fuse.snapfuse"),
        QStringLiteral("fuse.squashfuse"),
    };
    return types.contains(fileSystem);
}

bool isStorage(const MountRecord &record)
{
    if (record.mountPoint == u'/')
        return true;
    if (!record.isFolder || isImage(record.fileSystem))
        return false;
    const bool isImageDevice =
        record.source.startsWith(QStringLiteral("/dev/loop")) || record.source.startsWith(QStringLiteral("/dev/sr"));
    if (record.isReadOnly && isImageDevice)
        return false;
    // Programs that show a file system of their own may name the way they do that as their source.
    const bool isBlockDevice =
        record.source.startsWith(QStringLiteral("/dev/")) && record.source != QStringLiteral("/dev/fuse");
    return isBlockDevice || storesWithoutDevice(record.fileSystem);
}

/// Whether @p path is @p folder or lies below it.
bool isWithin(const QString &path, const QString &folder)
{
    return folder == u'/' || path == folder || (path.startsWith(folder) && path[folder.size()] == u'/');
}

/// A key that sorts a path behind all that begin with it.
QString endsLast(const QString &path)
{
    return path + QChar(0xffff);
}

bool hasReadOnlyOption(const char *options)
{
    return options && mnt_optstr_get_option(options, "ro", nullptr, nullptr) == 0;
}

struct FileCloser
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

using Table = std::unique_ptr<libmnt_table, decltype(&mnt_unref_table)>;

/// The rows of @p mountInfo; lines of another form are left out. Null without memory.
Table readTable(const QByteArray &mountInfo)
{
    Table table(mnt_new_table(), &mnt_unref_table);
    const std::unique_ptr<std::FILE, FileCloser> text(
        fmemopen(const_cast<char *>(mountInfo.constData()), static_cast<std::size_t>(mountInfo.size()), "r"));
    if (!table || !text)
        return {nullptr, &mnt_unref_table};
    mnt_table_set_parser_errcb(table.get(), [](libmnt_table *, const char *, int) { return 1; }); // goes on
    // The name is looked up; a relative one would touch the current folder's disk, which may hang.
    mnt_table_parse_stream(table.get(), text.get(), "/proc/self/mountinfo");
    return table;
}

/// The device that the folder "/" lies on, as the table of mounts writes it.
QString rootDevice()
{
    struct stat status = {};
    if (stat("/", &status) != 0)
        return {};
    return QStringLiteral("%1:%2").arg(major(status.st_dev)).arg(minor(status.st_dev));
}
} // namespace

bool isSystemMount(const MountRecord &mount)
{
    static const QSet<QString> mountPoints{
        QStringLiteral("/"),
        QStringLiteral("/boot"),
        QStringLiteral("/boot/efi"),
        QStringLiteral("/usr"),
    };
    return mountPoints.contains(mount.mountPoint);
}

QString volumeName(const MountRecord &mount, const QString &label)
{
    if (!label.isEmpty())
        return label;
    if (mount.mountPoint == u'/')
        return QStringLiteral("System");
    if (storesWithoutDevice(mount.fileSystem) && !mount.source.isEmpty())
        return mount.source;
    return mount.mountPoint.section(u'/', -1);
}

MountTable::MountTable(QList<MountRecord> records, const QString &rootDevice)
    : m_records(std::move(records))
{
    for (qsizetype i = 0; i < m_records.size() && m_root < 0; ++i) {
        if (m_records[i].mountPoint == u'/' && isOutermost(m_records[i]))
            m_root = i;
    }
    if (m_root >= 0)
        return;
    MountRecord root;
    root.id = -1;
    root.parentId = -1;
    root.device = rootDevice;
    root.root = root.mountPoint = QStringLiteral("/");
    m_records.prepend(root);
    m_root = 0;
}

QList<MountRecord> MountTable::parse(const QByteArray &mountInfo)
{
    QList<MountRecord> records;
    if (mountInfo.isEmpty())
        return records;
    const Table table = readTable(mountInfo);
    if (!table)
        return records;
    const std::unique_ptr<libmnt_iter, decltype(&mnt_free_iter)> rows(mnt_new_iter(MNT_ITER_FORWARD), &mnt_free_iter);
    libmnt_fs *row = nullptr;
    while (rows && mnt_table_next_fs(table.get(), rows.get(), &row) == 0) {
        if (mnt_fs_get_id(row) <= 0 || !mnt_fs_get_source(row)) // a line of another form
            continue;
        const dev_t device = mnt_fs_get_devno(row);
        MountRecord record;
        record.id = mnt_fs_get_id(row);
        record.parentId = mnt_fs_get_parent_id(row);
        record.device = QStringLiteral("%1:%2").arg(major(device)).arg(minor(device));
        record.root = QString::fromUtf8(mnt_fs_get_root(row));
        record.mountPoint = QString::fromUtf8(mnt_fs_get_target(row));
        record.fileSystem = QString::fromLatin1(mnt_fs_get_fstype(row));
        record.source = QString::fromUtf8(mnt_fs_get_source(row));
        record.isReadOnly =
            hasReadOnlyOption(mnt_fs_get_vfs_options(row)) || hasReadOnlyOption(mnt_fs_get_fs_options(row));
        records.append(record);
    }
    return records;
}

MountTable MountTable::ofThisMachine()
{
    QFile file(QStringLiteral("/proc/self/mountinfo"));
    const QList<MountRecord> records = file.open(QIODevice::ReadOnly) ? parse(file.readAll()) : QList<MountRecord>();
    const bool hasRoot = std::any_of(records.cbegin(), records.cend(),
                                     [](const MountRecord &record) { return record.mountPoint == u'/'; });
    return MountTable(records, hasRoot ? QString() : rootDevice()); // asking it may hang
}

void MountTable::markAsFile(int id)
{
    for (MountRecord &record : m_records) {
        if (record.id == id)
            record.isFolder = false;
    }
}

QList<MountRecord> MountTable::volumes() const
{
    QList<MountRecord> candidates;
    for (const MountRecord &record : m_records) {
        if (isStorage(record) && holding(record.mountPoint).id == record.id)
            candidates.append(record);
    }
    // Of several mounts of one file system the root stands for it, else the one that shows all of it, else the first.
    const auto rank = [](const MountRecord &record) {
        return record.mountPoint == u'/' ? 0 : record.root == u'/' ? 1 : 2;
    };
    std::stable_sort(candidates.begin(), candidates.end(),
                     [rank](const MountRecord &left, const MountRecord &right) { return rank(left) < rank(right); });
    QList<MountRecord> listed;
    QSet<QString> devices;
    for (const MountRecord &record : candidates) {
        if (!devices.contains(record.device))
            listed.append(record);
        devices.insert(record.device);
    }
    std::sort(listed.begin(), listed.end(), [](const MountRecord &left, const MountRecord &right) {
        return endsLast(left.mountPoint) < endsLast(right.mountPoint);
    });
    return listed;
}

const MountRecord &MountTable::holding(const QString &path) const
{
    // As the kernel does it: from the root on, step into the next mount on the way to the path.
    const MountRecord *current = &m_records[m_root];
    for (qsizetype step = 0; step < m_records.size(); ++step) {
        const MountRecord *next = nullptr;
        for (const MountRecord &record : m_records) {
            if (&record != current && isMountedOn(record, *current) && isWithin(path, record.mountPoint)
                && (!next || record.mountPoint.size() < next->mountPoint.size()))
                next = &record;
        }
        if (!next)
            break;
        current = next;
    }
    return *current;
}

bool MountTable::isOutermost(const MountRecord &record) const
{
    return record.parentId == record.id
        || std::none_of(m_records.begin(), m_records.end(),
                        [&record](const MountRecord &other) { return other.id == record.parentId; });
}

bool MountTable::isMountedOn(const MountRecord &record, const MountRecord &parent) const
{
    const MountRecord &root = m_records[m_root];
    return record.parentId == parent.id || (&parent == &root && &record != &root && isOutermost(record));
}
