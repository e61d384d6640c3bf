#include "DiskSpace.h"
#include "Loopback.h"
#include "SambaServer.h"
#include "smb/SmbClient.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <filesystem>

using namespace std::chrono_literals;

/// The SMB connection against Debian's smbd.
class SmbClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void logOnIsTested_data();
    void logOnIsTested();
    void aGuestSeesWhatIsOpen();
    void foldersAreListed();
    void namesOfEveryKindCanBeEntered_data();
    void namesOfEveryKindCanBeEntered();
    void aServerListsItsShares();
    void whatCannotBeListedIsRefused_data();
    void whatCannotBeListedIsRefused();
    void tenThousandFoldersAreListed();
    void namesSizesAndKindsAreListedInOneGo();
    void whatCannotBeListedWithSizes_data();
    void whatCannotBeListedWithSizes();
    void capacityIsThatOfTheServersDisk();
    void writeProbeTellsWhy_data();
    void writeProbeTellsWhy();
    void writeProbeLeavesNothing();
    void aShareIsTakenAwayWhileItIsBrowsed();
    void aServerIsStoppedInTheMiddle();
    void aHostThatDoesNotAnswer_data();
    void aHostThatDoesNotAnswer();

private:
    SmbPath path(const QString &below) const
    {
        return *SmbPath::parse(QStringLiteral("//%1/%2").arg(m_server.host(), below));
    }
    SmbLogon logon() const { return {QStringLiteral("Host"), m_server.userName(), m_server.password()}; }

    SambaServer m_server;
};

namespace {
constexpr auto timeout = 20s;

void makeFolder(const QString &folder)
{
    QVERIFY(QDir().mkpath(folder));
}

void makeFile(const QString &name)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("video"), 5);
}
} // namespace

void SmbClientTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    m_server.addShare(QStringLiteral("Vidéo Süd 录像"));
    m_server.addShare(QStringLiteral("hidden$"));
    m_server.addShare(QStringLiteral("open"), {QStringLiteral("guest ok = yes")});
    m_server.addShare(QStringLiteral("private"), {QStringLiteral("valid users = nobody-here")});
    m_server.addShare(QStringLiteral("readonly"), {QStringLiteral("read only = yes")});
    const QString video = m_server.folderOf(QStringLiteral("video"));
    for (const char *folder : {"cam10", "cam2", "Cam1", ".hidden"})
        makeFolder(video + u'/' + QString::fromLatin1(folder));
    makeFile(video + QStringLiteral("/clip.mp4"));
    makeFolder(m_server.folderOf(QStringLiteral("open")) + QStringLiteral("/for all"));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void SmbClientTest::logOnIsTested_data()
{
    QTest::addColumn<QString>("domain");
    QTest::addColumn<QString>("userName");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("code");
    const QString user = m_server.userName();
    const QString right = m_server.password();
    const QString success = QStringLiteral("0");
    const QString refused = QStringLiteral("LogonNASServerFaled");
    QTest::newRow("right password") << QStringLiteral("Host") << user << right << success;
    QTest::newRow("no domain") << QString() << user << right << success;
    QTest::newRow("the server's name as domain") << QStringLiteral("TESTNAS") << user << right << success;
    QTest::newRow("wrong password") << QStringLiteral("Host") << user << right + u'x' << refused;
    QTest::newRow("other capitals") << QStringLiteral("Host") << user << right.toUpper() << refused;
    QTest::newRow("no password") << QStringLiteral("Host") << user << QString() << refused;
    QTest::newRow("too long a password") << QStringLiteral("Host") << user << QString(256, u'x') << refused;
    QTest::newRow("too long a user name") << QStringLiteral("Host") << QString(256, u'x') << right << refused;
    QTest::newRow("guest") << QStringLiteral("Host") << QStringLiteral("Guest") << QString() << success;
    QTest::newRow("nobody") << QString() << QString() << QString() << success;
}

void SmbClientTest::logOnIsTested()
{
    QFETCH(QString, domain);
    QFETCH(QString, userName);
    QFETCH(QString, password);
    SmbClient client({domain, userName, password}, timeout);
    QTEST(client.logOn(path(QString())), "code");
}

void SmbClientTest::aGuestSeesWhatIsOpen()
{
    SmbClient guest({QStringLiteral("Host"), QStringLiteral("Guest"), {}}, timeout);
    QVERIFY(guest.folders(path(QStringLiteral("open"))).names.contains(QStringLiteral("for all")));
    QCOMPARE(guest.folders(path(QStringLiteral("video"))).returnCode, QStringLiteral("GetNasDirFailed"));
}

void SmbClientTest::foldersAreListed()
{
    SmbClient client(logon(), timeout);
    const SmbFolders folders = client.folders(path(QStringLiteral("video")));
    QCOMPARE(folders.returnCode, QStringLiteral("0"));
    QCOMPARE(folders.names,
             (QStringList{QStringLiteral("."), QStringLiteral(".."), QStringLiteral(".hidden"), QStringLiteral("Cam1"),
                          QStringLiteral("cam2"), QStringLiteral("cam10")}));
}

void SmbClientTest::namesOfEveryKindCanBeEntered_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"with a blank", "Größe Süd", "摄像机 一", "100% sure", "a%20b", "#1", "a&b=c;d@e,f+g",
                             "it's", "[brackets] {braces}", "~tilde", "$dollar", "ünïcode 🎥", "...dots"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void SmbClientTest::namesOfEveryKindCanBeEntered()
{
    QFETCH(QString, name);
    const QString share = QStringLiteral("Vidéo Süd 录像");
    makeFolder(m_server.folderOf(share) + u'/' + name + QStringLiteral("/inner ") + name);
    SmbClient client(logon(), timeout);
    QVERIFY(client.folders(path(share)).names.contains(name));
    const SmbFolders inner = client.folders(path(share + u'/' + name));
    QCOMPARE(inner.names, (QStringList{QStringLiteral("."), QStringLiteral(".."), QStringLiteral("inner ") + name}));
    QCOMPARE(client.space(path(share + u'/' + name)).returnCode, QStringLiteral("0"));
    QCOMPARE(client.writeProbe(path(share + u'/' + name)), QStringLiteral("0"));
}

void SmbClientTest::aServerListsItsShares()
{
    SmbClient client(logon(), timeout);
    const SmbFolders shares = client.folders(path(QString()));
    QCOMPARE(shares.returnCode, QStringLiteral("0"));
    QCOMPARE(shares.names,
             (QStringList{QStringLiteral("open"), QStringLiteral("private"), QStringLiteral("readonly"),
                          QStringLiteral("video"), QStringLiteral("Vidéo Süd 录像")}));
    QVERIFY(client.folders(path(QStringLiteral("hidden$"))).names.contains(QStringLiteral("."))); // for those who know
}

void SmbClientTest::whatCannotBeListedIsRefused_data()
{
    QTest::addColumn<QString>("below");
    QTest::addColumn<bool>("hasRightPassword");
    QTest::addColumn<QString>("dirCode");
    QTest::addColumn<QString>("capacityCode");
    const QString noDir = QStringLiteral("GetNasDirFailed");
    const QString noCapacity = QStringLiteral("GetNasCapacityFailed");
    const QString noLogon = QStringLiteral("LogonNASServerFaled");
    QTest::newRow("unknown share") << QStringLiteral("nonsense") << true << noDir << noCapacity;
    QTest::newRow("missing folder") << QStringLiteral("video/missing") << true << noDir << noCapacity;
    QTest::newRow("a file on the way") << QStringLiteral("video/clip.mp4/a") << true << noDir << noCapacity;
    QTest::newRow("a share that is not for this user") << QStringLiteral("private") << true << noDir << noCapacity;
    QTest::newRow("wrong password") << QStringLiteral("video") << false << noLogon << noLogon;
    QTest::newRow("wrong password, missing folder") << QStringLiteral("video/missing") << false << noLogon << noLogon;
}

void SmbClientTest::whatCannotBeListedIsRefused()
{
    QFETCH(QString, below);
    QFETCH(bool, hasRightPassword);
    SmbLogon who = logon();
    if (!hasRightPassword)
        who.password += u'x';
    SmbClient client(who, timeout);
    const SmbFolders folders = client.folders(path(below));
    QTEST(folders.returnCode, "dirCode");
    QVERIFY(folders.names.isEmpty());
    const SmbSpace space = client.space(path(below));
    QTEST(space.returnCode, "capacityCode");
    QCOMPARE(space.bytesTotal, 0);
}

void SmbClientTest::tenThousandFoldersAreListed()
{
    constexpr int count = 10000;
    const QString name = QStringLiteral("camera %1");
    m_server.addShare(QStringLiteral("many"));
    const QDir folder(m_server.folderOf(QStringLiteral("many")));
    for (int i = 0; i < count; ++i)
        QVERIFY(folder.mkdir(name.arg(i)));
    SmbClient client(logon(), timeout);
    const SmbFolders folders = client.folders(path(QStringLiteral("many")));
    QCOMPARE(folders.returnCode, QStringLiteral("0"));
    QCOMPARE(folders.names.size(), count + 2);
    for (int i = 0; i < count; ++i)
        QCOMPARE(folders.names.at(i + 2), name.arg(i));
    std::filesystem::remove_all(folder.path().toStdString()); // much quicker than the end of the server
}

void SmbClientTest::namesSizesAndKindsAreListedInOneGo()
{
    const QString folder = m_server.folderOf(QStringLiteral("video")) + QStringLiteral("/sizes");
    makeFolder(folder + QStringLiteral("/a folder"));
    constexpr qint64 large = 5'000'000'000;
    for (const auto &[name, bytes] :
         {std::pair("0001.rec", large), std::pair("Tür 100%.rec", qint64(7)), std::pair("empty", qint64(0))}) {
        QFile file(folder + u'/' + QString::fromUtf8(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(bytes));
    }
    SmbClient client(logon(), timeout);
    const SmbListing listing = client.list(path(QStringLiteral("video/sizes")));
    QCOMPARE(listing.returnCode, QStringLiteral("0"));
    QStringList found;
    for (const SmbEntry &entry : listing.entries)
        found.append(QStringLiteral("%1 %2 %3").arg(static_cast<int>(entry.kind)).arg(entry.bytes).arg(entry.name));
    found.sort();
    const QStringList expected{QStringLiteral("0 0 empty"), QStringLiteral("0 5000000000 0001.rec"),
                               QString::fromUtf8("0 7 Tür 100%.rec"), QStringLiteral("1 0 a folder")};
    QCOMPARE(found, expected);
    QVERIFY(QDir(folder).removeRecursively());
}

void SmbClientTest::whatCannotBeListedWithSizes_data()
{
    QTest::addColumn<QString>("below");
    QTest::addColumn<bool>("hasRightPassword");
    QTest::addColumn<QString>("code");
    QTest::newRow("missing folder") << QStringLiteral("video/missing") << true << QStringLiteral("DirectoryNotFound");
    QTest::newRow("unknown share") << QStringLiteral("nonsense") << true << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a file") << QStringLiteral("video/clip.mp4") << true << QStringLiteral("DirectoryNotFound");
    QTest::newRow("not for this user") << QStringLiteral("private") << true << QStringLiteral("DirectoryNotReadable");
    QTest::newRow("wrong password") << QStringLiteral("video") << false << QStringLiteral("LogonNASServerFaled");
}

void SmbClientTest::whatCannotBeListedWithSizes()
{
    QFETCH(QString, below);
    QFETCH(bool, hasRightPassword);
    SmbLogon who = logon();
    if (!hasRightPassword)
        who.password += u'x';
    SmbClient client(who, timeout);
    const SmbListing listing = client.list(path(below));
    QTEST(listing.returnCode, "code");
    QVERIFY(listing.entries.isEmpty());
}

void SmbClientTest::capacityIsThatOfTheServersDisk()
{
    constexpr int attempts = 100;
    constexpr qint64 ownUse = 1024 * 1024; // files that the server keeps for a connection
    SmbClient client(logon(), timeout);
    bool agrees = false;
    for (int attempt = 0; attempt < attempts && !agrees; ++attempt) {
        const DiskSpace before = diskSpaceOf(m_server.folderOf(QStringLiteral("video")), 1);
        const SmbSpace space = client.space(path(QStringLiteral("video/cam2")));
        const DiskSpace after = diskSpaceOf(m_server.folderOf(QStringLiteral("video")), 1);
        QCOMPARE(space.returnCode, QStringLiteral("0"));
        const DiskSpace told{space.bytesTotal, space.bytesAvailable};
        agrees = told.isBetween(before, after, ownUse);
        if (!agrees)
            qInfo("%s, expected %s", qPrintable(told.text()), qPrintable(after.text()));
    }
    QVERIFY(agrees);
}

void SmbClientTest::writeProbeTellsWhy_data()
{
    QTest::addColumn<QString>("below");
    QTest::addColumn<QString>("code");
    QTest::newRow("a share") << QStringLiteral("video") << QStringLiteral("0");
    QTest::newRow("a folder") << QStringLiteral("video/cam2") << QStringLiteral("0");
    QTest::newRow("a server") << QString() << QStringLiteral("DirectoryNotFound");
    QTest::newRow("unknown share") << QStringLiteral("nonsense") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("missing folder") << QStringLiteral("video/missing") << QStringLiteral("DirectoryNotFound");
    QTest::newRow("a file") << QStringLiteral("video/clip.mp4") << QStringLiteral("NotADirectory");
    QTest::newRow("read only") << QStringLiteral("readonly") << QStringLiteral("PermissionDenied");
}

void SmbClientTest::writeProbeTellsWhy()
{
    QFETCH(QString, below);
    SmbClient client(logon(), timeout);
    QTEST(client.writeProbe(path(below)), "code");
}

void SmbClientTest::writeProbeLeavesNothing()
{
    const QDir folder(m_server.folderOf(QStringLiteral("video")));
    const QStringList before = folder.entryList(QDir::AllEntries | QDir::Hidden);
    SmbClient client(logon(), timeout);
    QCOMPARE(client.writeProbe(path(QStringLiteral("video"))), QStringLiteral("0"));
    QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden), before);
}

void SmbClientTest::aShareIsTakenAwayWhileItIsBrowsed()
{
    m_server.addShare(QStringLiteral("borrowed"));
    makeFolder(m_server.folderOf(QStringLiteral("borrowed")) + QStringLiteral("/a"));
    SmbClient client(logon(), timeout);
    QVERIFY(client.folders(path(QStringLiteral("borrowed"))).names.contains(QStringLiteral("a")));
    QVERIFY(m_server.removeShare(QStringLiteral("borrowed")));
    // The share is closed a moment later.
    QTRY_COMPARE(client.folders(path(QStringLiteral("borrowed/a"))).returnCode, QStringLiteral("GetNasDirFailed"));
    SmbClient next(logon(), timeout);
    QCOMPARE(next.folders(path(QStringLiteral("borrowed"))).returnCode, QStringLiteral("GetNasDirFailed"));
    QCOMPARE(client.folders(path(QStringLiteral("video"))).returnCode, QStringLiteral("0"));
}

void SmbClientTest::aServerIsStoppedInTheMiddle()
{
    SmbClient client(logon(), timeout);
    QCOMPARE(client.folders(path(QStringLiteral("video"))).returnCode, QStringLiteral("0"));
    m_server.stop();
    const QString silent = QStringLiteral("NasServerNotResponding");
    QCOMPARE(client.folders(path(QStringLiteral("video/cam2"))).returnCode, silent);
    QCOMPARE(client.space(path(QStringLiteral("video"))).returnCode, silent);
    QCOMPARE(client.writeProbe(path(QStringLiteral("video"))), silent);
    QCOMPARE(client.logOn(path(QString())), silent);
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
    QCOMPARE(client.folders(path(QStringLiteral("video"))).returnCode, QStringLiteral("0"));
}

void SmbClientTest::aHostThatDoesNotAnswer_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("takes the connection and says nothing") << QStringLiteral("127.0.0.1:silent");
    QTest::newRow("nothing listens") << QStringLiteral("127.0.0.1:%1").arg(freePort());
    QTest::newRow("nobody knows the name") << QStringLiteral("no-such-host.invalid");
}

void SmbClientTest::aHostThatDoesNotAnswer()
{
    QFETCH(QString, host);
    const SilentServer silent;
    host.replace(QStringLiteral("silent"), QString::number(silent.port()));
    const SmbPath place = *SmbPath::parse(QStringLiteral("//%1/video").arg(host));
    QElapsedTimer timer;
    timer.start();
    SmbClient client(logon(), 500ms);
    QCOMPARE(client.logOn(place), QStringLiteral("NasServerNotResponding"));
    QCOMPARE(client.folders(place).returnCode, QStringLiteral("NasServerNotResponding"));
    QCOMPARE(client.space(place).returnCode, QStringLiteral("NasServerNotResponding"));
    QCOMPARE(client.writeProbe(place), QStringLiteral("NasServerNotResponding"));
    QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(SmbClientTest)
#include "tst_smb_client.moc"
