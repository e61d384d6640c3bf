#include "Loopback.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "smb/SmbClient.h"
#include "smb/SmbKnock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <memory>

using namespace std::chrono_literals;
using Fault = SmbRelay::Fault;

/// libsmbclient forgets the entries that it has read when the connection ends in the middle of a listing.
extern "C" Q_DECL_EXPORT const char *__lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libsmbclient.so";
}

/// SMB servers that end connections, talk nonsense, or die in the middle; and how often somebody logs on.
class SmbFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void aCallThatIsCutHasNoAnswer_data();
    void aCallThatIsCutHasNoAnswer();
    void aLogOnThatIsCutIsNoRefusal_data();
    void aLogOnThatIsCutIsNoRefusal();
    void aServerThatIsKilledDoesNotRespond();
    void aServerThatIsStoppedDoesNotRespond();
    void aKnockTellsWhoSpeaks();
    void aMissingFolderIsAskedForOnce();
    void aRefusedLogOnIsTriedOnce_data();
    void aRefusedLogOnIsTriedOnce();
    void aLockedAccountIsARefusal();

private:
    SmbLogon logon() const { return {QStringLiteral("Host"), m_server.userName(), m_server.password()}; }
    static SmbPath at(quint16 port, const QString &below)
    {
        return *SmbPath::parse(QStringLiteral("//127.0.0.1:%1/%2").arg(port).arg(below));
    }

    /// A client that does not wait long, once it was answered; none where that never came.
    static std::unique_ptr<SmbClient> connectedClient(const SambaServer &server, const QString &share)
    {
        constexpr int attempts = 20; // a busy machine answers late
        for (int i = 0; i < attempts; ++i) {
            auto client = std::make_unique<SmbClient>(SmbLogon{{}, server.userName(), server.password()}, 2s);
            if (client->space(at(server.port(), share)).returnCode == QLatin1String("0"))
                return client;
        }
        return {};
    }

    SambaServer m_server;
};

namespace {
const QString success = QStringLiteral("0");
const QString silent = QStringLiteral("NasServerNotResponding");
const QString refused = QStringLiteral("LogonNASServerFaled");
constexpr int mostMessages = 40; // more than any of these calls takes

using Ask = std::function<QString(SmbClient &client, const SmbPath &place)>;

/// The return code; another text where the answer is not whole.
QString foldersOf(SmbClient &client, const SmbPath &place)
{
    const SmbFolders folders = client.folders(place);
    const QStringList whole{QStringLiteral("."), QStringLiteral(".."), QStringLiteral("cam 1"),
                            QStringLiteral("cam 2")};
    return folders.names == (folders.returnCode == success ? whole : QStringList())
        ? folders.returnCode
        : QStringLiteral("cut: ") + folders.names.join(u',');
}

QString spaceAt(SmbClient &client, const SmbPath &place)
{
    const SmbSpace space = client.space(place);
    return (space.bytesTotal > 0) == (space.returnCode == success) ? space.returnCode : QStringLiteral("cut");
}

QString probe(SmbClient &client, const SmbPath &place)
{
    return client.writeProbe(place);
}
} // namespace

Q_DECLARE_METATYPE(Ask)

void SmbFaultsTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    for (const char *folder : {"cam 1", "cam 2"})
        QVERIFY(QDir(m_server.folderOf(QStringLiteral("video"))).mkdir(QString::fromLatin1(folder)));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void SmbFaultsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void SmbFaultsTest::aCallThatIsCutHasNoAnswer_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<int>("atLeast");
    const std::pair<const char *, Fault> faults[] = {
        {"closed", Fault::Close}, {"reset", Fault::Reset}, {"garbage", Fault::Garbage}};
    for (const auto &[name, fault] : faults) {
        QTest::addRow("folders, %s", name) << fault << Ask(foldersOf) << 10;
        QTest::addRow("space, %s", name) << fault << Ask(spaceAt) << 10;
        QTest::addRow("write probe, %s", name) << fault << Ask(probe) << 10;
    }
}

/// At every message of the server, until the call needs no more.
void SmbFaultsTest::aCallThatIsCutHasNoAnswer()
{
    QFETCH(Fault, fault);
    QFETCH(Ask, ask);
    QFETCH(int, atLeast);
    SmbRelay relay(m_server.port());
    QString code;
    int messages = 0;
    for (; messages < mostMessages && code != success; ++messages) {
        relay.failAfter(messages, fault);
        SmbClient client(logon(), 500ms);
        code = ask(client, at(relay.port(), QStringLiteral("video")));
        QVERIFY2(code == success || code == silent, qPrintable(QStringLiteral("%1: %2").arg(messages).arg(code)));
    }
    QCOMPARE(code, success);
    QVERIFY2(messages > atLeast, qPrintable(QString::number(messages)));
}

void SmbFaultsTest::aLogOnThatIsCutIsNoRefusal_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("closed") << Fault::Close;
    QTest::newRow("reset") << Fault::Reset;
    QTest::newRow("garbage") << Fault::Garbage;
    QTest::newRow("silence") << Fault::Silence;
}

void SmbFaultsTest::aLogOnThatIsCutIsNoRefusal()
{
    QFETCH(Fault, fault);
    const SmbRelay nobody(0);
    QCOMPARE(SmbClient(logon(), 500ms).logOn(at(nobody.port(), {})), silent);
    SmbRelay relay(m_server.port());
    for (const int messages : {0, 1, 2, 3, 5}) {
        relay.failAfter(messages, fault);
        QCOMPARE(SmbClient(logon(), 500ms).logOn(at(relay.port(), {})), silent);
        SmbLogon nameless;
        QCOMPARE(SmbClient(nameless, 500ms).logOn(at(relay.port(), {})), silent);
    }
}

void SmbFaultsTest::aServerThatIsKilledDoesNotRespond()
{
    SambaServer server;
    server.addShare(QStringLiteral("video"));
    QVERIFY2(server.start(), qPrintable(server.error()));
    const std::unique_ptr<SmbClient> client = connectedClient(server, QStringLiteral("video"));
    QVERIFY(client);
    QVERIFY(server.signalAll(SIGKILL));
    QCOMPARE(client->folders(at(server.port(), QStringLiteral("video/missing"))).returnCode, silent);
    QCOMPARE(client->space(at(server.port(), QStringLiteral("video"))).returnCode, silent);
    SmbClient next({{}, server.userName(), server.password()}, 2s);
    QCOMPARE(next.folders(at(server.port(), QStringLiteral("video"))).returnCode, silent);
}

void SmbFaultsTest::aServerThatIsStoppedDoesNotRespond()
{
    SambaServer server;
    server.addShare(QStringLiteral("video"));
    QVERIFY2(server.start(), qPrintable(server.error()));
    const std::unique_ptr<SmbClient> client = connectedClient(server, QStringLiteral("video"));
    QVERIFY(client);
    QVERIFY(server.signalAll(SIGSTOP));
    const auto goOn = qScopeGuard([&server] { server.signalAll(SIGCONT); });
    QCOMPARE(client->folders(at(server.port(), QStringLiteral("video/missing"))).returnCode, silent);
    SmbClient next({{}, server.userName(), server.password()}, 2s);
    QCOMPARE(next.folders(at(server.port(), QStringLiteral("video"))).returnCode, silent);
    QCOMPARE(next.writeProbe(at(server.port(), QStringLiteral("video"))), silent);
}

void SmbFaultsTest::aKnockTellsWhoSpeaks()
{
    SmbRelay relay(m_server.port());
    QCOMPARE(knockAt(at(relay.port(), {}), 15s), 0);
    QCOMPARE(relay.acceptedLogOns() + relay.refusedLogOns(), 0);
    relay.failAfter(0, Fault::Close);
    QCOMPARE(knockAt(at(relay.port(), {}), 15s), ECONNRESET);
    const SilentServer silentServer;
    QCOMPARE(knockAt(at(silentServer.port(), {}), 100ms), ETIMEDOUT);
    QCOMPARE(knockAt(at(freePort(), {}), 15s), ECONNREFUSED);
    QCOMPARE(knockAt(*SmbPath::parse(QStringLiteral("//no-such-host.invalid/x")), 15s), EHOSTUNREACH);
}

void SmbFaultsTest::aMissingFolderIsAskedForOnce()
{
    const SmbRelay relay(m_server.port());
    SmbClient client(logon(), 15s);
    QCOMPARE(client.folders(at(relay.port(), QStringLiteral("video/missing"))).returnCode,
             QStringLiteral("GetNasDirFailed"));
    const int connections = relay.connections();
    QVERIFY2(connections <= 2, qPrintable(QString::number(connections))); // the log-on, and the folder
    QCOMPARE(client.folders(at(relay.port(), QStringLiteral("video"))).returnCode, success);
    QCOMPARE(relay.connections(), connections); // they are used again
    QCOMPARE(relay.refusedLogOns(), 0);
}

void SmbFaultsTest::aRefusedLogOnIsTriedOnce_data()
{
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<QString>("below");
    QTest::newRow("log-on") << Ask([](SmbClient &client, const SmbPath &place) { return client.logOn(place); })
                            << QString();
    QTest::newRow("folders") << Ask(foldersOf) << QStringLiteral("video");
    QTest::newRow("shares") << Ask(foldersOf) << QString();
    QTest::newRow("folders of a missing one") << Ask(foldersOf) << QStringLiteral("video/missing");
    QTest::newRow("space") << Ask(spaceAt) << QStringLiteral("video");
    QTest::newRow("write probe") << Ask(probe) << QStringLiteral("video");
}

void SmbFaultsTest::aRefusedLogOnIsTriedOnce()
{
    QFETCH(Ask, ask);
    QFETCH(QString, below);
    const SmbRelay relay(m_server.port());
    SmbLogon wrong = logon();
    wrong.password += u'x';
    SmbClient client(wrong, 15s);
    QCOMPARE(ask(client, at(relay.port(), below)), refused);
    QCOMPARE(relay.refusedLogOns(), 1);
    QCOMPARE(relay.acceptedLogOns(), 0);
}

void SmbFaultsTest::aLockedAccountIsARefusal()
{
    QVERIFY2(m_server.setLockout(2), qPrintable(m_server.error()));
    const auto unlock = qScopeGuard([this] {
        m_server.setLockout(0);
        m_server.setPassword(m_server.password());
    });
    SmbLogon wrong = logon();
    wrong.password += u'x';
    for (int i = 0; i < 2; ++i)
        QCOMPARE(SmbClient(wrong, 15s).logOn(at(m_server.port(), {})), refused);
    const SmbRelay relay(m_server.port());
    SmbClient client(logon(), 15s); // with the right password
    QCOMPARE(client.folders(at(relay.port(), QStringLiteral("video"))).returnCode, refused);
    QVERIFY2(relay.refusedLogOns() <= 2, qPrintable(QString::number(relay.refusedLogOns())));
}

QTEST_GUILESS_MAIN(SmbFaultsTest)
#include "tst_smb_faults.moc"
