#include "RecordedSite.h"
#include "ServerVocabulary.h"
#include "StationCall.h"
#include "StationVocabulary.h"
#include "alarms/AlarmStore.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr int hour = 60 * 60; // seconds
} // namespace

/// Alarms that the station keeps: since when, beyond its own end, and those that are over.
class StationPastAlarmsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void sinceSurvivesARestart();
    void whatEndedWhileTheStationWasOff();
    void whatEndedWhileTheStationRan();
    void nothingEndsBeforeEverybodyLooked();
    void aShortGroupIsKnownSinceItsFirstDay();
    void theNewestAreFirst();
    void aLockedDatabaseDelaysIt();
    void twoStationsKeepOneAlarm();
    void pendingIsNotKept();
    void oldOnesAreRemoved();
    void anUnusualRequestIsRefused();
    void aStationWithoutDataHasNone();

private:
    void start();
    void startAndLook();
    QVariantList alarms() const;
    QVariantList past(const QVariant &request = {}) const;
    /// "kind subject-of-the-disk since [until]", times as hours and minutes.
    QStringList texts(const QVariantList &list) const;
    QVariant valueBeside(const QString &statement) const { return Database(m_site->dataFolder()).value(statement); }

    std::unique_ptr<RecordedSite> m_site;
    QDateTime m_now;
    std::unique_ptr<Station> m_station;
};

void StationPastAlarmsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_site->addGroup(u"Doors"_s, {m_site->makePath(u"rec"_s)});
    m_now = QDateTime::fromString(QStringLiteral("2026-03-20T12:00:00Z"), Qt::ISODate);
}

void StationPastAlarmsTest::cleanup()
{
    m_station.reset();
    m_site.reset();
}

void StationPastAlarmsTest::start()
{
    m_station.reset();
    StationSettings settings = m_site->settings(m_now.date());
    settings.records.now = [this] { return m_now; };
    m_station = std::make_unique<Station>(std::move(settings));
}

/// Until the station knows which volume the group's path is on.
void StationPastAlarmsTest::startAndLook()
{
    start();
    bool isKnown = false;
    connect(m_station.get(), &Station::eventRaised, this,
            [&isKnown](const StationEvent &event) { isKnown = isKnown || event.name == ServerEvent::VolumeChanged; });
    QTRY_VERIFY(isKnown);
    m_station->disconnect(this);
}

QVariantList StationPastAlarmsTest::alarms() const
{
    return StationCall(*m_station, StationCommandName::listAlarms, {})
        .reply()
        .data.toMap()
        .value(StationKey::alarms)
        .toList();
}

QVariantList StationPastAlarmsTest::past(const QVariant &request) const
{
    return StationCall(*m_station, StationCommandName::listPastAlarms, request).reply().data.toList();
}

QStringList StationPastAlarmsTest::texts(const QVariantList &list) const
{
    QStringList lines;
    for (const QVariant &value : list) {
        const QVariantMap alarm = value.toMap();
        QStringList words{alarm.value(StationKey::kind).toString()};
        for (const QString &key : {StationKey::since, StationKey::until}) {
            if (alarm.contains(key))
                words.append(
                    QDateTime::fromString(alarm.value(key).toString(), Qt::ISODateWithMs).toString(u"dd hh:mm"_s));
        }
        lines.append(words.join(u' '));
    }
    return lines;
}

void StationPastAlarmsTest::sinceSurvivesARestart()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 12:00"_s));
    m_now = m_now.addSecs(hour);
    start();
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 12:00"_s));
    QCOMPARE(past(), QVariantList());
    m_now = m_now.addSecs(hour);
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(texts(past()), QStringList(u"VolumeGone 20 12:00 20 14:00"_s));
    QCOMPARE(alarms(), QVariantList());
    m_now = m_now.addSecs(hour);
    m_site->unmountDisk(); // another one of the same kind and subject
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 15:00"_s));
}

void StationPastAlarmsTest::whatEndedWhileTheStationWasOff()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    m_station.reset();
    m_now = m_now.addDays(1);
    m_site->setFree(600 * RecordedSite::megabyte);
    start();
    QTRY_COMPARE(texts(past()), QStringList(u"VolumeGone 20 12:00 21 12:00"_s));
    QCOMPARE(alarms(), QVariantList());
}

void StationPastAlarmsTest::whatEndedWhileTheStationRan()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    QVariantMap alarm = alarms().constFirst().toMap();
    m_now = m_now.addSecs(hour);
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(past().size(), 1);
    alarm.insert(StationKey::until, u"2026-03-20T13:00:00.000Z"_s);
    QCOMPARE(past().constFirst().toMap(), alarm);
}

/// A new run knows nothing of volumes before the groups were read and the folders on them.
void StationPastAlarmsTest::nothingEndsBeforeEverybodyLooked()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    start();
    QCOMPARE(past(), QVariantList()); // asks all sources before the event loop turns
    QCOMPARE(alarms(), QVariantList());
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 12:00"_s));
}

/// The clients say that a group is short as soon as they have figures; since when is the station's to know.
void StationPastAlarmsTest::aShortGroupIsKnownSinceItsFirstDay()
{
    RecordingGroup group = RecordedSite::group(u"Yard"_s, {m_site->makePath(u"yard"_s)}, 28);
    {
        Database database(m_site->dataFolder());
        GroupStore(database).insert(group);
    }
    for (int ago = 1; ago < 3; ++ago) {
        RecordedSite::write(
            RecordedSite::dayFolder(group.paths.constFirst().path, u"Yard"_s, u"Cam"_s, m_now.date().addDays(-ago)),
            u"a"_s, 100 * RecordedSite::megabyte);
    }
    start();
    QTRY_COMPARE(texts(alarms()), QStringList(u"InsufficientRecordingDays 20 12:00"_s));
    const QVariantMap alarm = alarms().constFirst().toMap();
    QCOMPARE(alarm.value(u"recordingGroupID"_s).toString(), group.id);
    QCOMPARE(alarm.value(StationKey::subject).toString(), u"Yard"_s);
    QCOMPARE(alarm.value(StationKey::severity).toString(), u"warning"_s);
    m_now = m_now.addSecs(hour);
    start();
    QCOMPARE(past(), QVariantList());
    QTRY_COMPARE(texts(alarms()), QStringList(u"InsufficientRecordingDays 20 12:00"_s));
    m_now = m_now.addSecs(hour);
    group.reservedMinutes = 24 * 60;
    {
        Database database(m_site->dataFolder());
        GroupStore(database).replace(group);
    }
    start();
    QTRY_COMPARE(texts(past()), QStringList(u"InsufficientRecordingDays 20 12:00 20 14:00"_s));
    QCOMPARE(alarms(), QVariantList());
}

void StationPastAlarmsTest::theNewestAreFirst()
{
    {
        Database database(m_site->dataFolder());
        AlarmStore store(database);
        Transaction transaction(database);
        for (int number = 0; number < 105; ++number) {
            const StationTrouble trouble{
                u"Kind"_s, StationTrouble::Severity::Warning, QString::number(number), {}, {}, m_now.addSecs(-hour)};
            store.begin(trouble);
            store.end(trouble, m_now.addSecs(-number));
        }
        transaction.commit();
    }
    start();
    QCOMPARE(past().size(), 100);
    QCOMPARE(past(QVariantMap{{StationKey::limit, 1000}}).size(), 105);
    const QVariantList two = past(QVariantMap{{StationKey::limit, 2}});
    QCOMPARE(two.size(), 2);
    QCOMPARE(two.at(0).toMap().value(StationKey::subject).toString(), u"0"_s);
    QCOMPARE(two.at(1).toMap().value(StationKey::subject).toString(), u"1"_s);
    QCOMPARE(two.at(0).toMap().value(StationKey::severity).toString(), u"warning"_s);
}

void StationPastAlarmsTest::aLockedDatabaseDelaysIt()
{
    startAndLook();
    QTRY_COMPARE(alarms(), QVariantList());
    {
        Database other(m_site->dataFolder());
        const Transaction lock(other);
        m_site->unmountDisk();
        QTRY_VERIFY(texts(alarms()).contains(u"VolumeGone 20 12:00"_s)); // from memory
        QCOMPARE(other.value(u"SELECT count(*) FROM alarm"_s).toInt(), 0);
        m_now = m_now.addSecs(hour);
        m_site->setFree(600 * RecordedSite::megabyte);
        QTRY_VERIFY(!texts(alarms()).contains(u"VolumeGone 20 12:00"_s));
    }
    QTRY_VERIFY(texts(past()).contains(u"VolumeGone 20 12:00 20 13:00"_s));
}

void StationPastAlarmsTest::twoStationsKeepOneAlarm()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    const std::unique_ptr<Station> first = std::move(m_station);
    m_now = m_now.addSecs(hour);
    start();
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 12:00"_s));
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(past().size(), 1);
    QTRY_COMPARE(
        StationCall(*first, StationCommandName::listAlarms, {}).reply().data.toMap().value(StationKey::alarms).toList(),
        QVariantList());
    QCOMPARE(past().size(), 1);
    QCOMPARE(valueBeside(u"SELECT count(*) FROM alarm"_s).toInt(), 1);
}

void StationPastAlarmsTest::pendingIsNotKept()
{
    start();
    QStringList pending;
    connect(m_station.get(), &Station::eventRaised, this, [&pending](const StationEvent &event) {
        if (event.name != StationEventName::AlarmsChanged)
            return;
        for (const QVariant &entry : event.data.toMap().value(StationKey::pending).toList())
            pending.append(entry.toMap().value(StationKey::kind).toString());
    });
    QCOMPARE(StationCall(*m_station, ServerCommand::reloadStorageUsageInfo, {}).reply().returnCode, u"0"_s);
    QTRY_VERIFY(pending.contains(u"RecordingsNotCounted"_s));
    QTRY_COMPARE(StationCall(*m_station, StationCommandName::listAlarms, {})
                     .reply()
                     .data.toMap()
                     .value(StationKey::pending)
                     .toList(),
                 QVariantList());
    QCOMPARE(valueBeside(u"SELECT count(*) FROM alarm"_s).toInt(), 0);
}

void StationPastAlarmsTest::oldOnesAreRemoved()
{
    startAndLook();
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(past().size(), 1);
    m_site->unmountDisk();
    QTRY_COMPARE(alarms().size(), 1);
    m_now = m_now.addDays(364);
    start();
    QTRY_COMPARE(alarms().size(), 1);
    QCOMPARE(past().size(), 1);
    m_now = m_now.addDays(2);
    start();
    QTRY_COMPARE(past().size(), 0);
    QTRY_COMPARE(texts(alarms()), QStringList(u"VolumeGone 20 12:00"_s)); // what stands is kept
}

void StationPastAlarmsTest::anUnusualRequestIsRefused()
{
    start();
    for (const QVariant &request : {QVariant(5), QVariant(QVariantMap{{StationKey::limit, 0}})})
        QCOMPARE(StationCall(*m_station, StationCommandName::listPastAlarms, request).reply().returnCode,
                 u"BadRequest"_s);
}

void StationPastAlarmsTest::aStationWithoutDataHasNone()
{
    QVERIFY(QDir(m_site->dataFolder()).removeRecursively());
    start();
    QCOMPARE(past(), QVariantList());
    QVERIFY(!Database::isIn(m_site->dataFolder()));
}

QTEST_GUILESS_MAIN(StationPastAlarmsTest)
#include "tst_station_past_alarms.moc"
