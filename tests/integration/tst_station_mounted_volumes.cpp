#include "MountedVolumes.h"
#include "Station.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {
dev_t deviceOf(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
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
    StationReply reply;
    station.handle({name, data}, [&reply](const StationReply &part) { reply = part; });
    return reply;
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
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes) {
        QVERIFY2(QFileInfo(volume.path).isDir(), qPrintable(volume.path));
        QCOMPARE(volume.path, QDir::cleanPath(volume.path));
        QVERIFY2(!volume.name.isEmpty(), qPrintable(volume.path));
        QVERIFY2(volume.bytesTotal > 0, qPrintable(volume.path));
        QVERIFY2(volume.bytesAvailable >= 0, qPrintable(volume.path));
        QVERIFY2(volume.bytesAvailable <= volume.bytesTotal, qPrintable(volume.path));
    }
}

void StationMountedVolumesTest::sizesAgreeWithTheSystem()
{
    const QVariantList volumes = ask(QStringLiteral("getVolume")).data.toList();
    QVERIFY(!volumes.isEmpty());
    for (const QVariant &entry : volumes) {
        const QVariantMap volume = entry.toMap();
        const QString path = volume.value(QStringLiteral("volumePath")).toString();
        struct statvfs figures = {};
        QCOMPARE(statvfs(QFile::encodeName(path).constData(), &figures), 0);
        const auto kilobytes = [&figures](fsblkcnt_t blocks) {
            return static_cast<qint64>(blocks * figures.f_frsize / 1024);
        };
        QCOMPARE(volume.value(QStringLiteral("volumeSize")).toLongLong(), kilobytes(figures.f_blocks));
        // Others write meanwhile.
        const qint64 available = volume.value(QStringLiteral("volumeAvailableSize")).toLongLong();
        const qint64 tolerance = kilobytes(figures.f_blocks) / 20;
        QVERIFY2(qAbs(available - kilobytes(figures.f_bavail)) <= tolerance, qPrintable(path));
    }
}

void StationMountedVolumesTest::noVolumeIsAPseudoFileSystem()
{
    static const QSet<QByteArray> pseudo{"proc",  "sysfs",    "devtmpfs", "devpts", "cgroup", "cgroup2",
                                         "tmpfs", "squashfs", "autofs",   "mqueue", "debugfs"};
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes) {
        if (volume.path == u'/')
            continue;
        QVERIFY2(!pseudo.contains(QStorageInfo(volume.path).fileSystemType()), qPrintable(volume.path));
        for (const QString &folder : {QStringLiteral("/proc"), QStringLiteral("/sys"), QStringLiteral("/dev")}) {
            QVERIFY2(volume.path != folder && !volume.path.startsWith(folder + u'/'), qPrintable(volume.path));
        }
    }
}

void StationMountedVolumesTest::noFileSystemIsListedTwice()
{
    QSet<dev_t> devices;
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes)
        devices.insert(deviceOf(volume.path));
    QCOMPARE(devices.size(), volumes.size());
}

void StationMountedVolumesTest::everyWritableDiskIsListed()
{
    QSet<QByteArray> names; // subvolumes have numbers of their own
    QSet<dev_t> numbers; // a changed root has no name
    const QList<Volume> volumes = MountedVolumes().volumes();
    for (const Volume &volume : volumes) {
        names.insert(QStorageInfo(volume.path).device());
        numbers.insert(deviceOf(volume.path));
    }
    const QList<QStorageInfo> mounted = QStorageInfo::mountedVolumes();
    for (const QStorageInfo &volume : mounted) {
        if (!volume.device().startsWith("/dev/") || volume.isReadOnly() || !QFileInfo(volume.rootPath()).isDir())
            continue;
        QVERIFY2(names.contains(volume.device()) || numbers.contains(deviceOf(volume.rootPath())),
                 volume.device().constData());
    }
}

void StationMountedVolumesTest::theVolumeOfAPathIsFound()
{
    const MountedVolumes source;
    const QList<Volume> volumes = source.volumes();
    for (const Volume &volume : volumes) {
        const std::optional<Volume> holder = source.volumeHolding(volume.path);
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
        QTest::newRow(qPrintable(folder)) << folder + QStringLiteral("/recordings/a");
}

void StationMountedVolumesTest::pseudoFileSystemsTakeNoFolder()
{
    QFETCH(QString, path);
    QCOMPARE(ask(QStringLiteral("createDirectory"), path).returnCode, QStringLiteral("OutsideVolumes"));
    QVERIFY(!QFileInfo::exists(QFileInfo(path).path()));
}

void StationMountedVolumesTest::theEmptyBasePathNamesTheSameVolumes()
{
    QStringList paths;
    const QVariantList volumes = ask(QStringLiteral("getVolume")).data.toList();
    for (const QVariant &volume : volumes)
        paths.append(volume.toMap().value(QStringLiteral("volumePath")).toString());
    const StationReply reply = ask(QStringLiteral("getServerDir"), QString());
    QCOMPARE(reply.data.toMap().value(QStringLiteral("dirFolderList")).toStringList(), paths);
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
