#include "Loopback.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "StationData.h"
#include "TimedWork.h"
#include "nas/NasAccounts.h"
#include "nas/NasPaths.h"
#include "nas/PasswordVault.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

using namespace std::chrono_literals;

/// Folders on a real SMB server as places for recordings.
class StationNasPathsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void aFolderIsLookedAt();
    void pathsOfAShareHaveOneVolume();
    void pathsAreRefused_data();
    void pathsAreRefused();
    void theUserOfTheRightKindIsTaken();
    void aSilentServerCostsItsTimeOnce();
    void aRefusedAccountIsTriedOnce();

private:
    QString pathOf(const QString &below) const { return QStringLiteral("//%1/%2").arg(m_server.host(), below); }
    void add(const QString &host, const QString &domain, const QString &userName, const QString &password);

    SambaServer m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationData> m_data;
    std::unique_ptr<NasAccounts> m_accounts;
};

void StationNasPathsTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    m_server.addShare(QStringLiteral("readonly"), {QStringLiteral("read only = yes")});
    QVERIFY(QDir(m_server.folderOf(QStringLiteral("video"))).mkpath(QStringLiteral("cam 1")));
    QFile file(m_server.folderOf(QStringLiteral("video")) + QStringLiteral("/clip.mp4"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void StationNasPathsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_accounts.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_data = std::make_unique<StationData>(m_folder->path());
    m_accounts = std::make_unique<NasAccounts>(*m_data, KeyFile::of({}, m_data->folder()));
    add(m_server.host(), QStringLiteral("Host"), m_server.userName(), m_server.password());
}

void StationNasPathsTest::add(const QString &host, const QString &domain, const QString &userName,
                              const QString &password)
{
    const QByteArray sealed = m_accounts->vault().encrypted(password);
    m_accounts->store().insert({QUuid::createUuid().toString(), host, domain, userName, sealed});
}

void StationNasPathsTest::aFolderIsLookedAt()
{
    TimedWork work(15s);
    const NasPaths paths(PathKind::NetHost, *m_accounts, work);
    const QDir folder(m_server.folderOf(QStringLiteral("video")));
    const QStringList before = folder.entryList(QDir::AllEntries | QDir::Hidden);
    const PathFacts facts = paths.look(pathOf(QStringLiteral("video/cam 1")));
    QCOMPARE(facts.returnCode, QStringLiteral("0"));
    QCOMPARE(facts.reason, QString());
    QVERIFY(facts.bytesTotal > 0);
    QCOMPARE(facts.folder, pathOf(QStringLiteral("video/cam 1")));
    QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden), before);
}

void StationNasPathsTest::pathsOfAShareHaveOneVolume()
{
    TimedWork work(15s);
    const NasPaths paths(PathKind::NetHost, *m_accounts, work);
    const PathFacts share = paths.volumeOf(pathOf(QStringLiteral("video")));
    const PathFacts folder = paths.volumeOf(pathOf(QStringLiteral("VIDEO/Cam 1")));
    QCOMPARE(share.returnCode, QStringLiteral("0"));
    QCOMPARE(folder.returnCode, QStringLiteral("0"));
    QCOMPARE(folder.volume, share.volume);
    QCOMPARE(folder.bytesTotal, share.bytesTotal);
    QVERIFY(folder.folder != share.folder);
    QVERIFY(paths.volumeOf(pathOf(QStringLiteral("readonly"))).volume != share.volume);
}

void StationNasPathsTest::pathsAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a local path") << QStringLiteral("/mnt") << QStringLiteral("PathTypeRefused") << QString();
    QTest::newRow("no share") << pathOf(QString()) << QStringLiteral("PathTypeRefused") << QString();
    QTest::newRow("not registered") << QStringLiteral("//other/video") << QStringLiteral("NasServerNotFound")
                                    << QString();
    QTest::newRow("missing") << pathOf(QStringLiteral("video/missing")) << QStringLiteral("DirectoryNotFound")
                             << QString();
    QTest::newRow("unknown share") << pathOf(QStringLiteral("nonsense")) << QStringLiteral("DirectoryNotFound")
                                   << QString();
    QTest::newRow("a file") << pathOf(QStringLiteral("video/clip.mp4")) << QStringLiteral("NotADirectory") << QString();
    QTest::newRow("read only") << pathOf(QStringLiteral("readonly")) << QStringLiteral("PathNotWritable")
                               << QStringLiteral("PermissionDenied");
}

void StationNasPathsTest::pathsAreRefused()
{
    QFETCH(QString, path);
    TimedWork work(15s);
    const PathFacts facts = NasPaths(PathKind::NetHost, *m_accounts, work).look(path);
    QTEST(facts.returnCode, "code");
    QTEST(facts.reason, "reason");
}

void StationNasPathsTest::theUserOfTheRightKindIsTaken()
{
    TimedWork work(15s);
    const QString path = pathOf(QStringLiteral("video"));
    // The only user stands for both kinds.
    QCOMPARE(NasPaths(PathKind::NetDomain, *m_accounts, work).volumeOf(path).returnCode, QStringLiteral("0"));
    add(m_server.host(), QStringLiteral("TESTNAS"), m_server.userName() + u'2', QStringLiteral("wrong"));
    QCOMPARE(NasPaths(PathKind::NetHost, *m_accounts, work).volumeOf(path).returnCode, QStringLiteral("0"));
    QVERIFY(NasPaths(PathKind::NetDomain, *m_accounts, work).volumeOf(path).returnCode != QStringLiteral("0"));
}

void StationNasPathsTest::aSilentServerCostsItsTimeOnce()
{
    const SilentServer silent;
    const QString host = QStringLiteral("127.0.0.1:%1").arg(silent.port());
    add(host, QStringLiteral("Host"), m_server.userName(), m_server.password());
    TimedWork work(1s);
    const NasPaths paths(PathKind::NetHost, *m_accounts, work);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 20; ++i) {
        const PathFacts facts = paths.volumeOf(QStringLiteral("//%1/video/%2").arg(host).arg(i));
        QCOMPARE(facts.returnCode, QStringLiteral("NasServerNotResponding"));
    }
    QVERIFY2(timer.elapsed() < 6000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(paths.volumeOf(pathOf(QStringLiteral("video"))).returnCode, QStringLiteral("0"));
}

void StationNasPathsTest::aRefusedAccountIsTriedOnce()
{
    const SmbRelay relay(m_server.port());
    const QString host = QStringLiteral("127.0.0.1:%1").arg(relay.port());
    add(host, QStringLiteral("Host"), m_server.userName(), QStringLiteral("an old password"));
    TimedWork work(15s);
    const NasPaths paths(PathKind::NetHost, *m_accounts, work);
    const NasPaths samePaths(PathKind::NetDomain, *m_accounts, work);
    for (int i = 0; i < 10; ++i) {
        const QString path = QStringLiteral("//%1/video/%2").arg(host).arg(i);
        QCOMPARE(paths.look(path).returnCode, QStringLiteral("LogonNASServerFaled"));
        QCOMPARE(samePaths.volumeOf(path).returnCode, QStringLiteral("LogonNASServerFaled"));
    }
    QCOMPARE(relay.refusedLogOns(), 1);
}

QTEST_GUILESS_MAIN(StationNasPathsTest)
#include "tst_station_nas_paths.moc"
