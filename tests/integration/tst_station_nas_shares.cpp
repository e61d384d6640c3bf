#include "DiskSpace.h"
#include "Loopback.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "StationCall.h"
#include "embedded/EmbeddedLink.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace std::chrono_literals;

/// What a station tells of shares, with a real SMB server, or a silent one, behind it.
class StationNasSharesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void foldersAreListed();
    void capacityIsInKilobytes();
    void placesThatAreRefused_data();
    void placesThatAreRefused();
    void withoutAUserNameTheRegisteredOneIsTaken();
    void pathsBecomeDisks();
    void pathsThatFailAreLeftOut();
    void pathsOfARefusedAccountAreOneTry();
    void noPathAtAllIsAFailure_data();
    void noPathAtAllIsAFailure();
    void noPathsAskedForIsNoFailure();
    void aSilentServerIsGivenUpInTime();
    void aSilentServerHoldsUpNothing();
    void theEndDoesNotWaitForASilentServer();
    void theEndOfALinkDoesNotWaitForASilentServer();

private:
    QString pathOf(const QString &below) const { return QStringLiteral("//%1/%2").arg(m_server.host(), below); }
    QVariantMap place(const QString &path) const;
    QVariantMap silentPlace() const { return place(QStringLiteral("//127.0.0.1:%1/video").arg(m_silent.port())); }
    StationReply ask(const char *command, const QVariant &data) const
    {
        return StationCall(*m_station, QString::fromLatin1(command), data).reply();
    }
    StationReply addPaths(const QStringList &paths) const
    {
        return ask("addNASPathsToVolume", QVariantMap{{QStringLiteral("pathList"), paths}});
    }
    void start(std::chrono::milliseconds limit);
    void registerServer() const;

    SambaServer m_server;
    SilentServer m_silent;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Station> m_station;
};

void StationNasSharesTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    m_server.addShare(QStringLiteral("archive"));
    QVERIFY(QDir(m_server.folderOf(QStringLiteral("video"))).mkpath(QStringLiteral("Größe 摄像机/a")));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
    QVERIFY(m_silent.port() != 0);
}

void StationNasSharesTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    start(15s);
}

void StationNasSharesTest::cleanup()
{
    m_station.reset();
    m_folder.reset();
}

void StationNasSharesTest::start(std::chrono::milliseconds limit)
{
    m_station.reset();
    m_station = std::make_unique<Station>(StationSettings{m_folder->path(), {}, {}, limit});
}

QVariantMap StationNasSharesTest::place(const QString &path) const
{
    return {{QStringLiteral("basePath"), path},
            {QStringLiteral("logonDomain"), QStringLiteral("Host")},
            {QStringLiteral("userName"), m_server.userName()},
            {QStringLiteral("password"), m_server.password()},
            {QStringLiteral("relayPath"), QString()}};
}

void StationNasSharesTest::registerServer() const
{
    QVariantMap request = place(QString());
    request.remove(QStringLiteral("basePath"));
    request.insert(QStringLiteral("host"), m_server.host());
    QCOMPARE(ask("AddNasServer", request).returnCode, QStringLiteral("0"));
}

void StationNasSharesTest::foldersAreListed()
{
    const QString path = QStringLiteral("\\\\%1\\video\\Größe 摄像机").arg(m_server.host());
    const StationCall call(*m_station, QStringLiteral("GetNasDir"), place(path));
    QVERIFY(!call.isAnswered());
    const StationReply reply = call.reply();
    QCOMPARE(call.parts().size(), 1);
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    const QStringList folders{QStringLiteral("."), QStringLiteral(".."), QStringLiteral("a")};
    QCOMPARE(reply.data,
             QVariant(QVariantMap{{QStringLiteral("basePath"), path}, {QStringLiteral("dirFolderList"), folders}}));
    const StationReply shares = ask("GetNasDir", place(pathOf(QString())));
    QCOMPARE(shares.data.toMap().value(QStringLiteral("dirFolderList")),
             QVariant(QStringList{QStringLiteral("archive"), QStringLiteral("video")}));
}

void StationNasSharesTest::capacityIsInKilobytes()
{
    constexpr int attempts = 100;
    constexpr qint64 kilobyte = 1024;
    constexpr qint64 ownUse = 1024; // files that the server keeps for a connection
    bool agrees = false;
    for (int attempt = 0; attempt < attempts && !agrees; ++attempt) {
        const DiskSpace before = diskSpaceOf(m_server.folderOf(QStringLiteral("video")), kilobyte);
        const StationReply reply = ask("GetNasCapacity", place(pathOf(QStringLiteral("video"))));
        const DiskSpace after = diskSpaceOf(m_server.folderOf(QStringLiteral("video")), kilobyte);
        QCOMPARE(reply.returnCode, QStringLiteral("0"));
        const QVariantMap data = reply.data.toMap();
        QCOMPARE(data.keys(), (QStringList{QStringLiteral("total"), QStringLiteral("used")}));
        QCOMPARE(data.value(QStringLiteral("total")).metaType(), QMetaType::fromType<qlonglong>());
        QCOMPARE(data.value(QStringLiteral("used")).metaType(), QMetaType::fromType<qlonglong>());
        const qint64 total = data.value(QStringLiteral("total")).toLongLong();
        const DiskSpace told{total, total - data.value(QStringLiteral("used")).toLongLong()};
        agrees = told.isBetween(before, after, ownUse);
        if (!agrees)
            qInfo("%s, expected %s", qPrintable(told.text()), qPrintable(after.text()));
    }
    QVERIFY(agrees);
}

void StationNasSharesTest::placesThatAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("hasRightPassword");
    QTest::addColumn<QString>("dirCode");
    QTest::addColumn<QString>("capacityCode");
    const QString noDir = QStringLiteral("GetNasDirFailed");
    const QString noCapacity = QStringLiteral("GetNasCapacityFailed");
    const QString noLogon = QStringLiteral("LogonNASServerFaled");
    const QString silent = QStringLiteral("NasServerNotResponding");
    QTest::newRow("unknown share") << pathOf(QStringLiteral("nonsense")) << true << noDir << noCapacity;
    QTest::newRow("missing folder") << pathOf(QStringLiteral("video/missing")) << true << noDir << noCapacity;
    QTest::newRow("wrong password") << pathOf(QStringLiteral("video")) << false << noLogon << noLogon;
    QTest::newRow("no path") << QString() << true << noDir << noCapacity;
    QTest::newRow("a local path") << QStringLiteral("/mnt/video") << true << noDir << noCapacity;
    QTest::newRow("nothing listens") << QStringLiteral("//127.0.0.1:%1/video").arg(freePort()) << true << silent
                                     << silent;
}

void StationNasSharesTest::placesThatAreRefused()
{
    QFETCH(QString, path);
    QFETCH(bool, hasRightPassword);
    QVariantMap data = place(path);
    if (!hasRightPassword)
        data.insert(QStringLiteral("password"), QStringLiteral("wrong"));
    const StationReply dir = ask("GetNasDir", data);
    QTEST(dir.returnCode, "dirCode");
    QVERIFY(!dir.data.isValid());
    const StationReply capacity = ask("GetNasCapacity", data);
    QTEST(capacity.returnCode, "capacityCode");
    QVERIFY(!capacity.data.isValid());
}

void StationNasSharesTest::withoutAUserNameTheRegisteredOneIsTaken()
{
    QVariantMap data = place(pathOf(QStringLiteral("video")));
    data.insert(QStringLiteral("userName"), QString());
    data.insert(QStringLiteral("password"), QString());
    QCOMPARE(ask("GetNasCapacity", data).returnCode, QStringLiteral("GetNasCapacityFailed")); // no share for everybody
    registerServer();
    QCOMPARE(ask("GetNasCapacity", data).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("GetNasDir", data).returnCode, QStringLiteral("0"));
    data.insert(QStringLiteral("userName"), QStringLiteral("Guest"));
    QCOMPARE(ask("GetNasCapacity", data).returnCode, QStringLiteral("GetNasCapacityFailed"));
}

void StationNasSharesTest::pathsBecomeDisks()
{
    registerServer();
    const QVariantMap capacity = ask("GetNasCapacity", place(pathOf(QStringLiteral("video")))).data.toMap();
    const QStringList paths{pathOf(QStringLiteral("video")), QStringLiteral("\\\\%1\\archive").arg(m_server.host()),
                            pathOf(QStringLiteral("video"))};
    const StationReply reply = addPaths(paths);
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    const QVariantList disks = reply.data.toList();
    QCOMPARE(disks.size(), 3);
    for (qsizetype i = 0; i < disks.size(); ++i) {
        const QVariantMap disk = disks.at(i).toMap();
        QCOMPARE(disk.keys(),
                 (QStringList{QStringLiteral("diskName"), QStringLiteral("diskTotal"), QStringLiteral("diskUsed")}));
        QCOMPARE(disk.value(QStringLiteral("diskName")), QVariant(paths.at(i)));
        QCOMPARE(disk.value(QStringLiteral("diskTotal")), capacity.value(QStringLiteral("total")));
        QVERIFY(disk.value(QStringLiteral("diskUsed")).toLongLong() > 0);
    }
    // The station keeps nothing of them: its own volumes are what they were.
    const QVariantList volumes = ask("getVolume", {}).data.toList();
    for (const QVariant &volume : volumes)
        QVERIFY(!paths.contains(volume.toMap().value(QStringLiteral("volumePath")).toString()));
}

void StationNasSharesTest::pathsThatFailAreLeftOut()
{
    registerServer();
    for (const char *line :
         {"video/missing is left out: GetNasCapacityFailed", "no-path is left out: GetNasCapacityFailed",
          "//unknown/video is left out: NasServerNotFound"})
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QString::fromLatin1(line)));
    const StationReply reply = addPaths({pathOf(QStringLiteral("video/missing")), QStringLiteral("no-path"),
                                         pathOf(QStringLiteral("archive")), QStringLiteral("//unknown/video")});
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data.toList().size(), 1);
    QCOMPARE(reply.data.toList().front().toMap().value(QStringLiteral("diskName")),
             QVariant(pathOf(QStringLiteral("archive"))));
}

void StationNasSharesTest::pathsOfARefusedAccountAreOneTry()
{
    const SmbRelay relay(m_server.port());
    const QString host = QStringLiteral("//127.0.0.1:%1/").arg(relay.port());
    QVariantMap request = place(QString());
    request.remove(QStringLiteral("basePath"));
    request.insert(QStringLiteral("host"), host.section(u'/', 2, 2));
    QCOMPARE(ask("AddNasServer", request).returnCode, QStringLiteral("0"));
    QVERIFY2(m_server.setPassword(m_server.password() + u'2'), qPrintable(m_server.error()));
    for (const char *share : {"archive", "video", "video/a"})
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QString::fromLatin1(share) + QStringLiteral(" is left")));
    const QStringList paths{host + QStringLiteral("archive"), host + QStringLiteral("video"),
                            host + QStringLiteral("video/a")};
    QCOMPARE(addPaths(paths).returnCode, QStringLiteral("LogonNASServerFaled"));
    QCOMPARE(relay.refusedLogOns(), 1);
}

void StationNasSharesTest::noPathAtAllIsAFailure_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("code");
    QTest::newRow("a missing folder") << QStringList{pathOf(QStringLiteral("video/missing"))}
                                      << QStringLiteral("GetNasCapacityFailed");
    QTest::newRow("a server that is not registered")
        << QStringList{QStringLiteral("//unknown/video")} << QStringLiteral("NasServerNotFound");
    QTest::newRow("the first counts") << QStringList{QStringLiteral("no-path"), QStringLiteral("//unknown/video")}
                                      << QStringLiteral("GetNasCapacityFailed");
}

void StationNasSharesTest::noPathAtAllIsAFailure()
{
    QFETCH(QStringList, paths);
    registerServer();
    for (qsizetype i = 0; i < paths.size(); ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("is left out")));
    const StationReply reply = addPaths(paths);
    QTEST(reply.returnCode, "code");
    QVERIFY(!reply.data.isValid());
}

void StationNasSharesTest::noPathsAskedForIsNoFailure()
{
    const StationReply reply = addPaths({});
    QCOMPARE(reply.returnCode, QStringLiteral("0"));
    QCOMPARE(reply.data, QVariant(QVariantList()));
}

void StationNasSharesTest::aSilentServerIsGivenUpInTime()
{
    start(300ms);
    QElapsedTimer timer;
    timer.start();
    const StationCall dir(*m_station, QStringLiteral("GetNasDir"), silentPlace());
    const StationCall capacity(*m_station, QStringLiteral("GetNasCapacity"), silentPlace());
    QVariantMap server = silentPlace();
    server.insert(QStringLiteral("host"), QStringLiteral("127.0.0.1:%1").arg(m_silent.port()));
    const StationCall add(*m_station, QStringLiteral("AddNasServer"), server);
    for (const StationCall *call : {&dir, &capacity, &add}) {
        QCOMPARE(call->reply().returnCode, QStringLiteral("NasServerNotResponding"));
        QCOMPARE(call->parts().size(), 1);
    }
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(ask("GetNasServers", QString()).data.toList().isEmpty());
}

void StationNasSharesTest::aSilentServerHoldsUpNothing()
{
    const StationCall silent(*m_station, QStringLiteral("GetNasDir"), silentPlace());
    QCOMPARE(ask("getVolume", {}).returnCode, QStringLiteral("0"));
    QCOMPARE(ask("GetNasDir", place(pathOf(QStringLiteral("video")))).returnCode, QStringLiteral("0"));
    QVERIFY(!silent.isAnswered());
}

void StationNasSharesTest::theEndDoesNotWaitForASilentServer()
{
    const StationCall silent(*m_station, QStringLiteral("GetNasDir"), silentPlace());
    QElapsedTimer timer;
    timer.start();
    m_station.reset();
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QCoreApplication::processEvents();
    QVERIFY(silent.parts().isEmpty());
}

void StationNasSharesTest::theEndOfALinkDoesNotWaitForASilentServer()
{
    m_station.reset();
    auto link = std::make_unique<EmbeddedLink>([this] {
        return std::make_unique<Station>(StationSettings{m_folder->path(), {}, {}, 15s});
    });
    QSignalSpy replies(link.get(), &StationLink::replyReceived);
    link->start();
    QTRY_VERIFY(link->isUp());
    link->send(1, {}, {QStringLiteral("GetNasDir"), silentPlace()});
    link->send(2, {}, {QStringLiteral("getVolume"), {}});
    QTRY_COMPARE(replies.size(), 1);
    QCOMPARE(replies.front().front().value<quint64>(), 2U); // a later command is answered before
    QElapsedTimer timer;
    timer.start();
    link.reset();
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(replies.size(), 1);
}

QTEST_GUILESS_MAIN(StationNasSharesTest)
#include "tst_station_nas_shares.moc"
