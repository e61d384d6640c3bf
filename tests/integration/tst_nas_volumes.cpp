#include "Loopback.h"
#include "SambaServer.h"
#include "SmbRelay.h"
#include "StationData.h"
#include "TimedWork.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"
#include "store/Database.h"
#include "usage/NasVolumes.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// What is told of the shares behind NAS paths, and how often their servers are asked for it.
class NasVolumesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aShareIsAskedOnceForAllItsPaths();
    void anAccountThatIsRefusedIsTriedOnce();
    void aReloadTriesARefusedAccountOnce();
    void aChangedAccountIsTriedAtOnce();
    void aSilentShareIsPendingAndThenNotAnswering();
    void aShareThatWasFineIsPendingForAReloadAlone();
    void whatIsMissingIsNamed();
    void aServerThatEndsConnectionsIsNotMissing();
    void aLostKeyIsTold();
    void anUnreadableDatabaseIsTold();
    void whatNoGroupHasIsNotTold();

private:
    QString add(quint16 port, const QString &password);
    void start(std::chrono::milliseconds limit, std::chrono::milliseconds interval);
    void setPaths(const QStringList &paths);
    PlaceState state(const QString &path) const { return m_volumes->state({path, PathKind::NetHost, 0, false}); }
    /// "kind subject", sorted.
    QStringList troubles() const;
    StationTrouble onlyTrouble() const { return m_volumes->troubles().value(0); }
    bool waitForRounds(int count);
    /// To the first question for each share, and to those that somebody waits for; the rounds may go on.
    bool waitForAnswers();
    static QString at(quint16 port, const QString &below) { return u"//127.0.0.1:%1/%2"_s.arg(port).arg(below); }

    SambaServer m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationData> m_data;
    std::unique_ptr<NasAccounts> m_accounts;
    std::unique_ptr<TimedWork> m_work;
    std::unique_ptr<NasVolumes> m_volumes;
};

void NasVolumesTest::initTestCase()
{
    for (const char *share : {"video", "archive"})
        m_server.addShare(QString::fromLatin1(share));
    const QDir video(m_server.folderOf(u"video"_s));
    for (int i = 0; i < 41; ++i)
        QVERIFY(video.mkdir(u"cam %1"_s.arg(i)));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void NasVolumesTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>();
    m_data = std::make_unique<StationData>(m_folder->path());
    m_accounts = std::make_unique<NasAccounts>(*m_data, KeyFile::of({}, m_data->folder()));
}

void NasVolumesTest::cleanup()
{
    m_volumes.reset();
    m_work.reset();
    m_accounts.reset();
    m_data.reset();
}

QString NasVolumesTest::add(quint16 port, const QString &password)
{
    const QString id = QUuid::createUuid().toString();
    const QByteArray sealed = m_accounts->vault().encrypted(password);
    m_accounts->store().insert({id, u"127.0.0.1:%1"_s.arg(port), u"Host"_s, m_server.userName(), sealed});
    return id;
}

void NasVolumesTest::start(std::chrono::milliseconds limit, std::chrono::milliseconds interval)
{
    m_work = std::make_unique<TimedWork>(limit);
    m_volumes = std::make_unique<NasVolumes>(*m_accounts, *m_work, interval);
}

void NasVolumesTest::setPaths(const QStringList &paths)
{
    RecordingGroup group;
    for (const QString &path : paths)
        group.paths.append({path, PathKind::NetHost, 0, false});
    m_volumes->setGroups({group});
}

QStringList NasVolumesTest::troubles() const
{
    QStringList texts;
    const QList<StationTrouble> all = m_volumes->troubles();
    for (const StationTrouble &trouble : all) {
        if (!trouble.text.contains(trouble.subject) || !trouble.since.isValid()
            || (trouble.severity == StationTrouble::Severity::Pending) != (trouble.kind == u"SharePending"_s))
            texts.append(u"odd: "_s + trouble.text);
        texts.append(trouble.kind + u' ' + trouble.subject);
    }
    texts.sort();
    return texts;
}

/// Each round of the timer tells that there may be something new.
bool NasVolumesTest::waitForRounds(int count)
{
    QSignalSpy spy(m_volumes.get(), &NasVolumes::answered);
    return QTest::qWaitFor([&] { return spy.size() >= count; }, 20'000);
}

bool NasVolumesTest::waitForAnswers()
{
    const auto isPending = [](const StationTrouble &trouble) {
        return trouble.severity == StationTrouble::Severity::Pending;
    };
    return QTest::qWaitFor(
        [&] {
            const QList<StationTrouble> troubles = m_volumes->troubles();
            return std::none_of(troubles.cbegin(), troubles.cend(), isPending);
        },
        20'000);
}

void NasVolumesTest::aShareIsAskedOnceForAllItsPaths()
{
    const SmbRelay relay(m_server.port());
    add(relay.port(), m_server.password());
    start(15s, 1h);
    QStringList paths;
    for (int i = 0; i < 41; ++i)
        paths.append(at(relay.port(), u"%1/cam %2"_s.arg(i % 2 ? u"video"_s : u"VIDEO"_s).arg(i)));
    setPaths(paths);
    QVERIFY(waitForAnswers());
    QCOMPARE(troubles(), QStringList());
    for (const QString &path : paths) {
        QCOMPARE(state(path).storage, UsagePlace::Storage::Present);
        QCOMPARE(state(path).volume.path, state(paths.first()).volume.path);
        QVERIFY(state(path).volume.bytesTotal > 0);
    }
    // For the log-on, and for each spelling of the share.
    QVERIFY2(relay.acceptedLogOns() <= 3, qPrintable(QString::number(relay.acceptedLogOns())));
}

void NasVolumesTest::anAccountThatIsRefusedIsTriedOnce()
{
    const SmbRelay relay(m_server.port());
    add(relay.port(), u"an old password"_s);
    start(15s, 20ms);
    const QStringList paths{at(relay.port(), u"video/cam 1"_s), at(relay.port(), u"video/cam 2"_s),
                            at(relay.port(), u"archive"_s), at(relay.port(), u"third/x"_s)};
    setPaths(paths);
    QVERIFY(waitForAnswers());
    QCOMPARE(relay.refusedLogOns(), 1);
    const QStringList told{u"ShareRefused "_s + at(relay.port(), u"archive"_s),
                           u"ShareRefused "_s + at(relay.port(), u"third"_s),
                           u"ShareRefused "_s + at(relay.port(), u"video"_s)};
    QCOMPARE(troubles(), told);
    const QRegularExpression words(u"refused the log-on of camera to //.*; tried again at \\d\\d:\\d\\d\\.$"_s);
    QVERIFY2(words.match(onlyTrouble().text).hasMatch(), qPrintable(onlyTrouble().text));
    const QDateTime since = onlyTrouble().since;
    QVERIFY(waitForRounds(20));
    QCOMPARE(relay.refusedLogOns(), 1);
    QCOMPARE(troubles(), told);
    QCOMPARE(onlyTrouble().since, since);
    QCOMPARE(state(paths.first()).storage, UsagePlace::Storage::Gone);
    // A new path on the same account needs no other try.
    setPaths(paths + QStringList{at(relay.port(), u"fourth"_s)});
    QCOMPARE(m_volumes->troubles().size(), 4);
    QCOMPARE(state(at(relay.port(), u"fourth"_s)).storage, UsagePlace::Storage::Gone);
    QVERIFY(waitForRounds(2));
    QCOMPARE(relay.refusedLogOns(), 1);
}

void NasVolumesTest::aReloadTriesARefusedAccountOnce()
{
    const SmbRelay relay(m_server.port());
    const QString id = add(relay.port(), u"an old password"_s);
    start(15s, 1h);
    setPaths({at(relay.port(), u"video"_s), at(relay.port(), u"archive"_s)});
    QVERIFY(waitForAnswers());
    for (int tries = 2; tries < 5; ++tries) {
        m_volumes->askAll();
        m_volumes->askAll();
        QVERIFY(waitForAnswers());
        QCOMPARE(relay.refusedLogOns(), tries);
    }
}

void NasVolumesTest::aChangedAccountIsTriedAtOnce()
{
    const SmbRelay relay(m_server.port());
    const QString id = add(relay.port(), u"an old password"_s);
    start(15s, 20ms);
    const QString path = at(relay.port(), u"video"_s);
    setPaths({path});
    QVERIFY(waitForAnswers());
    QCOMPARE(troubles(), QStringList{u"ShareRefused "_s + path});
    NasServer server = *m_accounts->store().server(id);
    server.sealedPassword = m_accounts->vault().encrypted(m_server.password());
    m_accounts->store().replace(server);
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList(), 20'000);
    QCOMPARE(relay.refusedLogOns(), 1);
    QCOMPARE(state(path).storage, UsagePlace::Storage::Present);
}

void NasVolumesTest::aSilentShareIsPendingAndThenNotAnswering()
{
    const SilentServer silent;
    add(silent.port(), m_server.password());
    start(300ms, 20ms);
    QSignalSpy changes(m_volumes.get(), &NasVolumes::troublesChanged);
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const QString share = at(silent.port(), u"video"_s);
    setPaths({share + u"/a"_s, share + u"/b"_s});
    QCOMPARE(troubles(), QStringList{u"SharePending "_s + share});
    QVERIFY(onlyTrouble().since >= before);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(state(share + u"/a"_s).storage, UsagePlace::Storage::Unknown);
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList{u"ShareNotAnswering "_s + share}, 20'000);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(state(share + u"/a"_s).storage, UsagePlace::Storage::Gone);
    const QDateTime since = onlyTrouble().since;
    // Asked again, and answered in the same way: no news.
    QVERIFY(QTest::qWaitFor([this] { return m_volumes->isAsking(); }, 20'000));
    QCOMPARE(troubles(), QStringList{u"ShareNotAnswering "_s + share});
    QVERIFY(waitForAnswers());
    QCOMPARE(onlyTrouble().since, since);
    QCOMPARE(changes.size(), 2);
}

void NasVolumesTest::aShareThatWasFineIsPendingForAReloadAlone()
{
    add(m_server.port(), m_server.password());
    start(15s, 20ms);
    const QString share = at(m_server.port(), u"video"_s);
    setPaths({share});
    QVERIFY(waitForAnswers());
    QCOMPARE(troubles(), QStringList());
    QVERIFY(QTest::qWaitFor([this] { return m_volumes->isAsking(); }, 20'000));
    QCOMPARE(troubles(), QStringList());
    m_volumes->askAll(); // the question that is outstanding is owed to it now
    QCOMPARE(troubles(), QStringList{u"SharePending "_s + share});
    QVERIFY(waitForAnswers());
    QCOMPARE(troubles(), QStringList());
}

void NasVolumesTest::whatIsMissingIsNamed()
{
    add(m_server.port(), m_server.password());
    start(15s, 1h);
    const QString folder = at(m_server.port(), u"video/missing"_s);
    setPaths({at(m_server.port(), u"video/cam 1"_s), folder, at(m_server.port(), u"nowhere"_s),
              at(m_server.port(), u"none/a"_s), at(m_server.port(), u"none/b"_s), u"//stranger/video/x"_s});
    QVERIFY(waitForAnswers());
    QStringList told{u"ShareMissing "_s + folder, u"ShareMissing "_s + at(m_server.port(), u"nowhere"_s),
                     u"ShareMissing "_s + at(m_server.port(), u"none"_s), u"ShareMissing //stranger/video"_s};
    told.sort();
    QCOMPARE(troubles(), told);
    QCOMPARE(state(at(m_server.port(), u"video/cam 1"_s)).storage, UsagePlace::Storage::Present);
    QVERIFY(QDir().mkdir(m_server.folderOf(u"video"_s) + u"/missing"_s));
    m_volumes->askAll();
    QVERIFY(waitForAnswers());
    QVERIFY(QDir().rmdir(m_server.folderOf(u"video"_s) + u"/missing"_s));
    told.removeOne(u"ShareMissing "_s + folder);
    QCOMPARE(troubles(), told);
}

void NasVolumesTest::aServerThatEndsConnectionsIsNotMissing()
{
    SmbRelay relay(m_server.port());
    add(relay.port(), m_server.password());
    start(15s, 1h);
    const QString share = at(relay.port(), u"video"_s);
    relay.failAfter(10, SmbRelay::Fault::Close);
    setPaths({share + u"/cam 1"_s, share + u"/cam 2"_s});
    QVERIFY(waitForAnswers());
    QCOMPARE(troubles(), QStringList{u"ShareNotAnswering "_s + share});
}

void NasVolumesTest::aLostKeyIsTold()
{
    add(m_server.port(), m_server.password());
    start(15s, 20ms);
    const QString path = at(m_server.port(), u"video"_s);
    setPaths({path, at(m_server.port(), u"archive"_s)});
    QVERIFY(waitForAnswers());
    QCOMPARE(state(path).storage, UsagePlace::Storage::Present);
    const QString key = m_folder->filePath(u"nas.key"_s);
    QVERIFY(QFile::rename(key, key + u'x'));
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList{u"NasKeyUnusable nas.key"_s}, 20'000);
    QVERIFY2(onlyTrouble().text.contains(u"is lost"_s), qPrintable(onlyTrouble().text));
    QTRY_COMPARE_WITH_TIMEOUT(state(path).storage, UsagePlace::Storage::Gone, 20'000);
    QVERIFY(QFile::rename(key + u'x', key));
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList(), 20'000);
    QTRY_COMPARE_WITH_TIMEOUT(state(path).storage, UsagePlace::Storage::Present, 20'000);
}

void NasVolumesTest::anUnreadableDatabaseIsTold()
{
    add(m_server.port(), m_server.password());
    start(15s, 20ms);
    const QString path = at(m_server.port(), u"video"_s);
    setPaths({path});
    QVERIFY(waitForAnswers());
    m_data->database().run(u"ALTER TABLE nas_server RENAME TO lost"_s);
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList{u"DatabaseFailed station.db"_s}, 20'000);
    QCOMPARE(state(path).storage, UsagePlace::Storage::Unknown);
    m_data->database().run(u"ALTER TABLE lost RENAME TO nas_server"_s);
    QTRY_COMPARE_WITH_TIMEOUT(troubles(), QStringList(), 20'000);
}

void NasVolumesTest::whatNoGroupHasIsNotTold()
{
    const SilentServer silent;
    add(silent.port(), m_server.password());
    start(300ms, 1h);
    setPaths({at(silent.port(), u"video"_s), u"//stranger/video"_s});
    QCOMPARE(m_volumes->troubles().size(), 2);
    QSignalSpy changes(m_volumes.get(), &NasVolumes::troublesChanged);
    setPaths({});
    QCOMPARE(m_volumes->troubles().size(), 0);
    QCOMPARE(changes.size(), 1);
    QVERIFY(waitForAnswers());
    QCOMPARE(m_volumes->troubles().size(), 0);
}

QTEST_GUILESS_MAIN(NasVolumesTest)
#include "tst_nas_volumes.moc"
