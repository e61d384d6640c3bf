#include "DiskSpace.h"
#include "MountWatch.h"
#include "MountedVolumes.h"
#include "Station.h"
#include "StationCall.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <sys/stat.h>

namespace {
dev_t deviceOf(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

/// A volume, and what the system itself says of its folder.
struct SeenVolume
{
    Volume volume;
    bool isFolder = false;
    dev_t number = 0;
    QByteArray device;
    QByteArray fileSystem;
};

/// The volumes of this machine in their order, with what the system said of them at the same time.
QList<SeenVolume> look()
{
    QList<SeenVolume> seen;
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes) {
        const QStorageInfo info(volume.path);
        seen.append(
            {volume, QFileInfo(volume.path).isDir(), deviceOf(volume.path), info.device(), info.fileSystemType()});
    }
    return seen;
}

/// Where pseudo file systems are mounted here; a container or a changed root may lack all of them but /proc.
QStringList pseudoFolders()
{
    QStringList folders{QStringLiteral("/proc")};
    for (const QString &folder : {QStringLiteral("/sys"), QStringLiteral("/dev"), QStringLiteral("/dev/shm")}) {
        if (QFileInfo::exists(folder) && deviceOf(folder) != deviceOf(QStringLiteral("/")))
            folders.append(folder);
    }
    return folders;
}

MountRecord disk(int id, int parentId, const QString &device, const QString &mountPoint)
{
    MountRecord record;
    record.id = id;
    record.parentId = parentId;
    record.device = device;
    record.root = QStringLiteral("/");
    record.mountPoint = mountPoint;
    record.fileSystem = QStringLiteral("ext4");
    record.source = QStringLiteral("/dev/sda%1").arg(id);
    return record;
}

MountedVolumes::ReadTable tableOf(const QList<MountRecord> &records)
{
    return [records] { return MountTable(records); };
}

StationReply ask(const QString &name, const QVariant &data = {})
{
    Station station;
    return StationCall(station, name, data).reply();
}

QStringList pathsIn(const QVariantList &volumes)
{
    QStringList paths;
    for (const QVariant &volume : volumes)
        paths.append(volume.toMap().value(QStringLiteral("volumePath")).toString());
    return paths;
}

/// The volumes whose size or free space the station tells other than the system, a line for each.
QStringList wrongSizes()
{
    constexpr qint64 kilobyte = 1024;
    QHash<QString, DiskSpace> before;
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes)
        before.insert(volume.path, diskSpaceOf(volume.path, kilobyte));
    const QVariantList answer = ask(QStringLiteral("getVolume")).data.toList();
    QStringList wrong;
    for (const QVariant &entry : answer) {
        const QVariantMap volume = entry.toMap();
        const QString path = volume.value(QStringLiteral("volumePath")).toString();
        const DiskSpace told{volume.value(QStringLiteral("volumeSize")).toLongLong(),
                             volume.value(QStringLiteral("volumeAvailableSize")).toLongLong()};
        const DiskSpace after = diskSpaceOf(path, kilobyte);
        if (!before.contains(path) || !told.isBetween(before.value(path), after))
            wrong.append(QStringLiteral("%1: %2 KB, expected %3").arg(path, told.text(), after.text()));
    }
    if (answer.isEmpty() || answer.size() != before.size())
        wrong.append(QStringLiteral("%1 volumes, expected %2").arg(answer.size()).arg(before.size()));
    return wrong;
}
} // namespace

/// The volumes of the machine that runs the test, held against what the system itself says of them.
class StationMountedVolumesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theRootComesLastAndIsTheSystem();
    void everyVolumeHasAPathANameAndASize();
    void sizesAgreeWithTheSystem();
    void noVolumeIsAPseudoFileSystem();
    void noFileSystemIsListedTwice();
    void everyWritableDiskIsListed();
    void theVolumeOfAPathIsFound();
    void pseudoFileSystemsTakeNoFolder_data();
    void pseudoFileSystemsTakeNoFolder();
    void theEmptyBasePathNamesTheSameVolumes();

    void aVolumeThatWentAwayIsLeftOut();
    void theRootNeedsNoTable();
    void aReadOnlyMountOfAWritableVolumeIsReadOnly();
    void theTableIsReadAnewEachTime();
};

void StationMountedVolumesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void StationMountedVolumesTest::theRootComesLastAndIsTheSystem()
{
    const QList<Volume> volumes = MountedVolumes().volumes();
    QVERIFY(!volumes.isEmpty());
    QCOMPARE(volumes.back().path, QStringLiteral("/"));
    QVERIFY(volumes.back().isSystem);
    for (qsizetype i = 0; i < volumes.size(); ++i) {
        for (const Volume &later : volumes.mid(i + 1))
            QVERIFY2(!later.path.startsWith(volumes[i].path), qPrintable(later.path));
    }
}

void StationMountedVolumesTest::everyVolumeHasAPathANameAndASize()
{
    const QList<SeenVolume> volumes = betweenMounts(look);
    QVERIFY(!volumes.isEmpty());
    for (const auto &[volume, isFolder, number, device, fileSystem] : volumes) {
        QVERIFY2(isFolder, qPrintable(volume.path));
        QCOMPARE(volume.path, QDir::cleanPath(volume.path));
        QVERIFY2(!volume.name.isEmpty(), qPrintable(volume.path));
        QVERIFY2(volume.bytesTotal > 0, qPrintable(volume.path));
        QVERIFY2(volume.bytesAvailable >= 0, qPrintable(volume.path));
        QVERIFY2(volume.bytesAvailable <= volume.bytesTotal, qPrintable(volume.path));
    }
}

void StationMountedVolumesTest::sizesAgreeWithTheSystem()
{
    constexpr int attempts = 100;
    QStringList wrong = betweenMounts(wrongSizes);
    for (int attempt = 1; attempt < attempts && !wrong.isEmpty(); ++attempt)
        wrong = betweenMounts(wrongSizes);
    QCOMPARE(wrong, QStringList());
}

void StationMountedVolumesTest::noVolumeIsAPseudoFileSystem()
{
    static const QSet<QByteArray> pseudo{"proc",  "sysfs",    "devtmpfs", "devpts", "cgroup", "cgroup2",
                                         "tmpfs", "squashfs", "autofs",   "mqueue", "debugfs"};
    const QList<SeenVolume> volumes = betweenMounts(look);
    for (const auto &[volume, isFolder, number, device, fileSystem] : volumes) {
        if (volume.path == u'/')
            continue;
        QVERIFY2(!pseudo.contains(fileSystem), qPrintable(volume.path));
        for (const QString &folder : {QStringLiteral("/proc"), QStringLiteral("/sys"), QStringLiteral("/dev")}) {
            QVERIFY2(volume.path != folder && !volume.path.startsWith(folder + u'/'), qPrintable(volume.path));
        }
    }
}

void StationMountedVolumesTest::noFileSystemIsListedTwice()
{
    QSet<dev_t> numbers;
    const QList<SeenVolume> volumes = betweenMounts(look);
    for (const SeenVolume &seen : volumes)
        numbers.insert(seen.number);
    QCOMPARE(numbers.size(), volumes.size());
}

void StationMountedVolumesTest::everyWritableDiskIsListed()
{
    const QStringList missing = betweenMounts([] {
        QSet<QByteArray> devices; // subvolumes have numbers of their own
        QSet<dev_t> numbers; // a changed root has no name
        const QList<SeenVolume> volumes = look();
        for (const SeenVolume &seen : volumes) {
            devices.insert(seen.device);
            numbers.insert(seen.number);
        }
        QStringList others;
        const QList<QStorageInfo> mounted = QStorageInfo::mountedVolumes();
        for (const QStorageInfo &disk : mounted) {
            const bool isDisk = disk.device().startsWith("/dev/") && disk.device() != "/dev/fuse";
            if (!isDisk || disk.isReadOnly() || !QFileInfo(disk.rootPath()).isDir())
                continue;
            const QByteArray shown = QStorageInfo(disk.rootPath()).device();
            const bool isHidden = !shown.isEmpty() && shown != disk.device(); // under a later mount
            if (!isHidden && !devices.contains(disk.device()) && !numbers.contains(deviceOf(disk.rootPath())))
                others.append(QString::fromLocal8Bit(disk.device()));
        }
        return others;
    });
    QCOMPARE(missing, QStringList());
}

void StationMountedVolumesTest::theVolumeOfAPathIsFound()
{
    struct Holder
    {
        Volume volume;
        std::optional<Volume> holder;
    };
    const MountedVolumes source;
    const QList<Holder> holders = betweenMounts([&source] {
        QList<Holder> list;
        const QList<Volume> volumes = source.volumes();
        for (const Volume &volume : volumes)
            list.append({volume, source.volumeHolding(volume.path)});
        return list;
    });
    QVERIFY(!holders.isEmpty());
    for (const auto &[volume, holder] : holders) {
        QVERIFY2(holder, qPrintable(volume.path));
        QCOMPARE(holder->path, volume.path);
        QCOMPARE(holder->isReadOnly, volume.isReadOnly);
    }
    for (const QString &path : pseudoFolders())
        QVERIFY2(!source.volumeHolding(path), qPrintable(path));
}

void StationMountedVolumesTest::pseudoFileSystemsTakeNoFolder_data()
{
    QTest::addColumn<QString>("path");
    for (const QString &folder : pseudoFolders())
        QTest::newRow(qPrintable(folder))
            << folder + u'/' + QUuid::createUuid().toString(QUuid::Id128) + QStringLiteral("/a");
}

void StationMountedVolumesTest::pseudoFileSystemsTakeNoFolder()
{
    QFETCH(QString, path);
    QCOMPARE(ask(QStringLiteral("createDirectory"), path).returnCode, QStringLiteral("OutsideVolumes"));
    QVERIFY(!QFileInfo::exists(QFileInfo(path).path()));
}

void StationMountedVolumesTest::theEmptyBasePathNamesTheSameVolumes()
{
    const auto [volumes, folders] = betweenMounts([] {
        return std::pair(pathsIn(ask(QStringLiteral("getVolume")).data.toList()),
                         ask(QStringLiteral("getServerDir"), QString()).data.toMap());
    });
    QVERIFY(volumes.contains(QStringLiteral("/")));
    QCOMPARE(folders.value(QStringLiteral("dirFolderList")).toStringList(), volumes);
}

void StationMountedVolumesTest::aVolumeThatWentAwayIsLeftOut()
{
    const QTemporaryDir folder; // is there, but another mount shows it
    QVERIFY(folder.isValid());
    const MountedVolumes source(tableOf({
        disk(1, 0, QStringLiteral("250:1"), QStringLiteral("/")),
        disk(2, 1, QStringLiteral("250:2"), QFileInfo(folder.path()).canonicalFilePath()),
        disk(3, 1, QStringLiteral("250:3"), QStringLiteral("/no-such-mount")),
    }));
    const QList<Volume> volumes = source.volumes();
    QCOMPARE(volumes.size(), 1);
    QCOMPARE(volumes.front().path, QStringLiteral("/"));
    QVERIFY(!source.volumeHolding(QFileInfo(folder.path()).canonicalFilePath()));
}

void StationMountedVolumesTest::theRootNeedsNoTable()
{
    const QList<Volume> volumes = MountedVolumes(tableOf({})).volumes();
    QCOMPARE(volumes.size(), 1);
    QCOMPARE(volumes.front().path, QStringLiteral("/"));
    QVERIFY(volumes.front().isSystem);
    QVERIFY(volumes.front().bytesTotal > 0);
}

void StationMountedVolumesTest::aReadOnlyMountOfAWritableVolumeIsReadOnly()
{
    MountRecord again = disk(2, 1, QStringLiteral("250:1"), QStringLiteral("/srv/view"));
    again.isReadOnly = true;
    const MountedVolumes source(tableOf({disk(1, 0, QStringLiteral("250:1"), QStringLiteral("/")), again}));
    QVERIFY(!source.volumeHolding(QStringLiteral("/srv"))->isReadOnly);
    const std::optional<Volume> holder = source.volumeHolding(QStringLiteral("/srv/view/a"));
    QVERIFY(holder);
    QCOMPARE(holder->path, QStringLiteral("/"));
    QVERIFY(holder->isReadOnly);
}

void StationMountedVolumesTest::theTableIsReadAnewEachTime()
{
    int reads = 0;
    const MountedVolumes source([&reads] {
        ++reads;
        return MountTable({});
    });
    source.volumes();
    source.volumes();
    QCOMPARE(reads, 2);
}

QTEST_GUILESS_MAIN(StationMountedVolumesTest)
#include "tst_station_mounted_volumes.moc"
