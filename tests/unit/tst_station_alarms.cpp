#include "UsageStation.h"

#include "ServerVocabulary.h"
#include "StationCall.h"
#include "StationVocabulary.h"
#include "usage/ClockWatch.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// What a station says of itself when something is broken, and that it says nothing else instead.
class StationAlarmsTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void aStationInOrderHasNone();
    void aVolumeThatIsGoneIsNamed();
    void aFolderThatIsGoneIsNoVolume();
    void aVolumeThatCanOnlyBeReadIsNamed();
    void theSecondThingThatBreaksLeavesTheFirstItsTime();
    void aReloadOfAMissingDatabaseIsRefused();
    void aDamagedDatabaseIsToldAndReadNoMore();
    void aDamagedIndexIsToldAndGroupsStayReadable();
    void aReplacedDatabaseIsToldAndRefused();
    void aLockedDatabaseIsTriedAgain();
    void readingIsPendingUntilItsEvent();
    void aDayOfTheFutureIsNotRecorded();
    void aClockThatWasSetBackMakesFiguresUnknown();
    void aClockFarAheadIsToldByTheSecondStart();
    void whatLiesInPlaceOfTheTimeIsNotFollowed();

private:
    /// Kinds and subjects of what the station tells under that key.
    QStringList told(const QString &key = StationKey::alarms);
    QString code(const QString &command);
    QString databaseFile() const { return Database::pathIn(m_site->dataFolder()); }
    void damage(const QString &table) const;
    void startAt(const QDateTime &now);
};

namespace {
/// On a connection of its own, closed again.
QVariant runAlone(const QString &file, const QString &statement)
{
    const QString name = u"alone"_s;
    QVariant value;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        connection.setDatabaseName(file);
        QSqlQuery query(connection);
        if (connection.open() && query.exec(statement))
            value = query.next() ? query.value(0) : QVariant(true);
        query.clear();
        connection.close();
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}
} // namespace

void StationAlarmsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

QStringList StationAlarmsTest::told(const QString &key)
{
    const StationReply reply = StationCall(*m_station, StationCommandName::listAlarms, {}).reply();
    QStringList texts;
    const QVariantList list = reply.data.toMap().value(key).toList();
    for (const QVariant &entry : list) {
        const QVariantMap map = entry.toMap();
        texts.append(map.value(StationKey::kind).toString() + u' ' + map.value(StationKey::subject).toString());
        if (map.value(StationKey::text).toString().isEmpty()
            || !QDateTime::fromString(map.value(StationKey::since).toString(), Qt::ISODateWithMs).isValid())
            texts.append(u"incomplete"_s);
    }
    return reply.returnCode == u"0"_s ? texts : QStringList(reply.returnCode);
}

QString StationAlarmsTest::code(const QString &command)
{
    return StationCall(*m_station, command, {}).reply().returnCode;
}

void StationAlarmsTest::damage(const QString &table) const
{
    const int page =
        runAlone(databaseFile(), u"SELECT rootpage FROM sqlite_schema WHERE name = '%1'"_s.arg(table)).toInt();
    QVERIFY(page > 1);
    QFile file(databaseFile());
    constexpr int pageSize = 4096;
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(qint64(page - 1) * pageSize));
    QCOMPARE(file.write(QByteArray(pageSize, '\xa5')), pageSize);
}

void StationAlarmsTest::startAt(const QDateTime &now)
{
    start([&now](UsageSettings &usage) {
        usage.now = [now] { return now; };
        usage.today = [now] { return now.date(); };
    });
}

void StationAlarmsTest::aStationInOrderHasNone()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QCOMPARE(told(), QStringList());
    QCOMPARE(told(StationKey::pending), QStringList());
    QCOMPARE(StationCall(*m_station, StationCommandName::listAlarms, 1).reply().returnCode, u"BadRequest"_s);
}

void StationAlarmsTest::aVolumeThatIsGoneIsNamed()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QStringList order;
    QVariantMap event;
    connect(m_station.get(), &Station::eventRaised, this, [&](const StationEvent &raised) {
        order.append(raised.name);
        if (raised.name == StationEventName::AlarmsChanged)
            event = raised.data.toMap();
    });
    m_site->unmountDisk();
    QTRY_VERIFY(order.contains(ServerEvent::VolumeChanged));
    QCOMPARE(order.constFirst(), StationEventName::AlarmsChanged);
    const QVariantMap alarm = event.value(StationKey::alarms).toList().value(0).toMap();
    QCOMPARE(alarm.value(StationKey::text).toString(),
             u"The volume Disk (%1) is not there; recording groups on it: Doors."_s.arg(m_site->disk()));
    QCOMPARE(alarm.value(StationKey::severity).toString(), u"error"_s);
    QCOMPARE(told(), QStringList(u"VolumeGone "_s + m_site->disk()));
    m_site->setFree(600 * RecordedSite::megabyte);
    QTRY_COMPARE(told(), QStringList());
}

void StationAlarmsTest::aFolderThatIsGoneIsNoVolume()
{
    start();
    QTRY_VERIFY(!m_events.isEmpty());
    QVERIFY(QDir(m_path).removeRecursively());
    QTRY_COMPARE(told(), QStringList(u"VolumeGone "_s + m_path));
}

void StationAlarmsTest::aVolumeThatCanOnlyBeReadIsNamed()
{
    start();
    QTRY_VERIFY(!m_events.isEmpty());
    QCOMPARE(told(), QStringList());
    Volume disk{m_site->disk(), u"Disk"_s, 1000 * RecordedSite::megabyte, 600 * RecordedSite::megabyte, false, true};
    m_site->volumes()->set({m_site->system(), disk});
    QTRY_COMPARE(told(), QStringList(u"PathNotWritable "_s + m_site->disk()));
    disk.isReadOnly = false;
    m_site->volumes()->set({m_site->system(), disk});
    QTRY_COMPARE(told(), QStringList());
}

void StationAlarmsTest::theSecondThingThatBreaksLeavesTheFirstItsTime()
{
    start();
    QTRY_VERIFY(!m_events.isEmpty());
    m_site->unmountDisk();
    QTRY_COMPARE(told().size(), 1);
    const auto since = [this] {
        const QVariantMap reply = StationCall(*m_station, StationCommandName::listAlarms, {}).reply().data.toMap();
        return reply.value(StationKey::alarms).toList().value(0).toMap().value(StationKey::since).toString();
    };
    const QString first = since();
    QTRY_VERIFY(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs) > first);
    QVERIFY(QFile::remove(databaseFile()));
    QTRY_COMPARE(told().size(), 2);
    QVERIFY(told().contains(u"VolumeGone "_s + m_site->disk()));
    const QVariantMap reply = StationCall(*m_station, StationCommandName::listAlarms, {}).reply().data.toMap();
    const QVariantList alarms = reply.value(StationKey::alarms).toList();
    QVERIFY(std::any_of(alarms.begin(), alarms.end(), [&first](const QVariant &alarm) {
        return alarm.toMap().value(StationKey::kind) == StationAlarmKind::VolumeGone
            && alarm.toMap().value(StationKey::since) == first;
    }));
}

void StationAlarmsTest::aReloadOfAMissingDatabaseIsRefused()
{
    QVERIFY(QFile::remove(databaseFile()));
    start();
    QCOMPARE(code(ServerCommand::reloadStorageUsageInfo), u"DatabaseMissing"_s);
    QCOMPARE(code(ServerCommand::getRecordingGroup), u"DatabaseMissing"_s);
    QCOMPARE(told(), QStringList(u"DatabaseMissing "_s + databaseFile()));
    QVERIFY(m_events.isEmpty());
}

void StationAlarmsTest::aDamagedDatabaseIsToldAndReadNoMore()
{
    damage(u"group_path"_s);
    start();
    QCOMPARE(code(ServerCommand::reloadStorageUsageInfo), u"DatabaseDamaged"_s);
    QCOMPARE(code(ServerCommand::getRecordingGroup), u"DatabaseDamaged"_s);
    QCOMPARE(told(), QStringList(u"DatabaseDamaged "_s + databaseFile()));
    // What is whole is still read, and nothing is written.
    QCOMPARE(code(StationCommandName::listCameras), u"0"_s);
    const QVariantMap camera{{FieldKey::camName, u"Yard"_s}, {StationKey::streams, 1}};
    QCOMPARE(StationCall(*m_station, StationCommandName::addCamera, camera).reply().returnCode, u"DatabaseDamaged"_s);
}

void StationAlarmsTest::aDamagedIndexIsToldAndGroupsStayReadable()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_station.reset();
    damage(u"recorded_file"_s);
    start();
    QTRY_COMPARE(told(), QStringList(u"DatabaseDamaged "_s + databaseFile()));
    QCOMPARE(code(ServerCommand::getRecordingGroup), u"0"_s);
    const QVariantMap camera{{FieldKey::camName, u"Yard"_s}, {StationKey::streams, 1}};
    QCOMPARE(StationCall(*m_station, StationCommandName::addCamera, camera).reply().returnCode, u"DatabaseDamaged"_s);
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s); // as they were
}

void StationAlarmsTest::aReplacedDatabaseIsToldAndRefused()
{
    start();
    QTRY_VERIFY(!m_events.isEmpty());
    const QString kept = databaseFile() + u".kept"_s;
    QVERIFY(QFile::rename(databaseFile(), kept) && QFile::copy(kept, databaseFile()));
    const QVariantMap camera{{FieldKey::camName, u"Yard"_s}, {StationKey::streams, 1}};
    QCOMPARE(StationCall(*m_station, StationCommandName::addCamera, camera).reply().returnCode, u"DatabaseReplaced"_s);
    QCOMPARE(code(ServerCommand::reloadStorageUsageInfo), u"DatabaseReplaced"_s);
    QCOMPARE(told(), QStringList(u"DatabaseReplaced "_s + databaseFile()));
}

void StationAlarmsTest::aLockedDatabaseIsTriedAgain()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    {
        // Rows that a new station has to write before it can count anything.
        Database other(m_site->dataFolder());
        other.run(u"PRAGMA busy_timeout = 0"_s);
        const Transaction lock(other);
        start([](UsageSettings &usage) { usage.retryTime = 50ms; });
        constexpr int longerThanAWriterWaits = 15000; // milliseconds
        QTRY_COMPARE_WITH_TIMEOUT(told(), QStringList(u"DatabaseBusy "_s + databaseFile()), longerThanAWriterWaits);
    }
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QTRY_COMPARE(told(), QStringList());
}

void StationAlarmsTest::readingIsPendingUntilItsEvent()
{
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    start([](UsageSettings &usage) { usage.tellInterval = 300ms; }); // longer than the reading takes
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_events.clear();
    reload();
    const QStringList counting(u"RecordingsNotCounted recordings"_s);
    QTRY_COMPARE(told(StationKey::pending), counting);
    QTRY_VERIFY(told(StationKey::pending) != counting || !m_events.isEmpty());
    QCOMPARE(m_events.size(), 1);
    QCOMPARE(told(StationKey::pending), QStringList());
}

void StationAlarmsTest::aDayOfTheFutureIsNotRecorded()
{
    for (const int ago : {2, 1, 0, -1})
        RecordedSite::write(day(ago), u"0001.rec"_s, 3000);
    RecordedSite::write(day(-400), u"0001.rec"_s, 3000);
    start();
    QTRY_COMPARE(lines(), u"Doors 4 3000 1024000 614400"_s);
    QCOMPARE(told(), QStringList(u"RecordingsOfTheFuture recordings"_s));
}

void StationAlarmsTest::aClockThatWasSetBackMakesFiguresUnknown()
{
    const QDateTime right =
        QDateTime::fromString(today.toString(Qt::ISODate) + QStringLiteral("T12:00:00Z"), Qt::ISODate);
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    startAt(right);
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_station.reset();
    m_events.clear();
    startAt(right.addYears(-3));
    QTRY_COMPARE(lines(), u"Doors -1 -1 1024000 614400"_s);
    QCOMPARE(told(), QStringList(u"ClockBehind clock"_s));
    m_station.reset();
    m_events.clear();
    startAt(right.addSecs(60));
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QCOMPARE(told(), QStringList());
}

void StationAlarmsTest::aClockFarAheadIsToldByTheSecondStart()
{
    const QDateTime right =
        QDateTime::fromString(today.toString(Qt::ISODate) + QStringLiteral("T12:00:00Z"), Qt::ISODate);
    RecordedSite::write(day(1), u"0001.rec"_s, 3000);
    startAt(right);
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    m_station.reset();
    startAt(right.addYears(4));
    QTRY_COMPARE(told(), QStringList(u"ClockAhead clock"_s));
    m_station.reset();
    startAt(right.addSecs(60)); // what was wrong was not kept
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    QCOMPARE(told(), QStringList());
}

void StationAlarmsTest::whatLiesInPlaceOfTheTimeIsNotFollowed()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"latest-time"_s);
    const QString elsewhere = folder.filePath(u"elsewhere"_s);
    QFile other(elsewhere);
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("kept") == 4);
    other.close();
    QVERIFY(QFile::link(elsewhere, file));
    ClockWatch(folder.path(), {}).look({});
    QVERIFY(other.open(QIODevice::ReadOnly));
    QCOMPARE(other.readAll(), "kept");
    QVERIFY(QFileInfo(file).isFile() && !QFileInfo(file).isSymLink());

    QVERIFY(QFile::remove(file) && mkfifo(QFile::encodeName(file).constData(), 0600) == 0);
    ClockWatch(folder.path(), {}).look({}); // reading a pipe that nobody writes to would not end
    QVERIFY(QFileInfo(file).isFile());
    QVERIFY(!QFileInfo(file).permissions().testAnyFlags(QFile::ReadGroup | QFile::ReadOther));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), (QStringList{u"elsewhere"_s, u"latest-time"_s}));
}

QTEST_GUILESS_MAIN(StationAlarmsTest)
#include "tst_station_alarms.moc"
