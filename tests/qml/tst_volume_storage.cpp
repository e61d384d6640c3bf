#include "StationStorage.h"
#include "VolumeOverview.h"
#include "VolumeParts.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QVariantMap group(const QString &id, qint64 bytes, const QStringList &paths = {})
{
    return {{u"recordingGroupID"_s, id},
            {u"recordingGroupName"_s, id.toUpper()},
            {u"recordedBytes"_s, bytes},
            {u"paths"_s, paths}};
}

QVariantMap volume(const QString &path, const QString &state = u"there"_s, const QVariantList &groups = {})
{
    const bool isThere = state == u"there"_s;
    return {{u"volumePath"_s, path},
            {u"kind"_s, path.startsWith(u"//"_s) ? u"NAS"_s : u"local"_s},
            {u"state"_s, state},
            {u"size"_s, isThere ? 1000 : -1},
            {u"free"_s, isThere ? 300 : -1},
            {u"groups"_s, groups}};
}

/// "kind id bytes" of each part.
QStringList lines(const QVariantList &parts)
{
    QStringList lines;
    for (const QVariant &entry : parts) {
        const QVariantMap part = entry.toMap();
        lines.append(
            u"%1 %2 %3"_s.arg(part[u"kind"_s].toString(), part[u"id"_s].toString(), part[u"bytes"_s].toString())
                .simplified());
    }
    return lines;
}
} // namespace

/// What the pages draw of volumes.
class VolumeStorageTest : public QObject
{
    Q_OBJECT

    /// The plug-in's model of volumes.
    struct Listed : QStandardItemModel
    {
        Listed()
        {
            setItemRoleNames({{1, "rootPathRole"},
                              {2, "nameRole"},
                              {3, "sizeRole"},
                              {4, "availableSizeRole"},
                              {5, "isSystemRole"},
                              {6, "isNASRole"}});
        }
        void add(const QString &path, qlonglong size, qlonglong available)
        {
            auto item = std::make_unique<QStandardItem>();
            item->setData(path, 1);
            item->setData(size, 3);
            item->setData(available, 4);
            item->setData(path.startsWith(u"//"_s), 6);
            appendRow(item.release());
        }
    };

    static QStringList rows(const VolumeOverview &overview)
    {
        QStringList rows;
        for (int row = 0; row < overview.rowCount(); ++row) {
            const QVariantMap told = overview.index(row).data(VolumeOverview::Volume).toMap();
            rows.append(u"%1 %2 %3"_s.arg(overview.index(row).data(VolumeOverview::Path).toString(),
                                          told[u"state"_s].toString(), told[u"size"_s].toString()));
        }
        return rows;
    }

private slots:
    void partsComeToTheSize()
    {
        QVariantMap disk = volume(u"/"_s, u"there"_s, {group(u"a"_s, 50), group(u"b"_s, 200), group(u"c"_s, -1)});
        disk[u"backupBytes"_s] = 20;
        disk[u"withoutGroupBytes"_s] = 30;
        disk[u"otherBytes"_s] = 350;
        disk[u"reservedForRoot"_s] = 50;
        QCOMPARE(lines(volumeParts(disk)),
                 QStringList({u"group b 200"_s, u"group a 50"_s, u"backup 20"_s, u"withoutGroup 30"_s, u"other 350"_s,
                              u"root 50"_s, u"free 300"_s}));
        QCOMPARE(lines(volumeParts(disk, u"a"_s)).constFirst(), u"group a 50"_s);
        QCOMPARE(volumeParts(volume(u"/"_s, u"gone"_s)), QVariantList());
    }

    void whatIsTooMuchIsTakenOffTheLargestRecordings()
    {
        QVariantMap disk = volume(u"/"_s, u"there"_s, {group(u"a"_s, 800), group(u"b"_s, 200)});
        disk[u"excessBytes"_s] = 300;
        QCOMPARE(lines(volumeParts(disk)), QStringList({u"group a 500"_s, u"group b 200"_s, u"free 300"_s}));
        QCOMPARE(volumeParts(disk).constFirst().toMap()[u"told"_s].toInt(), 800);
        disk[u"excessBytes"_s] = 5000; // never told, and no reason to hang
        QCOMPARE(lines(volumeParts(disk)), QStringList(u"free 300"_s));
    }

    void manyGroupsAreOnePart()
    {
        QVariantList groups;
        for (int number = 1; number <= 200; ++number)
            groups.append(group(QString::number(number), number));
        const QVariantList parts = volumeParts(volume(u"/"_s, u"there"_s, groups), u"7"_s);
        QCOMPARE(lines(parts).mid(0, 6),
                 QStringList({u"group 7 7"_s, u"group 200 200"_s, u"group 199 199"_s, u"group 198 198"_s,
                              u"group 197 197"_s, u"moreGroups 19299"_s}));
        QCOMPARE(parts.at(5).toMap()[u"count"_s].toInt(), 195);
    }

    void aPathIsFoundOnItsLostVolume()
    {
        StationStorage storage;
        storage.take({volume(u"/"_s), volume(u"/mnt/disk"_s, u"gone"_s, {group(u"a"_s, 1, {u"/mnt/disk/rec"_s})}),
                      volume(u"//nas/video"_s, u"there"_s, {group(u"a"_s, 1, {u"//NAS/Video/rec"_s})})});
        const auto holder = [&storage](const QString &path, bool isNas) {
            return storage.holding(path, isNas)[u"volumePath"_s].toString();
        };
        QCOMPARE(holder(u"/mnt/disk/rec"_s, false), u"/mnt/disk"_s);
        QCOMPARE(holder(u"/mnt/disk/new"_s, false), u"/mnt/disk"_s);
        QCOMPARE(holder(u"/mnt/disk2"_s, false), u"/"_s);
        QCOMPARE(holder(u"//NAS/Video/rec"_s, true), u"//nas/video"_s);
        QCOMPARE(holder(u"//other/video"_s, true), QString());
    }

    void reservesSeenFromAGroup()
    {
        constexpr double megabyte = 1024 * 1024;
        const auto reserving = [](const QString &id, int megabytes) {
            QVariantMap map = group(id, 70);
            map[u"reserveSpace"_s] = megabytes;
            map[u"bytesPerDay"_s] = 7;
            return map;
        };
        QVariantMap disk =
            volume(u"/"_s, u"there"_s, {reserving(u"a"_s, 2), reserving(u"b"_s, 3), reserving(u"c"_s, 4)});
        disk[u"size"_s] = 10 * megabyte;
        const StationStorage storage;
        QCOMPARE(storage.reserves(disk, u"b"_s),
                 (QVariantMap{{u"byOthers"_s, 6 * megabyte},
                              {u"left"_s, 4 * megabyte},
                              {u"recorded"_s, 70.0},
                              {u"bytesPerDay"_s, 7.0}}));
        QCOMPARE(storage.reserves(disk, {})[u"byOthers"_s].toDouble(), 9 * megabyte);
        QCOMPARE(storage.reserves(disk, {})[u"recorded"_s].toDouble(), 0.0);
        disk[u"size"_s] = 5 * megabyte; // more is reserved than there is
        QCOMPARE(storage.reserves(disk, u"b"_s)[u"left"_s].toDouble(), 0.0);
        disk[u"size"_s] = -1;
        QCOMPARE(storage.reserves(disk, u"b"_s)[u"left"_s].toDouble(), -1.0);
        disk.remove(u"groups"_s); // as the plug-in knows a volume
        for (const QVariant &figure : storage.reserves(disk, u"b"_s))
            QCOMPARE(figure.toDouble(), -1.0);
    }

    void oneRequestAtATime()
    {
        StationStorage storage;
        const QSignalSpy wanted(&storage, &StationStorage::wanted);
        storage.refresh();
        storage.refresh();
        storage.refresh();
        QCOMPARE(wanted.size(), 1);
        storage.take({});
        QCOMPARE(wanted.size(), 2); // something changed meanwhile
        storage.fail(u"No."_s);
        QCOMPARE(wanted.size(), 2);
        QCOMPARE(storage.failure(), u"No."_s);
        storage.refresh();
        storage.forgetRequest();
        storage.refresh();
        QCOMPARE(wanted.size(), 4);
    }

    void lostVolumesStandFirstAndRowsStay()
    {
        Listed listed;
        StationStorage storage;
        VolumeOverview overview;
        const QAbstractItemModelTester tester(&overview, QAbstractItemModelTester::FailureReportingMode::QtTest);
        overview.setModel(&listed);
        overview.setStorage(&storage);
        listed.add(u"/"_s, 2, 1);
        listed.add(u"/mnt/disk"_s, 2, 1);
        listed.add(u"//nas/rec/b"_s, 2, 1);
        QTRY_COMPARE(rows(overview),
                     QStringList({u"/ there 2048"_s, u"/mnt/disk there 2048"_s, u"//nas/rec/b there 2048"_s}));
        storage.take({volume(u"/"_s), volume(u"/mnt/disk"_s), volume(u"//nas/rec"_s), volume(u"//nas/more"_s)});
        QTRY_COMPARE(rows(overview),
                     QStringList({u"/ there 1000"_s, u"/mnt/disk there 1000"_s, u"//nas/rec/b there 1000"_s,
                                  u"//nas/more there 1000"_s}));
        QCOMPARE(overview.size(), 4000.0);
        const QSignalSpy removed(&overview, &QAbstractItemModel::rowsRemoved);
        const QSignalSpy inserted(&overview, &QAbstractItemModel::rowsInserted);
        listed.removeRow(1);
        storage.take(
            {volume(u"/"_s), volume(u"/mnt/disk"_s, u"gone"_s), volume(u"//nas/rec"_s), volume(u"//nas/more"_s)});
        QTRY_COMPARE(rows(overview),
                     QStringList({u"/mnt/disk gone -1"_s, u"/ there 1000"_s, u"//nas/rec/b there 1000"_s,
                                  u"//nas/more there 1000"_s}));
        QCOMPARE(removed.size() + inserted.size(), 0);
        QCOMPARE(overview.lostCount(), 1);
        QCOMPARE(overview.size(), 3000.0);
        QCOMPARE(overview.free(), 900.0);
        QCOMPARE(overview.rowOf(u"/mnt/disk/rec"_s), 0);
        QCOMPARE(overview.rowOf(u"/mnt"_s), 1);
    }
};

QTEST_GUILESS_MAIN(VolumeStorageTest)
#include "tst_volume_storage.moc"
