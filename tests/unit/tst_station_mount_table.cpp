#include "MountTable.h"

#include <QRegularExpression>
#include <QTest>

namespace {
QStringList volumePaths(const QByteArray &mountInfo, const QString &rootDevice = {})
{
    QStringList paths;
    const QList<MountRecord> volumes = MountTable(MountTable::parse(mountInfo), rootDevice).volumes();
    for (const MountRecord &volume : volumes)
        paths.append(volume.mountPoint);
    paths.sort();
    return paths;
}

const QByteArray root = "27 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n";
} // namespace

/// Which rows of a table of mounts are volumes, and which one a path lies on.
class StationMountTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void rowsAreReadFieldByField();
    void rowsThatAreNoneAreLeftOut();
    void mountsListedAsVolumes_data();
    void mountsListedAsVolumes();
    void singleFilesAreNoVolumes();
    void theFirstThatBeginsAPathHoldsIt();
    void namesTellVolumesApart_data();
    void namesTellVolumesApart();
    void aMissingRootIsAdded();
    void pathsLieOnTheMountThatShowsThem_data();
    void pathsLieOnTheMountThatShowsThem();
};

void StationMountTableTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void StationMountTableTest::rowsAreReadFieldByField()
{
    const QList<MountRecord> records =
        MountTable::parse("36 27 8:17 /data /mnt/Aufnahmen\\040S\xC3\xBC"
                          "d\\134x rw,noatime shared:7 master:1 - xfs /dev/sdb1 rw,attr2\n"
                          "37 27 0:50 / /media/nas ro,nosuid - cifs //nas/share rw,vers=3.1.1\n"
                          "38 27 8:33 / /mnt/broken rw - ext4 /dev/sdc1 ro,errors=remount-ro\n"
                          "39 27 0:51 / /mnt/norow rw,norelatime - nfs4 nas:/ro rw,ro2\n");
    QCOMPARE(records.size(), 4);
    QCOMPARE(records[0].id, 36);
    QCOMPARE(records[0].parentId, 27);
    QCOMPARE(records[0].device, QStringLiteral("8:17"));
    QCOMPARE(records[0].root, QStringLiteral("/data"));
    QCOMPARE(records[0].mountPoint, QStringLiteral("/mnt/Aufnahmen Süd\\x"));
    QCOMPARE(records[0].fileSystem, QStringLiteral("xfs"));
    QCOMPARE(records[0].source, QStringLiteral("/dev/sdb1"));
    QVERIFY(!records[0].isReadOnly);
    QVERIFY(records[0].isFolder);
    QCOMPARE(records[1].source, QStringLiteral("//nas/share"));
    QVERIFY(records[1].isReadOnly);
    QVERIFY(records[2].isReadOnly);
    QVERIFY(!records[3].isReadOnly);
}

void StationMountTableTest::rowsThatAreNoneAreLeftOut()
{
    QCOMPARE(MountTable::parse({}).size(), 0);
    QCOMPARE(MountTable::parse("\n\n").size(), 0);
    QCOMPARE(MountTable::parse("27 1 8:1 / / rw - ext4\n").size(), 0);
    QCOMPARE(MountTable::parse("27 1 8:1 / / rw ext4 /dev/sda1 rw\n").size(), 0);
    QCOMPARE(MountTable::parse("a 1 8:1 / / rw - ext4 /dev/sda1 rw\n").size(), 0);
    QCOMPARE(MountTable::parse("27 b 8:1 / / rw - ext4 /dev/sda1 rw\n").size(), 0);
    QCOMPARE(MountTable::parse(root).size(), 1);
}

void StationMountTableTest::mountsListedAsVolumes_data()
{
    QTest::addColumn<QByteArray>("mountInfo");
    QTest::addColumn<QStringList>("volumes");

    const auto row = [](const char *name, const QByteArray &mountInfo, const QStringList &others) {
        QTest::newRow(name) << root + mountInfo << QStringList{QStringLiteral("/")} + others;
    };
    const auto alone = [](const char *name, const QByteArray &mountInfo, const QStringList &volumes) {
        QTest::newRow(name) << mountInfo << volumes;
    };

    row("disks",
        "30 27 8:2 / /boot rw - ext4 /dev/sda2 rw\n"
        "31 30 8:3 / /boot/efi rw - vfat /dev/sda3 rw\n"
        "32 27 253:0 / /mnt/rec rw - xfs /dev/mapper/rec rw\n"
        "33 27 8:33 / /media/usb rw - fuseblk /dev/sdc1 rw\n",
        {QStringLiteral("/boot"), QStringLiteral("/boot/efi"), QStringLiteral("/media/usb"),
         QStringLiteral("/mnt/rec")});
    row("pseudo file systems",
        "22 27 0:21 / /proc rw - proc proc rw\n"
        "23 27 0:22 / /sys rw - sysfs sysfs rw\n"
        "24 27 0:6 / /dev rw - devtmpfs udev rw\n"
        "26 24 0:24 / /dev/pts rw - devpts devpts rw\n"
        "28 23 0:28 / /sys/fs/cgroup rw - cgroup2 cgroup2 rw\n"
        "29 27 0:29 / /run/user/1000/doc rw - fuse.portal portal rw\n"
        "30 22 0:30 / /proc/sys/fs/binfmt_misc rw - autofs systemd-1 rw\n"
        "32 27 0:32 / /etc/cluster rw - fuse /dev/fuse rw\n"
        "31 24 0:31 / /dev/hugepages rw - hugetlbfs hugetlbfs rw\n",
        {});
    row("in memory",
        "25 27 0:23 / /tmp rw - tmpfs tmpfs rw\n"
        "26 27 0:24 / /run rw - tmpfs /run rw\n"
        "28 27 0:25 / /ram rw - ramfs ramfs rw\n",
        {});
    row("read-only images",
        "30 27 7:0 / /snap/core/1 ro - squashfs /dev/loop0 ro\n"
        "31 27 11:0 / /media/cdrom ro - iso9660 /dev/sr0 ro\n"
        "32 27 7:1 / /opt/image ro - erofs /dev/loop1 ro\n"
        "33 27 7:2 / /opt/tools ro - ext4 /dev/loop2 ro\n"
        "34 27 11:1 / /media/dvd ro - udf /dev/sr1 ro\n"
        "35 27 0:60 / /snap/other/1 ro - fuse.snapfuse snapfuse ro\n",
        {});
    row("a writable image", "30 27 7:0 / /mnt/rec rw - ext4 /dev/loop0 rw\n", {QStringLiteral("/mnt/rec")});
    row("a disk that is read-only", "30 27 8:17 / /mnt/rec ro - ext4 /dev/sdb1 ro\n", {QStringLiteral("/mnt/rec")});
    row("bind mounts of a listed volume",
        "30 27 8:1 /srv/data /mnt/data rw - ext4 /dev/sda1 rw\n"
        "31 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n"
        "32 27 8:17 /cam1 /srv/cam1 rw - ext4 /dev/sdb1 rw\n",
        {QStringLiteral("/mnt/rec")});
    row("a bind mount before the whole",
        "30 27 8:17 /cam1 /srv/cam1 rw - ext4 /dev/sdb1 rw\n"
        "31 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n",
        {QStringLiteral("/mnt/rec")});
    row("the same disk twice",
        "30 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n"
        "31 27 8:17 / /mnt/again rw - ext4 /dev/sdb1 rw\n",
        {QStringLiteral("/mnt/rec")});
    row("network shares",
        "30 27 0:50 / /mnt/nfs rw - nfs4 nas:/export/rec rw\n"
        "31 27 0:51 / /mnt/cifs rw - cifs //nas/rec rw\n"
        "32 27 0:52 / /mnt/ceph rw - ceph 10.0.0.1:6789:/ rw\n",
        {QStringLiteral("/mnt/ceph"), QStringLiteral("/mnt/cifs"), QStringLiteral("/mnt/nfs")});
    row("a share that is mounted when asked for",
        "30 27 0:49 / /nas rw - autofs /etc/auto.nas rw\n"
        "31 30 0:50 / /nas/rec rw - nfs4 nas:/rec rw\n",
        {QStringLiteral("/nas/rec")});
    row("overlays of containers",
        "30 27 0:60 / /var/lib/docker/overlay2/abc/merged rw - overlay overlay rw,lowerdir=/x\n", {});
    row("zfs data sets",
        "30 27 0:61 / /tank rw - zfs tank rw\n"
        "31 30 0:62 / /tank/rec rw - zfs tank/rec rw\n",
        {QStringLiteral("/tank"), QStringLiteral("/tank/rec")});
    row("hidden under a later mount",
        "30 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n"
        "31 30 8:33 / /mnt/rec rw - ext4 /dev/sdc1 rw\n"
        "32 27 8:49 / /srv/a/b rw - ext4 /dev/sdd1 rw\n"
        "33 27 8:65 / /srv/a rw - ext4 /dev/sde1 rw\n",
        {QStringLiteral("/mnt/rec"), QStringLiteral("/srv/a")});
    row("names with a common beginning",
        "30 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n"
        "31 27 8:33 / /mnt/rec2 rw - ext4 /dev/sdc1 rw\n",
        {QStringLiteral("/mnt/rec"), QStringLiteral("/mnt/rec2")});

    alone("btrfs subvolumes share their space",
          "27 1 0:30 /@ / rw - btrfs /dev/sda2 rw,subvol=/@\n"
          "30 27 0:30 /@home /home rw - btrfs /dev/sda2 rw,subvol=/@home\n"
          "31 27 0:31 /@rec /mnt/rec rw - btrfs /dev/sdb1 rw,subvol=/@rec\n"
          "32 27 0:31 /@old /mnt/old rw - btrfs /dev/sdb1 rw,subvol=/@old\n",
          {QStringLiteral("/"), QStringLiteral("/mnt/rec")});
    alone("root of a container",
          "500 400 0:80 / / rw - overlay overlay rw,lowerdir=/l,upperdir=/u\n"
          "501 500 0:81 / /proc rw - proc proc rw\n"
          "502 500 0:82 / /dev rw - tmpfs tmpfs rw\n"
          "503 500 8:1 /srv/recordings /rec rw - ext4 /dev/sda1 rw\n"
          "504 500 8:1 /srv/archive /archive rw - ext4 /dev/sda1 rw\n",
          {QStringLiteral("/"), QStringLiteral("/rec")});
    alone("root in memory", "27 1 0:30 / / rw - tmpfs tmpfs rw\n30 27 8:1 / /mnt/rec rw - ext4 /dev/sda1 rw\n",
          {QStringLiteral("/"), QStringLiteral("/mnt/rec")});
    alone("root over the first root",
          "1 1 0:2 / / rw - rootfs rootfs rw\n27 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
          "30 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n",
          {QStringLiteral("/"), QStringLiteral("/mnt/rec")});
    alone("read-only root", "27 1 7:0 / / ro - squashfs /dev/loop0 ro\n", {QStringLiteral("/")});
    alone("nothing", {}, {QStringLiteral("/")});
}

void StationMountTableTest::mountsListedAsVolumes()
{
    QFETCH(QByteArray, mountInfo);
    QFETCH(QStringList, volumes);
    volumes.sort();
    QCOMPARE(volumePaths(mountInfo), volumes);
}

void StationMountTableTest::singleFilesAreNoVolumes()
{
    QList<MountRecord> records = MountTable::parse("500 400 0:80 / / rw - overlay overlay rw\n"
                                                   "501 500 8:1 /c/hosts /etc/hosts rw - ext4 /dev/sda1 rw\n"
                                                   "502 500 8:1 /srv/rec /rec rw - ext4 /dev/sda1 rw\n");
    records[1].isFolder = false;
    const QList<MountRecord> volumes = MountTable(records).volumes();
    QCOMPARE(volumes.size(), 2);
    QCOMPARE(volumes[0].mountPoint, QStringLiteral("/rec"));
    QCOMPARE(volumes[1].mountPoint, QStringLiteral("/"));
}

void StationMountTableTest::theFirstThatBeginsAPathHoldsIt()
{
    const QByteArray mountInfo = "33 27 8:65 / /a rw - ext4 /dev/sde1 rw\n"
                                 "34 27 8:17 / /mnt/rec10 rw - ext4 /dev/sdb1 rw\n"
                                 "35 27 8:33 / /mnt/rec1 rw - ext4 /dev/sdc1 rw\n"
                                 "36 27 8:4 / /usr rw - ext4 /dev/sda4 rw\n"
                                 "37 27 8:2 / /boot rw - ext4 /dev/sda2 rw\n"
                                 "38 37 8:3 / /boot/efi rw - vfat /dev/sda3 rw\n"
                                 "39 27 8:5 / /boot2 rw - ext4 /dev/sda5 rw\n";
    QStringList lines;
    const QList<MountRecord> volumes = MountTable(MountTable::parse(mountInfo + root)).volumes();
    for (const MountRecord &volume : volumes)
        lines.append(volume.mountPoint + (isSystemMount(volume) ? QStringLiteral(" system") : QString()));
    const QStringList expected{
        QStringLiteral("/a"),           QStringLiteral("/boot/efi system"), QStringLiteral("/boot2"),
        QStringLiteral("/boot system"), QStringLiteral("/mnt/rec10"),       QStringLiteral("/mnt/rec1"),
        QStringLiteral("/usr system"),  QStringLiteral("/ system"),
    };
    QCOMPARE(lines, expected);
}

void StationMountTableTest::namesTellVolumesApart_data()
{
    QTest::addColumn<QByteArray>("mountInfo");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("name");
    const QByteArray disk = "30 27 8:17 / /mnt/Aufnahmen\\0401 rw - ext4 /dev/sdb1 rw\n";
    QTest::newRow("label") << disk << QStringLiteral("ARCHIVE") << QStringLiteral("ARCHIVE");
    QTest::newRow("no label") << disk << QString() << QStringLiteral("Aufnahmen 1");
    QTest::newRow("root") << root << QString() << QStringLiteral("System");
    QTest::newRow("root with a label") << root << QStringLiteral("debian") << QStringLiteral("debian");
    QTest::newRow("Windows share") << QByteArray("30 27 0:50 / /mnt/a rw - cifs //nas/rec rw\n") << QString()
                                   << QStringLiteral("//nas/rec");
    QTest::newRow("NFS share") << QByteArray("30 27 0:50 / /mnt/a rw - nfs4 nas:/rec rw\n") << QString()
                               << QStringLiteral("nas:/rec");
}

void StationMountTableTest::namesTellVolumesApart()
{
    QFETCH(QByteArray, mountInfo);
    QFETCH(QString, label);
    QFETCH(QString, name);
    const QList<MountRecord> records = MountTable::parse(mountInfo);
    QCOMPARE(records.size(), 1);
    QCOMPARE(volumeName(records.front(), label), name);
}

void StationMountTableTest::aMissingRootIsAdded()
{
    const QByteArray mountInfo = "42 27 8:1 /work /src rw - ext4 /dev/sda1 rw\n"
                                 "43 27 0:39 / /proc rw - proc proc rw\n"
                                 "44 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n";
    QCOMPARE(volumePaths(mountInfo, QStringLiteral("8:1")),
             (QStringList{QStringLiteral("/"), QStringLiteral("/mnt/rec")}));
    QCOMPARE(volumePaths(mountInfo, QStringLiteral("8:99")),
             (QStringList{QStringLiteral("/"), QStringLiteral("/mnt/rec"), QStringLiteral("/src")}));

    const MountTable table(MountTable::parse(mountInfo), QStringLiteral("8:1"));
    QCOMPARE(table.holding(QStringLiteral("/home")).device, QStringLiteral("8:1"));
    QCOMPARE(table.holding(QStringLiteral("/proc/1")).device, QStringLiteral("0:39"));
}

void StationMountTableTest::pathsLieOnTheMountThatShowsThem_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("id");
    QTest::newRow("root") << QStringLiteral("/") << 27;
    QTest::newRow("below root") << QStringLiteral("/home/op") << 27;
    QTest::newRow("mount point") << QStringLiteral("/mnt/rec") << 30;
    QTest::newRow("below a mount point") << QStringLiteral("/mnt/rec/cam1/day") << 30;
    QTest::newRow("same beginning, other name") << QStringLiteral("/mnt/recordings") << 27;
    QTest::newRow("mount in a mount") << QStringLiteral("/mnt/rec/old/x") << 31;
    QTest::newRow("mounted over, the upper one counts") << QStringLiteral("/dev/shm/x") << 34;
    QTest::newRow("mount point under a later mount") << QStringLiteral("/srv/a/b") << 36;
}

void StationMountTableTest::pathsLieOnTheMountThatShowsThem()
{
    const MountTable table(MountTable::parse(root
                                             + "30 27 8:17 / /mnt/rec rw - ext4 /dev/sdb1 rw\n"
                                               "31 30 8:33 / /mnt/rec/old rw - ext4 /dev/sdc1 rw\n"
                                               "32 27 0:6 / /dev rw - devtmpfs udev rw\n"
                                               "33 32 0:23 / /dev/shm rw - tmpfs tmpfs rw\n"
                                               "34 33 0:27 / /dev/shm rw - tmpfs tmpfs rw\n"
                                               "35 27 8:49 / /srv/a/b rw - ext4 /dev/sdd1 rw\n"
                                               "36 27 8:65 / /srv/a rw - ext4 /dev/sde1 rw\n"));
    QFETCH(QString, path);
    QFETCH(int, id);
    QCOMPARE(table.holding(path).id, id);
}

QTEST_GUILESS_MAIN(StationMountTableTest)
#include "tst_station_mount_table.moc"
