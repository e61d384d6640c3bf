#include "mqtt/MqttSettings.h"
#include "mqtt/MqttTopics.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Address = MqttTopics::Address;

/// Topics and URLs: what they are made of and what is read from them.
class MqttTopicsTest : public QObject
{
    Q_OBJECT

private slots:
    void topicsAreThoseOfTheDocument();
    void identifiersComeBack_data();
    void identifiersComeBack();
    void otherTopicsAreNoneOfOurs_data();
    void otherTopicsAreNoneOfOurs();
    void usersThatCannotBeALevel();

    void urlsAreRead_data();
    void urlsAreRead();
    void wrongUrlsAreRefused_data();
    void wrongUrlsAreRefused();
    void wrongBrokersAreRefused();
    void theQueryNamesFiles();
    void theEnvironmentAddsWhatIsMissing();
    void settingsThatDoNotGoTogether();
};

void MqttTopicsTest::topicsAreThoseOfTheDocument()
{
    QCOMPARE(MqttTopics::status(u"north"_s), u"recording/1/stations/north/status"_s);
    QCOMPARE(MqttTopics::instances(u"north"_s), u"recording/1/stations/north/instances"_s);
    QCOMPARE(MqttTopics::commands(u"north"_s), u"recording/1/stations/north/commands"_s);
    QCOMPARE(MqttTopics::commands(u"north"_s, u"alice"_s), u"recording/1/stations/north/commands/alice"_s);
    QCOMPARE(MqttTopics::commandsOfUsers(u"north"_s), u"recording/1/stations/north/commands/+"_s);
    QCOMPARE(MqttTopics::event(u"north"_s, u"VolumeChanged"_s), u"recording/1/stations/north/events/VolumeChanged"_s);
    QCOMPARE(MqttTopics::eventsOf(u"north"_s), u"recording/1/stations/north/events/+"_s);
    QCOMPARE(MqttTopics::replies(u"me"_s), u"recording/1/clients/me/replies"_s);
    QCOMPARE(MqttTopics::everyStatus(), u"recording/1/stations/+/status"_s);
    QCOMPARE(MqttTopics::everyEvent(), u"recording/1/stations/+/events/+"_s);
    QCOMPARE(MqttTopics::status(u"a/b+c#d$"_s), u"recording/1/stations/a%2Fb%2Bc%23d%24/status"_s);
    QCOMPARE(MqttTopics::status({}), u"recording/1/stations/%/status"_s);
}

void MqttTopicsTest::identifiersComeBack_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::newRow("plain") << u"relay-7"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("percent") << u"%"_s;
    QTest::newRow("encoded already") << u"a%2Fb"_s;
    QTest::newRow("levels") << u"a/b"_s;
    QTest::newRow("wildcards") << u"+#"_s;
    QTest::newRow("system") << u"$SYS"_s;
    QTest::newRow("NUL") << u"a"_s + QChar(0) + u'b';
    QTest::newRow("no ASCII") << u"Süd 東"_s;
}

void MqttTopicsTest::identifiersComeBack()
{
    QFETCH(QString, identifier);
    const Address status = MqttTopics::read(MqttTopics::status(identifier));
    QCOMPARE(status.kind, Address::Kind::Status);
    QCOMPARE(status.station, identifier);
    QCOMPARE(MqttTopics::status(identifier).count(u'/'), 4);
    const Address event = MqttTopics::read(MqttTopics::event(u"x"_s, identifier));
    QCOMPARE(event.kind, Address::Kind::Event);
    QCOMPARE(event.station, u"x"_s);
    QCOMPARE(event.name, identifier);
    const Address replies = MqttTopics::read(MqttTopics::replies(identifier));
    QCOMPARE(replies.kind, Address::Kind::Replies);
    QCOMPARE(replies.name, identifier);
    const Address commands = MqttTopics::read(MqttTopics::commands(identifier, u"al ice"_s));
    QCOMPARE(commands.kind, Address::Kind::Commands);
    QCOMPARE(commands.station, identifier);
    QCOMPARE(commands.name, u"al ice"_s);
    QCOMPARE(MqttTopics::read(MqttTopics::commands(identifier)).name, QString());
}

void MqttTopicsTest::otherTopicsAreNoneOfOurs_data()
{
    QTest::addColumn<QString>("topic");
    for (const char *topic :
         {"", "recording", "recording/2/stations/north/status", "recording/1/stations/north",
          "recording/1/stations//status", "recording/1/stations/north/status/more", "recording/1/stations/north/other",
          "recording/1/stations/a%2fb/status", "recording/1/stations/%61/status", "recording/1/stations/a b/status",
          "recording/1/stations/%FF/status", "recording/1/stations/north/commands/",
          "recording/1/stations/north/events", "recording/1/stations/north/commands/a/b", "recording/1/clients/me",
          "recording/1/clients/me/replies/x"})
        QTest::newRow(topic) << QString::fromLatin1(topic);
}

void MqttTopicsTest::otherTopicsAreNoneOfOurs()
{
    QFETCH(QString, topic);
    QCOMPARE(MqttTopics::read(topic).kind, Address::Kind::None);
}

void MqttTopicsTest::usersThatCannotBeALevel()
{
    QVERIFY(MqttTopics::canBeUser(u"alice"_s));
    QVERIFY(MqttTopics::canBeUser(u"Ann-Sofie Ö."_s));
    for (const QString &user : {QString(), u"a/b"_s, u"+"_s, u"a#"_s, u"a\nb"_s})
        QVERIFY(!MqttTopics::canBeUser(user));
}

void MqttTopicsTest::urlsAreRead_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("isEncrypted");
    QTest::addColumn<QString>("found"); // user@host:port station
    QTest::newRow("short") << u"//broker/north"_s << true << u"@broker:8883 north"_s;
    QTest::newRow("plain") << u"//broker/north"_s << false << u"@broker:1883 north"_s;
    QTest::newRow("all") << u"//alice@b.example.org:99/a%2Fb"_s << true << u"alice@b.example.org:99 a/b"_s;
    QTest::newRow("user with an at") << u"//a%40b@broker/north"_s << true << u"a@b@broker:8883 north"_s;
    QTest::newRow("address") << u"//[::1]:5/north"_s << false << u"@::1:5 north"_s;
    QTest::newRow("no station") << u"//broker"_s << true << u"@broker:8883 "_s;
    QTest::newRow("no station, slash") << u"//broker/"_s << true << u"@broker:8883 "_s;
}

void MqttTopicsTest::urlsAreRead()
{
    QFETCH(QString, place);
    QFETCH(bool, isEncrypted);
    QString error;
    const auto url = readMqttUrl(place, isEncrypted, &error);
    QVERIFY2(url, qPrintable(error));
    QTEST(u"%1@%2:%3 %4"_s.arg(url->settings.user, url->settings.host).arg(url->settings.port).arg(url->station),
          "found");
    QCOMPARE(url->settings.isEncrypted, isEncrypted);
    QVERIFY(!url->settings.isPlaintextAllowed);
}

void MqttTopicsTest::wrongUrlsAreRefused_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("error");
    QTest::newRow("no host") << u"///north"_s << u"expected mqtts://[USER@]BROKER[:PORT]/STATION"_s;
    QTest::newRow("no slashes") << u"broker/north"_s << u"expected mqtts://[USER@]BROKER[:PORT]/STATION"_s;
    QTest::newRow("two stations") << u"//broker/north/south"_s << u"expected mqtts://[USER@]BROKER[:PORT]/STATION"_s;
    QTest::newRow("port") << u"//broker:99999/north"_s << u"expected mqtts://[USER@]BROKER[:PORT]/STATION"_s;
    QTest::newRow("no port") << u"//broker:0/north"_s << u"expected mqtts://[USER@]BROKER[:PORT]/STATION"_s;
    QTest::newRow("password") << u"//alice:secret@broker/north"_s << u"has a password in it"_s;
    QTest::newRow("key") << u"//broker/north?cert=x"_s << u"\"cert=x\""_s;
    QTest::newRow("danger named wrongly") << u"//broker/north?plaintext=yes"_s << u"everybody-may-read"_s;
}

void MqttTopicsTest::wrongUrlsAreRefused()
{
    QFETCH(QString, place);
    QFETCH(QString, error);
    QString found;
    QVERIFY(!readMqttUrl(place, true, &found));
    QVERIFY2(found.contains(error), qPrintable(found));
    QVERIFY(!found.contains(u"secret"_s));
}

void MqttTopicsTest::wrongBrokersAreRefused()
{
    for (const QString &url : {u"broker"_s, u"https://broker"_s, u"mqtts://"_s, u"mqtts://broker:99999"_s}) {
        QString error;
        QVERIFY2(!readBrokerUrl(url, &error), qPrintable(url));
        QVERIFY2(error.startsWith(u'"' + url + u"\" "_s)
                     && error.endsWith(u": expected mqtts://[USER@]BROKER[:PORT]."_s),
                 qPrintable(error));
    }
    QString error;
    QVERIFY(!readBrokerUrl(u"mqtts://broker/north"_s, &error));
    QVERIFY2(error.contains(u"names a station behind the broker"_s), qPrintable(error));
}

void MqttTopicsTest::theQueryNamesFiles()
{
    QString error;
    const auto url = readMqttUrl(u"//b/n?ca=/a%20b&certificate=c&key=k&password-file=p&plaintext=everybody-may-read"_s,
                                 true, &error);
    QVERIFY2(url, qPrintable(error));
    QCOMPARE(url->settings.caFile, u"/a b"_s);
    QCOMPARE(url->settings.certificateFile, u"c"_s);
    QCOMPARE(url->settings.keyFile, u"k"_s);
    QCOMPARE(url->settings.passwordFile, u"p"_s);
    QVERIFY(url->settings.isPlaintextAllowed);
}

void MqttTopicsTest::theEnvironmentAddsWhatIsMissing()
{
    for (const char *name : {"USER", "PASSWORD", "PASSWORD_FILE", "CA", "CERTIFICATE", "KEY"})
        qputenv(QByteArray("RECORDING_BROKER_") + name, QByteArray("env-") + name);
    MqttSettings settings;
    settings.caFile = u"mine"_s;
    addMqttEnvironment(settings);
    MqttSettings plain;
    plain.isEncrypted = false;
    addMqttEnvironment(plain);
    for (const char *name : {"USER", "PASSWORD", "PASSWORD_FILE", "CA", "CERTIFICATE", "KEY"})
        qunsetenv((QByteArray("RECORDING_BROKER_") + name).constData());
    QCOMPARE(settings.caFile, u"mine"_s);
    QCOMPARE(settings.user, u"env-USER"_s);
    QCOMPARE(settings.password, QByteArray("env-PASSWORD"));
    QCOMPARE(settings.passwordFile, u"env-PASSWORD_FILE"_s);
    QCOMPARE(settings.certificateFile, u"env-CERTIFICATE"_s);
    QCOMPARE(settings.keyFile, u"env-KEY"_s);
    QCOMPARE(plain.caFile + plain.certificateFile + plain.keyFile, QString());
}

void MqttTopicsTest::settingsThatDoNotGoTogether()
{
    MqttSettings settings;
    QCOMPARE(mqttSettingsError(settings), QString());
    settings.certificateFile = u"c"_s;
    QVERIFY(mqttSettingsError(settings).contains(u"key"_s));
    settings.keyFile = u"k"_s;
    QCOMPARE(mqttSettingsError(settings), QString());
    settings.isEncrypted = false;
    QVERIFY(mqttSettingsError(settings).contains(u"mqtts"_s));
    settings = {};
    settings.user = u"a/b"_s;
    QVERIFY(mqttSettingsError(settings).contains(u"a/b"_s));
}

QTEST_APPLESS_MAIN(MqttTopicsTest)
#include "tst_mqtt_topics.moc"
