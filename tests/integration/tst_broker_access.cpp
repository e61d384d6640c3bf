#include "BrokerSite.h"
#include "framework/HostReturnCode.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttConnection.h"
#include "mqtt/MqttMessages.h"
#include "mqtt/MqttTopics.h"

#include <QFile>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {
constexpr int patience = 20'000;

/// Somebody with credentials of the example, who tries what topics allow.
class Visitor
{
public:
    explicit Visitor(const MqttSettings &settings)
        : connection(settings, u"visitor-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces))
    {
        QObject::connect(&connection, &MqttConnection::received, &connection,
                         [this](const MqttMessage &message) { topics.append(message.topic); });
        QObject::connect(&connection, &MqttConnection::subscribed, &connection,
                         [this](const QString &filter) { subscribed.append(filter); });
        QObject::connect(&connection, &MqttConnection::published, &connection,
                         [this](int number, int reason) { reasons.insert(number, reason); });
        connection.start();
    }
    /// The broker's answer to a message for @p topic; -1 where none comes.
    int publish(const QString &topic, bool isRetained = false, const QByteArray &payload = "x")
    {
        MqttMessage message;
        message.topic = topic;
        message.payload = payload;
        message.isRetained = isRetained;
        const int number = connection.publish(message).number;
        return QTest::qWaitFor([&] { return reasons.contains(number); }, patience) ? reasons.value(number) : -1;
    }

    MqttConnection connection;
    QStringList topics; ///< that something came over
    QStringList subscribed;
    QHash<int, int> reasons;
};

bool isTaken(int reason)
{
    return reason == 0 || reason == 16; // by nobody at the moment
}
constexpr int notAuthorized = 135;
} // namespace

/// TLS, passwords, certificates, access rules and roles, with the examples of share/broker.
class BrokerAccessTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void operatorsDoEverything();
    void viewersLook();
    void aStationWritesItsOwnTopicsAlone();
    void aViewerWritesNobodyElsesCommands();
    void aStrangerHearsNothing();
    void repliesAreTheAskersAlone();
    void aStationAnswersForNoOther();
    void wrongCredentialsAreRefused_data();
    void wrongCredentialsAreRefused();
    void certificatesLogOn();
    void namesAreChecked();
    void otherAuthoritiesAreNotTrusted();
    void aBrokerThatIsNotThereIsTold();
    void theReasonIsThatOfTheLastAttempt();
    void withoutTlsOnlyThisMachine();
    void recordingctlGoesThrough();
    void passwordsOfOthersEyesAreRefused();

private:
    MqttSettings settingsOf(const QString &user) const
    {
        MqttSettings settings;
        settings.host = u"localhost"_s;
        settings.port = m_broker->port();
        settings.user = user;
        settings.caFile = m_broker->file(u"ca.pem"_s);
        settings.passwordFile = user.isEmpty() ? QString() : m_broker->passwordFile(user);
        return settings;
    }
    QString url(const QString &user, const QString &station = u"north"_s) const
    {
        return u"%1/%2?ca=%3&password-file=%4"_s.arg(m_broker->encryptedUrl(user), station, m_broker->file(u"ca.pem"_s),
                                                     m_broker->passwordFile(user));
    }
    std::unique_ptr<StationProcess> makeStation(const QString &id)
    {
        QFile config(m_folder->filePath(id + u".conf"_s));
        if (!config.open(QIODevice::WriteOnly))
            qFatal("no file");
        config.write("broker-ca = " + m_broker->file(u"ca.pem"_s).toUtf8() + '\n');
        config.write("broker-user = " + id.toUtf8() + '\n');
        config.write("broker-password-file = " + m_broker->passwordFile(id).toUtf8() + '\n');
        config.write("broker-roles = " BROKER_EXAMPLES "/roles\n");
        config.close(); // before the station reads it
        auto station =
            std::make_unique<StationProcess>(m_folder->path(), id, u"mqtts://localhost:%1"_s.arg(m_broker->port()),
                                             QStringList{u"--config"_s, config.fileName()});
        station->start();
        return station;
    }

    std::unique_ptr<MqttBroker> m_broker;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationProcess> m_north;
};

void BrokerAccessTest::initTestCase()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_broker = std::make_unique<MqttBroker>();
    QVERIFY2(m_broker->useExample({u"north"_s, u"south"_s, u"alice"_s, u"victor"_s}), qPrintable(m_broker->error()));
    QVERIFY2(m_broker->start(), qPrintable(m_broker->error()));
    m_north = makeStation(u"north"_s);
    BrokerClient client(url(u"alice"_s));
    QVERIFY2(client.error.isEmpty(), qPrintable(client.error));
    const bool isUp = QTest::qWaitFor([&] { return client.isUp(); }, patience);
    QVERIFY2(isUp, qPrintable(client.reason() + m_north->log()));
}

void BrokerAccessTest::cleanupTestCase()
{
    m_north.reset();
    m_broker.reset();
    m_folder.reset();
}

void BrokerAccessTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void BrokerAccessTest::operatorsDoEverything()
{
    BrokerClient alice(url(u"alice"_s));
    QVERIFY(alice.link().reachesMany());
    QTRY_VERIFY_WITH_TIMEOUT(alice.isUp(), patience);
    const int added = alice.send(StationCommandName::addCamera, cameraMap(u"Gate"_s));
    QTRY_COMPARE_WITH_TIMEOUT(alice.code(added), ReturnCode::Success, patience);
    QTRY_VERIFY_WITH_TIMEOUT(alice.events.contains(u"north "_s + StationEventName::ActivityAdded), patience);
}

void BrokerAccessTest::viewersLook()
{
    BrokerClient victor(url(u"victor"_s));
    QTRY_VERIFY_WITH_TIMEOUT(victor.isUp(), patience);
    const int looked = victor.send(ServerCommand::getVolume);
    const int edited = victor.send(StationCommandName::addCamera, cameraMap(u"Door"_s));
    QTRY_COMPARE_WITH_TIMEOUT(victor.code(looked), ReturnCode::Success, patience);
    QTRY_COMPARE_WITH_TIMEOUT(victor.code(edited), StationReturnCode::OperatorNeeded, patience);
}

void BrokerAccessTest::aStationWritesItsOwnTopicsAlone()
{
    Visitor south(settingsOf(u"south"_s));
    QTRY_VERIFY_WITH_TIMEOUT(south.connection.isUp(), patience);
    QVERIFY(isTaken(south.publish(MqttTopics::status(u"south"_s))));
    QVERIFY(isTaken(south.publish(MqttTopics::event(u"south"_s, u"VolumeChanged"_s))));
    QVERIFY(isTaken(south.publish(MqttTopics::replies(u"somebody"_s))));
    for (const QString &topic : {MqttTopics::status(u"north"_s), MqttTopics::event(u"north"_s, u"VolumeChanged"_s),
                                 MqttTopics::instances(u"north"_s), MqttTopics::commands(u"north"_s),
                                 MqttTopics::commands(u"north"_s, u"south"_s),
                                 MqttTopics::commands(u"north"_s, u"alice"_s), u"recording/1/other"_s})
        QCOMPARE(south.publish(topic), notAuthorized);
    south.connection.subscribe(MqttTopics::everyStatus());
    south.connection.subscribe(MqttTopics::commandsOfUsers(u"north"_s));
    QTRY_COMPARE_WITH_TIMEOUT(south.subscribed.size(), 2, patience);
    QVERIFY(isTaken(south.publish(MqttTopics::status(u"south"_s), true))); // behind what would have come
    QTRY_VERIFY_WITH_TIMEOUT(!south.topics.isEmpty(), patience);
    for (const QString &topic : std::as_const(south.topics))
        QCOMPARE(topic, MqttTopics::status(u"south"_s));
    QVERIFY(isTaken(south.publish(MqttTopics::status(u"south"_s), true, {}))); // as it was
    BrokerClient alice(url(u"alice"_s));
    QTRY_VERIFY_WITH_TIMEOUT(alice.isUp(), patience); // north was not spoiled
}

void BrokerAccessTest::aViewerWritesNobodyElsesCommands()
{
    Visitor victor(settingsOf(u"victor"_s));
    QTRY_VERIFY_WITH_TIMEOUT(victor.connection.isUp(), patience);
    QCOMPARE(victor.publish(MqttTopics::commands(u"north"_s, u"victor"_s)), 0);
    for (const QString &topic : {MqttTopics::commands(u"north"_s, u"alice"_s), MqttTopics::commands(u"north"_s),
                                 MqttTopics::status(u"north"_s), MqttTopics::replies(u"somebody"_s)})
        QCOMPARE(victor.publish(topic), notAuthorized);
    QTRY_VERIFY_WITH_TIMEOUT(m_north->log().contains(u"is left alone"_s), patience); // it wanted no reply
}

void BrokerAccessTest::aStrangerHearsNothing()
{
    Visitor stranger(settingsOf({}));
    QTRY_VERIFY_WITH_TIMEOUT(stranger.connection.state().kind == MqttConnection::State::Kind::Waiting, patience);
    QVERIFY2(stranger.connection.state().reason.contains(u"Not authorized"_s, Qt::CaseInsensitive),
             qPrintable(stranger.connection.state().reason));
    QVERIFY(!stranger.connection.isUp());
}

void BrokerAccessTest::repliesAreTheAskersAlone()
{
    Visitor victor(settingsOf(u"victor"_s));
    QTRY_VERIFY_WITH_TIMEOUT(victor.connection.isUp(), patience);
    victor.connection.subscribe(u"recording/1/clients/+/replies"_s);
    victor.connection.subscribe(u"recording/1/stations/+/commands/#"_s);
    victor.connection.subscribe(u"#"_s);
    QTRY_COMPARE_WITH_TIMEOUT(victor.subscribed.size(), 3, patience);
    BrokerClient alice(url(u"alice"_s));
    QTRY_VERIFY_WITH_TIMEOUT(alice.isUp(), patience);
    const int sent = alice.send(ServerCommand::getVolume);
    QTRY_COMPARE_WITH_TIMEOUT(alice.code(sent), ReturnCode::Success, patience);
    const int edit = alice.send(StationCommandName::addCamera, cameraMap(QUuid::createUuid().toString()));
    QTRY_COMPARE_WITH_TIMEOUT(alice.code(edit), ReturnCode::Success, patience);
    const QString event = MqttTopics::event(u"north"_s, StationEventName::ActivityAdded);
    QTRY_VERIFY_WITH_TIMEOUT(victor.topics.contains(event), patience); // behind them
    for (const QString &topic : std::as_const(victor.topics)) {
        const auto kind = MqttTopics::read(topic).kind;
        QVERIFY2(kind == MqttTopics::Address::Kind::Status || kind == MqttTopics::Address::Kind::Event,
                 qPrintable(topic));
    }
}

/// It may write to every asker, and knows the topic of those that asked it something.
void BrokerAccessTest::aStationAnswersForNoOther()
{
    Visitor south(settingsOf(u"south"_s));
    MqttMessage asked;
    connect(&south.connection, &MqttConnection::received, &south.connection, [&asked](const MqttMessage &message) {
        if (!message.responseTopic.isEmpty())
            asked = message;
    });
    QTRY_VERIFY_WITH_TIMEOUT(south.connection.isUp(), patience);
    south.connection.subscribe(MqttTopics::commandsOfUsers(u"south"_s));
    QTRY_COMPARE_WITH_TIMEOUT(south.subscribed.size(), 1, patience);
    StationStatus status;
    status.instance = u"south"_s;
    status.startedAt = QDateTime::currentDateTimeUtc();
    const MqttBody body = encodeBody(statusMap(status));
    MqttMessage told;
    told.topic = MqttTopics::status(u"south"_s);
    told.payload = body.bytes;
    told.contentType = body.contentType;
    told.isRetained = true;
    south.connection.publish(told);

    BrokerClient alice(url(u"alice"_s));
    QTRY_VERIFY_WITH_TIMEOUT(alice.isUp() && alice.isUp(u"south"_s), patience);
    alice.send(ServerCommand::getVolume, {}, u"south"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!asked.correlation.isEmpty(), patience);
    m_north->signal(SIGSTOP);
    const int sent = alice.send(ServerCommand::getVolume, {}, u"north"_s);
    ReplyPart part;
    part.reply.returnCode = u"Forged"_s;
    const MqttBody forged = encodeBody(replyMap(part));
    for (char number = 0; number < 20; ++number) {
        MqttMessage reply;
        reply.topic = asked.responseTopic;
        reply.payload = forged.bytes;
        reply.contentType = forged.contentType;
        reply.correlation = asked.correlation;
        reply.correlation[7] = number;
        south.connection.publish(reply);
    }
    QVERIFY(isTaken(south.publish(asked.responseTopic))); // behind them
    m_north->signal(SIGCONT);
    QTRY_VERIFY_WITH_TIMEOUT(!alice.code(sent).isEmpty(), patience);
    QCOMPARE(alice.code(sent), ReturnCode::Success);
    QVERIFY(isTaken(south.publish(MqttTopics::status(u"south"_s), true, {}))); // as it was
}

void BrokerAccessTest::wrongCredentialsAreRefused_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::newRow("wrong password") << u"alice"_s << u"ecilA"_s;
    QTest::newRow("no password") << u"alice"_s << QString();
    QTest::newRow("unknown user") << u"eve"_s << u"eve"_s;
}

void BrokerAccessTest::wrongCredentialsAreRefused()
{
    QFETCH(QString, user);
    QFETCH(QString, password);
    MqttSettings settings = settingsOf(user);
    settings.passwordFile.clear();
    settings.password = password.toUtf8();
    MqttLink link(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    link.start();
    QTRY_COMPARE_WITH_TIMEOUT(link.state().kind, StationState::Kind::Down, patience);
    QVERIFY2(link.state().reason.contains(u"refuses the connection"_s), qPrintable(link.state().reason));
    QVERIFY(password.isEmpty() || !link.state().reason.contains(password));
}

/// A listener of its own, whose users are named by their certificates.
void BrokerAccessTest::certificatesLogOn()
{
    MqttBroker broker;
    QVERIFY2(broker.useExample({u"alice"_s, u"victor"_s}), qPrintable(broker.error()));
    broker.addLines({u"require_certificate true"_s, u"use_identity_as_username true"_s});
    QVERIFY2(broker.start(), qPrintable(broker.error()));
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.port = broker.port();
    settings.caFile = broker.file(u"ca.pem"_s);
    settings.passwordFile.clear();
    Visitor without(settings);
    QTRY_VERIFY_WITH_TIMEOUT(without.connection.state().kind == MqttConnection::State::Kind::Waiting, patience);
    QVERIFY2(without.connection.state().reason.contains(u"TLS"_s), qPrintable(without.connection.state().reason));
    settings.certificateFile = broker.file(u"alice.pem"_s);
    settings.keyFile = broker.file(u"alice.key"_s);
    Visitor alice(settings);
    QTRY_VERIFY_WITH_TIMEOUT(alice.connection.isUp(), patience);
    QVERIFY(isTaken(alice.publish(MqttTopics::commands(u"north"_s, u"alice"_s))));
    QCOMPARE(alice.publish(MqttTopics::commands(u"north"_s, u"victor"_s)), notAuthorized);
}

void BrokerAccessTest::namesAreChecked()
{
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.host = u"127.0.0.1"_s; // the certificate is made out to localhost
    MqttLink link(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    link.start();
    QTRY_COMPARE_WITH_TIMEOUT(link.state().kind, StationState::Kind::Down, patience);
    QVERIFY2(link.state().reason.contains(u"TLS"_s), qPrintable(link.state().reason));
}

void BrokerAccessTest::otherAuthoritiesAreNotTrusted()
{
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.caFile.clear(); // the system's
    MqttLink link(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    link.start();
    QTRY_COMPARE_WITH_TIMEOUT(link.state().kind, StationState::Kind::Down, patience);
    QVERIFY2(link.state().reason.contains(u"certificate verify failed"_s), qPrintable(link.state().reason));
    settings.caFile = m_broker->file(u"nothing.pem"_s);
    MqttLink other(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    other.start();
    QTRY_COMPARE_WITH_TIMEOUT(other.state().kind, StationState::Kind::Down, patience);
    QVERIFY2(other.state().reason.contains(u"nothing.pem cannot be read"_s), qPrintable(other.state().reason));
}

void BrokerAccessTest::aBrokerThatIsNotThereIsTold()
{
    QTcpServer nobody;
    QVERIFY(nobody.listen(QHostAddress::LocalHost));
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.host = u"127.0.0.1"_s;
    settings.port = nobody.serverPort();
    nobody.close();
    MqttLink link(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    link.start();
    QTRY_COMPARE_WITH_TIMEOUT(link.state().kind, StationState::Kind::Down, patience);
    QCOMPARE(link.state().reason,
             u"The broker 127.0.0.1:%1 cannot be reached: Connection refused."_s.arg(settings.port));
}

void BrokerAccessTest::theReasonIsThatOfTheLastAttempt()
{
    QTcpServer hasty;
    QVERIFY(hasty.listen(QHostAddress::LocalHost));
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.host = u"127.0.0.1"_s;
    settings.port = hasty.serverPort();
    hasty.close();
    Visitor alice(settings);
    QTRY_VERIFY_WITH_TIMEOUT(alice.connection.state().reason.contains(u"Connection refused"_s), patience);
    connect(&hasty, &QTcpServer::newConnection, &hasty, [&hasty] {
        QTcpSocket *const caller = hasty.nextPendingConnection();
        connect(caller, &QTcpSocket::readyRead, caller, &QTcpSocket::abort);
    });
    QVERIFY(hasty.listen(QHostAddress::LocalHost, settings.port));
    QTRY_VERIFY_WITH_TIMEOUT(!alice.connection.state().reason.contains(u"Connection refused"_s), patience);
    QVERIFY(!alice.connection.state().reason.isEmpty());
}

void BrokerAccessTest::withoutTlsOnlyThisMachine()
{
    MqttSettings settings;
    settings.host = u"192.0.2.1"_s; // nobody's
    settings.port = 1;
    settings.isEncrypted = false;
    MqttLink link(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    link.start();
    QTRY_COMPARE_WITH_TIMEOUT(link.state().kind, StationState::Kind::Down, patience);
    QVERIFY2(link.state().reason.contains(u"plaintext=everybody-may-read"_s), qPrintable(link.state().reason));
    settings.isPlaintextAllowed = true;
    MqttLink allowed(settings, u"north"_s, {u"test"_s, u"1"_s, {}});
    allowed.start();
    QTRY_VERIFY_WITH_TIMEOUT(!allowed.state().reason.isEmpty(), patience);
    QVERIFY2(!allowed.state().reason.contains(u"plaintext"_s), qPrintable(allowed.state().reason)); // it tried
}

void BrokerAccessTest::recordingctlGoesThrough()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"RECORDING_CONNECT"_s, m_broker->encryptedUrl(u"victor"_s) + u"/north"_s);
    environment.insert(u"RECORDING_BROKER_CA"_s, m_broker->file(u"ca.pem"_s));
    environment.insert(u"RECORDING_BROKER_PASSWORD_FILE"_s, m_broker->passwordFile(u"victor"_s));
    const auto run = [&environment](const QStringList &arguments) {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.setProcessChannelMode(QProcess::MergedChannels);
        tool.start(QStringLiteral(RECORDINGCTL), arguments);
        tool.waitForFinished(patience);
        return QString::number(tool.exitCode()) + u' ' + QString::fromUtf8(tool.readAll());
    };
    const QString volumes = run({u"volumes"_s});
    QVERIFY2(volumes.startsWith(u"0 "_s) && volumes.contains(u'/'), qPrintable(volumes));
    const QString refused = run({u"camera-add"_s, u"Yard"_s});
    QVERIFY2(!refused.startsWith(u'0') && refused.contains(u"OperatorNeeded"_s), qPrintable(refused));
    const QString groups = run({u"groups"_s});
    QVERIFY2(groups.startsWith(u"0 "_s), qPrintable(groups));
    const QString tree = run({u"tree"_s}); // asked for as soon as the station is there
    const QString root = QSysInfo::machineHostName(); // as the station calls itself, and its machine
    QVERIFY2(QRegularExpression(u"^%1 +RecordingServer +%1$"_s.arg(QRegularExpression::escape(root)),
                                QRegularExpression::MultilineOption)
                 .match(tree)
                 .hasMatch(),
             qPrintable(tree));
}

void BrokerAccessTest::passwordsOfOthersEyesAreRefused()
{
    QFile file(m_folder->filePath(u"password"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("ecila\n") > 0);
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    MqttSettings settings = settingsOf(u"alice"_s);
    settings.passwordFile = file.fileName();
    Visitor visitor(settings);
    QTRY_VERIFY_WITH_TIMEOUT(visitor.connection.state().reason.contains(u"everybody on this machine"_s), patience);
    QVERIFY(file.setPermissions(QFile::ReadOwner));
    QTRY_VERIFY_WITH_TIMEOUT(visitor.connection.isUp(), patience);
}

QTEST_GUILESS_MAIN(BrokerAccessTest)
#include "tst_broker_access.moc"
