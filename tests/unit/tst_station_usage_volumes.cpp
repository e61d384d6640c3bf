#include "UsageStation.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The station's usage figures when volumes, paths and groups come and go.
class StationUsageVolumesTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aVolumeThatVanishesAndReturns();
    void aVolumeGoneAtTheStartKeepsItsIndex();
    void aDeletedPathIsGone();
    void aFilledVolumeIsTold();
    void anEditIsFollowed();
    void leftoversBelongToNoGroupUntilTheyAreDeleted();
    void theBackupArea();
};

void StationUsageVolumesTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationUsageVolumesTest::cleanup()
{
    tearDown();
}

void StationUsageVolumesTest::aVolumeThatVanishesAndReturns()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_site->unmountDisk();
    QTRY_COMPARE(lines(), u"Doors -1 3000 0 0"_s);
    QCOMPARE(lastEvent().constFirst().toMap()[u"volumeName"_s].toString(), u"Disk"_s);
    RecordedSite::write(day(2), u"0001.rec"_s, 1000); // as if on another machine
    m_site->setFree(100 * RecordedSite::megabyte);
    QTRY_COMPARE(lines(), u"Doors 2 2000 1024000 102400"_s);
    RecordedSite::write(day(2), u"0002.rec"_s, 1000); // followed again
    QTRY_COMPARE(lines(), u"Doors 2 2500 1024000 102400"_s);
}

void StationUsageVolumesTest::aVolumeGoneAtTheStartKeepsItsIndex()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_station.reset();
    m_site->unmountDisk();
    QVERIFY(QDir().rename(m_path, m_site->disk() + u"/away"_s)); // what is on the disk is not to be seen
    QVERIFY(QDir().mkpath(m_path)); // the folder that it is mounted on
    start();
    QTRY_COMPARE(lines(), u"Doors -1 3000 0 0"_s);
    reload();
    QTRY_VERIFY(m_events.size() > 1);
    QCOMPARE(lines(), u"Doors -1 3000 0 0"_s);
}

void StationUsageVolumesTest::aDeletedPathIsGone()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QVERIFY(QDir().rename(m_path, m_site->disk() + u"/away"_s));
    QTRY_COMPARE(lines(), u"Doors -1 3000 0 0"_s);
    QVERIFY(QDir().rename(m_site->disk() + u"/away"_s, m_path));
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
}

void StationUsageVolumesTest::aFilledVolumeIsTold()
{
    start();
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    m_site->setFree(0);
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 0"_s);
}

void StationUsageVolumesTest::anEditIsFollowed()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    const QString second = m_site->makePath(u"second"_s);
    RecordedSite::write(RecordedSite::dayFolder(second, u"Doors"_s, u"Gate"_s, daysAgo(2)), u"0001.rec"_s, 1000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    {
        Database database(m_site->dataFolder());
        GroupStore(database).replace(RecordedSite::group(u"Doors"_s, {m_path, second}, 2));
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(lines(), u"Doors 2 1500 1024000 307200 | Doors -1 500 1024000 307200"_s);
    const QVariantList entries = lastEvent();
    for (const QVariant &entry : entries) {
        QCOMPARE(entry.toMap()[u"recordingGroupName"_s].toString(), u"Doors"_s);
        QCOMPARE(entry.toMap()[u"recordingGroupReservedTime"_s].toInt(), 2880);
    }
}

void StationUsageVolumesTest::leftoversBelongToNoGroupUntilTheyAreDeleted()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    {
        Database database(m_site->dataFolder());
        GroupStore(database).remove(u"Doors"_s);
    }
    m_station->recordingGroupsChanged();
    QTRY_COMPARE(lines(), u" -1 -1 1024000 0"_s);
    m_site->unmountDisk(); // troubles nobody
    QTRY_COMPARE(lastEvent(), QVariantList());
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(lines(), u" -1 -1 1024000 0"_s);
    QVERIFY(QDir(m_path + u"/Doors"_s).removeRecursively());
    QTRY_COMPARE(lastEvent(), QVariantList());
}

void StationUsageVolumesTest::theBackupArea()
{
    const QString backup = m_site->makePath(u"backup"_s);
    RecordedSite::write(backup + u"/Gate/2026-03-18"_s, u"0001.rec"_s, 700);
    start([&backup](UsageSettings &usage) { usage.backupFolder = backup; });
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 307200 | backupID 1 700 1024000 307200"_s);
    RecordedSite::write(backup + u"/Gate/2026-03-19"_s, u"0001.rec"_s, 500);
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 307200 | backupID 2 600 1024000 307200"_s);
}

QTEST_GUILESS_MAIN(StationUsageVolumesTest)
#include "tst_station_usage_volumes.moc"
