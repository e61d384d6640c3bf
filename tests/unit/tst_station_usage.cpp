#include "RecordedSite.h"
#include "StationProtocol.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
const QDate today(2026, 3, 20);

QDate daysAgo(int days)
{
    return today.addDays(-days);
}
} // namespace

/// The station's usage figures from real folders: what is there at the start, what changes later, and when it is told.
class StationUsageTest : public QObject
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
    void reloadFindsWhatIsNotWatched();
    void reloadTellsAlwaysOnce();
    void theFirstEventAfterReloadHasTheFigures();
    void whatIsNotNewIsNotTold();
    void reloadRefusesData();
    void eventsKeepTheirDistance();
    void aVolumeThatVanishesAndReturns();
    void aVolumeGoneAtTheStartKeepsItsIndex();
    void aDeletedPathIsGone();
    void aFilledVolumeIsTold();
    void anEditIsFollowed();
    void leftoversBelongToNoGroupUntilTheyAreDeleted();
    void theBackupArea();
    void progressOfALongRun();
    void theEndDuringARun();

private:
    void start(const std::function<void(UsageSettings &)> &adjust = {});
    QString day(int ago, const QString &camera = u"Gate"_s) const
    {
        return RecordedSite::dayFolder(m_path, u"Doors"_s, camera, daysAgo(ago));
    }
    QVariantList lastEvent() const { return m_events.isEmpty() ? QVariantList() : m_events.constLast(); }
    QString lines() const;
    void reload();
    void makeManyFiles();

    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
    QString m_path;
    QList<QVariantList> m_events; // of VolumeChanged
    QList<QVariantMap> m_progress;
};

void StationUsageTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_path = m_site->makePath(u"rec"_s);
    m_site->addGroup(u"Doors"_s, {m_path});
}

void StationUsageTest::cleanup()
{
    m_station.reset();
    m_site.reset();
    m_events.clear();
    m_progress.clear();
}

void StationUsageTest::start(const std::function<void(UsageSettings &)> &adjust)
{
    StationSettings settings = m_site->settings(today);
    if (adjust)
        adjust(settings.usage);
    m_station = std::make_unique<Station>(std::move(settings));
    connect(m_station.get(), &Station::eventRaised, this, [this](const StationEvent &event) {
        if (event.name == StationEventName::VolumeChanged)
            m_events.append(event.data.toList());
        else if (event.name == StationEventName::StorageScanProgress)
            m_progress.append(event.data.toMap());
    });
}

/// Of the last event: group, days, bytes of a day, KB and free KB; the entries behind each other.
QString StationUsageTest::lines() const
{
    QStringList text;
    const QVariantList entries = lastEvent();
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        text.append(u"%1 %2 %3 %4 %5"_s.arg(entry[u"recordingGroupID"_s].toString(),
                                            entry[u"volumeRecordedDays"_s].toString(),
                                            entry[u"volumeOneDayUsage"_s].toString(), entry[u"volumeSize"_s].toString(),
                                            entry[u"volumeAvailableSize"_s].toString()));
    }
    return text.join(u" | "_s);
}

void StationUsageTest::reload()
{
    QString code;
    m_station->handle({StationCommandName::reloadStorageUsageInfo, {}},
                      [&code](const StationReply &reply) { code = reply.returnCode; });
    QCOMPARE(code, u"0"_s);
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
    QSqlQuery query = database.run(u"SELECT camera, day, name, recorded_file.bytes FROM recorded_file"
                                   " JOIN recorded_day ON number = day_number"_s);
    QVERIFY(query.next());
    QCOMPARE(query.value(0).toString(), u"Gate"_s);
    QCOMPARE(query.value(1).toString(), u"2026-03-19"_s);
    QCOMPARE(query.value(2).toString(), u"0001.rec"_s);
    QCOMPARE(query.value(3).toLongLong(), 3000);
    QVERIFY(!query.next());
    query.finish();

    m_events.clear();
    QVERIFY(QFile::remove(day(1) + u"/0001.rec"_s)); // while nobody looks
    RecordedSite::write(day(2), u"0001.rec"_s, 700);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 700 1024000 614400"_s);
}

void StationUsageTest::noGroupsNoEvent()
{
    cleanup();
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

void StationUsageTest::reloadFindsWhatIsNotWatched()
{
    for (int ago = 1; ago <= 12; ++ago)
        RecordedSite::write(day(ago), u"0001.rec"_s, 1000);
    start();
    QTRY_COMPARE(lines(), u"Doors 12 1000 1024000 614400"_s);
    RecordedSite::write(day(1), u"0002.rec"_s, 0); // the file written last is another now
    QVERIFY(QFile::remove(day(10) + u"/0001.rec"_s)); // neither new nor the oldest
    RecordedSite::write(day(3), u"0001.rec"_s, 8000); // not written last
    reload();
    QTRY_COMPARE(lines(), u"Doors 11 2000 1024000 614400"_s);
}

void StationUsageTest::reloadTellsAlwaysOnce()
{
    start();
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    for (int i = 0; i < 3; ++i) {
        const qsizetype before = m_events.size();
        reload();
        QTRY_COMPARE(m_events.size(), before + 1);
    }
    QCOMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
}

void StationUsageTest::theFirstEventAfterReloadHasTheFigures()
{
    for (int ago = 1; ago <= 100; ++ago)
        RecordedSite::write(day(ago), u"0001.rec"_s, 3000);
    // What is known before has to wait so long that the answer overtakes it.
    start([](UsageSettings &usage) {
        usage.sliceTime = std::chrono::milliseconds(0);
        usage.tellInterval = std::chrono::hours(1);
    });
    reload(); // before the station looked at anything
    QTRY_COMPARE(m_events.size(), 1);
    QCOMPARE(lines(), u"Doors 100 3000 1024000 614400"_s);
}

void StationUsageTest::whatIsNotNewIsNotTold()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    const qsizetype before = m_events.size();
    const int looks = m_site->volumes()->looksSoFar();
    QTRY_VERIFY(m_site->volumes()->looksSoFar() > looks + 5);
    QCOMPARE(m_events.size(), before);
    m_site->setFree(500 * RecordedSite::megabyte);
    QTRY_COMPARE(m_events.size(), before + 1);
}

void StationUsageTest::reloadRefusesData()
{
    start();
    QString code;
    m_station->handle({StationCommandName::reloadStorageUsageInfo, u"all"_s},
                      [&code](const StationReply &reply) { code = reply.returnCode; });
    QCOMPARE(code, StationReturnCode::BadRequest);
}

void StationUsageTest::eventsKeepTheirDistance()
{
    static constexpr qint64 interval = 200;
    start([](UsageSettings &usage) {
        usage.tellInterval = std::chrono::milliseconds(interval);
        usage.volumeInterval = std::chrono::hours(1); // nothing else makes it speak
    });
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    QList<qint64> times;
    QElapsedTimer clock;
    clock.start();
    connect(m_station.get(), &Station::eventRaised, this, [&](const StationEvent &event) {
        if (event.name == StationEventName::VolumeChanged)
            times.append(clock.elapsed());
    });
    int files = 0;
    QTimer recorder;
    connect(&recorder, &QTimer::timeout, this, [&] {
        RecordedSite::write(day(1), QString::number(++files), 100);
        if (files == 40)
            recorder.stop();
    });
    recorder.start(15);
    QTRY_COMPARE(lines(), u"Doors 1 4000 1024000 614400"_s); // the latest comes
    QVERIFY(!times.isEmpty());
    for (qsizetype i = 1; i < times.size(); ++i)
        QVERIFY2(times.at(i) - times.at(i - 1) >= interval - 5, qPrintable(QString::number(times.at(i))));
}

void StationUsageTest::aVolumeThatVanishesAndReturns()
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

void StationUsageTest::aVolumeGoneAtTheStartKeepsItsIndex()
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

void StationUsageTest::aDeletedPathIsGone()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QVERIFY(QDir().rename(m_path, m_site->disk() + u"/away"_s));
    QTRY_COMPARE(lines(), u"Doors -1 3000 0 0"_s);
    QVERIFY(QDir().rename(m_site->disk() + u"/away"_s, m_path));
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
}

void StationUsageTest::aFilledVolumeIsTold()
{
    start();
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 614400"_s);
    m_site->setFree(0);
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 0"_s);
}

void StationUsageTest::anEditIsFollowed()
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

void StationUsageTest::leftoversBelongToNoGroupUntilTheyAreDeleted()
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

void StationUsageTest::theBackupArea()
{
    const QString backup = m_site->makePath(u"backup"_s);
    RecordedSite::write(backup + u"/Gate/2026-03-18"_s, u"0001.rec"_s, 700);
    start([&backup](UsageSettings &usage) { usage.backupFolder = backup; });
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 307200 | backupID 1 700 1024000 307200"_s);
    RecordedSite::write(backup + u"/Gate/2026-03-19"_s, u"0001.rec"_s, 500);
    QTRY_COMPARE(lines(), u"Doors 0 -1 1024000 307200 | backupID 2 600 1024000 307200"_s);
}

/// 200 days with 100 files each: more than is read in one go.
void StationUsageTest::makeManyFiles()
{
    for (int ago = 0; ago < 200; ++ago) {
        QVERIFY(QDir().mkpath(day(ago)));
        for (int number = 0; number < 100; ++number)
            QVERIFY(QFile(day(ago) + u'/' + QString::number(number)).open(QIODevice::WriteOnly));
    }
}

void StationUsageTest::progressOfALongRun()
{
    makeManyFiles();
    start([](UsageSettings &usage) { usage.progressInterval = std::chrono::hours(1); });
    QTRY_VERIFY(lines().startsWith(u"Doors 200 "_s));
    QCOMPARE(m_progress.size(), 0); // a short run has none
    m_station.reset();

    // After each folder, however fast folders are read.
    start([](UsageSettings &usage) {
        usage.sliceTime = std::chrono::milliseconds(0);
        usage.progressInterval = std::chrono::milliseconds(0);
    });
    QTRY_VERIFY(!m_progress.isEmpty() && !m_progress.constLast()[u"running"_s].toBool());
    const QVariantMap last{{u"done"_s, qint64(20'000)}, {u"total"_s, qint64(20'000)}, {u"running"_s, false}};
    QCOMPARE(m_progress.constLast(), last);
    QVERIFY(m_progress.size() > 200);
    qint64 before = 0;
    for (const QVariantMap &progress : std::as_const(m_progress)) {
        QVERIFY(progress[u"done"_s].toLongLong() >= before);
        QCOMPARE(progress[u"total"_s].toLongLong(), 20'000);
        before = progress[u"done"_s].toLongLong();
    }
    const QVariantMap middle{{u"done"_s, qint64(10'000)}, {u"total"_s, qint64(20'000)}, {u"running"_s, true}};
    QVERIFY(m_progress.contains(middle));
}

void StationUsageTest::theEndDuringARun()
{
    makeManyFiles();
    start([](UsageSettings &usage) {
        usage.sliceTime = std::chrono::milliseconds(0);
        usage.progressInterval = std::chrono::milliseconds(0);
    });
    QTRY_VERIFY(!m_progress.isEmpty());
    m_station.reset();
    start(); // and goes on where it ended
    QTRY_VERIFY(lines().startsWith(u"Doors 200 "_s));
}

QTEST_GUILESS_MAIN(StationUsageTest)
#include "tst_station_usage.moc"
