#include "MountTable.h"

#include <QFile>
#include <QSet>

#include <algorithm>

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

/// The table writes blanks and backslashes in names as octal numbers: "\040" is a blank.
QString unescaped(const QByteArray &field)
{
    QByteArray text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        bool isOctal = false;
        const int code = field[i] == '\\' ? field.mid(i + 1, 3).toInt(&isOctal, 8) : 0;
        text.append(isOctal ? static_cast<char>(code) : field[i]);
        if (isOctal)
            i += 3;
    }
    return QString::fromUtf8(text);
}

/// A key that sorts a path behind all that begin with it.
QString endsLast(const QString &path)
{
    return path + QChar(0xffff);
}

bool hasReadOnlyOption(const QByteArray &options)
{
    return options.split(',').contains("ro");
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
    for (const QByteArray &line : mountInfo.split('\n')) {
        // id parent major:minor root mount-point options [optional fields] - type source super-options
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype dash = fields.indexOf("-", 6);
        if (dash < 0 || fields.size() < dash + 4)
            continue;
        MountRecord record;
        bool isId = false;
        bool isParentId = false;
        record.id = fields[0].toInt(&isId);
        record.parentId = fields[1].toInt(&isParentId);
        if (!isId || !isParentId)
            continue;
        record.device = QString::fromLatin1(fields[2]);
        record.root = unescaped(fields[3]);
        record.mountPoint = unescaped(fields[4]);
        record.fileSystem = QString::fromLatin1(fields[dash + 1]);
        record.source = unescaped(fields[dash + 2]);
        record.isReadOnly = hasReadOnlyOption(fields[5]) || hasReadOnlyOption(fields[dash + 3]);
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
