#include "BrokerSite.h"
#include "TcpRelay.h"
#include "framework/HostReturnCode.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
constexpr int patience = 40'000;

/// Adds cameras, each under a name of its own, some at a time, for as long as it is not stopped.
class Editor : public QObject
{
public:
    explicit Editor(BrokerClient &client)
        : m_client(client)
    {
        m_client.sender().setReplyTimeout(std::chrono::seconds(30));
        m_timer.setInterval(5);
        m_timer.callOnTimeout(this, &Editor::fill);
        m_timer.start();
    }
    void stop() { m_timer.stop(); }
    qsizetype answered() const { return m_parts.size(); }
    bool isDone() const { return m_outstanding == 0; }

    /// What does not fit together with what the station has; empty: nothing.
    QStringList contradictions(const QStringList &cameras) const
    {
        QStringList found;
        const QSet<QString> there(cameras.begin(), cameras.end());
        if (there.size() != cameras.size())
            found.append(u"a camera is there twice"_s);
        for (int number = 0; number < m_sent; ++number) {
            const QStringList codes = m_parts.value(number);
            const QString name = nameOf(number);
            if (codes.size() != 1)
                found.append(u"%1 was answered %2 times"_s.arg(name).arg(codes.size()));
            const QString code = codes.value(0);
            if (code == ReturnCode::Success && !there.contains(name))
                found.append(u"%1 was acknowledged and is not there"_s.arg(name));
            if (code == HostReturnCode::LinkDown && there.contains(name))
                found.append(u"%1 was not sent and is there"_s.arg(name));
            const QSet<QString> expected{ReturnCode::Success, HostReturnCode::LinkDown, HostReturnCode::StationLost,
                                         HostReturnCode::NoAnswer, StationReturnCode::StationStopping};
            if (!expected.contains(code)) // CameraExists: it took effect twice
                found.append(u"%1: %2"_s.arg(name, code));
        }
        return found;
    }
    /// How many edits nobody knows of whether they took effect.
    int open() const
    {
        int count = 0;
        for (const QStringList &codes : m_parts) {
            const bool isKnown = codes.contains(ReturnCode::Success) || codes.contains(HostReturnCode::LinkDown);
            count += isKnown ? 0 : 1;
        }
        return count;
    }
    int sent() const { return m_sent; }

private:
    static QString nameOf(int number) { return u"camera-%1"_s.arg(number); }

    void fill()
    {
        constexpr int window = 10;
        if (m_client.link().state().kind == StationState::Kind::Down)
            return; // it would be refused at once
        while (m_outstanding < window && m_timer.isActive()) {
            const int number = m_sent++;
            ++m_outstanding;
            m_client.sender().send({}, {StationCommandName::addCamera, cameraMap(nameOf(number))},
                                   [this, number](quint64, const StationReply &part) {
                                       m_parts[number].append(part.returnCode);
                                       if (part.finish)
                                           --m_outstanding;
                                   });
            if (m_sent % 3 == 0)
                return; // a few each time
        }
    }

    BrokerClient &m_client;
    QTimer m_timer;
    QHash<int, QStringList> m_parts; // codes by number
    int m_sent = 0;
    int m_outstanding = 0;
};
} // namespace

/// Edits while everything between a client and a station fails.
class BrokerDeliveryTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void editsSurvive_data();
    void editsSurvive();
    void commandsWaitForTheBroker();
    void anEditWaitsForItsStation();
    void aStationLostMeanwhileIsWaitedFor();
    void partsComeOnceAndInOrder();
    void whatIsNotAnsweredInTimeIsTold();
    void pausesGrowAndAreTold();
    void aKilledClientHarmsNobody();

private:
    QString brokerUrl(quint16 port) const { return u"mqtt://127.0.0.1:%1"_s.arg(port); }
    QString clientUrl() const { return brokerUrl(m_ofClient->port()) + u"/north"_s; }
    QStringList cameras();
    QStringList localCameras() const;

    std::unique_ptr<MqttBroker> m_broker;
    std::unique_ptr<TcpRelay> m_ofStation;
    std::unique_ptr<TcpRelay> m_ofClient;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationProcess> m_station;
    std::unique_ptr<BrokerClient> m_client;
};

void BrokerDeliveryTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
    m_broker = std::make_unique<MqttBroker>();
    QVERIFY2(m_broker->start(), qPrintable(m_broker->error()));
    m_ofStation = std::make_unique<TcpRelay>(m_broker->port());
    m_ofClient = std::make_unique<TcpRelay>(m_broker->port());
    m_station = std::make_unique<StationProcess>(m_folder->path(), u"north"_s, brokerUrl(m_ofStation->port()));
    m_station->start();
    m_client = std::make_unique<BrokerClient>(clientUrl());
    QTRY_VERIFY_WITH_TIMEOUT(m_client->isUp(), patience);
}

void BrokerDeliveryTest::cleanup()
{
    if (QTest::currentTestFailed() && m_station)
        qInfo("%s", qPrintable(m_station->log()));
    m_client.reset();
    m_station.reset();
    m_ofClient.reset();
    m_ofStation.reset();
    m_broker.reset();
    m_folder.reset();
}

/// Asked over the broker, when all is well again.
QStringList BrokerDeliveryTest::cameras()
{
    BrokerClient other(m_broker->url() + u"/north"_s);
    if (!QTest::qWaitFor([&] { return other.isUp(); }, patience))
        return {u"the station is not up"_s};
    const int listed = other.send(StationCommandName::listCameras);
    if (!QTest::qWaitFor([&] { return !other.code(listed).isEmpty(); }, patience))
        return {u"no list"_s};
    return cameraNames(other.data(listed));
}

/// Asked over the station's own socket.
QStringList BrokerDeliveryTest::localCameras() const
{
    QString error;
    const auto link =
        StationLink::open(u"local:"_s + m_station->dataFolder(), {LocalLink::kind()}, {u"test"_s, u"1"_s, {}}, &error);
    CommandSender sender(*link, CommandSender::Range::Station);
    link->start();
    std::optional<QStringList> names;
    const auto ask = [&] {
        sender.send({}, {StationCommandName::listCameras, {}},
                    [&names](quint64, const StationReply &part) { names = cameraNames(part.data); });
    };
    const bool isAnswered =
        QTest::qWaitFor([&] { return link->isUp(); }, 5000) && (ask(), QTest::qWaitFor([&] { return !!names; }, 5000));
    sender.close();
    return isAnswered ? *names : QStringList{u"no answer"_s};
}

void BrokerDeliveryTest::editsSurvive_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"nothing", "broker killed", "station killed", "client cut", "station cut", "halves",
                              "repeats", "slow", "silence", "everything"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

void BrokerDeliveryTest::editsSurvive()
{
    QFETCH(QString, fault);
    const QHash<QString, std::function<void()>> faults{
        {u"broker killed"_s,
         [this] {
             m_broker->kill();
             QVERIFY2(m_broker->start(), qPrintable(m_broker->error()));
         }},
        {u"station killed"_s,
         [this] {
             m_station->kill();
             m_station->start();
         }},
        {u"client cut"_s, [this] { m_ofClient->cut(); }},
        {u"station cut"_s, [this] { m_ofStation->cut(); }},
        {u"halves"_s,
         [this] {
             m_ofClient->halveNext();
             m_ofStation->halveNext();
         }},
        {u"repeats"_s,
         [this] {
             m_ofClient->repeatNext();
             m_ofStation->repeatNext();
         }},
        {u"slow"_s,
         [this] {
             m_ofClient->setDelay(QRandomGenerator::global()->bounded(150));
             m_ofStation->setDelay(QRandomGenerator::global()->bounded(150));
         }},
        {u"silence"_s,
         [this] {
             m_ofStation->setSilent(true);
             QTRY_VERIFY_WITH_TIMEOUT(!m_client->isUp(), 12'000);
             m_ofStation->setSilent(false);
         }},
    };
    Editor editor(*m_client);
    QTRY_VERIFY_WITH_TIMEOUT(editor.answered() > 5, patience);
    QStringList kinds = faults.keys();
    kinds.sort();
    const int rounds = fault == u"silence"_s ? 2 : 7;
    for (int i = 0; i < rounds; ++i) {
        const QString kind = fault == u"everything"_s ? kinds.at(i % kinds.size()) : fault;
        if (faults.contains(kind))
            faults.value(kind)();
        if (QTest::currentTestFailed())
            return;
        const qsizetype before = editor.answered();
        QTRY_VERIFY_WITH_TIMEOUT(editor.answered() > before + 20, patience); // and goes on
    }
    editor.stop();
    m_ofClient->setDelay(0);
    m_ofStation->setDelay(0);
    QTRY_VERIFY_WITH_TIMEOUT(editor.isDone(), patience);
    QCOMPARE(editor.contradictions(cameras()), QStringList());
    QVERIFY(editor.sent() > rounds * 20);
    QCOMPARE(editor.open(), 0); // nothing here lasts so long that an answer is given up
}

void BrokerDeliveryTest::commandsWaitForTheBroker()
{
    m_broker->kill();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->link().state().kind, StationState::Kind::Connecting, patience);
    QVERIFY(m_client->link().state().keepsCommands);
    QVERIFY(!m_client->reason().isEmpty());
    const int edit = m_client->send(StationCommandName::addCamera, cameraMap(u"A"_s));
    const int read = m_client->send(StationCommandName::listCameras);
    QTRY_VERIFY_WITH_TIMEOUT(m_client->link().state().retryAt.isValid(), patience);
    QVERIFY(m_broker->start());
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(edit), ReturnCode::Success, patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(read), ReturnCode::Success, patience);
    QCOMPARE(m_client->replies.value(edit).size(), 1);
    QCOMPARE(cameras(), QStringList{u"A"_s});
}

/// The station has an edit and cannot answer it; what is sent again is the same edit.
void BrokerDeliveryTest::anEditWaitsForItsStation()
{
    m_ofStation->setDelay(300);
    const int edit = m_client->send(StationCommandName::addCamera, cameraMap(u"A"_s));
    QTRY_COMPARE_WITH_TIMEOUT(localCameras(), QStringList{u"A"_s}, patience); // it took effect
    m_station->kill();
    QCOMPARE(m_client->code(edit), QString());
    m_ofStation->setDelay(0);
    m_station->start();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(edit), ReturnCode::Success, patience); // and not CameraExists
    QCOMPARE(m_client->replies.value(edit).size(), 1);
}

/// Client and station lose the broker at the same time, and the client is back first: what it finds there says that the
/// station was lost.
void BrokerDeliveryTest::aStationLostMeanwhileIsWaitedFor()
{
    m_ofStation->setDelay(300);
    const int edit = m_client->send(StationCommandName::addCamera, cameraMap(u"A"_s));
    QTRY_COMPARE_WITH_TIMEOUT(localCameras(), QStringList{u"A"_s}, patience); // it took effect, and is not answered
    m_ofStation->setRefusing(true);
    m_ofClient->setRefusing(true);
    m_ofStation->cut();
    m_ofClient->cut();
    QTRY_COMPARE_WITH_TIMEOUT(m_client->link().state().kind, StationState::Kind::Connecting, patience);
    m_ofClient->setRefusing(false);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->link().state().kind, StationState::Kind::Down, patience);
    const int attempts = m_ofStation->connections();
    QTRY_VERIFY_WITH_TIMEOUT(m_ofStation->connections() >= attempts + 3, patience); // seconds, as pauses grow
    QCOMPARE(m_client->code(edit), QString());
    m_ofStation->setDelay(0);
    m_ofStation->setRefusing(false);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(edit), ReturnCode::Success, patience);
    QCOMPARE(m_client->replies.value(edit).size(), 1);
}

void BrokerDeliveryTest::partsComeOnceAndInOrder()
{
    QVariantList ids;
    for (int i = 0; i < 50; ++i)
        ids.append(u"{group-%1}"_s.arg(i)); // which are not there: a part says so of each
    for (int round = 0; round < 10; ++round) {
        const int sent =
            m_client->send(ServerCommand::removeRecordingGroup, QVariantMap{{FieldKey::recordingGroupIDList, ids}});
        if (round % 2 == 0)
            m_ofStation->cut();
        else
            m_ofClient->cut();
        QTRY_VERIFY_WITH_TIMEOUT(!m_client->code(sent).isEmpty(), patience);
        const QList<StationReply> parts = m_client->replies.value(sent);
        QCOMPARE(parts.size(), ids.size());
        for (int i = 0; i < parts.size(); ++i) {
            QCOMPARE(parts.at(i).finish, i == parts.size() - 1);
            QCOMPARE(parts.at(i).data.toMap().value(FieldKey::recordingGroupID), ids.at(i));
        }
    }
}

void BrokerDeliveryTest::whatIsNotAnsweredInTimeIsTold()
{
    m_client->sender().setReplyTimeout(std::chrono::seconds(1));
    QList<LateOutcome> outcomes;
    connect(&m_client->sender(), &CommandSender::lateOutcomeCame, this,
            [&outcomes](const LateOutcome &outcome) { outcomes.append(outcome); });
    m_station->signal(SIGSTOP);
    const int edit = m_client->send(StationCommandName::addCamera, cameraMap(u"A"_s));
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(edit), HostReturnCode::NoAnswer, patience);
    m_station->signal(SIGCONT);
    QTRY_COMPARE_WITH_TIMEOUT(outcomes.size(), 1, patience);
    QCOMPARE(m_client->replies.value(edit).size(), 1);
    const bool isThere = cameras().contains(u"A"_s);
    QCOMPARE(outcomes.constFirst().returnCode == ReturnCode::Success, isThere);
    QCOMPARE(outcomes.constFirst().relayPath, u"north"_s);
}

void BrokerDeliveryTest::pausesGrowAndAreTold()
{
    m_ofClient->setRefusing(true);
    m_ofClient->cut();
    QList<qint64> pauses;
    QDateTime last;
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            const StationState state = m_client->link().state();
            if (state.retryAt.isValid() && state.retryAt != last) {
                last = state.retryAt;
                pauses.append(QDateTime::currentDateTimeUtc().msecsTo(last));
            }
            return pauses.size() >= 5;
        }(),
        patience);
    QVERIFY2(pauses.constFirst() <= 400, qPrintable(QString::number(pauses.constFirst())));
    QVERIFY2(pauses.constLast() >= 1000, qPrintable(QString::number(pauses.constLast())));
    m_ofClient->setRefusing(false);
    QTRY_VERIFY_WITH_TIMEOUT(m_client->isUp(), patience);
}

void BrokerDeliveryTest::aKilledClientHarmsNobody()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"RECORDING_CONNECT"_s, clientUrl());
    QStringList done;
    constexpr int clients = 12;
    for (int i = 0; i < clients; ++i) {
        QProcess client;
        client.setProcessEnvironment(environment);
        const QString name = u"by-%1"_s.arg(i);
        client.start(QStringLiteral(RECORDINGCTL), {u"camera-add"_s, name});
        if (client.waitForFinished(i == clients - 1 ? patience : 40 + i * 40)) {
            if (client.exitStatus() == QProcess::NormalExit && client.exitCode() == 0)
                done.append(name);
        } else {
            client.kill();
            client.waitForFinished();
        }
    }
    QVERIFY(done.contains(u"by-%1"_s.arg(clients - 1)));
    const QStringList there = cameras();
    for (const QString &name : std::as_const(done))
        QVERIFY2(there.contains(name), qPrintable(name));
    QCOMPARE(QSet<QString>(there.begin(), there.end()).size(), there.size());
    const int sent = m_client->send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->code(sent), ReturnCode::Success, patience);
}

QTEST_GUILESS_MAIN(BrokerDeliveryTest)
#include "tst_broker_delivery.moc"
