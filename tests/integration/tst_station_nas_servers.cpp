#include "Loopback.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "StationCall.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUuid>

using namespace std::chrono_literals;

/// The NAS servers that a station keeps, with a real SMB server behind them.
class StationNasServersTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void noServersAreAnEmptyListAndNoKey();
    void anAddedServerIsListedWithAToken();
    void serversAreKept();
    void aRefusedServerIsNotKept_data();
    void aRefusedServerIsNotKept();
    void theSameUserOfAHostIsThereOnce();
    void twoAddsAtOnceAreOneServer();
    void anUpdateChangesEverything();
    void anUpdateWithTheTokenKeepsThePassword();
    void aRefusedUpdateChangesNothing_data();
    void aRefusedUpdateChangesNothing();
    void aServerThatIsRemovedDuringItsUpdateStaysAway();
    void aRemovedServerIsGone();
    void otherStationsAreRefused_data();
    void otherStationsAreRefused();
    void dataOfTheWrongShapeIsRefused_data();
    void dataOfTheWrongShapeIsRefused();
    void aTokenStandsForThePasswordOfItsServerAlone();
    void anotherHostNeedsThePasswordAgain();
    void aLostKeyIsTold();
    void withoutAKeyEveryPasswordIsRefused();
    void aKeyThatIsLostMeanwhileStoresNothing_data();
    void aKeyThatIsLostMeanwhileStoresNothing();

private:
    QVariantMap request(const QString &host, const QString &userName, const QString &password) const;
    QVariantMap request() const { return request(m_server.host(), m_server.userName(), m_server.password()); }
    StationReply ask(const QString &command, const QVariant &data) const
    {
        return StationCall(*m_station, command, data).reply();
    }
    StationReply ask(const char *command, const QVariant &data) const
    {
        return ask(QString::fromLatin1(command), data);
    }
    QString added() const { return ask("AddNasServer", request()).data.toString(); }
    QVariantList servers() const { return ask("GetNasServers", QString()).data.toList(); }
    QString token() const { return servers().front().toMap().value(QStringLiteral("password")).toString(); }
    QVariantMap place(const QString &password) const;
    void restart();

    SambaServer m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Station> m_station;
};

namespace {
QVariantMap with(QVariantMap map, const char *key, const QVariant &value)
{
    map.insert(QString::fromLatin1(key), value);
    return map;
}
} // namespace

void StationNasServersTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void StationNasServersTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    restart();
}

void StationNasServersTest::cleanup()
{
    m_station.reset();
    m_folder.reset();
}

void StationNasServersTest::restart()
{
    m_station.reset();
    m_station = std::make_unique<Station>(StationSettings{m_folder->path(), QStringLiteral("relay-7"), {}, 15s});
}

QVariantMap StationNasServersTest::request(const QString &host, const QString &userName, const QString &password) const
{
    return {{QStringLiteral("host"), host},
            {QStringLiteral("logonDomain"), QStringLiteral("Host")},
            {QStringLiteral("userName"), userName},
            {QStringLiteral("password"), password},
            {QStringLiteral("relayPath"), QString()}};
}

/// What browses the share under @p password.
QVariantMap StationNasServersTest::place(const QString &password) const
{
    QVariantMap map = request(QString(), m_server.userName(), password);
    map.remove(QStringLiteral("host"));
    return with(map, "basePath", QStringLiteral("//%1/video").arg(m_server.host()));
}

void StationNasServersTest::noServersAreAnEmptyListAndNoKey()
{
    const StationReply reply = ask("GetNasServers", QString());
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data, QVariant(QVariantList()));
    QVERIFY(!QFile::exists(m_folder->filePath(QStringLiteral("nas.key"))));
}

void StationNasServersTest::anAddedServerIsListedWithAToken()
{
    const StationReply reply = ask("AddNasServer", request());
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data.metaType(), QMetaType::fromType<QString>());
    const QString id = reply.data.toString();
    QCOMPARE(QUuid(id).toString(), id);
    const QVariantList listed = servers();
    QCOMPARE(listed.size(), 1);
    const QVariantMap server = listed.front().toMap();
    QCOMPARE(server.keys(),
             (QStringList{QStringLiteral("host"), QStringLiteral("id"), QStringLiteral("logonDomain"),
                          QStringLiteral("password"), QStringLiteral("userName")}));
    QCOMPARE(server.value(QStringLiteral("id")), QVariant(id));
    QCOMPARE(server.value(QStringLiteral("host")), QVariant(m_server.host()));
    QCOMPARE(server.value(QStringLiteral("logonDomain")), QVariant(QStringLiteral("Host")));
    QCOMPARE(server.value(QStringLiteral("userName")), QVariant(m_server.userName()));
    QVERIFY(token().size() > 20 && !token().contains(m_server.password()));
}

void StationNasServersTest::serversAreKept()
{
    added();
    const QVariantList before = servers();
    QCOMPARE(before.size(), 1);
    restart();
    QCOMPARE(servers(), before);
    QCOMPARE(ask("GetNasDir", place(token())).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::aRefusedServerIsNotKept_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("code");
    const QString right = m_server.password();
    const QString bad = QStringLiteral("NasHostRefused");
    QTest::newRow("wrong password") << m_server.host() << right + u'x' << QStringLiteral("LogonNASServerFaled");
    QTest::newRow("nothing listens") << QStringLiteral("127.0.0.1:%1").arg(freePort()) << right
                                     << QStringLiteral("NasServerNotResponding");
    QTest::newRow("no host") << QString() << right << bad;
    QTest::newRow("a path") << m_server.host() + QStringLiteral("/video") << right << bad;
    QTest::newRow("a user in front") << QStringLiteral("user:word@127.0.0.1") << right << bad;
}

void StationNasServersTest::aRefusedServerIsNotKept()
{
    QFETCH(QString, host);
    QFETCH(QString, password);
    const StationReply reply = ask("AddNasServer", request(host, m_server.userName(), password));
    QTEST(reply.returnCode, "code");
    QVERIFY(!reply.data.isValid());
    QVERIFY(servers().isEmpty());
}

void StationNasServersTest::theSameUserOfAHostIsThereOnce()
{
    added();
    QCOMPARE(ask("AddNasServer", request()).returnCode, QStringLiteral("NASServerExist"));
    // Known before the server is asked: the password does not count.
    const QVariantMap wrong = request(m_server.host(), m_server.userName(), QStringLiteral("wrong"));
    QCOMPARE(ask("AddNasServer", wrong).returnCode, QStringLiteral("NASServerExist"));
    const QVariantMap guest = request(m_server.host(), QStringLiteral("Guest"), QString());
    QCOMPARE(ask("AddNasServer", guest).returnCode, QStringLiteral("0"));
    const QString port = m_server.host().section(u':', 1);
    QCOMPARE(ask("AddNasServer", with(request(), "host", QStringLiteral("localhost:") + port)).returnCode,
             QStringLiteral("0"));
    QCOMPARE(ask("AddNasServer", with(request(), "host", QStringLiteral("LocalHost:") + port)).returnCode,
             QStringLiteral("NASServerExist"));
    QCOMPARE(servers().size(), 3);
}

void StationNasServersTest::twoAddsAtOnceAreOneServer()
{
    const StationCall first(*m_station, QStringLiteral("AddNasServer"), request());
    const StationCall second(*m_station, QStringLiteral("AddNasServer"), request());
    QStringList codes{first.reply().returnCode, second.reply().returnCode};
    codes.sort();
    QCOMPARE(codes, (QStringList{QStringLiteral("0"), QStringLiteral("NASServerExist")}));
    QCOMPARE(servers().size(), 1);
}

void StationNasServersTest::anUpdateChangesEverything()
{
    const QVariantMap guest = request(m_server.host(), QStringLiteral("Guest"), QString());
    const QString id = ask("AddNasServer", guest).data.toString();
    const QString host = QStringLiteral("localhost:") + m_server.host().section(u':', 1);
    QVariantMap update = with(request(), "id", id);
    update = with(update, "host", host);
    update = with(update, "logonDomain", QStringLiteral("TESTNAS"));
    const StationReply reply = ask("UpdateNASServer", update);
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QVERIFY(!reply.data.isValid());
    const QVariantMap server = servers().front().toMap();
    QCOMPARE(server.value(QStringLiteral("id")), QVariant(id));
    QCOMPARE(server.value(QStringLiteral("host")), QVariant(host));
    QCOMPARE(server.value(QStringLiteral("logonDomain")), QVariant(QStringLiteral("TESTNAS")));
    QCOMPARE(server.value(QStringLiteral("userName")), QVariant(m_server.userName()));
    const QVariantMap atHost =
        with(place(token()), "basePath", QStringLiteral("//%1/video").arg(host)); // with the new password
    QCOMPARE(ask("GetNasDir", atHost).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::anUpdateWithTheTokenKeepsThePassword()
{
    const QString id = added();
    QVariantMap update = with(request(), "id", id);
    update = with(update, "logonDomain", QStringLiteral("TESTNAS"));
    QCOMPARE(ask("UpdateNASServer", with(update, "password", token())).returnCode, QStringLiteral("0"));
    QCOMPARE(servers().front().toMap().value(QStringLiteral("logonDomain")), QVariant(QStringLiteral("TESTNAS")));
    QCOMPARE(ask("GetNasDir", place(token())).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::aRefusedUpdateChangesNothing_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("code");
    QTest::newRow("unknown id") << QByteArray("id") << QStringLiteral("{no}") << QStringLiteral("NasServerNotFound");
    QTest::newRow("wrong password") << QByteArray("password") << QStringLiteral("wrong")
                                    << QStringLiteral("LogonNASServerFaled");
    QTest::newRow("no host") << QByteArray("host") << QString() << QStringLiteral("NasHostRefused");
    QTest::newRow("a silent host") << QByteArray("host") << QStringLiteral("127.0.0.1:%1").arg(freePort())
                                   << QStringLiteral("NasServerNotResponding");
    QTest::newRow("the user of another") << QByteArray("userName") << QStringLiteral("Guest")
                                         << QStringLiteral("NASServerExist");
}

void StationNasServersTest::aRefusedUpdateChangesNothing()
{
    QFETCH(QByteArray, key);
    QFETCH(QString, value);
    const QString id = added();
    const QVariantMap guest = request(m_server.host(), QStringLiteral("Guest"), QString());
    QCOMPARE(ask("AddNasServer", guest).returnCode, QStringLiteral("0"));
    const QVariantList before = servers();
    const QVariantMap update = with(with(request(), "id", id), "logonDomain", QStringLiteral("TESTNAS"));
    QTEST(ask("UpdateNASServer", with(update, key.constData(), value)).returnCode, "code");
    QCOMPARE(servers(), before);
    QCOMPARE(ask("GetNasDir", place(token())).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::aServerThatIsRemovedDuringItsUpdateStaysAway()
{
    const QString id = added();
    const StationCall update(*m_station, QStringLiteral("UpdateNASServer"), with(request(), "id", id));
    QVERIFY(!update.isAnswered());
    const QVariantMap removal{{QStringLiteral("id"), id}, {QStringLiteral("relayPath"), QString()}};
    QCOMPARE(ask("RemoveNASServer", removal).returnCode, QStringLiteral("0"));
    QCOMPARE(update.reply().returnCode, QStringLiteral("NasServerNotFound"));
    QVERIFY(servers().isEmpty());
}

void StationNasServersTest::aRemovedServerIsGone()
{
    const QVariantMap removal{{QStringLiteral("id"), added()}, {QStringLiteral("relayPath"), QString()}};
    const QString oldToken = token();
    const StationCall call(*m_station, QStringLiteral("RemoveNASServer"), removal);
    QVERIFY(call.isAnswered());
    QCOMPARE(call.reply().returnCode, QStringLiteral("0"));
    QVERIFY(servers().isEmpty());
    QCOMPARE(ask("RemoveNASServer", removal).returnCode, QStringLiteral("NasServerNotFound"));
    QCOMPARE(ask("GetNasDir", place(oldToken)).returnCode, QStringLiteral("LogonNASServerFaled"));
}

void StationNasServersTest::otherStationsAreRefused_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command :
         {"GetNasServers", "AddNasServer", "UpdateNASServer", "RemoveNASServer", "GetNasDir", "GetNasCapacity"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void StationNasServersTest::otherStationsAreRefused()
{
    QFETCH(QString, command);
    const QString id = added();
    const auto data = [this, &command, &id](const QString &relayPath) -> QVariant {
        if (command == QStringLiteral("GetNasServers"))
            return relayPath;
        QVariantMap map = with(place(m_server.password()), "host", m_server.host());
        map = with(map, "id", id);
        map = with(map, "userName",
                   command.startsWith(QStringLiteral("Add")) ? QStringLiteral("Guest") : m_server.userName());
        return with(map, "relayPath", relayPath);
    };
    const QVariantList before = servers();
    QCOMPARE(ask(command, data(QStringLiteral("relay-8"))).returnCode, QStringLiteral("UnknownStation"));
    QCOMPARE(servers(), before);
    QVERIFY(ask(command, data(QStringLiteral("relay-7"))).returnCode != QStringLiteral("UnknownStation"));
}

void StationNasServersTest::dataOfTheWrongShapeIsRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QVariant>("data");
    const QVariantMap whole{{QStringLiteral("id"), QString()},          {QStringLiteral("host"), QString()},
                            {QStringLiteral("logonDomain"), QString()}, {QStringLiteral("userName"), QString()},
                            {QStringLiteral("password"), QString()},    {QStringLiteral("relayPath"), QString()},
                            {QStringLiteral("basePath"), QString()}};
    const QHash<QString, QByteArrayList> needed{
        {QStringLiteral("AddNasServer"), {"host", "logonDomain", "userName", "password", "relayPath"}},
        {QStringLiteral("UpdateNASServer"), {"id", "host", "logonDomain", "userName", "password", "relayPath"}},
        {QStringLiteral("RemoveNASServer"), {"id", "relayPath"}},
        {QStringLiteral("GetNasDir"), {"basePath", "logonDomain", "userName", "password", "relayPath"}},
        {QStringLiteral("GetNasCapacity"), {"basePath", "logonDomain", "userName", "password", "relayPath"}}};
    for (auto entry = needed.cbegin(); entry != needed.cend(); ++entry) {
        for (const QByteArray &key : entry.value()) {
            QVariantMap less = whole;
            less.remove(QString::fromLatin1(key));
            QTest::addRow("%s without %s", qPrintable(entry.key()), key.constData()) << entry.key() << QVariant(less);
            QTest::addRow("%s, %s is a number", qPrintable(entry.key()), key.constData())
                << entry.key() << QVariant(with(whole, key.constData(), 7));
        }
        QTest::addRow("%s without a map", qPrintable(entry.key())) << entry.key() << QVariant();
    }
    QTest::newRow("GetNasServers without a string") << QStringLiteral("GetNasServers") << QVariant();
    QTest::newRow("GetNasServers with a map") << QStringLiteral("GetNasServers") << QVariant(whole);
    const QString paths = QStringLiteral("addNASPathsToVolume");
    QTest::newRow("paths without a list") << paths << QVariant(whole);
    QTest::newRow("paths with numbers") << paths << QVariant(with({}, "pathList", QVariantList{7}));
}

void StationNasServersTest::dataOfTheWrongShapeIsRefused()
{
    QFETCH(QString, command);
    QFETCH(QVariant, data);
    const StationCall call(*m_station, command, data);
    QCOMPARE(call.parts().size(), 1); // at once
    QCOMPARE(call.parts().front().returnCode, QStringLiteral("BadRequest"));
}

void StationNasServersTest::aTokenStandsForThePasswordOfItsServerAlone()
{
    added();
    const QString known = token();
    QCOMPARE(ask("GetNasDir", place(known)).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("GetNasCapacity", place(known)).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("GetNasDir", place(known.chopped(1))).returnCode, QStringLiteral("LogonNASServerFaled"));
    // The same machine under another name is another server: the password is not tried there.
    const QString host = QStringLiteral("localhost:") + m_server.host().section(u':', 1);
    const QVariantMap elsewhere = with(place(known), "basePath", QStringLiteral("//%1/video").arg(host));
    QCOMPARE(ask("GetNasDir", elsewhere).returnCode, QStringLiteral("LogonNASServerFaled"));
    QCOMPARE(ask("AddNasServer", with(request(), "host", host)).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("GetNasDir", elsewhere).returnCode, QStringLiteral("LogonNASServerFaled"));
}

void StationNasServersTest::anotherHostNeedsThePasswordAgain()
{
    const QString id = added();
    const QString known = token();
    const QVariantList before = servers();
    const SmbRelay elsewhere(m_server.port()); // another port is another server
    const QString port = m_server.host().section(u':', 1);
    const QVariantMap update = with(with(request(), "id", id), "password", known);
    for (const QString &host :
         {QStringLiteral("127.0.0.1:%1").arg(elsewhere.port()), QStringLiteral("localhost:") + port}) {
        const StationCall call(*m_station, QStringLiteral("UpdateNASServer"), with(update, "host", host));
        QVERIFY(call.isAnswered()); // nobody was asked
        QCOMPARE(call.reply().returnCode, QStringLiteral("NasPasswordNeeded"));
    }
    QCOMPARE(elsewhere.connections(), 0);
    QCOMPARE(servers(), before);
    const QVariantMap moved =
        with(with(request(), "id", id), "host", QStringLiteral("127.0.0.1:%1").arg(elsewhere.port()));
    QCOMPARE(ask("UpdateNASServer", moved).returnCode, QStringLiteral("0"));
    QVERIFY(elsewhere.connections() > 0);
    const QVariantMap named = with(moved, "host", QStringLiteral("localhost:") + port);
    QCOMPARE(ask("UpdateNASServer", named).returnCode, QStringLiteral("0"));
    // Capitals do not make it another host.
    const QVariantMap capitals = with(update, "host", QStringLiteral("LocalHost:") + port);
    QCOMPARE(ask("UpdateNASServer", capitals).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::withoutAKeyEveryPasswordIsRefused()
{
    const QString id = added();
    const QString key = m_folder->filePath(QStringLiteral("nas.key"));
    QVERIFY(QFile::rename(key, key + u'x'));
    const QRegularExpression lost(QStringLiteral("nas\\.key is lost"));
    QTest::ignoreMessage(QtWarningMsg, lost);
    const QString placeholder = token();
    QVERIFY(!placeholder.isEmpty());
    const QVariantMap nameless = with(with(place(QString()), "userName", QString()), "logonDomain", QString());
    const QVariantMap update = with(with(request(), "id", id), "password", placeholder);
    const auto refuse = [this](const char *command, const QVariant &data, const QRegularExpression &words) {
        QTest::ignoreMessage(QtWarningMsg, words);
        QCOMPARE(ask(command, data).returnCode, QStringLiteral("NasKeyUnusable"));
    };
    const QRegularExpression notRead(QStringLiteral("key could not be read"));
    refuse("GetNasDir", place(placeholder), notRead);
    refuse("GetNasCapacity", place(placeholder), notRead);
    refuse("UpdateNASServer", update, notRead);
    refuse("UpdateNASServer", with(request(), "id", id), lost); // with the password itself
    refuse("GetNasDir", nameless, lost);
    refuse("GetNasCapacity", nameless, lost);
    const QStringList paths{QStringLiteral("//%1/video").arg(m_server.host())};
    refuse("addNASPathsToVolume", QVariantMap{{QStringLiteral("pathList"), paths}}, lost);
    QVERIFY(!QFile::exists(key));
    QVERIFY(QFile::rename(key + u'x', key));
    refuse("GetNasDir", place(placeholder), notRead);
    QCOMPARE(ask("GetNasDir", place(token())).returnCode, QStringLiteral("0"));
}

void StationNasServersTest::aKeyThatIsLostMeanwhileStoresNothing_data()
{
    QTest::addColumn<bool>("isReplaced");
    QTest::addColumn<bool>("isDuringTheLogOn");
    QTest::newRow("lost") << false << false;
    QTest::newRow("lost during the log-on") << false << true;
    QTest::newRow("replaced") << true << false;
    QTest::newRow("replaced during the log-on") << true << true;
}

void StationNasServersTest::aKeyThatIsLostMeanwhileStoresNothing()
{
    QFETCH(bool, isReplaced);
    QFETCH(bool, isDuringTheLogOn);
    const QString first = added();
    const QVariantMap guest = request(m_server.host(), QStringLiteral("Guest"), QString());
    const QString second = ask("AddNasServer", guest).returnCode;
    QCOMPARE(second, QStringLiteral("0"));
    const QString key = m_folder->filePath(QStringLiteral("nas.key"));
    const auto lose = [&key, isReplaced] {
        QVERIFY(QFile::rename(key, key + u'x'));
        if (!isReplaced)
            return;
        QFile other(key);
        QVERIFY(other.open(QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(other.write(QByteArray(32, 'k')), 32);
    };
    const QVariantList before = servers();
    const QRegularExpression words(isReplaced ? QStringLiteral("encrypted with another key")
                                              : QStringLiteral("nas\\.key is lost"));
    const QString host = QStringLiteral("localhost:") + m_server.host().section(u':', 1);
    QTest::ignoreMessage(QtWarningMsg, words);
    QTest::ignoreMessage(QtWarningMsg, words);
    if (!isDuringTheLogOn)
        lose();
    const StationCall add(*m_station, QStringLiteral("AddNasServer"), with(request(), "host", host));
    const StationCall update(*m_station, QStringLiteral("UpdateNASServer"),
                             with(with(request(), "id", first), "logonDomain", QStringLiteral("TESTNAS")));
    QCOMPARE(add.isAnswered(), !isDuringTheLogOn);
    QCOMPARE(update.isAnswered(), !isDuringTheLogOn);
    if (isDuringTheLogOn)
        lose();
    QCOMPARE(add.reply().returnCode, QStringLiteral("NasKeyUnusable"));
    QCOMPARE(update.reply().returnCode, QStringLiteral("NasKeyUnusable"));
    QCOMPARE(QFile::exists(key), isReplaced); // none was made
    if (isReplaced)
        QVERIFY(QFile::remove(key));
    QVERIFY(QFile::rename(key + u'x', key));
    QCOMPARE(servers(), before);
}

void StationNasServersTest::aLostKeyIsTold()
{
    const QString id = added();
    const QString known = token();
    const QString key = m_folder->filePath(QStringLiteral("nas.key"));
    QVERIFY(QFile::rename(key, key + u'x'));
    const QRegularExpression lost(QStringLiteral("nas\\.key is lost"));
    const QVariantMap other = request(m_server.host(), QStringLiteral("Guest"), QString());
    QTest::ignoreMessage(QtWarningMsg, lost);
    QCOMPARE(ask("AddNasServer", other).returnCode, QStringLiteral("NasKeyUnusable"));
    QTest::ignoreMessage(QtWarningMsg, lost);
    QCOMPARE(ask("GetNasDir", place(known)).returnCode, QStringLiteral("NasKeyUnusable"));
    QTest::ignoreMessage(QtWarningMsg, lost);
    QCOMPARE(servers().size(), 1);
    QVERIFY(!QFile::exists(key));
    QVERIFY(QFile::rename(key + u'x', key));
    QCOMPARE(ask("GetNasDir", place(known)).returnCode, QStringLiteral("0"));
    QVERIFY(QFile::remove(key));
    restart();
    // A station without servers makes a new key.
    const QVariantMap removal{{QStringLiteral("id"), id}, {QStringLiteral("relayPath"), QString()}};
    QCOMPARE(ask("RemoveNASServer", removal).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("AddNasServer", request()).returnCode, QStringLiteral("0"));
    QVERIFY(QFile::exists(key));
}

QTEST_GUILESS_MAIN(StationNasServersTest)
#include "tst_station_nas_servers.moc"
