#include "ClientSession.h"
#include "FakeSite.h"
#include "ServerVocabulary.h"
#include "StationDirectory.h"
#include "StationVocabulary.h"
#include "companions/StationPlugin.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/HostReturnCode.h"

#include <QAbstractItemModel>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const auto up = StationState::Kind::Up;
const auto down = StationState::Kind::Down;

/// An entry of "VolumeChanged": a group that can reach its 10 days with @p recorded and 2 more.
QVariantMap entry(const QString &group, int recorded, qlonglong free = 2048)
{
    return {{FieldKey::recordingGroupID, group},
            {FieldKey::recordingGroupName, u"Group "_s + group},
            {u"recordingGroupReservedTime"_s, 10 * 1440},
            {FieldKey::recordingPath, u"/srv"_s},
            {u"volumeName"_s, u"Disk"_s},
            {u"volumeSize"_s, 100'000},
            {FieldKey::volumeAvailableSize, free},
            {u"volumeOneDayUsage"_s, free * 512},
            {u"volumeRecordedDays"_s, recorded}};
}

QVariantMap alarm(const QString &kind, const QString &subject)
{
    return {{StationKey::kind, kind},
            {StationKey::severity, StationSeverity::error},
            {StationKey::subject, subject},
            {StationKey::text, u"It is broken."_s},
            {StationKey::since, u"2026-03-20T12:00:00.000Z"_s}};
}
} // namespace

/// A client of a site of many stations, with the plug-in as it is built; the test plays the site.
class ClientSiteTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void everyStationIsKnown();
    void figuresOfEachStation();
    void whatNobodyToldIsUnknown();
    void stationsAreAskedForTheirAlarmsAFewAtATime();
    void alarmsOfAllStationsStandSideBySide();
    void anotherStationIsChosen();
    void alarmsStayWhereTheyAre();
    void aStationThatIsDownIsNotChosen();
    void aStationThatGoesDownKeepsItsFigures();
    void manyFiguresAtOnceComeInTurns();
    void oneStationIsNoSite();

private:
    void start(const QStringList &stations, bool followsOthers = true);
    void tell(const QString &station, const QVariantList &entries)
    {
        emit m_site->eventReceived(station, {ServerEvent::VolumeChanged, entries});
    }
    StationDirectory::Record record(const QString &station) const { return m_session->stations()->record(station); }
    QAbstractItemModel *usage(const QString &relayPath) const;
    QVariantMap root() const;

    std::unique_ptr<ClientSession> m_session;
    FakeSite *m_site = nullptr; // the session's
};

void ClientSiteTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_session = std::make_unique<ClientSession>();
}

void ClientSiteTest::cleanup()
{
    m_session.reset();
}

void ClientSiteTest::start(const QStringList &stations, bool followsOthers)
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = u"site:"_s;
    options.followsOthers = followsOthers;
    const auto open = [&](const QString &, const StationLink::Client &, QString *) {
        auto site = std::make_unique<FakeSite>();
        m_site = site.get();
        for (const QString &station : stations)
            m_site->setState(station, down);
        return site;
    };
    options.linkKinds = {{u"site"_s, u"site:"_s, open}};
    QVERIFY2(m_session->start(options), qPrintable(m_session->error()));
    for (const QString &station : stations)
        m_site->setState(station, up);
    QVERIFY(m_session->isConnected());
}

QAbstractItemModel *ClientSiteTest::usage(const QString &relayPath) const
{
    QObject *model = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), "getStorageUsageModel", Q_RETURN_ARG(QObject *, model),
                              Q_ARG(QString, relayPath));
    return qobject_cast<QAbstractItemModel *>(model);
}

/// The station that the plug-in's tree begins with.
QVariantMap ClientSiteTest::root() const
{
    QVariant station;
    QMetaObject::invokeMethod(m_session->framework()->GetPluginObject(nullptr, StationPlugin::pluginId),
                              "getStationTree", Q_RETURN_ARG(QVariant, station));
    return station.toMap();
}

void ClientSiteTest::everyStationIsKnown()
{
    start({u"a"_s, u"b"_s, u"c"_s});
    StationDirectory &stations = *m_session->stations();
    QSignalSpy changed(&stations, &StationDirectory::changed);
    QTRY_VERIFY(record(u"c"_s).isUp());
    QCOMPARE(stations.count(), 3);
    QVERIFY(stations.isSite());
    QCOMPARE(stations.notUp(), 0);
    QCOMPARE(record(u"b"_s).presence.name, u"Station b"_s);
    QCOMPARE(changed.size(), 1); // once for all of them
    m_site->setState(u"c"_s, down);
    m_site->setState(u"d"_s, up);
    QTRY_COMPARE(stations.count(), 4);
    QCOMPARE(stations.notUp(), 1);
    QCOMPARE(changed.size(), 2);
    QStringList news = changed.constLast().constFirst().toStringList();
    news.sort();
    QCOMPARE(news, QStringList({u"c"_s, u"d"_s}));
}

void ClientSiteTest::figuresOfEachStation()
{
    start({u"a"_s, u"b"_s});
    tell(u"b"_s, {entry(u"1"_s, 3), entry(u"2"_s, 9), entry(u"3"_s, -1), entry({}, -1, 0)});
    tell(u"a"_s, {entry(u"1"_s, 9)});
    QTRY_VERIFY(record(u"b"_s).figures.isTold());
    const StationFigures figures = record(u"b"_s).figures;
    QCOMPARE(figures.groups, 3);
    QCOMPARE(figures.shortGroups, 1);
    QCOMPARE(figures.missingDays, 5);
    QCOMPARE(figures.unknownGroups, 1);
    QCOMPARE(figures.freeBytes, 3 * 2048.0 * 1024);
    QCOMPARE(record(u"a"_s).figures.missingDays, 0);
    QCOMPARE(usage(u"b"_s)->rowCount(), 3);
    QCOMPARE(usage({})->rowCount(), 1);
}

void ClientSiteTest::whatNobodyToldIsUnknown()
{
    start({u"a"_s, u"b"_s});
    QTRY_VERIFY(record(u"b"_s).isUp());
    QVERIFY(!record(u"b"_s).figures.isTold());
    QVERIFY(record(u"b"_s).figures.freeBytes < 0);
    QVERIFY(!record(u"b"_s).areAlarmsTold);
    QVERIFY(!record(u"b"_s).toldAt.isValid());
    QCOMPARE(m_session->stations()->untold(), 2);
    QVERIFY(!m_session->areAlarmsKnown());
}

void ClientSiteTest::stationsAreAskedForTheirAlarmsAFewAtATime()
{
    QStringList stations;
    for (int number = 0; number < 40; ++number)
        stations.append(u"s%1"_s.arg(number, 2, 10, QLatin1Char('0')));
    start(stations);
    const auto asked = [this] {
        return std::count_if(m_site->sent.cbegin(), m_site->sent.cend(), [this](const FakeSite::Sent &sent) {
            return sent.command.name == StationCommandName::listAlarms && sent.relayPath != m_session->directStation();
        });
    };
    QTRY_COMPARE(asked(), 32);
    const QList<int> first = m_site->sentTo(u"s01"_s, StationCommandName::listAlarms);
    QCOMPARE(first.size(), 1);
    m_site->answer(first.constFirst(), u"0"_s, QVariantMap{{StationKey::alarms, QVariantList()}});
    QCOMPARE(asked(), 33);
    tell(u"s01"_s, {entry(u"1"_s, 9)});
    QTRY_VERIFY(record(u"s01"_s).areAlarmsTold);
    m_site->setState(u"s01"_s, down);
    QTRY_VERIFY(!record(u"s01"_s).isUp());
    QVERIFY(record(u"s01"_s).areAlarmsTold); // they are of then
    m_site->setState(u"s01"_s, up);
    QTRY_VERIFY(record(u"s01"_s).isUp());
    QVERIFY(!record(u"s01"_s).areAlarmsTold); // nobody heard of those raised meanwhile
}

void ClientSiteTest::alarmsOfAllStationsStandSideBySide()
{
    start({u"a"_s, u"b"_s});
    tell(u"a"_s, {entry(u"1"_s, 1)});
    tell(u"b"_s, {entry(u"1"_s, 1)});
    emit m_site->eventReceived(u"b"_s,
                               {StationEventName::AlarmsChanged,
                                QVariantMap{{StationKey::alarms, QVariantList{alarm(u"DatabaseFull"_s, u"/srv"_s)}}}});
    QTRY_COMPARE(record(u"b"_s).alarms, 2);
    QCOMPARE(record(u"b"_s).errors, 1);
    QVERIFY(record(u"b"_s).areAlarmsTold);
    QTRY_COMPARE(record(u"a"_s).alarms, 1);
    QCOMPARE(m_session->statusMonitor()->alarms().constFirst().source, u"a"_s); // also that of the direct station
}

void ClientSiteTest::anotherStationIsChosen()
{
    start({u"a"_s, u"b"_s});
    tell(u"a"_s, {entry(u"1"_s, 9), entry(u"2"_s, 9)});
    tell(u"b"_s, {entry(u"3"_s, 9)});
    QTRY_VERIFY(record(u"b"_s).figures.isTold());
    QCOMPARE(root().value(u"name"_s), u"Station a"_s);
    QSignalSpy chosen(m_session.get(), &ClientSession::directStationChanged);
    QSignalSpy connected(m_session.get(), &ClientSession::connectedChanged);
    m_site->sent.clear();
    QVERIFY(m_session->setDirectStation(u"b"_s));
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(connected.size(), 0); // it is connected as before
    QCOMPARE(root().value(u"name"_s), u"Station b"_s);
    QCOMPARE(root().value(u"relayPath"_s), u"b"_s);
    QCOMPARE(root().value(u"ip"_s), u"b.site.example"_s);
    for (const QString &command : {ServerCommand::GetNasServers, ServerCommand::getRecordingGroup,
                                   ServerCommand::reloadStorageUsageInfo, StationCommandName::listAlarms})
        QVERIFY2(!m_site->sentTo(u"b"_s, command).isEmpty(), qPrintable(command));
    QCOMPARE(usage({})->rowCount(), 1); // as it told last
    QTRY_COMPARE(usage(u"a"_s)->rowCount(), 2);
    QVERIFY(m_session->setDirectStation(u"b"_s)); // again
    QCOMPARE(chosen.size(), 1);
}

void ClientSiteTest::alarmsStayWhereTheyAre()
{
    start({u"a"_s, u"b"_s});
    tell(u"a"_s, {entry(u"1"_s, 1)});
    tell(u"b"_s, {entry(u"1"_s, 1)});
    StatusMonitorPlugin &monitor = *m_session->statusMonitor();
    QTRY_COMPARE(monitor.alarms().size(), 2);
    const QSignalSpy raised(&monitor, &StatusMonitorPlugin::raised);
    const QSignalSpy withdrawn(&monitor, &StatusMonitorPlugin::withdrawn);
    QVERIFY(m_session->setDirectStation(u"b"_s));
    tell(u"a"_s, {entry(u"1"_s, 1)});
    tell(u"b"_s, {entry(u"1"_s, 1)});
    QTRY_COMPARE(usage(u"a"_s)->rowCount(), 1);
    QCOMPARE(raised.size() + withdrawn.size(), 0);
    tell(u"b"_s, {entry(u"1"_s, 9)});
    QCOMPARE(withdrawn.size(), 1);
}

void ClientSiteTest::aStationThatIsDownIsNotChosen()
{
    start({u"a"_s, u"b"_s});
    m_site->setState(u"b"_s, down);
    QString error;
    QVERIFY(!m_session->setDirectStation(u"b"_s, &error));
    QVERIFY2(error.contains(u"b is not up: It was ended."_s), qPrintable(error));
    QVERIFY(!m_session->setDirectStation(u"nowhere"_s, &error));
    QVERIFY(error.contains(u"nowhere"_s));
    QCOMPARE(m_session->directStation(), u"a"_s);
}

void ClientSiteTest::aStationThatGoesDownKeepsItsFigures()
{
    start({u"a"_s, u"b"_s});
    tell(u"b"_s, {entry(u"1"_s, 1)});
    QTRY_VERIFY(record(u"b"_s).isUp() && record(u"b"_s).figures.isTold());
    const QDateTime since = QDateTime::currentDateTimeUtc();
    m_site->setState(u"b"_s, down, since);
    QTRY_VERIFY(!record(u"b"_s).isUp());
    QCOMPARE(record(u"b"_s).figures.missingDays, 7);
    QCOMPARE(record(u"b"_s).presence.since, since);
    QVERIFY(record(u"b"_s).toldAt <= since);
    QVERIFY(m_session->isConnected());
}

/// As when a client comes to a site that keeps the figures of all its stations.
void ClientSiteTest::manyFiguresAtOnceComeInTurns()
{
    QStringList stations;
    for (int number = 0; number < 1000; ++number)
        stations.append(u"s%1"_s.arg(number));
    start(stations);
    QVariantList entries;
    for (int number = 0; number < 20; ++number)
        entries.append(entry(QString::number(number / 2), 9));
    QSignalSpy delivered(m_session->framework(), &HostFramework::eventDelivered);
    for (const QString &station : stations)
        tell(station, entries);
    QVERIFY(delivered.size() < 1000); // not all within this turn
    QTRY_COMPARE(delivered.size(), 1000);
    QTRY_COMPARE(std::count_if(stations.cbegin(), stations.cend(),
                               [this](const QString &station) { return record(station).figures.isTold(); }),
                 1000);
}

void ClientSiteTest::oneStationIsNoSite()
{
    start({u"a"_s});
    QTRY_VERIFY(record(u"a"_s).isUp());
    QVERIFY(!m_session->stations()->isSite());
    QCOMPARE(m_session->stations()->count(), 1);
}

QTEST_GUILESS_MAIN(ClientSiteTest)
#include "tst_client_site.moc"
