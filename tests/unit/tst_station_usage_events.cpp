#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "UsageStation.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

/// When the station tells its usage figures, and how far it is with a long run.
class StationUsageEventsTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void reloadFindsWhatIsNotWatched();
    void reloadTellsAlwaysOnce();
    void theFirstEventAfterReloadHasTheFigures();
    void whatIsNotNewIsNotTold();
    void reloadRefusesData();
    void eventsKeepTheirDistance();
    void progressOfALongRun();
    void theEndDuringARun();

private:
    void makeManyFiles();
};

void StationUsageEventsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationUsageEventsTest::cleanup()
{
    tearDown();
}

void StationUsageEventsTest::reloadFindsWhatIsNotWatched()
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

void StationUsageEventsTest::reloadTellsAlwaysOnce()
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

void StationUsageEventsTest::theFirstEventAfterReloadHasTheFigures()
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

void StationUsageEventsTest::whatIsNotNewIsNotTold()
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

void StationUsageEventsTest::reloadRefusesData()
{
    start();
    QString code;
    m_station->handle({ServerCommand::reloadStorageUsageInfo, u"all"_s},
                      [&code](const StationReply &reply) { code = reply.returnCode; });
    QCOMPARE(code, StationReturnCode::BadRequest);
}

void StationUsageEventsTest::eventsKeepTheirDistance()
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
        if (event.name == ServerEvent::VolumeChanged)
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

/// 200 days with 100 files each: more than is read in one go.
void StationUsageEventsTest::makeManyFiles()
{
    for (int ago = 0; ago < 200; ++ago) {
        QVERIFY(QDir().mkpath(day(ago)));
        for (int number = 0; number < 100; ++number)
            QVERIFY(QFile(day(ago) + u'/' + QString::number(number)).open(QIODevice::WriteOnly));
    }
}

void StationUsageEventsTest::progressOfALongRun()
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

void StationUsageEventsTest::theEndDuringARun()
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

QTEST_GUILESS_MAIN(StationUsageEventsTest)
#include "tst_station_usage_events.moc"
