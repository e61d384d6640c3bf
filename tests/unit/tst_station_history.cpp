#include "RecordedSite.h"
#include "StationCall.h"
#include "StationVocabulary.h"
#include "history/HistoryStore.h"

#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QDate today(2026, 3, 20);
constexpr qint64 hour = 3600;

qint64 secondsOf(const QString &time)
{
    return QDateTime::fromString(time, Qt::ISODate).toSecsSinceEpoch();
}

HistorySubject group(const QString &id)
{
    return {HistorySubject::Kind::RecordingGroup, id};
}
} // namespace

/// What a station keeps of its figures, with a clock of the test's making.
class StationHistoryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anHourHasOneSampleAndADayHasOne();
    void aVolumeHasItsOwn();
    void whatIsNotKnownIsNotZero();
    void whatBecomesKnownWithinTheHourIsAdded();
    void aClockSetBackMakesNoSample();
    void anotherRunOfTheStationKeepsOneSample();
    void aDatabaseThatIsBusyForAMomentIsWaitedFor();
    void aBusyDatabaseDropsTheSampleUntilTheNextMinute();
    void theTimeWithoutAStationIsAGap();
    void aReplyIsBoundedAndSaysWhereMoreIs();
    void oldSamplesAreForgottenAndThoseOfARemovedGroupStay();
    void whatHasNoHistory();
    void badRequests_data();
    void badRequests();

private:
    void start();
    void setTime(const QString &time) { *m_now = QDateTime::fromString(time, Qt::ISODate); }
    StationReply ask(const QVariantMap &request) const { return StationCall(*m_station, command(), request).reply(); }
    QVariantMap history(const QString &resolution, const QString &id = u"Doors"_s, const QVariantMap &more = {}) const;
    static QString command() { return StationCommandName::readHistory; }
    /// Time, days, remaining days, bytes of a day, bytes, minutes and MB of each sample.
    QStringList samples(const QString &resolution, const QString &id = u"Doors"_s) const;
    static QStringList gapsIn(const QVariantMap &history);
    void keep(HistoryResolution resolution, const QString &time, const UsageSample &sample) const;

    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
    std::shared_ptr<QDateTime> m_now; // on the station's thread, which is the test's
    QString m_path;
};

void StationHistoryTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_path = m_site->makePath(u"rec"_s);
    m_site->addGroup(u"Doors"_s, {m_path}, 10);
    m_now = std::make_shared<QDateTime>();
    setTime(u"2026-03-20T10:20:00Z"_s);
    for (const int ago : {0, 1, 2}) {
        const QString folder = RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today.addDays(-ago));
        RecordedSite::write(folder, u"0001.rec"_s, 100 * RecordedSite::megabyte);
    }
}

void StationHistoryTest::cleanup()
{
    m_station.reset();
    m_site.reset();
}

void StationHistoryTest::start()
{
    StationSettings settings = m_site->settings(today);
    settings.usage.historyInterval = 20ms;
    settings.usage.now = [now = m_now] { return *now; };
    m_station = std::make_unique<Station>(std::move(settings));
}

QVariantMap StationHistoryTest::history(const QString &resolution, const QString &id, const QVariantMap &more) const
{
    QVariantMap request{{u"kind"_s, u"recordingGroup"_s}, {u"id"_s, id}, {u"resolution"_s, resolution}};
    request.insert(more);
    const StationReply reply = ask(request);
    return reply.returnCode == u"0"_s ? reply.data.toMap() : QVariantMap{{u"refused"_s, reply.returnCode}};
}

QStringList StationHistoryTest::samples(const QString &resolution, const QString &id) const
{
    QStringList lines;
    const QVariantMap all{{u"until"_s, u"2027-01-01T00:00:00Z"_s}};
    const QVariantList samples = history(resolution, id, all)[u"samples"_s].toList();
    for (const QVariant &value : samples) {
        const QVariantMap map = value.toMap();
        QStringList words;
        for (const QString &key : {u"time"_s, u"recordedDays"_s, u"remainingDays"_s, u"oneDayUsage"_s,
                                   u"recordedBytes"_s, u"recordingGroupReservedTime"_s, u"reserveSpace"_s})
            words.append(map.value(key, u"missing"_s).toString());
        lines.append(words.join(u' '));
    }
    return lines;
}

QStringList StationHistoryTest::gapsIn(const QVariantMap &history)
{
    QStringList lines;
    const QVariantList gaps = history[u"gaps"_s].toList();
    for (const QVariant &gap : gaps)
        lines.append(gap.toMap()[u"from"_s].toString() + u' ' + gap.toMap()[u"until"_s].toString());
    return lines;
}

void StationHistoryTest::keep(HistoryResolution resolution, const QString &time, const UsageSample &sample) const
{
    Database database(m_site->dataFolder());
    Transaction transaction(database);
    QVERIFY(HistoryStore(database).insert(resolution, secondsOf(time), sample));
    transaction.commit();
}

void StationHistoryTest::anHourHasOneSampleAndADayHasOne()
{
    start();
    const QString figures = u"3 6 104857600 314572800 14400 0"_s;
    const QStringList first{u"2026-03-20T10:00:00Z "_s + figures};
    const QStringList days{u"2026-03-20T00:00:00Z "_s + figures};
    QTRY_COMPARE(samples(u"hour"_s), first);
    QTRY_COMPARE(samples(u"day"_s), days);
    setTime(u"2026-03-20T10:59:59Z"_s);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today), u"0002.rec"_s, 7);
    setTime(u"2026-03-20T11:00:01Z"_s);
    QTRY_COMPARE(samples(u"hour"_s).size(), 2);
    QCOMPARE(samples(u"hour"_s).first(), first.first());
    QVERIFY(samples(u"hour"_s).last().startsWith(u"2026-03-20T11:00:00Z 3 6 "_s));
    QCOMPARE(samples(u"day"_s), days);
    setTime(u"2026-03-21T00:00:30Z"_s);
    QTRY_COMPARE(samples(u"day"_s).size(), 2);
    QCOMPARE(samples(u"hour"_s).size(), 3);
}

void StationHistoryTest::aVolumeHasItsOwn()
{
    start();
    const QVariantMap request{{u"kind"_s, u"volume"_s}, {u"path"_s, m_site->disk()}, {u"resolution"_s, u"hour"_s}};
    const QVariantMap expected{{u"time"_s, u"2026-03-20T10:00:00Z"_s},
                               {u"volumeSize"_s, 1024000},
                               {u"volumeAvailableSize"_s, 614400},
                               {u"recordedBytes"_s, 314572800}};
    QTRY_COMPARE(ask(request).data.toMap()[u"samples"_s].toList(), (QVariantList{expected}));
    // A disk that is away has no size.
    m_site->unmountDisk();
    setTime(u"2026-03-20T11:00:30Z"_s);
    QTRY_COMPARE(ask(request).data.toMap()[u"samples"_s].toList().size(), 2);
    QVariantMap away = ask(request).data.toMap()[u"samples"_s].toList().last().toMap();
    QCOMPARE(away[u"volumeSize"_s].toLongLong(), -1);
    QCOMPARE(away[u"volumeAvailableSize"_s].toLongLong(), -1);
    QCOMPARE(away[u"recordedBytes"_s].toLongLong(), 314572800);
}

void StationHistoryTest::whatIsNotKnownIsNotZero()
{
    m_site->addGroup(u"New"_s, {m_site->makePath(u"new"_s)});
    RecordedSite::write(RecordedSite::dayFolder(m_site->makePath(u"new"_s), u"New"_s, u"Gate"_s, today), u"a"_s, 5);
    start();
    QTRY_COMPARE(samples(u"hour"_s, u"New"_s), QStringList{u"2026-03-20T10:00:00Z 1 -1 -1 5 0 0"_s});
    m_station.reset();
    Database database(m_site->dataFolder());
    const QString nulls = u"SELECT count(*) FROM history_sample JOIN history_subject ON subject = number"
                          " WHERE key = 'New' AND remaining_days IS NULL AND one_day_usage IS NULL"_s;
    QCOMPARE(database.value(nulls).toInt(), 2);
}

void StationHistoryTest::whatBecomesKnownWithinTheHourIsAdded()
{
    const QString yesterday = RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today.addDays(-1));
    const QString before = RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today.addDays(-2));
    QVERIFY(QDir(yesterday).removeRecursively());
    QVERIFY(QDir(before).removeRecursively());
    start();
    QTRY_COMPARE(samples(u"hour"_s), QStringList{u"2026-03-20T10:00:00Z 1 -1 -1 104857600 14400 0"_s});
    RecordedSite::write(yesterday, u"0001.rec"_s, 50 * RecordedSite::megabyte);
    // The figures that were known stay those of the first moment.
    QTRY_COMPARE(samples(u"hour"_s), QStringList{u"2026-03-20T10:00:00Z 1 12 52428800 104857600 14400 0"_s});
}

void StationHistoryTest::aClockSetBackMakesNoSample()
{
    start();
    QTRY_COMPARE(samples(u"hour"_s).size(), 1);
    setTime(u"2026-03-20T11:00:30Z"_s);
    QTRY_COMPARE(samples(u"hour"_s).size(), 2);
    const QStringList known = samples(u"hour"_s);
    const auto looks = [this] { return m_site->volumes()->looksSoFar(); };

    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today), u"0002.rec"_s, 7);
    setTime(u"2026-03-20T10:30:00Z"_s); // a correction
    int before = looks();
    QTRY_VERIFY(looks() > before + 10);
    QCOMPARE(samples(u"hour"_s), known);

    setTime(u"2026-03-20T05:30:00Z"_s); // an hour that has no sample
    before = looks();
    QTRY_VERIFY(looks() > before + 10);
    QCOMPARE(samples(u"hour"_s), known);

    setTime(u"2026-03-20T12:00:10Z"_s);
    QTRY_COMPARE(samples(u"hour"_s).size(), 3);
}

void StationHistoryTest::anotherRunOfTheStationKeepsOneSample()
{
    start();
    QTRY_COMPARE(samples(u"hour"_s).size(), 1);
    const QStringList known = samples(u"hour"_s);
    m_station.reset();
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today), u"0002.rec"_s, 7);
    m_site->addGroup(u"Late"_s, {m_site->makePath(u"late"_s)});
    start();
    QTRY_COMPARE(samples(u"hour"_s, u"Late"_s).size(), 1); // the station samples again
    QCOMPARE(samples(u"hour"_s), known);
}

/// A sample that is dropped leaves a warning, and none is expected.
void StationHistoryTest::aDatabaseThatIsBusyForAMomentIsWaitedFor()
{
    start();
    QTRY_COMPARE(samples(u"hour"_s).size(), 1);
    Database other(m_site->dataFolder());
    auto holding = std::make_unique<Transaction>(other);
    QTimer release;
    release.setSingleShot(true);
    release.callOnTimeout([&holding] { holding.reset(); });
    release.start(300ms);
    setTime(u"2026-03-20T11:00:30Z"_s);
    QTRY_VERIFY(!holding);
    QTRY_COMPARE(samples(u"hour"_s).size(), 2);
}

void StationHistoryTest::aBusyDatabaseDropsTheSampleUntilTheNextMinute()
{
    start();
    QTRY_COMPARE(samples(u"hour"_s).size(), 1);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"samples of usage figures were dropped"_s));
    {
        Database other(m_site->dataFolder());
        const Transaction holding(other);
        setTime(u"2026-03-20T11:00:30Z"_s);
        const int before = m_site->volumes()->looksSoFar();
        QTRY_VERIFY_WITH_TIMEOUT(m_site->volumes()->looksSoFar() > before + 100, 20'000); // the station goes on
        QCOMPARE(samples(u"hour"_s).size(), 1);
    }
    QTRY_COMPARE(samples(u"hour"_s).size(), 2);
}

void StationHistoryTest::theTimeWithoutAStationIsAGap()
{
    for (const QString &time : {u"2026-03-20T01:00:00Z"_s, u"2026-03-20T02:00:00Z"_s, u"2026-03-20T06:00:00Z"_s}) {
        keep(HistoryResolution::Hour, time, {});
        if (!time.contains(u"T02"_s)) // the group was away then, the station was not
            keep(HistoryResolution::Hour, time, {group(u"Doors"_s)});
    }
    start();
    QTRY_COMPARE(samples(u"hour"_s).size(), 3);
    const QStringList gaps{u"2026-03-20T03:00:00Z 2026-03-20T06:00:00Z"_s,
                           u"2026-03-20T07:00:00Z 2026-03-20T10:00:00Z"_s};
    QCOMPARE(gapsIn(history(u"hour"_s)), gaps);
    const QVariantMap part{{u"from"_s, u"2026-03-20T04:30:00Z"_s}, {u"until"_s, u"2026-03-20T08:00:00Z"_s}};
    const QStringList gapsOfPart{u"2026-03-20T05:00:00Z 2026-03-20T06:00:00Z"_s,
                                 u"2026-03-20T07:00:00Z 2026-03-20T08:00:00Z"_s};
    QCOMPARE(gapsIn(history(u"hour"_s, u"Doors"_s, part)), gapsOfPart);
    QCOMPARE(history(u"hour"_s, u"Doors"_s, part)[u"samples"_s].toList().size(), 1);
    QCOMPARE(gapsIn(history(u"day"_s)), QStringList());
}

void StationHistoryTest::aReplyIsBoundedAndSaysWhereMoreIs()
{
    constexpr int many = 1500;
    const qint64 first = secondsOf(u"2026-03-20T09:00:00Z"_s) - (many - 1) * hour;
    {
        Database database(m_site->dataFolder());
        Transaction transaction(database);
        HistoryStore store(database);
        for (int i = 0; i < many; ++i) {
            UsageSample sample{group(u"Doors"_s)};
            sample.figures[UsageSample::RecordedBytes] = i;
            store.insert(HistoryResolution::Hour, first + i * hour, {});
            store.insert(HistoryResolution::Hour, first + i * hour, sample);
        }
        transaction.commit();
    }
    m_site->volumes()->set({});
    start();
    const QVariantMap until{{u"until"_s, u"2026-03-20T10:00:00Z"_s}};
    const QVariantMap page = history(u"hour"_s, u"Doors"_s, until);
    QCOMPARE(page[u"samples"_s].toList().size(), 1000);
    QVariantMap rest = until;
    rest.insert(u"from"_s, page[u"moreFrom"_s]);
    const QVariantMap last = history(u"hour"_s, u"Doors"_s, rest);
    const QVariantList samples = last[u"samples"_s].toList();
    QCOMPARE(samples.size(), 500);
    QCOMPARE(samples.first().toMap()[u"recordedBytes"_s].toInt(), 1000);
    QCOMPARE(samples.last().toMap()[u"recordedBytes"_s].toInt(), many - 1);
    QVERIFY(!last.contains(u"moreFrom"_s));
    QCOMPARE(gapsIn(page) + gapsIn(last), QStringList());
}

void StationHistoryTest::oldSamplesAreForgottenAndThoseOfARemovedGroupStay()
{
    const HistorySubject removed = group(u"Removed"_s);
    keep(HistoryResolution::Hour, u"2025-12-18T10:00:00Z"_s, {removed}); // 92 days before
    keep(HistoryResolution::Hour, u"2025-12-18T11:00:00Z"_s, {removed});
    keep(HistoryResolution::Day, u"2021-03-10T00:00:00Z"_s, {removed});
    keep(HistoryResolution::Day, u"2021-03-20T00:00:00Z"_s, {removed});
    keep(HistoryResolution::Day, u"2021-03-10T00:00:00Z"_s, {group(u"Ancient"_s)});
    start();
    const QVariantMap ofAncient{{u"kind"_s, u"recordingGroup"_s}, {u"id"_s, u"Ancient"_s}, {u"resolution"_s, u"day"_s}};
    QTRY_COMPARE(ask(ofAncient).returnCode, u"NoHistory"_s);
    QCOMPARE(samples(u"hour"_s, u"Removed"_s), QStringList{u"2025-12-18T11:00:00Z -1 -1 -1 -1 -1 -1"_s});
    QCOMPARE(samples(u"day"_s, u"Removed"_s), QStringList{u"2021-03-20T00:00:00Z -1 -1 -1 -1 -1 -1"_s});
}

void StationHistoryTest::whatHasNoHistory()
{
    StationSettings settings = m_site->settings(today); // samples in a minute
    m_station = std::make_unique<Station>(std::move(settings));
    QCOMPARE(history(u"hour"_s), (QVariantMap{{u"samples"_s, QVariantList()}, {u"gaps"_s, QVariantList()}}));
    QCOMPARE(history(u"hour"_s, u"Nobody"_s), (QVariantMap{{u"refused"_s, u"NoHistory"_s}}));
    const QVariantMap request{{u"kind"_s, u"volume"_s}, {u"path"_s, u"/none"_s}, {u"resolution"_s, u"hour"_s}};
    QCOMPARE(ask(request).returnCode, u"NoHistory"_s);
}

void StationHistoryTest::badRequests_data()
{
    QTest::addColumn<QVariant>("request");
    const QVariantMap good{{u"kind"_s, u"recordingGroup"_s}, {u"id"_s, u"Doors"_s}, {u"resolution"_s, u"hour"_s}};
    const auto with = [&good](const QString &key, const QVariant &value) {
        QVariantMap map = good;
        map.insert(key, value);
        return QVariant(map);
    };
    QTest::newRow("no map") << QVariant();
    QTest::newRow("another kind") << with(u"kind"_s, u"camera"_s);
    QTest::newRow("another resolution") << with(u"resolution"_s, u"minute"_s);
    QTest::newRow("no time") << with(u"from"_s, u"yesterday"_s);
    QTest::newRow("a local time") << with(u"from"_s, u"2026-03-20T00:00:00"_s);
    QTest::newRow("a time of a zone") << with(u"until"_s, u"2026-03-20T00:00:00+02:00"_s);
    QTest::newRow("a number") << with(u"until"_s, 1234);
    QTest::newRow("an end before the beginning") << with(u"from"_s, u"2027-03-20T00:00:00Z"_s);
    QVariantMap volume = good;
    volume.insert(u"kind"_s, u"volume"_s);
    QTest::newRow("a volume without a path") << QVariant(volume);
}

void StationHistoryTest::badRequests()
{
    QFETCH(QVariant, request);
    start();
    QCOMPARE(StationCall(*m_station, command(), request).reply().returnCode, u"BadRequest"_s);
}

QTEST_GUILESS_MAIN(StationHistoryTest)
#include "tst_station_history.moc"
