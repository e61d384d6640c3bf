#include "AlarmOrder.h"
#include "RowFilter.h"
#include "StationOverview.h"
#include "companions/StatusMonitorPlugin.h"

#include <QAbstractItemModelTester>
#include <QHash>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

/// The rows of all stations, and the order of all their alarms.
class TestStationOverview : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rowsComeInBatches();
    void nothingIsDoneWhileNobodyLooks();
    void whatHasChangedIsToldAlone();
    void aChangeMovesNoRow();
    void whatIsToldFirstIsNoChange();
    void aSilentStationIsNotHeardOf();
    void theChoiceIsAskedFor();
    void alarmsAreLabelled();
    void stationsOfOneNameAreToldApart();
    void countsOfTheSite();
    void aSiteMayHaveOneStation();

    void alarmsStandByUrgency();
    void anAlarmIsAMap();

private:
    void tell(const QString &station, int missing, StationState::Kind state = StationState::Kind::Up);
    void tellMany(int count);
    void flush(const QStringList &stations);
    QVariant value(const QString &station, int role) const
    {
        return m_stations->index(m_stations->rowOf(station)).data(role);
    }

    std::unique_ptr<StationOverview> m_stations;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    QHash<QString, StationDirectory::Record> m_records;
};

void TestStationOverview::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_records.clear();
    m_stations = std::make_unique<StationOverview>();
    m_stations->setActive(true);
    m_tester = std::make_unique<QAbstractItemModelTester>(m_stations.get(),
                                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
}

void TestStationOverview::cleanup()
{
    m_tester.reset();
    m_stations.reset();
}

void TestStationOverview::tell(const QString &station, int missing, StationState::Kind state)
{
    StationDirectory::Record &record = m_records[station];
    record.presence.relayPath = station;
    record.presence.state.kind = state;
    record.figures.groups = 1;
    record.figures.missingDays = missing;
    record.figures.freeBytes = 1024;
    record.areAlarmsTold = true;
    flush({station});
}

void TestStationOverview::flush(const QStringList &stations)
{
    m_stations->take(stations, [this](const QString &station) { return m_records.value(station); });
}

void TestStationOverview::tellMany(int count)
{
    for (int number = 0; number < count; ++number)
        tell(u"s%1"_s.arg(number), number % 7);
}

void TestStationOverview::rowsComeInBatches()
{
    const QSignalSpy inserted(m_stations.get(), &QAbstractItemModel::rowsInserted);
    const QSignalSpy reset(m_stations.get(), &QAbstractItemModel::modelReset);
    tellMany(1000);
    QTRY_COMPARE(m_stations->rowCount(), 1000);
    QVERIFY2(inserted.size() >= 5 && inserted.size() < 100, QByteArray::number(inserted.size()));
    QCOMPARE(reset.size(), 0);
    for (int row = 0; row < 1000; row += 111)
        QCOMPARE(m_stations->rowOf(m_stations->relayPathAt(row)), row);
    QCOMPARE(m_stations->relayPathAt(1000), QString());
}

void TestStationOverview::nothingIsDoneWhileNobodyLooks()
{
    tell(u"a"_s, 3);
    QTRY_COMPARE(m_stations->rowCount(), 1);
    m_stations->setActive(false);
    tell(u"a"_s, 4);
    tell(u"b"_s, 0);
    QCoreApplication::processEvents();
    QCOMPARE(m_stations->rowCount(), 1);
    QCOMPARE(value(u"a"_s, StationOverview::MissingDays), QVariant(3));
    m_stations->setActive(true);
    QTRY_COMPARE(m_stations->rowCount(), 2);
    QCOMPARE(value(u"a"_s, StationOverview::MissingDays), QVariant(4));
    QCOMPARE(m_stations->unsettled(), 0);
}

void TestStationOverview::whatHasChangedIsToldAlone()
{
    tellMany(3);
    QTRY_COMPARE(m_stations->rowCount(), 3);
    QSignalSpy changed(m_stations.get(), &QAbstractItemModel::dataChanged);
    m_records[u"s1"_s].figures.freeBytes = 2048;
    flush({u"s0"_s, u"s1"_s, u"s2"_s});
    QTRY_COMPARE(changed.size(), 1);
    const QModelIndex row = changed.constFirst().at(0).toModelIndex();
    QCOMPARE(row.row(), m_stations->rowOf(u"s1"_s));
    QCOMPARE(changed.constFirst().at(1).toModelIndex(), row);
    QVERIFY(changed.constFirst().at(2).value<QList<int>>().contains(StationOverview::Free));
    QVERIFY(!changed.constFirst().at(2).value<QList<int>>().contains(StationOverview::Name));
}

/// What the rows are sorted by follows when somebody asks for it.
void TestStationOverview::aChangeMovesNoRow()
{
    RowFilter sorted;
    sorted.setNameRole(u"nameRole"_s);
    sorted.setOrderBy(u"badnessOrderRole"_s);
    sorted.setDescending(true);
    sorted.setSourceModel(m_stations.get());
    tellMany(50);
    QTRY_COMPARE(m_stations->rowCount(), 50);
    m_stations->settle();
    const QSignalSpy moved(&sorted, &QAbstractItemModel::layoutChanged);
    const QStringList before = sorted.names();
    for (int number = 0; number < 50; ++number)
        tell(u"s%1"_s.arg(number), 6 - number % 7, number == 30 ? StationState::Kind::Down : StationState::Kind::Up);
    QTRY_COMPARE(value(u"s30"_s, StationOverview::StateRole), QVariant(StationOverview::Down));
    QTRY_VERIFY(m_stations->unsettled() > 40);
    QCOMPARE(sorted.names(), before);
    QCOMPARE(moved.size(), 0);
    m_stations->settle();
    QCOMPARE(sorted.names().constFirst(), u"s30"_s);
    QCOMPARE(m_stations->unsettled(), 0);
}

void TestStationOverview::whatIsToldFirstIsNoChange()
{
    tellMany(3);
    StationDirectory::Record &late = m_records[u"late"_s];
    late.presence.relayPath = u"late"_s;
    late.presence.state.kind = StationState::Kind::Up;
    flush({u"late"_s});
    QTRY_COMPARE(m_stations->rowCount(), 4);
    late.areAlarmsTold = true;
    late.alarms = late.errors = 1;
    flush({u"late"_s});
    QTRY_COMPARE(value(u"late"_s, StationOverview::Alarms), QVariant(1));
    const double broken = value(u"late"_s, StationOverview::BadnessOrder).toDouble();
    tell(u"late"_s, 5);
    QTRY_COMPARE(value(u"late"_s, StationOverview::MissingDays), QVariant(5));
    QCOMPARE(value(u"late"_s, StationOverview::BadnessOrder).toDouble(), broken + 5);
    QCOMPARE(m_stations->unsettled(), 0);
    tell(u"late"_s, 6);
    QTRY_COMPARE(m_stations->unsettled(), 1);
    QCOMPARE(value(u"late"_s, StationOverview::BadnessOrder).toDouble(), broken + 5);
}

void TestStationOverview::aSilentStationIsNotHeardOf()
{
    tell(u"a"_s, 0, StationState::Kind::Down);
    m_records[u"b"_s].presence.state.isSilent = true;
    tell(u"b"_s, 0, StationState::Kind::Down);
    QTRY_COMPARE(m_stations->rowCount(), 2);
    QCOMPARE(value(u"a"_s, StationOverview::StateRole).toInt(), int(StationOverview::Down));
    QCOMPARE(value(u"b"_s, StationOverview::StateRole).toInt(), int(StationOverview::NotHeardOf));
    QCOMPARE(value(u"b"_s, StationOverview::BadnessOrder), value(u"a"_s, StationOverview::BadnessOrder)); // as urgent
}

void TestStationOverview::theChoiceIsAskedFor()
{
    tellMany(2);
    m_stations->setDirect(u"s0"_s);
    QSignalSpy chosen(m_stations.get(), &StationOverview::chosen);
    m_stations->choose(u"s0"_s);
    QCOMPARE(chosen.size(), 0);
    m_stations->choose(u"s1"_s);
    QCOMPARE(chosen.size(), 1);
    m_stations->refuse(u"It is down."_s);
    QCOMPARE(m_stations->failure(), u"It is down."_s);
    m_stations->choose(u"s1"_s);
    QCOMPARE(m_stations->failure(), QString());
}

void TestStationOverview::alarmsAreLabelled()
{
    m_records[u"a"_s].presence.name = u"Airport"_s;
    tell(u"a"_s, 0);
    m_stations->setCounts(1, 0, 0);
    m_stations->setDirect(u"a"_s);
    QCOMPARE(m_stations->label({}), QString()); // one alone needs no name
    QCOMPARE(m_stations->label(u"a"_s), QString());
    m_stations->setCounts(2, 0, 0);
    QCOMPARE(m_stations->label({}), u"Airport"_s);
    QCOMPARE(m_stations->label(u"a"_s), u"Airport"_s);
    QCOMPARE(m_stations->label(u"b"_s), u"b"_s);
}

void TestStationOverview::stationsOfOneNameAreToldApart()
{
    m_records[u"a"_s].presence.name = u"Server"_s;
    tell(u"a"_s, 0);
    m_stations->setDirect(u"a"_s);
    QTRY_COMPARE(value(u"a"_s, StationOverview::Name), u"Server"_s);
    QSignalSpy direct(m_stations.get(), &StationOverview::directChanged);
    QSignalSpy data(m_stations.get(), &StationOverview::dataChanged);
    m_records[u"b"_s].presence.name = u"Server"_s;
    tell(u"b"_s, 0);
    QTRY_COMPARE(value(u"b"_s, StationOverview::Name), u"Server (b)"_s);
    QCOMPARE(value(u"a"_s, StationOverview::Name), u"Server (a)"_s);
    QCOMPARE(data.constFirst().at(0).toModelIndex().row(), m_stations->rowOf(u"a"_s));
    QCOMPARE(m_stations->directName(), u"Server (a)"_s);
    QCOMPARE(direct.size(), 1);
    m_records[u"b"_s].presence.name = u"Other"_s;
    tell(u"b"_s, 0);
    QTRY_COMPARE(value(u"b"_s, StationOverview::Name), u"Other"_s);
    QCOMPARE(value(u"a"_s, StationOverview::Name), u"Server"_s);
}

void TestStationOverview::countsOfTheSite()
{
    m_stations->setCounts(1, 0, 0);
    QVERIFY(!m_stations->isSite());
    m_stations->setCounts(2, 1, 1);
    QVERIFY(m_stations->isSite());
    QCOMPARE(m_stations->notUp(), 1);
    m_stations->setCounts(1, 0, 0);
    QVERIFY(m_stations->isSite()); // nothing goes that was in view
}

void TestStationOverview::aSiteMayHaveOneStation()
{
    QSignalSpy changed(m_stations.get(), &StationOverview::changed);
    m_stations->setSite();
    m_stations->setCounts(1, 0, 0);
    QVERIFY(m_stations->isSite());
    QCOMPARE(changed.size(), 2);
}

void TestStationOverview::alarmsStandByUrgency()
{
    StatusMonitorPlugin monitor;
    AlarmOrder order;
    const QAbstractItemModelTester tester(&order, QAbstractItemModelTester::FailureReportingMode::QtTest);
    order.setRanks({StatusMonitorPlugin::StationError, StatusMonitorPlugin::VolumeError,
                    StatusMonitorPlugin::StationWarning, StatusMonitorPlugin::InsufficientRecordingDays});
    order.setModel(&monitor);
    QSignalSpy changed(&order, &AlarmOrder::changed);
    const auto alarm = [](const QString &word, const QString &severity, const QString &day, const QString &by = {}) {
        return QVariantMap{{u"kind"_s, word},
                           {u"severity"_s, severity},
                           {u"subject"_s, word + day},
                           {u"since"_s, u"2026-03-%1T12:00:00.000Z"_s.arg(day)},
                           {u"acknowledgedBy"_s, by}};
    };
    monitor.monitorInsufficientRecordingDays(u"a"_s, u"Yard"_s, u"1"_s);
    monitor.setStationAlarms(u"b"_s,
                             {alarm(u"VolumeGone"_s, u"error"_s, u"04"_s), alarm(u"VolumeGone"_s, u"error"_s, u"02"_s),
                              alarm(u"VolumeGone"_s, u"error"_s, u"01"_s, u"ann"_s),
                              alarm(u"ClockBehind"_s, u"error"_s, u"05"_s),
                              alarm(u"RecordingsOfTheFuture"_s, u"warning"_s, u"01"_s)});
    QStringList subjects;
    for (int row = 0; row < order.count(); ++row)
        subjects.append(order.at(row).value(u"subject"_s).toString());
    QCOMPARE(subjects,
             QStringList({u"ClockBehind05"_s, u"VolumeGone02"_s, u"VolumeGone04"_s, u"VolumeGone01"_s,
                          u"RecordingsOfTheFuture01"_s, QString()}));
    QTRY_COMPARE(changed.size(), 1); // once for all of them
    monitor.setStationAlarms(u"b"_s, {});
    QCOMPARE(order.count(), 1);
}

void TestStationOverview::anAlarmIsAMap()
{
    StatusMonitorPlugin monitor;
    monitor.monitorInsufficientRecordingDays(u"a"_s, u"Yard"_s, u"1"_s);
    AlarmOrder order;
    order.setModel(&monitor);
    const QVariantMap alarm = order.at(0);
    QCOMPARE(alarm.value(u"source"_s), QVariant(u"a"_s));
    QCOMPARE(alarm.value(u"groupName"_s), QVariant(u"Yard"_s));
    QCOMPARE(alarm.value(u"kind"_s), QVariant(1));
    QVERIFY(alarm.value(u"since"_s).toDateTime().isValid());
    QVERIFY(order.at(1).isEmpty());
}

QTEST_GUILESS_MAIN(TestStationOverview)
#include "tst_station_overview.moc"
