#include "BrokerSite.h"
#include "framework/HostReturnCode.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttTopics.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QUuid>

#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr int patience = 20'000;

/// Another MQTT client, which knows nothing of links.
class Stranger
{
public:
    explicit Stranger(const QString &brokerUrl)
    {
        QString error;
        const auto url = readBrokerUrl(brokerUrl, &error);
        id = u"stranger-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
        connection = std::make_unique<MqttConnection>(url->settings, id);
        QObject::connect(connection.get(), &MqttConnection::received, connection.get(),
                         [this](const MqttMessage &message) { messages.append(message); });
        QObject::connect(connection.get(), &MqttConnection::subscribed, connection.get(),
                         [this](const QString &filter) { subscribed.append(filter); });
        connection->start();
    }
    QStringList topics() const
    {
        QStringList list;
        for (const MqttMessage &message : messages)
            list.append(message.topic);
        return list;
    }

    QString id;
    std::unique_ptr<MqttConnection> connection;
    QList<MqttMessage> messages;
    QStringList subscribed;
};
} // namespace

/// A station behind a broker and its clients.
class BrokerStationTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void commandsAreAnswered();
    void anotherStationIsReachedByItsPath();
    void dataNamesTheStationOfACommand();
    void theFiguresOfAllAreThereAtOnce();
    void figuresOfOthersMayWait();
    void theDirectStationCanBeAnother();
    void anUnknownStationIsRefused();
    void aStationThatEndsSaysSo();
    void aStationThatIsKilledIsLost();
    void aStationThatHangsIsLost();
    void figuresOfALostStationAreOfThen();
    void theLastOfTheStationsIsKnown();
    void aStatusThatCannotBeReadIsAStation();
    void aBrokerThatIsNotThereIsTold();
    void theLaterOfTwoStationsOfOneIdStops();
    void theFirstOfTwoStationsGoesOn();
    void aKilledStationsPlaceIsTakenAgain();
    void localClientsAreServedBeside();
    void aViewerEditsNothing();
    void rolesAreReadAgain();
    void whatIsTooLargeIsRefused();
    void aReplyThatIsTooLargeIsSaid();
    void aStrangerAsksInJson();
    void aReplyGoesToClientsAlone();
    void idsOfAllKinds();

private:
    StationProcess &startStation(const QString &id, const QStringList &arguments = {})
    {
        m_stations.push_back(std::make_unique<StationProcess>(m_folder->path(), id, m_broker->url(), arguments));
        m_stations.back()->start();
        return *m_stations.back();
    }
    QString url(const QString &station, const QString &user = {}) const
    {
        const QString userPart = user.isEmpty() ? QString() : user + u'@';
        return u"mqtt://"_s + userPart + u"127.0.0.1:%1/"_s.arg(m_broker->port())
            + QString::fromLatin1(station.toUtf8().toPercentEncoding());
    }
    QString writeFile(const QString &name, const QByteArray &text) const
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("no file");
        return file.fileName();
    }

    std::unique_ptr<MqttBroker> m_broker;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::unique_ptr<StationProcess>> m_stations;
};

void BrokerStationTest::initTestCase()
{
    QVERIFY(!qEnvironmentVariableIsEmpty("RECORDING_STATIOND"));
}

void BrokerStationTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
    m_broker = std::make_unique<MqttBroker>();
    QVERIFY2(m_broker->start(), qPrintable(m_broker->error()));
}

void BrokerStationTest::cleanup()
{
    if (QTest::currentTestFailed()) {
        for (const auto &station : m_stations)
            qInfo("%s: %s", qPrintable(station->id()), qPrintable(station->log()));
    }
    m_stations.clear();
    m_broker.reset();
    m_folder.reset();
}

void BrokerStationTest::commandsAreAnswered()
{
    startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int volumes = client.send(ServerCommand::getVolume);
    const int camera = client.send(StationCommandName::addCamera, cameraMap(u"Gate"_s));
    const int again = client.send(StationCommandName::addCamera, cameraMap(u"Gate"_s));
    const int unknown = client.send(u"no such command"_s);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(unknown), StationReturnCode::UnknownCommand, patience);
    QCOMPARE(client.code(volumes), ReturnCode::Success);
    QVERIFY(!client.data(volumes).toList().isEmpty());
    QCOMPARE(client.code(camera), ReturnCode::Success);
    QCOMPARE(client.code(again), StationReturnCode::CameraExists);
    for (const QList<StationReply> &parts : std::as_const(client.replies))
        QCOMPARE(parts.size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(client.events.contains(u"north "_s + StationEventName::ActivityAdded), patience);
}

void BrokerStationTest::anotherStationIsReachedByItsPath()
{
    startStation(u"north"_s);
    startStation(u"south"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(u"north"_s) && client.isUp(u"south"_s), patience);
    const int added = client.send(StationCommandName::addCamera, cameraMap(u"Gate"_s), u"south"_s);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(added), ReturnCode::Success, patience);
    const int ofNorth = client.send(StationCommandName::listCameras);
    const int ofSouth = client.send(StationCommandName::listCameras, {}, u"south"_s);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(ofSouth), ReturnCode::Success, patience);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(ofNorth), ReturnCode::Success, patience);
    QCOMPARE(cameraNames(client.data(ofNorth)), QStringList());
    QCOMPARE(cameraNames(client.data(ofSouth)), QStringList{u"Gate"_s});
    const QList<StationPresence> stations = client.link().stations();
    QCOMPARE(stations.size(), 2);
    for (const StationPresence &station : stations) {
        QCOMPARE(station.state.kind, StationState::Kind::Up);
        QVERIFY(!station.name.isEmpty() && !station.address.isEmpty() && !station.version.isEmpty());
        QVERIFY(station.since.isValid());
    }
}

void BrokerStationTest::dataNamesTheStationOfACommand()
{
    startStation(u"north"_s);
    startStation(u"south"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(u"north"_s) && client.isUp(u"south"_s), patience);
    const int servers = client.send(ServerCommand::GetNasServers, u"south"_s);
    const int removal = client.send(ServerCommand::RemoveNASServer,
                                    QVariantMap{{u"id"_s, u"none"_s}, {FieldKey::relayPath, u"south"_s}});
    QTRY_COMPARE_WITH_TIMEOUT(client.code(servers), ReturnCode::Success, patience); // north would be UnknownStation
    QTRY_COMPARE_WITH_TIMEOUT(client.code(removal), StationReturnCode::NasServerNotFound, patience);
}

void BrokerStationTest::theFiguresOfAllAreThereAtOnce()
{
    startStation(u"north"_s);
    startStation(u"south"_s);
    BrokerClient first(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(first.isUp(u"north"_s) && first.isUp(u"south"_s), patience);
    const QString north = u"north "_s + ServerEvent::VolumeChanged;
    const QString south = u"south "_s + ServerEvent::VolumeChanged;
    for (const QString &station : {u"north"_s, u"south"_s})
        first.send(ServerCommand::reloadStorageUsageInfo, {}, station);
    QTRY_VERIFY_WITH_TIMEOUT(first.events.contains(north) && first.events.contains(south), patience);
    BrokerClient later(url(u"north"_s)); // asks for nothing
    QTRY_VERIFY_WITH_TIMEOUT(later.events.contains(north) && later.events.contains(south), patience);
    QCOMPARE(later.lastData.value(south), first.lastData.value(south));
}

void BrokerStationTest::figuresOfOthersMayWait()
{
    startStation(u"north"_s);
    startStation(u"south"_s);
    BrokerClient patient(url(u"north"_s), 1h);
    BrokerClient other(url(u"north"_s));
    const QString north = u"north "_s + ServerEvent::VolumeChanged;
    const QString south = u"south "_s + ServerEvent::VolumeChanged;
    QTRY_VERIFY_WITH_TIMEOUT(patient.isUp(u"north"_s) && patient.isUp(u"south"_s), patience);
    const auto tell = [&patient](const QString &station) {
        patient.send(ServerCommand::reloadStorageUsageInfo, {}, station);
    };
    tell(u"south"_s);
    QTRY_COMPARE_WITH_TIMEOUT(patient.events.count(south), 1, patience);
    QTRY_VERIFY_WITH_TIMEOUT(other.events.contains(south), patience);
    const qsizetype heard = other.events.count(south);
    tell(u"south"_s);
    QTRY_VERIFY_WITH_TIMEOUT(other.events.count(south) > heard, patience);
    const qsizetype ofNorth = patient.events.count(north);
    tell(u"north"_s); // comes behind them
    QTRY_VERIFY_WITH_TIMEOUT(patient.events.count(north) > ofNorth, patience);
    QCOMPARE(patient.events.count(south), 1);
    QVERIFY(patient.link().setDirectStation(u"south"_s));
    QCOMPARE(patient.events.count(south), 2);
}

void BrokerStationTest::theDirectStationCanBeAnother()
{
    startStation(u"north"_s);
    startStation(u"south"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(u"north"_s) && client.isUp(u"south"_s), patience);
    QVERIFY(!client.link().setDirectStation(u"west"_s));
    QCOMPARE(client.link().directStation(), u"north"_s);
    QSignalSpy changed(&client.link(), &StationLink::directStationChanged);
    QVERIFY(client.link().setDirectStation(u"south"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(client.link().directStation(), u"south"_s);
    const int added = client.send(StationCommandName::addCamera, cameraMap(u"Gate"_s));
    QTRY_COMPARE_WITH_TIMEOUT(client.code(added), ReturnCode::Success, patience);
    const int listed = client.send(StationCommandName::listCameras, {}, u"south"_s);
    QTRY_COMPARE_WITH_TIMEOUT(cameraNames(client.data(listed)), QStringList{u"Gate"_s}, patience);
}

void BrokerStationTest::anUnknownStationIsRefused()
{
    startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int sent = client.send(ServerCommand::getVolume, {}, u"west"_s);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), HostReturnCode::UnknownStation, patience);
    BrokerClient lost(url(u"west"_s));
    QTRY_COMPARE_WITH_TIMEOUT(lost.link().state().kind, StationState::Kind::Down, patience);
    QVERIFY2(lost.reason().contains(u"west"_s), qPrintable(lost.reason()));
    const int toNobody = lost.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(lost.code(toNobody), HostReturnCode::LinkDown, patience);
}

void BrokerStationTest::aStationThatEndsSaysSo()
{
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    station.stop();
    QCOMPARE(station.exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state().kind, StationState::Kind::Down, patience);
    QCOMPARE(client.reason(), u"The station was ended."_s);
    QVERIFY(!client.link().state().keepsCommands);
    BrokerClient later(url(u"north"_s));
    QTRY_COMPARE_WITH_TIMEOUT(later.reason(), u"The station was ended."_s, patience);
    QVERIFY(later.link().stations().constFirst().since.isValid());
    station.start();
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp() && later.isUp(), patience);
}

void BrokerStationTest::aStationThatIsKilledIsLost()
{
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    station.kill();
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state().kind, StationState::Kind::Down, patience);
    QVERIFY(client.link().state().keepsCommands); // it may come back
    QVERIFY2(client.reason().contains(u"lost"_s), qPrintable(client.reason()));
    QTRY_VERIFY_WITH_TIMEOUT(!client.link().state().keepsCommands, 40'000);
}

/// Clients notice it themselves, before any broker does: one takes between seven and a half and twelve and a half
/// seconds, by its version.
void BrokerStationTest::aStationThatHangsIsLost()
{
    const QString config = writeFile(u"quick.conf"_s, "broker-heartbeat = 1\n");
    StationProcess &station = startStation(u"north"_s, {u"--config"_s, config});
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    client.send(StationCommandName::addCamera, cameraMap(u"Door"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.events.contains(u"north station.ActivityAdded"_s), patience); // events come here
    station.signal(SIGSTOP);
    const int sent = client.send(StationCommandName::addCamera, cameraMap(u"Gate"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.link().state().isSilent, patience);
    const auto presence = [&client] { return client.link().stations().constFirst(); };
    const StationPresence silent = presence();
    QCOMPARE(silent.state.kind, StationState::Kind::Down);
    QVERIFY(silent.state.keepsCommands);
    QVERIFY2(silent.since.msecsTo(QDateTime::currentDateTimeUtc()) < 10'000, qPrintable(silent.since.toString()));
    QVERIFY2(silent.state.reason.startsWith(u"Nothing was heard of the station for"_s),
             qPrintable(silent.state.reason));
    const int refused = client.send(StationCommandName::addCamera, cameraMap(u"Yard"_s));
    QTRY_COMPARE(client.code(refused), HostReturnCode::LinkDown);
    const bool isLostByBroker = QTest::qWaitFor([&] { return !client.link().state().isSilent; }, patience);
    QVERIFY(isLostByBroker);
    QVERIFY2(client.reason().startsWith(u"The broker lost the station"_s), qPrintable(client.reason()));
    QCOMPARE(presence().since, silent.since);
    QCOMPARE(client.code(sent), QString());
    station.signal(SIGCONT);
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
    QVERIFY(!client.events.contains(u"north station.Heartbeat"_s)); // a matter of the link alone
}

/// Whoever comes later hears when they were told, and not when he heard of them.
void BrokerStationTest::figuresOfALostStationAreOfThen()
{
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    const auto figuresAt = [](BrokerClient &asker) { return asker.link().presence().figuresAt; };
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    client.send(ServerCommand::reloadStorageUsageInfo);
    QTRY_VERIFY_WITH_TIMEOUT(figuresAt(client).isValid(), patience);
    station.kill();
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state().kind, StationState::Kind::Down, patience);
    const QDateTime lost = QDateTime::currentDateTimeUtc();
    BrokerClient later(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(later.lastData.contains(u"north VolumeChanged"_s), patience);
    QCOMPARE(later.link().state().kind, StationState::Kind::Down);
    QVERIFY2(figuresAt(later).isValid() && figuresAt(later) <= lost, qPrintable(figuresAt(later).toString()));
    QCOMPARE(figuresAt(later), figuresAt(client));
}

/// A broker hands out what it keeps bit by bit, and says nowhere that it is through.
void BrokerStationTest::theLastOfTheStationsIsKnown()
{
    constexpr int many = 300;
    Stranger stranger(m_broker->url());
    QTRY_VERIFY_WITH_TIMEOUT(stranger.connection->isUp(), patience);
    StationStatus status;
    status.instance = u"one"_s;
    status.startedAt = QDateTime::currentDateTimeUtc();
    const MqttBody body = encodeBody(statusMap(status));
    for (int number = 0; number < many; ++number) {
        MqttMessage told;
        told.topic = MqttTopics::status(QString::number(number));
        told.payload = body.bytes;
        told.contentType = body.contentType;
        told.isRetained = true;
        stranger.connection->publish(told);
    }
    stranger.connection->subscribe(MqttTopics::status(QString::number(many - 1)));
    QTRY_VERIFY_WITH_TIMEOUT(!stranger.messages.isEmpty(), patience);
    BrokerClient client(url(u"0"_s));
    QVERIFY(!client.link().whyIncomplete().isEmpty());
    std::optional<qsizetype> known;
    connect(&client.link(), &StationLink::completenessChanged, this, [&] {
        if (!known && client.link().whyIncomplete().isEmpty())
            known = client.link().stations().size();
    });
    QTRY_COMPARE_WITH_TIMEOUT(client.link().whyIncomplete(), QString(), patience);
    QCOMPARE(known, std::optional<qsizetype>(many));
    m_broker->stop();
    QTRY_VERIFY_WITH_TIMEOUT(client.link().whyIncomplete().contains(u"broker"_s), patience);
}

void BrokerStationTest::aStatusThatCannotBeReadIsAStation()
{
    startStation(u"north"_s);
    Stranger stranger(m_broker->url());
    QTRY_VERIFY_WITH_TIMEOUT(stranger.connection->isUp(), patience);
    MqttMessage told;
    told.topic = MqttTopics::status(u"odd"_s);
    told.payload = "no map";
    told.isRetained = true;
    stranger.connection->publish(told);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state(u"odd"_s).kind, StationState::Kind::Down, patience);
    QTRY_VERIFY_WITH_TIMEOUT(client.reason(u"odd"_s).startsWith(u"What the station says of itself cannot be read: "_s),
                             patience);
    const int sent = client.send(ServerCommand::getVolume, {}, u"odd"_s);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), HostReturnCode::LinkDown, patience);
    QTRY_COMPARE_WITH_TIMEOUT(client.link().whyIncomplete(), QString(), patience);
    QCOMPARE(client.link().stations().size(), 2);
}

void BrokerStationTest::aBrokerThatIsNotThereIsTold()
{
    m_broker->stop();
    BrokerClient client(url(u"north"_s));
    const int sent = client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.link().state().kind, StationState::Kind::Down, patience);
    QVERIFY2(client.reason().contains(u"Connection refused"_s), qPrintable(client.reason()));
    QVERIFY(client.link().state().retryAt.isValid());
    QTRY_COMPARE(client.code(sent), HostReturnCode::LinkDown);
    QVERIFY(m_broker->start());
    startStation(u"north"_s);
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
}

void BrokerStationTest::theLaterOfTwoStationsOfOneIdStops()
{
    StationProcess &first = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    StationProcess later(m_folder->path() + u"/other"_s, u"north"_s, m_broker->url());
    QDir().mkpath(m_folder->filePath(u"other"_s));
    later.start();
    QTRY_VERIFY_WITH_TIMEOUT(!later.isRunning(), patience);
    QCOMPARE(later.exitCode(), 1);
    QVERIFY2(later.log().contains(u"Another station serves the ID \"north\""_s), qPrintable(later.log()));
    QVERIFY(first.isRunning());
    QVERIFY(client.isUp());
    const int sent = client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
    for (const StationState &state : std::as_const(client.states[u"north"_s]))
        QVERIFY(state.kind != StationState::Kind::Down); // nobody saw any of it
}

void BrokerStationTest::theFirstOfTwoStationsGoesOn()
{
    QDir().mkpath(m_folder->filePath(u"other"_s));
    StationProcess one(m_folder->path(), u"north"_s, m_broker->url());
    StationProcess other(m_folder->path() + u"/other"_s, u"north"_s, m_broker->url());
    one.start(); // at the same time
    other.start();
    QTRY_VERIFY_WITH_TIMEOUT(!one.isRunning() || !other.isRunning(), patience);
    StationProcess &left = one.isRunning() ? one : other;
    QVERIFY(left.isRunning());
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int sent = client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
}

void BrokerStationTest::aKilledStationsPlaceIsTakenAgain()
{
    m_broker->addLines({u"persistence true"_s, u"persistence_location %1/"_s.arg(m_folder->path())});
    m_broker->stop();
    QVERIFY(m_broker->start());
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    m_broker->stop(); // keeps that it is up
    station.kill();
    QVERIFY(m_broker->start());
    station.start(); // and finds that another one is said to be up, which does not answer
    QTRY_VERIFY_WITH_TIMEOUT(station.log().contains(u"Clients are served over the broker"_s), patience);
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int sent = client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
}

void BrokerStationTest::localClientsAreServedBeside()
{
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QString error;
    const auto local =
        StationLink::open(u"local:"_s + station.dataFolder(), {LocalLink::kind()}, {u"test"_s, u"1"_s, {}}, &error);
    CommandSender sender(*local, CommandSender::Range::Station);
    local->start();
    QTRY_VERIFY_WITH_TIMEOUT(local->isUp(), patience);
    QString code;
    sender.send({}, {StationCommandName::addCamera, cameraMap(u"Gate"_s)},
                [&code](quint64, const StationReply &part) { code = part.returnCode; });
    QTRY_COMPARE_WITH_TIMEOUT(code, ReturnCode::Success, patience);
    sender.close();
    const int listed = client.send(StationCommandName::listCameras);
    QTRY_COMPARE_WITH_TIMEOUT(cameraNames(client.data(listed)), QStringList{u"Gate"_s}, patience);
}

void BrokerStationTest::aViewerEditsNothing()
{
    const QString roles = writeFile(u"roles"_s, "alice = operator\nvictor = viewer\n");
    const QString config = writeFile(u"conf"_s, "broker-roles = " + roles.toUtf8() + '\n');
    startStation(u"north"_s, {u"--config"_s, config});
    BrokerClient viewer(url(u"north"_s, u"victor"_s));
    BrokerClient alice(url(u"north"_s, u"alice"_s));
    BrokerClient nobody(url(u"north"_s, u"eve"_s));
    BrokerClient nameless(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(viewer.isUp() && alice.isUp() && nobody.isUp() && nameless.isUp(), patience);
    const int looked = viewer.send(ServerCommand::getVolume);
    const int edited = viewer.send(StationCommandName::addCamera, cameraMap(u"A"_s));
    const int cancelled = viewer.send(StationCommandName::cancelDeletion, QVariantMap{{StationKey::place, u"/x"_s}});
    const int byAlice = alice.send(StationCommandName::addCamera, cameraMap(u"B"_s));
    const int byNobody = nobody.send(ServerCommand::getVolume);
    const int byNameless = nameless.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(viewer.code(looked), ReturnCode::Success, patience);
    QTRY_COMPARE_WITH_TIMEOUT(viewer.code(edited), StationReturnCode::OperatorNeeded, patience);
    QTRY_COMPARE_WITH_TIMEOUT(viewer.code(cancelled), StationReturnCode::OperatorNeeded, patience);
    QTRY_COMPARE_WITH_TIMEOUT(alice.code(byAlice), ReturnCode::Success, patience);
    QTRY_COMPARE_WITH_TIMEOUT(nobody.code(byNobody), StationReturnCode::UserRefused, patience);
    QTRY_COMPARE_WITH_TIMEOUT(nameless.code(byNameless), StationReturnCode::UserRefused, patience);
    const int activity = alice.send(StationCommandName::listActivity);
    QTRY_COMPARE_WITH_TIMEOUT(alice.code(activity), ReturnCode::Success, patience);
    QCOMPARE(alice.data(activity).toList().size(), 1);
    const QVariantMap entry = alice.data(activity).toList().constFirst().toMap();
    QCOMPARE(entry.value(StationKey::user).toString(), u"alice"_s);
    QCOMPARE(entry.value(StationKey::client).toString(), u"test"_s);
}

void BrokerStationTest::rolesAreReadAgain()
{
    const QString roles = writeFile(u"roles"_s, "* = viewer\n");
    const QString config = writeFile(u"conf"_s, "broker-roles = " + roles.toUtf8() + '\n');
    StationProcess &station = startStation(u"north"_s, {u"--config"_s, config});
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    const int before = client.send(StationCommandName::addCamera, cameraMap(u"A"_s));
    QTRY_COMPARE_WITH_TIMEOUT(client.code(before), StationReturnCode::OperatorNeeded, patience);
    writeFile(u"roles"_s, "* = king\n");
    station.signal(SIGHUP);
    QTRY_VERIFY_WITH_TIMEOUT(station.log().contains(u"roles:1: the role \"king\" is not known"_s), patience);
    const int still = client.send(StationCommandName::addCamera, cameraMap(u"A"_s));
    QTRY_COMPARE_WITH_TIMEOUT(client.code(still), StationReturnCode::OperatorNeeded, patience);
    writeFile(u"roles"_s, "* = operator\n");
    station.signal(SIGHUP);
    const auto isEditTaken = [&client] {
        const int sent = client.send(StationCommandName::addCamera, cameraMap(QUuid::createUuid().toString()));
        return QTest::qWaitFor([&] { return !client.code(sent).isEmpty(); }, 5000)
            && client.code(sent) == ReturnCode::Success;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isEditTaken(), patience);
}

void BrokerStationTest::whatIsTooLargeIsRefused()
{
    m_broker->addLines({u"max_packet_size 20000"_s});
    m_broker->stop();
    QVERIFY(m_broker->start());
    startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QByteArray noise; // which deflates badly
    for (int i = 0; i < 4000; ++i)
        noise += QUuid::createUuid().toRfc4122();
    const int sent = client.send(ServerCommand::getVolume, noise);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), HostReturnCode::TooLargeForBroker, patience);
    const int next = client.send(ServerCommand::getVolume); // nothing is stuck
    QTRY_COMPARE_WITH_TIMEOUT(client.code(next), ReturnCode::Success, patience);
}

void BrokerStationTest::aReplyThatIsTooLargeIsSaid()
{
    m_broker->addLines({u"max_packet_size 2000"_s});
    m_broker->stop();
    QVERIFY(m_broker->start());
    startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    QList<int> added;
    for (int i = 0; i < 200; ++i) // whose names deflate badly
        added.append(client.send(StationCommandName::addCamera, cameraMap(QUuid::createUuid().toString())));
    QTRY_COMPARE_WITH_TIMEOUT(client.code(added.constLast()), ReturnCode::Success, patience);
    const int listed = client.send(StationCommandName::listCameras);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(listed), StationReturnCode::ReplyTooLarge, patience);
}

void BrokerStationTest::aStrangerAsksInJson()
{
    startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    Stranger stranger(m_broker->url());
    QTRY_VERIFY_WITH_TIMEOUT(stranger.connection->isUp(), patience);
    stranger.connection->subscribe(MqttTopics::replies(u"me"_s));
    QTRY_COMPARE_WITH_TIMEOUT(stranger.subscribed.size(), 1, patience);
    MqttMessage command;
    command.topic = u"recording/1/stations/north/commands"_s;
    command.responseTopic = u"recording/1/clients/me/replies"_s;
    command.correlation = "any bytes";
    command.contentType = u"application/json"_s;
    command.payload = R"({"name": "getVolume"})";
    stranger.connection->publish(command);
    QTRY_COMPARE_WITH_TIMEOUT(stranger.messages.size(), 1, patience);
    const MqttMessage reply = stranger.messages.constFirst();
    QCOMPARE(reply.contentType, u"application/json"_s);
    QCOMPARE(reply.correlation, QByteArray("any bytes"));
    const QVariantMap map = decodeBody(reply.payload, reply.contentType);
    QCOMPARE(map.value(u"returnCode"_s).toString(), u"0"_s);
    QCOMPARE(map.value(u"finish"_s).toBool(), true);
    QVERIFY(!map.value(u"data"_s).toList().constFirst().toMap().value(FieldKey::volumePath).toString().isEmpty());
    command.payload = R"({"nome": 1})";
    stranger.connection->publish(command);
    QTRY_COMPARE_WITH_TIMEOUT(stranger.messages.size(), 2, patience);
    QVERIFY(stranger.messages.constLast().payload.contains("BadRequest"));
}

void BrokerStationTest::aReplyGoesToClientsAlone()
{
    StationProcess &station = startStation(u"north"_s);
    BrokerClient client(url(u"north"_s));
    QTRY_VERIFY_WITH_TIMEOUT(client.isUp(), patience);
    Stranger stranger(m_broker->url());
    QTRY_VERIFY_WITH_TIMEOUT(stranger.connection->isUp(), patience);
    stranger.connection->subscribe(MqttTopics::status(u"north"_s));
    QTRY_COMPARE_WITH_TIMEOUT(stranger.messages.size(), 1, patience);
    MqttMessage command;
    command.topic = MqttTopics::commands(u"north"_s);
    command.responseTopic = MqttTopics::status(u"north"_s); // the station would spoil its own status
    command.contentType = u"application/json"_s;
    command.payload = R"({"name": "getVolume"})";
    stranger.connection->publish(command);
    QTRY_VERIFY_WITH_TIMEOUT(station.log().contains(u"wants its reply under"_s), patience);
    const int sent = client.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
    QCOMPARE(stranger.messages.size(), 1);
}

void BrokerStationTest::idsOfAllKinds()
{
    const QStringList ids{u"a/b+c#"_s, u"Süd 1"_s, u"$north%"_s};
    for (int i = 0; i < ids.size(); ++i) {
        StationProcess *const station =
            new StationProcess(m_folder->path() + u"/%1"_s.arg(i), ids.at(i), m_broker->url());
        QDir().mkpath(station->dataFolder());
        m_stations.emplace_back(station);
        station->start();
    }
    BrokerClient client(url(ids.constFirst()));
    for (const QString &id : ids) {
        QTRY_VERIFY_WITH_TIMEOUT(client.isUp(id), patience);
        const int sent = client.send(StationCommandName::addCamera, cameraMap(id), id);
        QTRY_COMPARE_WITH_TIMEOUT(client.code(sent), ReturnCode::Success, patience);
    }
    QCOMPARE(client.link().stations().size(), ids.size());
}

QTEST_GUILESS_MAIN(BrokerStationTest)
#include "tst_broker_station.moc"
