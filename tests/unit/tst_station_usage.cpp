#include "UsageStation.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The station's usage figures from real folders: the files that are there at the start, and those that change later.
class StationUsageTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void filesThatAreThereAreCounted();
    void theIndexIsThereAtTheNextStart();
    void noGroupsNoEvent();
    void aWrittenFileIsCounted();
    void aGrownFileIsCounted();
    void aDeletedFileIsCounted();
    void aDeletedDayIsCounted();
    void aFolderOfAnotherDayIsCounted();
    void aMovedCameraIsCounted();
    void aGroupFolderThatComesLaterIsFollowed();
    void aFolderThatReplacesAnotherIsRead();
    void whatIsNoRecordingIsNotCounted();
};

void StationUsageTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationUsageTest::cleanup()
{
    tearDown();
}

void StationUsageTest::filesThatAreThereAreCounted()
{
    RecordedSite::write(day(2), u"0001.rec"_s, 3000);
    RecordedSite::write(day(1), u"0001.rec"_s, 4000);
    RecordedSite::write(day(1), u"0002.rec"_s, 1000);
    RecordedSite::write(day(1, u"Yard"_s), u"0001.rec"_s, 2000);
    start();
    QTRY_COMPARE(lines(), u"Doors 2 5000 1024000 614400"_s);
    const QVariantMap entry = lastEvent().constFirst().toMap();
    QCOMPARE(entry[u"recordingPath"_s].toString(), m_path);
    QCOMPARE(entry[u"volumeName"_s].toString(), u"Disk"_s);
}

void StationUsageTest::theIndexIsThereAtTheNextStart()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_station.reset();
    Database database(m_site->dataFolder());
    Rows rows = database.rows(u"SELECT camera, day, name, recorded_file.bytes FROM recorded_file"
                              " JOIN recorded_day ON number = day_number"_s);
    QVERIFY(rows.next());
    QCOMPARE(rows.value(0).toString(), u"Gate"_s);
    QCOMPARE(rows.value(1).toString(), u"2026-03-19"_s);
    QCOMPARE(rows.value(2).toString(), u"0001.rec"_s);
    QCOMPARE(rows.value(3).toLongLong(), 3000);
    QVERIFY(!rows.next());

    m_events.clear();
    QVERIFY(QFile::remove(day(1) + u"/0001.rec"_s)); // while nobody looks
    RecordedSite::write(day(2), u"0001.rec"_s, 700);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 700 1024000 614400"_s);
}

void StationUsageTest::noGroupsNoEvent()
{
    tearDown();
    m_site = std::make_unique<RecordedSite>();
    start();
    reload(); // is answered by an event, and there is none before
    QTRY_COMPARE(m_events.size(), 1);
    QCOMPARE(lastEvent(), QVariantList());
    QVERIFY2(!QFileInfo::exists(m_site->dataFolder()), "the station has nothing to keep");
}

void StationUsageTest::aWrittenFileIsCounted()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 500);
    QTRY_COMPARE(lines(), u"Doors 1 3500 1024000 614400"_s);
    RecordedSite::write(day(2), u"0001.rec"_s, 500); // a new day
    QTRY_COMPARE(lines(), u"Doors 2 2000 1024000 614400"_s);
    RecordedSite::write(day(2), u"0002.rec"_s, 1000); // in it
    QTRY_COMPARE(lines(), u"Doors 2 2500 1024000 614400"_s);
    RecordedSite::write(day(3, u"Yard"_s), u"0001.rec"_s, 1000); // a new camera
    QTRY_COMPARE(lines(), u"Doors 3 2000 1024000 614400"_s);
    RecordedSite::write(day(3, u"Yard"_s), u"0002.rec"_s, 3000); // in it
    QTRY_COMPARE(lines(), u"Doors 3 3000 1024000 614400"_s);
}

void StationUsageTest::aGrownFileIsCounted()
{
    RecordedSite::write(day(2), u"0001.rec"_s, 1000);
    RecordedSite::write(day(1), u"0001.rec"_s, 1000);
    RecordedSite::write(day(1), u"0002.rec"_s, 1000);
    start();
    QTRY_COMPARE(lines(), u"Doors 2 1500 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 3000);
    QTRY_COMPARE(lines(), u"Doors 2 2500 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 5000);
    QTRY_COMPARE(lines(), u"Doors 2 3500 1024000 614400"_s);
    RecordedSite::write(day(1), u"0003.rec"_s, 1000);
    QTRY_COMPARE(lines(), u"Doors 2 4000 1024000 614400"_s);
    RecordedSite::write(day(1), u"0003.rec"_s, 3000); // the one written now
    QTRY_COMPARE(lines(), u"Doors 2 5000 1024000 614400"_s);
}

void StationUsageTest::aDeletedFileIsCounted()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    RecordedSite::write(day(1), u"0002.rec"_s, 500);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3500 1024000 614400"_s);
    QVERIFY(QFile::remove(day(1) + u"/0001.rec"_s));
    QTRY_COMPARE(lines(), u"Doors 1 500 1024000 614400"_s);
    QVERIFY(QFile::remove(day(1) + u"/0002.rec"_s)); // an empty folder is no recorded day
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
}

void StationUsageTest::aDeletedDayIsCounted()
{
    for (int ago = 1; ago <= 12; ++ago)
        RecordedSite::write(day(ago), u"0001.rec"_s, 1000);
    start();
    QTRY_COMPARE(lines(), u"Doors 12 1000 1024000 614400"_s);
    QVERIFY(QDir(day(10)).removeRecursively());
    QTRY_COMPARE(lines(), u"Doors 11 1000 1024000 614400"_s);
    QVERIFY(QFile::remove(day(12) + u"/0001.rec"_s)); // the oldest, as a station makes room
    QTRY_COMPARE(lines(), u"Doors 10 1000 1024000 614400"_s);
}

void StationUsageTest::aFolderOfAnotherDayIsCounted()
{
    RecordedSite::write(day(0), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 -1 1024000 614400"_s);
    QVERIFY(QDir().rename(day(0), day(1)));
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 1000); // the moved folder is followed under its new name
    QTRY_COMPARE(lines(), u"Doors 1 4000 1024000 614400"_s);
}

void StationUsageTest::aMovedCameraIsCounted()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    RecordedSite::write(day(2, u"Yard"_s), u"0001.rec"_s, 1000);
    start();
    QTRY_COMPARE(lines(), u"Doors 2 2000 1024000 614400"_s);
    const QString group = m_path + u"/Doors"_s;
    QVERIFY(QDir().rename(group + u"/Yard"_s, m_path + u"/away"_s));
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QVERIFY(QDir().rename(m_path + u"/away"_s, group + u"/Courtyard"_s));
    QTRY_COMPARE(lines(), u"Doors 2 2000 1024000 614400"_s);
    RecordedSite::write(day(2, u"Courtyard"_s), u"0002.rec"_s, 1000);
    QTRY_COMPARE(lines(), u"Doors 2 2500 1024000 614400"_s);
}

void StationUsageTest::aGroupFolderThatComesLaterIsFollowed()
{
    start();
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QVERIFY(QDir(m_path + u"/Doors"_s).removeRecursively());
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    RecordedSite::write(day(2), u"0001.rec"_s, 200);
    QTRY_COMPARE(lines(), u"Doors 1 200 1024000 614400"_s);
}

void StationUsageTest::aFolderThatReplacesAnotherIsRead()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    const QString other = m_site->disk() + u"/other"_s;
    RecordedSite::write(other + u"/2026-03-19"_s, u"0001.rec"_s, 800);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    const QString camera = m_path + u"/Doors/Gate"_s;
    QVERIFY(QDir().rename(camera, m_site->disk() + u"/old"_s));
    QVERIFY(QDir().rename(other, camera));
    QTRY_COMPARE(lines(), u"Doors 1 800 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 100);
    QTRY_COMPARE(lines(), u"Doors 1 900 1024000 614400"_s);
}

void StationUsageTest::whatIsNoRecordingIsNotCounted()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    RecordedSite::write(m_path + u"/Doors/Gate/2026-02-30"_s, u"0001.rec"_s, 1); // no such day
    RecordedSite::write(m_path + u"/Doors/Gate/2026-3-18"_s, u"0001.rec"_s, 1);
    RecordedSite::write(m_path + u"/Doors/Gate"_s, u"2026-03-18"_s, 1); // a file
    RecordedSite::write(day(1) + u"/more"_s, u"0001.rec"_s, 1);
    RecordedSite::write(m_path + u"/Others/Gate/2026-03-18"_s, u"0001.rec"_s, 1);
    QVERIFY(QFile::link(day(1), m_path + u"/Doors/Gate/2026-03-17"_s));
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
}

QTEST_GUILESS_MAIN(StationUsageTest)
#include "tst_station_usage.moc"
