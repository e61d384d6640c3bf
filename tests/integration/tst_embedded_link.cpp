#include "GatedVolumes.h"
#include "Station.h"
#include "embedded/EmbeddedLink.h"
#include "framework/HostReturnCode.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

/// A real station on its thread, with volumes that the test holds up.
class EmbeddedLinkTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void goesUpWhenTheStationRuns();
    void secondStartDoesNothing();
    void staysDownWithoutAStation();
    void stationLivesOnAThreadOfItsOwn();
    void slowCommandDoesNotBlockTheEventLoop();
    void repliesComeInTheOrderOfTheCommands();
    void eventsKeepTheirPlaceAmongReplies();
    void answersUnderItsRelayPathToo();
    void unknownRelayPathIsAnsweredLater();
    void commandBeforeTheStartIsDropped();
    void commandWaitsForTheStation();
    void endWaitsForTheRunningCommandAlone();
    void endWithoutStart();
    void aStationThatHangsIsLeftBehind();

private:
    void goUp();
    QList<quint64> answered() const;

    std::unique_ptr<Gate> m_gate;
    std::unique_ptr<EmbeddedLink> m_link;
    std::unique_ptr<QSignalSpy> m_replies;
    int m_stations = 0;
    QThread *m_birthThread = nullptr;
    Station *m_station = nullptr; // to be used on its thread
};

void EmbeddedLinkTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_stations = 0;
    m_birthThread = nullptr;
    m_station = nullptr;
    m_gate = std::make_unique<Gate>();
    const auto makeStation = [this] {
        ++m_stations;
        m_birthThread = QThread::currentThread();
        auto station = std::make_unique<Station>(StationSettings{{}, {}, std::make_unique<GatedVolumes>(*m_gate)});
        m_station = station.get();
        return station;
    };
    m_link = std::make_unique<EmbeddedLink>(makeStation, u"relay-7"_s);
    m_replies = std::make_unique<QSignalSpy>(m_link.get(), &StationLink::replyReceived);
}

void EmbeddedLinkTest::cleanup()
{
    m_replies.reset();
    m_link.reset();
    m_gate.reset();
}

void EmbeddedLinkTest::goUp()
{
    m_link->start();
    QTRY_VERIFY(m_link->isUp());
}

QList<quint64> EmbeddedLinkTest::answered() const
{
    QList<quint64> correlations;
    for (const QVariantList &arguments : *m_replies)
        correlations.append(arguments.front().value<quint64>());
    return correlations;
}

void EmbeddedLinkTest::goesUpWhenTheStationRuns()
{
    const QSignalSpy states(m_link.get(), &StationLink::stateChanged);
    QCOMPARE(m_link->state({}).kind, StationState::Kind::Unknown);
    m_link->start();
    QCOMPARE(m_link->state({}).kind, StationState::Kind::Connecting);
    QTRY_COMPARE(states.size(), 1);
    QCOMPARE(states.front().at(0), QVariant(QString()));
    QCOMPARE(states.front().at(1).value<StationState>().kind, StationState::Kind::Up);
    QVERIFY(m_link->isUp());
}

void EmbeddedLinkTest::secondStartDoesNothing()
{
    const QSignalSpy states(m_link.get(), &StationLink::stateChanged);
    m_link->start();
    goUp();
    m_link->start();
    m_link->send(1, {}, {u"nonsense"_s, {}});
    QTRY_COMPARE(m_replies->size(), 1);
    QCOMPARE(states.size(), 1);
    QCOMPARE(m_stations, 1);
}

void EmbeddedLinkTest::staysDownWithoutAStation()
{
    EmbeddedLink link([]() -> std::unique_ptr<Station> { return {}; });
    link.start();
    QTRY_COMPARE(link.state({}).kind, StationState::Kind::Down);
    QVERIFY(!link.state({}).reason.isEmpty());
}

void EmbeddedLinkTest::stationLivesOnAThreadOfItsOwn()
{
    goUp();
    m_gate->open.release();
    m_link->send(1, {}, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_replies->size(), 1);
    QThread *const stationThread = m_gate->thread;
    QVERIFY(stationThread != QThread::currentThread());
    QCOMPARE(m_birthThread, stationThread);
    m_link.reset();
    QVERIFY(m_gate->gone);
    QCOMPARE(m_gate->endThread.load(), stationThread);
}

void EmbeddedLinkTest::slowCommandDoesNotBlockTheEventLoop()
{
    goUp();
    m_link->send(1, {}, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_gate->entered.load(), 1);
    QTimer timer;
    int ticks = 0;
    connect(&timer, &QTimer::timeout, this, [&ticks] { ++ticks; });
    timer.start(0);
    QTRY_VERIFY(ticks >= 100);
    QCOMPARE(m_gate->left.load(), 0); // the disk was busy all the time
    QVERIFY(m_replies->isEmpty());

    m_gate->open.release();
    QTRY_COMPARE(m_replies->size(), 1);
    const auto reply = m_replies->front().at(1).value<StationReply>();
    QCOMPARE(reply.returnCode, u"0"_s);
    QVERIFY(reply.finish);
    QCOMPARE(reply.data.toList().front().toMap().value(u"volumePath"_s), QVariant(u"/gated"_s));
}

void EmbeddedLinkTest::repliesComeInTheOrderOfTheCommands()
{
    goUp();
    m_link->send(3, {}, {u"getVolume"_s, {}});
    m_link->send(1, {}, {u"nonsense"_s, {}});
    m_link->send(2, {}, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_gate->entered.load(), 1);
    m_gate->open.release(2);
    QTRY_COMPARE(m_replies->size(), 3);
    QCOMPARE(answered(), (QList<quint64>{3, 1, 2}));
}

void EmbeddedLinkTest::eventsKeepTheirPlaceAmongReplies()
{
    QStringList order;
    connect(m_link.get(), &StationLink::replyReceived, this,
            [&order](quint64 correlation) { order.append(QString::number(correlation)); });
    connect(m_link.get(), &StationLink::eventReceived, this,
            [&order](const QString &relayPath, const StationEvent &event) {
                QCOMPARE(QThread::currentThread(), QCoreApplication::instance()->thread());
                QCOMPARE(relayPath, QString()); // of the directly connected station
                QCOMPARE(event.data, QVariant(7));
                order.append(event.name);
            });
    goUp();
    m_link->send(1, {}, {u"nonsense"_s, {}});
    const auto raise = [station = m_station] { emit station->eventRaised({u"VolumeChanged"_s, 7}); };
    QMetaObject::invokeMethod(m_station, raise, Qt::QueuedConnection);
    m_link->send(2, {}, {u"nonsense"_s, {}});
    QTRY_COMPARE(order, (QStringList{u"1"_s, u"VolumeChanged"_s, u"2"_s}));
}

void EmbeddedLinkTest::answersUnderItsRelayPathToo()
{
    goUp();
    m_gate->open.release(2);
    m_link->send(1, {}, {u"getVolume"_s, {}});
    m_link->send(2, u"relay-7"_s, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_replies->size(), 2);
    QCOMPARE(m_replies->at(1).at(1).value<StationReply>().returnCode, u"0"_s);
    QCOMPARE(m_gate->entered.load(), 2);
}

void EmbeddedLinkTest::unknownRelayPathIsAnsweredLater()
{
    goUp();
    m_link->send(1, {}, {u"getVolume"_s, {}});
    m_link->send(2, u"relay-8"_s, {u"getVolume"_s, {}});
    QVERIFY(m_replies->isEmpty());
    QTRY_COMPARE(answered(), QList<quint64>{2}); // while the station is at work
    const auto reply = m_replies->front().at(1).value<StationReply>();
    QCOMPARE(reply.returnCode, HostReturnCode::UnknownStation);
    QVERIFY(reply.finish);
    QVERIFY(!reply.data.isValid());
}

void EmbeddedLinkTest::commandWaitsForTheStation()
{
    m_link->start();
    m_link->send(1, {}, {u"nonsense"_s, {}});
    QVERIFY(!m_link->isUp());
    QTRY_COMPARE(answered(), QList<quint64>{1});
}

void EmbeddedLinkTest::commandBeforeTheStartIsDropped()
{
    m_link->send(1, {}, {u"nonsense"_s, {}});
    m_link->send(2, u"relay-8"_s, {u"nonsense"_s, {}});
    goUp();
    m_link->send(3, {}, {u"nonsense"_s, {}});
    QTRY_VERIFY(!m_replies->isEmpty());
    QCOMPARE(answered(), QList<quint64>{3});
}

void EmbeddedLinkTest::endWaitsForTheRunningCommandAlone()
{
    goUp();
    m_link->send(1, {}, {u"getVolume"_s, {}});
    m_link->send(2, {}, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_gate->entered.load(), 1);
    m_replies.reset();
    m_link.reset(); // the volumes see that their thread shall end, and only then leave
    QCOMPARE(m_gate->left.load(), 1);
    QCOMPARE(m_gate->entered.load(), 1);
    QVERIFY(m_gate->gone);
}

void EmbeddedLinkTest::endWithoutStart()
{
    m_replies.reset();
    m_link.reset();
    QCOMPARE(m_stations, 0);
}

void EmbeddedLinkTest::aStationThatHangsIsLeftBehind()
{
    QVERIFY(!StationThread::isAnythingLeftBehind());
    m_gate->endsEarly = false;
    goUp();
    m_link->send(1, {}, {u"getVolume"_s, {}});
    QTRY_COMPARE(m_gate->entered.load(), 1);
    QElapsedTimer timer;
    timer.start();
    m_link.reset();
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(StationThread::isAnythingLeftBehind());
    QVERIFY(!m_gate->gone);
    m_gate->open.release(); // the disk answers at last
    QTRY_VERIFY(m_gate->gone);
    QVERIFY(m_replies->isEmpty());
}

QTEST_GUILESS_MAIN(EmbeddedLinkTest)

#include "tst_embedded_link.moc"
