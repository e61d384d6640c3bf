#include "StationCall.h"
#include "StorageText.h"
#include "UsageStation.h"
#include "VolumeFolder.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTest>

#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

/// What "station.listStorage" says of volumes and the recordings on them.
class StationStorageTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void partsAddUpToTheSize();
    void whatIsNotCountedYetIsNotNothing();
    void aFolderThatIsGoneIsNotCounted();
    void recordingsThatTakeNoSpace();
    void aLostVolumeStaysAsLongAsAGroupNamesIt();
    void aReadOnlyVolume();
    void anEditIsSeenAtOnce();
    void aStationWithoutGroups();
    void dataIsRefused();
    void figuresOfARealDisk();

private:
    static constexpr qint64 mb = RecordedSite::megabyte;

    QVariantList volumes() { return StationCall(*m_station, u"station.listStorage"_s, {}).reply().data.toList(); }
    /// That at @p path; empty where it is not listed.
    QVariantMap volume(const QString &path)
    {
        const QVariantList list = volumes();
        for (const QVariant &value : list) {
            if (value.toMap().value(u"volumePath"_s) == path)
                return value.toMap();
        }
        return {};
    }
    QVariantMap disk() { return volume(m_site->disk()); }
    bool isCounted() { return disk().value(StationKey::counted).toBool(); }

    /// The disk has @p free bytes, and 50 MB more for root.
    void setDisk(qint64 free, bool isReadOnly = false)
    {
        Volume disk{m_site->disk(), u"Disk"_s, 1000 * mb, free, false, isReadOnly};
        disk.bytesFree = free + 50 * mb;
        m_site->volumes()->set({m_site->system(), disk});
    }
};

void StationStorageTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationStorageTest::cleanup()
{
    tearDown();
}

void StationStorageTest::partsAddUpToTheSize()
{
    setDisk(600 * mb);
    const QString second = m_site->makePath(u"second"_s);
    const QString backup = m_site->makePath(u"backup"_s);
    m_site->addGroup(u"Yard"_s, {second, m_path});
    RecordedSite::write(day(1), u"0001.rec"_s, 100 * mb);
    RecordedSite::write(day(2), u"0001.rec"_s, 20 * mb);
    RecordedSite::write(RecordedSite::dayFolder(second, u"Yard"_s, u"Gate"_s, daysAgo(1)), u"0001.rec"_s, 40 * mb);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Yard"_s, u"Gate"_s, daysAgo(2)), u"0001.rec"_s, 2 * mb);
    RecordedSite::write(backup + u"/Gate/2026-03-18"_s, u"0001.rec"_s, 30 * mb);
    start([&backup](UsageSettings &usage) { usage.backupFolder = backup; });
    QTRY_VERIFY(isCounted());

    QVariantMap listed = disk();
    QCOMPARE(groupTexts(listed),
             (QStringList{u"Doors %1 2 %2 0 true"_s.arg(120 * mb).arg(60 * mb),
                          u"Yard %1 2 %2 0 true"_s.arg(42 * mb).arg(21 * mb)}));
    QCOMPARE(listed.value(u"groups"_s).toList().constLast().toMap().value(u"paths"_s).toStringList(),
             (QStringList{second, m_path}));
    QCOMPARE(partsText(listed),
             u"%1 %2 %3 %4 0 %5 0 0"_s.arg(1000 * mb).arg(600 * mb).arg(50 * mb).arg(30 * mb).arg(158 * mb));
    QCOMPARE(gapOf(listed), 0);
    QCOMPARE(listed.value(u"state"_s), u"there"_s);
    QCOMPARE(listed.value(u"kind"_s), u"local"_s);
    QVERIFY(!listed.contains(u"since"_s));
    const QDateTime counted = QDateTime::fromString(listed.value(u"countedAt"_s).toString(), Qt::ISODateWithMs);
    QVERIFY(counted.isValid());
    QCOMPARE(counted.timeSpec(), Qt::UTC);

    // Recordings of a group that is removed stay, and belong to none.
    {
        Database database(m_site->dataFolder());
        GroupStore(database).remove(u"Yard"_s);
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(disk().value(u"groups"_s).toList().size(), 1);
    QTRY_VERIFY(isCounted());
    listed = disk();
    QCOMPARE(
        partsText(listed),
        u"%1 %2 %3 %4 %5 %6 0 0"_s.arg(1000 * mb).arg(600 * mb).arg(50 * mb).arg(30 * mb).arg(42 * mb).arg(158 * mb));
    QCOMPARE(gapOf(listed), 0);
}

void StationStorageTest::whatIsNotCountedYetIsNotNothing()
{
    setDisk(600 * mb);
    RecordedSite::write(day(1), u"0001.rec"_s, 100 * mb);
    start();
    const QVariantMap listed = disk(); // before anything was read
    QCOMPARE(groupTexts(listed), QStringList{u"Doors -1 -1 -1 0 false"_s});
    QCOMPARE(partsText(listed), u"%1 %2 %3 0 0 -1 %4 0"_s.arg(1000 * mb).arg(600 * mb).arg(50 * mb).arg(350 * mb));
    QCOMPARE(gapOf(listed), 0);
    QCOMPARE(listed.value(u"counted"_s), QVariant(false));
    QVERIFY(!listed.contains(u"countedAt"_s));
    QTRY_VERIFY(isCounted());
    QCOMPARE(groupTexts(disk()), QStringList{u"Doors %1 1 %1 0 true"_s.arg(100 * mb)});
}

void StationStorageTest::aFolderThatIsGoneIsNotCounted()
{
    setDisk(600 * mb);
    RecordedSite::write(day(1), u"0001.rec"_s, 100 * mb);
    start();
    QTRY_VERIFY(isCounted());
    QVERIFY(QDir().rename(m_path, m_site->disk() + u"/away"_s));
    QTRY_COMPARE(groupTexts(disk()), QStringList{u"Doors -1 -1 %1 0 false"_s.arg(100 * mb)});
    const QVariantMap listed = disk();
    QCOMPARE(listed.value(u"state"_s), u"there"_s);
    QCOMPARE(partsText(listed), u"%1 %2 %3 0 0 -1 %4 0"_s.arg(1000 * mb).arg(600 * mb).arg(50 * mb).arg(350 * mb));
    QCOMPARE(gapOf(listed), 0);
    QVERIFY(listed.contains(u"countedAt"_s)); // they were known before
}

void StationStorageTest::recordingsThatTakeNoSpace()
{
    setDisk(600 * mb); // 350 MB are used
    RecordedSite::write(day(1), u"0001.rec"_s, 500 * mb); // a sparse file
    start();
    QTRY_VERIFY(isCounted());
    const QVariantMap listed = disk();
    QCOMPARE(groupTexts(listed), QStringList{u"Doors %1 1 %1 0 true"_s.arg(500 * mb)});
    QCOMPARE(partsText(listed), u"%1 %2 %3 0 0 0 0 %4"_s.arg(1000 * mb).arg(600 * mb).arg(50 * mb).arg(150 * mb));
    QCOMPARE(gapOf(listed), 0);
}

void StationStorageTest::aLostVolumeStaysAsLongAsAGroupNamesIt()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 100 * mb);
    start();
    QTRY_VERIFY(isCounted());
    QCOMPARE(volumes().size(), 2);
    m_site->unmountDisk();
    QTRY_COMPARE(disk().value(u"state"_s), u"gone"_s);
    const QVariantMap listed = disk();
    QCOMPARE(listed.value(u"volumeName"_s), u"Disk"_s);
    QTRY_VERIFY(QDateTime::fromString(disk().value(u"since"_s).toString(), Qt::ISODateWithMs).isValid());
    QCOMPARE(groupTexts(listed), QStringList{u"Doors %1 1 %1 0 false"_s.arg(100 * mb)});
    QCOMPARE(partsText(listed), u"-1 -1 -1 0 0 -1 -1 -1"_s);
    QVERIFY(!volumes().constFirst().toMap().value(u"groups"_s).toList().size()); // the folder lies on the system now
    {
        Database database(m_site->dataFolder());
        GroupStore(database).remove(u"Doors"_s);
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(disk(), QVariantMap());
    QCOMPARE(volumes().size(), 1);
}

void StationStorageTest::aReadOnlyVolume()
{
    setDisk(600 * mb, true);
    start();
    QTRY_VERIFY(isCounted());
    QCOMPARE(disk().value(u"state"_s), u"readOnly"_s);
    QCOMPARE(gapOf(disk()), 0);
}

void StationStorageTest::anEditIsSeenAtOnce()
{
    start();
    QTRY_VERIFY(isCounted());
    {
        Database database(m_site->dataFolder());
        GroupStore(database).insert(RecordedSite::group(u"Yard"_s, {m_path}));
    }
    m_station->recordingGroupsChanged();
    QCOMPARE(disk().value(u"groups"_s).toList().size(), 2); // though the event loop did not turn
}

void StationStorageTest::aStationWithoutGroups()
{
    m_station = std::make_unique<Station>(
        StationSettings{m_site->dataFolder() + u"/new"_s, {}, std::make_unique<SiteVolumeSource>(m_site->volumes())});
    const QVariantList list = volumes();
    QCOMPARE(list.size(), 2);
    QCOMPARE(list.constLast().toMap().value(u"counted"_s), QVariant(true));
    QCOMPARE(partsText(list.constLast().toMap()), u"%1 %2 -1 0 0 %3 0 0"_s.arg(1000 * mb).arg(600 * mb).arg(400 * mb));
    QVERIFY(!QDir(m_site->dataFolder() + u"/new"_s).exists()); // asking makes nothing
}

void StationStorageTest::dataIsRefused()
{
    start();
    const StationReply reply = StationCall(*m_station, u"station.listStorage"_s, QVariantMap()).reply();
    QCOMPARE(reply.returnCode, u"BadRequest"_s);
}

/// As df tells them, while others may write to the disk: what is told lies between two looks of the system.
void StationStorageTest::figuresOfARealDisk()
{
    StationSettings settings{m_site->dataFolder(), {}, nullptr};
    settings.usage.volumeInterval = std::chrono::milliseconds(20); // what is told is as of the last look
    m_station = std::make_unique<Station>(std::move(settings));
    const auto look = [](const QString &path) {
        struct statvfs figures = {};
        if (statvfs(QFile::encodeName(path).constData(), &figures) != 0)
            return QList<qint64>{};
        const auto unit = static_cast<qint64>(figures.f_frsize);
        const auto total = static_cast<qint64>(figures.f_blocks) * unit;
        const auto free = static_cast<qint64>(figures.f_bfree) * unit;
        const auto available = static_cast<qint64>(figures.f_bavail) * unit;
        return QList<qint64>{total, available, free - available, total - free};
    };
    const QVariantList list = volumes();
    QVERIFY(!list.isEmpty());
    for (const QVariant &value : list) {
        const QString path = value.toMap().value(u"volumePath"_s).toString();
        const auto told = [&] {
            const QVariantMap now = volume(path);
            const qint64 used =
                qMax<qint64>(0, now.value(u"otherBytes"_s).toLongLong()) + now.value(u"unknownBytes"_s).toLongLong();
            return QList<qint64>{now.value(u"size"_s).toLongLong(), now.value(u"free"_s).toLongLong(),
                                 now.value(u"reservedForRoot"_s).toLongLong(), used};
        };
        const auto isBetween = [&] {
            const QList<qint64> before = look(path);
            const QList<qint64> seen = told();
            const QList<qint64> after = look(path);
            for (qsizetype i = 0; i < seen.size(); ++i) {
                const auto [least, most] = std::minmax(before.at(i), after.at(i));
                if (seen.at(i) < least || seen.at(i) > most)
                    return false;
            }
            return true;
        };
        constexpr int patience = 60'000; // milliseconds
        bool wasBetween = false; // kept: the macro looks once more after it has seen it
        const auto isOnceBetween = [&] {
            wasBetween = wasBetween || isBetween();
            return wasBetween;
        };
        QTRY_VERIFY2_WITH_TIMEOUT(isOnceBetween(), qPrintable(path), patience);
        QCOMPARE(gapOf(volume(path)), 0);
    }
}

QTEST_GUILESS_MAIN(StationStorageTest)
#include "tst_station_storage.moc"
