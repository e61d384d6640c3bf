#include "FakeSite.h"
#include "HostSite.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/EventQueue.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const auto up = StationState::Kind::Up;
const auto down = StationState::Kind::Down;
const auto figures = u"VolumeChanged"_s;
} // namespace

/// The framework on a link to many stations: who gets which event, and what becomes of it when another station takes
/// the place of the directly connected one.
class HostSiteTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theDirectStationHasNoSource();
    void othersAreHeardOfUnlessNobodyFollowsThem();
    void anotherDirectStationIsAConnection();
    void itsStateBesidesIsNoOther();
    void figuresComeAgainAfterAConnection();
    void figuresOfTheOneBeforeDoNotStand();
    void answersOfTheOneBeforeAreNotTakenForTheOther();
    void anEditOfTheOneBeforeIsToldLate();
    void oneStationGoesAndAnotherOnesCommandsStay();
    void callsNamedToAStationStayItsOwn();
    void aTurnHasItsTime();
    void theNewestFiguresStandForAll();
    void thePlaceOfAStationIsDeliveredFirst();

private:
    void tell(const QString &station, const QString &event, const QString &data)
    {
        emit m_site->eventReceived(station, {event, data});
    }

    std::unique_ptr<FakeSite> m_site;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<FakePlugin> m_plugin;
};

void HostSiteTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<FakeSite>();
    for (const auto &station : {u"a"_s, u"b"_s, u"c"_s})
        m_site->setState(station, up);
    m_framework = std::make_unique<HostFramework>(*m_site);
    m_plugin = std::make_unique<FakePlugin>();
    QVERIFY(m_framework->attach(m_plugin.get(), FakePlugin::ownId));
    m_plugin->log.clear();
}

void HostSiteTest::cleanup()
{
    m_framework.reset();
    m_plugin.reset();
    m_site.reset();
}

void HostSiteTest::theDirectStationHasNoSource()
{
    tell(u"a"_s, figures, u"1"_s);
    tell({}, figures, u"2"_s);
    tell(u"b"_s, figures, u"3"_s);
    const QStringList expected{u"event VolumeChanged 1 from "_s, u"event VolumeChanged 2 from "_s,
                               u"event VolumeChanged 3 from b"_s};
    QTRY_COMPARE(m_plugin->log, expected);
}

void HostSiteTest::othersAreHeardOfUnlessNobodyFollowsThem()
{
    m_framework->setFollowsOthers(false);
    tell(u"b"_s, figures, u"3"_s);
    tell(u"a"_s, figures, u"1"_s);
    m_site->setState(u"a"_s, down);
    m_site->setState(u"a"_s, up);
    QCoreApplication::processEvents();
    QCOMPARE(m_plugin->log, QStringList({u"event VolumeChanged 1 from "_s, u"connected"_s}));
}

void HostSiteTest::anotherDirectStationIsAConnection()
{
    QVERIFY(m_site->setDirectStation(u"b"_s));
    QCOMPARE(m_plugin->log.value(0), u"connected"_s);
    tell(u"b"_s, u"station.AlarmsChanged"_s, u"of b"_s);
    tell(u"a"_s, u"station.AlarmsChanged"_s, u"of a"_s);
    QTRY_VERIFY(m_plugin->log.contains(u"event station.AlarmsChanged of a from a"_s));
    QVERIFY(m_plugin->log.contains(u"event station.AlarmsChanged of b from "_s));
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QCOMPARE(m_site->sent.constLast().relayPath, u"b"_s);
}

void HostSiteTest::itsStateBesidesIsNoOther()
{
    QVERIFY(m_site->setDirectStation(u"b"_s));
    emit m_site->stateChanged({}, {up});
    QCOMPARE(m_plugin->log.count(u"connected"_s), 1);
    m_site->setState(u"b"_s, down);
    m_site->setState(u"b"_s, up);
    QCOMPARE(m_plugin->log.count(u"connected"_s), 2);
    m_site->setState(u"c"_s, down);
    m_site->setState(u"c"_s, up);
    QCOMPARE(m_plugin->log.count(u"connected"_s), 2);
}

/// The plug-in forgets all usage models when it hears of a connection.
void HostSiteTest::figuresComeAgainAfterAConnection()
{
    tell(u"a"_s, figures, u"of a"_s);
    tell(u"b"_s, figures, u"of b"_s);
    QTRY_COMPARE(m_plugin->log.size(), 2);
    m_plugin->log.clear();
    const QSignalSpy delivered(m_framework.get(), &HostFramework::eventDelivered);
    m_site->setState(u"a"_s, down);
    m_site->setState(u"a"_s, up);
    const QStringList expected{u"connected"_s, u"event VolumeChanged of b from b"_s};
    QTRY_COMPARE(m_plugin->log, expected);
    QCOMPARE(delivered.size(), 0); // nothing has happened
}

void HostSiteTest::figuresOfTheOneBeforeDoNotStand()
{
    tell(u"a"_s, figures, u"of a"_s);
    tell(u"b"_s, figures, u"of b"_s);
    QTRY_COMPARE(m_plugin->log.size(), 2);
    m_plugin->log.clear();
    QVERIFY(m_site->setDirectStation(u"b"_s));
    QCOMPARE(m_plugin->log, QStringList({u"connected"_s, u"event VolumeChanged of b from "_s})); // at once
    QTRY_COMPARE(m_plugin->log.value(2), u"event VolumeChanged of a from a"_s);
    m_plugin->log.clear();
    m_site->setState(u"c"_s, down); // has told nothing
    QVERIFY(m_site->setDirectStation(u"c"_s));
    QCOMPARE(m_plugin->log, QStringList(u"event VolumeChanged  from "_s));
}

void HostSiteTest::answersOfTheOneBeforeAreNotTakenForTheOther()
{
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QVERIFY(m_plugin->send(u"getServerDir"_s, {}, nullptr, u"a"_s)); // meant for that one, whoever is the direct one
    QVERIFY(m_site->setDirectStation(u"b"_s));
    QCOMPARE(m_plugin->replies.size(), 1);
    QCOMPARE(m_plugin->replies.constFirst().command, u"getVolume"_s);
    QCOMPARE(m_plugin->replies.constFirst().returnCode, HostReturnCode::OtherStation);
    m_site->answer(0, u"0"_s, u"volumes of a"_s);
    QCOMPARE(m_plugin->replies.size(), 1);
    m_site->answer(1, u"0"_s);
    QCOMPARE(m_plugin->replies.size(), 2);
    QCOMPARE(m_plugin->replies.constLast().returnCode, u"0"_s);
}

void HostSiteTest::anEditOfTheOneBeforeIsToldLate()
{
    QSignalSpy late(m_framework.get(), &HostFramework::lateOutcomeCame);
    QVERIFY(m_plugin->send(u"removeRecordingGroup"_s));
    QVERIFY(m_site->setDirectStation(u"b"_s));
    QCOMPARE(m_plugin->replies.constLast().returnCode, HostReturnCode::OtherStation);
    m_site->setState(u"b"_s, down); // another one's end tells nothing
    QCOMPARE(late.size(), 0);
    m_site->answer(0, u"0"_s);
    QCOMPARE(late.size(), 1);
    const auto outcome = late.takeFirst().constFirst().value<LateOutcome>();
    QCOMPARE(outcome.command, u"removeRecordingGroup"_s);
    QCOMPARE(outcome.relayPath, u"a"_s);
    QCOMPARE(outcome.returnCode, u"0"_s);
}

void HostSiteTest::oneStationGoesAndAnotherOnesCommandsStay()
{
    QVERIFY(m_plugin->send(u"getVolume"_s));
    QVERIFY(m_plugin->send(u"getVolume"_s, {}, nullptr, u"b"_s));
    m_site->setState(u"a"_s, down);
    QCOMPARE(m_plugin->replies.size(), 1);
    QCOMPARE(m_plugin->replies.constFirst().returnCode, HostReturnCode::StationLost);
    QCOMPARE(m_plugin->replies.constFirst().relayPath, QString());
    m_site->setState(u"c"_s, down);
    QCOMPARE(m_plugin->replies.size(), 1);
    m_site->setState(u"b"_s, down);
    QCOMPARE(m_plugin->replies.size(), 2);
    QCOMPARE(m_plugin->replies.constLast().relayPath, u"b"_s);
}

void HostSiteTest::callsNamedToAStationStayItsOwn()
{
    StationCalls calls(*m_site);
    QStringList codes;
    const auto take = [&codes](const StationReply &reply) { codes.append(reply.returnCode); };
    QVERIFY(calls.send(u"station.listAlarms"_s, {}, this, take));
    QVERIFY(calls.send(u"station.listAlarms"_s, {}, this, take, u"a"_s));
    QVERIFY(m_site->setDirectStation(u"b"_s));
    QCOMPARE(codes, QStringList(HostReturnCode::OtherStation));
    m_site->answer(0, u"0"_s);
    m_site->answer(1, u"0"_s);
    QCOMPARE(codes, QStringList({HostReturnCode::OtherStation, u"0"_s}));
}

void HostSiteTest::aTurnHasItsTime()
{
    QStringList delivered;
    EventQueue queue([&delivered](const QString &station, const StationEvent &, bool) { delivered.append(station); });
    queue.setTimePerTurn(0us);
    for (const auto &station : {u"a"_s, u"b"_s, u"c"_s})
        queue.add(station, {figures, {}});
    QVERIFY(delivered.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(delivered, QStringList(u"a"_s));
    QTRY_COMPARE(delivered, QStringList({u"a"_s, u"b"_s, u"c"_s}));
    QCOMPARE(queue.size(), 0);
}

void HostSiteTest::theNewestFiguresStandForAll()
{
    QStringList delivered;
    EventQueue queue([&delivered](const QString &station, const StationEvent &event, bool isRepeated) {
        delivered.append(station + u' ' + event.name + u' ' + event.data.toString()
                         + (isRepeated ? u" again"_s : u""_s));
    });
    queue.setTimePerTurn(0us);
    queue.add(u"a"_s, {figures, u"1"_s});
    queue.add(u"a"_s, {u"other"_s, u"1"_s});
    queue.add(u"b"_s, {figures, u"1"_s});
    queue.add(u"a"_s, {figures, u"2"_s});
    queue.add(u"a"_s, {u"other"_s, u"2"_s});
    queue.repeat(u"a"_s, {figures, u"1"_s}); // newer ones wait
    queue.repeat(u"c"_s, {figures, u"1"_s});
    const QStringList expected{u"a other 1"_s, u"b VolumeChanged 1"_s, u"a VolumeChanged 2"_s, u"a other 2"_s,
                               u"c VolumeChanged 1 again"_s};
    QTRY_COMPARE(delivered, expected);
}

void HostSiteTest::thePlaceOfAStationIsDeliveredFirst()
{
    QStringList delivered;
    EventQueue queue([&delivered](const QString &station, const StationEvent &event, bool) {
        delivered.append(station + u' ' + event.data.toString());
    });
    queue.setTimePerTurn(0us);
    queue.add(u"a"_s, {figures, u"1"_s});
    queue.add(u"b"_s, {figures, u"1"_s});
    queue.add(u"b"_s, {u"other"_s, u"2"_s});
    queue.deliverNow(u"b"_s);
    QCOMPARE(delivered, QStringList({u"b 1"_s, u"b 2"_s}));
    QTRY_COMPARE(delivered.size(), 3);
    QCOMPARE(delivered.constLast(), u"a 1"_s);
}

QTEST_GUILESS_MAIN(HostSiteTest)
#include "tst_host_site.moc"
