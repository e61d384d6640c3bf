#include "ConfigFile.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// The configuration file of a station that runs as a service.
class StationConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingSetLeavesTheDefaults();
    void everyKeyIsRead();
    void defaultsAreThoseOfTheTable();
    void badFilesAreRefused_data();
    void badFilesAreRefused();
    void aFileThatCannotBeReadIsNamed();
    void theDocumentShowsTheTable();
};

namespace {
QString errorOf(const QByteArray &text)
{
    try {
        parseConfig(text, u"FILE"_s);
    } catch (const ConfigError &error) {
        return error.text();
    }
    return u"none"_s;
}

/// The configuration as text, key by key.
QStringList texts(const StationConfig &config)
{
    QStringList list;
    for (const ConfigKey &key : configKeys())
        list.append(key.text(config));
    return list;
}
} // namespace

void StationConfigTest::nothingSetLeavesTheDefaults()
{
    QCOMPARE(texts(parseConfig("", {})), texts({}));
    QCOMPARE(texts(parseConfig("# station-name = A\n\n   \n  # more\n", {})), texts({}));
}

void StationConfigTest::everyKeyIsRead()
{
    const StationConfig config = parseConfig("data-folder = /srv/data\n"
                                             "station-name=North # 1 = first\r\n"
                                             "  station-id =  relay-7  \n"
                                             "backup-folder = /srv/backup\n"
                                             "key-file = /etc/key\n"
                                             "nas-time-limit = 5\n"
                                             "message-limit = 8\n"
                                             "client-limit = 3\n"
                                             "broker = mqtts://broker.example.org:99\n"
                                             "broker-user = north\n"
                                             "broker-password-file = /etc/password\n"
                                             "broker-ca = /etc/ca.pem\n"
                                             "broker-certificate = /etc/north.pem\n"
                                             "broker-key = /etc/north.key\n"
                                             "broker-heartbeat = 10\n"
                                             "broker-roles = /etc/roles",
                                             {});
    QCOMPARE(texts(config),
             QStringList({u"/srv/data"_s, u"North # 1 = first"_s, u"relay-7"_s, u"/srv/backup"_s, u"/etc/key"_s, u"5"_s,
                          u"8"_s, u"3"_s, u"mqtts://broker.example.org:99"_s, u"north"_s, u"/etc/password"_s,
                          u"/etc/ca.pem"_s, u"/etc/north.pem"_s, u"/etc/north.key"_s, u"10"_s, u"/etc/roles"_s}));
    QCOMPARE(config.nasTimeLimit, std::chrono::seconds(5));
}

void StationConfigTest::defaultsAreThoseOfTheTable()
{
    for (const ConfigKey &key : configKeys()) {
        const QString value = key.text({});
        QVERIFY2(value.isEmpty() ? !key.defaultText.isEmpty() : value == key.defaultText, qPrintable(key.name));
    }
}

void StationConfigTest::badFilesAreRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const QString names = u"data-folder, station-name, station-id, backup-folder, key-file, nas-time-limit, "
                          u"message-limit, client-limit, broker, broker-user, broker-password-file, broker-ca, "
                          u"broker-certificate, broker-key, broker-heartbeat, broker-roles"_s;
    QTest::newRow("unknown key") << QByteArray("\nlinger = 5")
                                 << u"FILE:2: unknown key \"linger\", expected one of "_s + names;
    QTest::newRow("other case") << QByteArray("Client-Limit = 5")
                                << u"FILE:1: unknown key \"Client-Limit\", expected one of "_s + names;
    QTest::newRow("no key") << QByteArray("= 5") << u"FILE:1: unknown key \"\", expected one of "_s + names;
    QTest::newRow("twice") << QByteArray("client-limit = 5\n#\nclient-limit = 5")
                           << u"FILE:3: client-limit is set twice, first in line 1; expected one setting"_s;
    QTest::newRow("no sign") << QByteArray(
        "client-limit 5") << u"FILE:1: \"client-limit 5\" is no setting, expected \"key = value\" or \"# comment\""_s;
    QTest::newRow("section") << QByteArray("[station]")
                             << u"FILE:1: \"[station]\" is no setting, expected \"key = value\" or \"# comment\""_s;
    QTest::newRow("no UTF-8") << QByteArray("station-name = \xff") << u"FILE:1: the line is no valid UTF-8"_s;
    QTest::newRow("relative path") << QByteArray("data-folder = data")
                                   << u"FILE:1: data-folder is \"data\", expected an absolute path"_s;
    QTest::newRow("no value") << QByteArray("key-file =") << u"FILE:1: key-file is \"\", expected an absolute path"_s;
    QTest::newRow("control character")
        << QByteArray("station-name = a\x1b[2J")
        << u"FILE:1: station-name is \"a\\x1b[2J\", expected a text of at most 200 characters"_s;
    QTest::newRow("long name") << QByteArray("station-id = ") + QByteArray(201, 'x')
                               << u"FILE:1: station-id is \"%1\", expected a text of at most 200 characters"_s.arg(
                                      QString(201, u'x'));
    for (const char *const value : {"0", "21", "-1", "+5", "5s", "1e1", "99999999999"}) {
        QTest::addRow("nas-time-limit %s", value)
            << QByteArray("nas-time-limit = ") + value
            << u"FILE:1: nas-time-limit is \"%1\", expected a whole number of seconds from 1 to 20"_s.arg(
                   QLatin1String(value));
    }
    for (const char *const value :
         {"broker.example.org", "http://broker", "mqtts://broker/north", "mqtts://a:b@broker"}) {
        QTest::addRow("broker %s", value)
            << QByteArray("broker = ") + value
            << u"FILE:1: broker is \"%1\", expected mqtts://BROKER[:PORT], or mqtt:// on this machine"_s.arg(
                   QLatin1String(value));
    }
    QTest::newRow("broker-user") << QByteArray("broker-user = a/b")
                                 << u"FILE:1: broker-user is \"a/b\", expected a text without + # /"_s;
    QTest::newRow("message-limit") << QByteArray("message-limit = 65")
                                   << u"FILE:1: message-limit is \"65\", expected a whole number of MB from 1 to 64"_s;
    QTest::newRow("client-limit")
        << QByteArray("client-limit = 10001")
        << u"FILE:1: client-limit is \"10001\", expected a whole number of clients from 1 to 10000"_s;
}

void StationConfigTest::badFilesAreRefused()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, error);
    QCOMPARE(errorOf(text), error);
}

void StationConfigTest::aFileThatCannotBeReadIsNamed()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"missing.conf"_s);
    QVERIFY_THROWS_EXCEPTION(ConfigError, readConfig(folder.path()));
    QString text;
    try {
        readConfig(file);
    } catch (const ConfigError &error) {
        text = error.text();
    }
    QVERIFY2(text.startsWith(file + u": the file cannot be read: "_s), qPrintable(text));
}

/// Every key has its row, and every row is a key's.
void StationConfigTest::theDocumentShowsTheTable()
{
    QFile document(QStringLiteral(SOURCE_DIR "/docs/service.md"));
    QVERIFY(document.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(document.readAll());
    QStringList expected;
    for (const ConfigKey &key : configKeys()) {
        expected.append(
            u"| `%1` | %2 | %3 | %4 | %5 |"_s.arg(key.name, key.meaning, key.expected, key.defaultText,
                                                  key.isTakenWhileRunning ? u"SIGHUP"_s : u"the next start"_s));
    }
    QStringList shown;
    static const QRegularExpression row(u"^\\| `[a-z-]+` \\|.*\\| (?:SIGHUP|the next start) \\|$"_s,
                                        QRegularExpression::MultilineOption);
    auto match = row.globalMatch(page);
    while (match.hasNext())
        shown.append(match.next().captured());
    QCOMPARE(shown, expected);
}

QTEST_APPLESS_MAIN(StationConfigTest)
#include "tst_station_config.moc"
