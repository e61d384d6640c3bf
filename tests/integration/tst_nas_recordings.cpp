#include "Loopback.h"
#include "RecordedSite.h"
#include "SambaServer.h"
#include "ServerVocabulary.h"
#include "SmbRelay.h"
#include "StationCall.h"
#include "StationVocabulary.h"
#include "StorageText.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>
#include <QUuid>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QDate today(2026, 3, 20);
constexpr int patience = 30'000; // milliseconds
} // namespace

/// The recordings of groups on a NAS server, as the station counts them.
class NasRecordingsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void recordingsAreCountedAsLocalOnesAre();
    void whatChangesInTheNewestDaysIsFound();
    void whatChangesInOldDaysIsFoundByAFullReading();
    void aSilentShareKeepsItsFiguresAndSaysOfWhen();
    void aRestartKeepsTheFigures();
    void aShareThatListsTooSlowlyIsTold();
    void aReloadEndsThoughAServerIsSilent();
    void aWrongPasswordIsTriedOnce();
    void aFolderThatMayNotBeReadIsNoEmptyOne();
    void aRemovedPathTellsWhatIsKept();
    void aShareIsListedWithItsRecordings();
    void whatARemovedPathLeftIsOfNoGroup();

private:
    QString host() const { return u"127.0.0.1:%1"_s.arg(m_relay->port()); }
    QString path() const { return u"//%1/%2/rec"_s.arg(host(), m_share); }
    QString folder(int daysAgo, const QString &camera = u"Gate"_s) const
    {
        return RecordedSite::dayFolder(m_server.folderOf(m_share) + u"/rec"_s, u"Doors"_s, camera,
                                       today.addDays(-daysAgo));
    }
    void record(int daysAgo, qint64 bytes, const QString &name = u"0001.rec"_s) const
    {
        RecordedSite::write(folder(daysAgo), name, bytes);
    }
    void addServer(const QString &password) const;
    void start(std::chrono::milliseconds limit = 15s, std::chrono::milliseconds interval = 100ms);
    void reload();
    /// Of the last event: days and bytes of a day, of the group's only path.
    QList<qint64> figures() const;
    qint64 size() const { return m_events.isEmpty() ? -2 : m_events.constLast()[u"volumeSize"_s].toLongLong(); }
    QStringList alarms(const QString &key = StationKey::alarms) const;
    /// That of "station.listStorage"; empty where it is not listed.
    QVariantMap share() const;
    bool waitForConnections(int more) const;

    SambaServer m_server;
    std::unique_ptr<SmbRelay> m_relay;
    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
    QString m_share;
    int m_shares = 0;
    QList<QVariantMap> m_events;
};

void NasRecordingsTest::initTestCase()
{
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

/// Each test has a share of its own.
void NasRecordingsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_share = u"video%1"_s.arg(++m_shares);
    m_server.addShare(m_share);
    QVERIFY(QDir(m_server.folderOf(m_share)).mkpath(u"rec"_s));
    m_relay = std::make_unique<SmbRelay>(m_server.port());
    m_site = std::make_unique<RecordedSite>();
    RecordingGroup group = RecordedSite::group(u"Doors"_s, {}, 10);
    group.paths.append({path(), PathKind::NetHost, 0, false});
    Database database(m_site->dataFolder());
    GroupStore(database).insert(group);
}

void NasRecordingsTest::cleanup()
{
    m_station.reset();
    m_site.reset();
    m_relay.reset();
    m_events.clear();
}

void NasRecordingsTest::addServer(const QString &password) const
{
    StationData data(m_site->dataFolder());
    NasAccounts accounts(data, KeyFile::of({}, data.folder()));
    const QByteArray sealed = accounts.vault().encrypted(password);
    accounts.store().insert({QUuid::createUuid().toString(), host(), u"Host"_s, m_server.userName(), sealed});
}

void NasRecordingsTest::start(std::chrono::milliseconds limit, std::chrono::milliseconds interval)
{
    StationSettings settings = m_site->settings(today);
    settings.nasTimeLimit = limit;
    settings.usage.nasInterval = 200ms;
    settings.usage.nasRecordingsInterval = interval;
    m_station = std::make_unique<Station>(std::move(settings));
    connect(m_station.get(), &Station::eventRaised, this, [this](const StationEvent &event) {
        if (event.name == ServerEvent::VolumeChanged)
            m_events.append(event.data.toList().value(0).toMap());
    });
}

void NasRecordingsTest::reload()
{
    QCOMPARE(StationCall(*m_station, ServerCommand::reloadStorageUsageInfo, {}).reply().returnCode, u"0"_s);
}

QList<qint64> NasRecordingsTest::figures() const
{
    if (m_events.isEmpty())
        return {};
    const QVariantMap entry = m_events.constLast();
    return {entry[u"volumeRecordedDays"_s].toLongLong(), entry[u"volumeOneDayUsage"_s].toLongLong()};
}

/// "kind text".
QStringList NasRecordingsTest::alarms(const QString &key) const
{
    const StationReply reply = StationCall(*m_station, StationCommandName::listAlarms, {}).reply();
    QStringList texts;
    const QVariantList alarms = reply.data.toMap()[key].toList();
    for (const QVariant &alarm : alarms)
        texts.append(alarm.toMap()[u"kind"_s].toString() + u' ' + alarm.toMap()[u"text"_s].toString());
    return texts;
}

QVariantMap NasRecordingsTest::share() const
{
    const QVariantList volumes = StationCall(*m_station, StationCommandName::listStorage, {}).reply().data.toList();
    for (const QVariant &volume : volumes) {
        if (volume.toMap()[u"kind"_s] == StationVolumeKind::NAS)
            return volume.toMap();
    }
    return {};
}

bool NasRecordingsTest::waitForConnections(int more) const
{
    const int before = m_relay->connections();
    return QTest::qWaitFor([&] { return m_relay->connections() >= before + more; }, patience);
}

void NasRecordingsTest::recordingsAreCountedAsLocalOnesAre()
{
    addServer(m_server.password());
    record(0, 500);
    record(1, 3000);
    record(1, 1000, u"0002.rec"_s);
    record(2, 2000);
    RecordedSite::write(folder(1, u"Yard"_s), u"a"_s, 6000);
    // What is no recording of a day.
    RecordedSite::write(folder(1) + u"/below"_s, u"x"_s, 9000);
    RecordedSite::write(QFileInfo(folder(1)).path() + u"/2026-02-30"_s, u"x"_s, 9000);
    RecordedSite::write(QFileInfo(folder(1)).path(), u"x"_s, 9000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{3, 6000}), patience);
    QVERIFY(size() > 0);
    QCOMPARE(alarms(), QStringList());
    QCOMPARE(alarms(StationKey::pending), QStringList());
}

void NasRecordingsTest::whatChangesInTheNewestDaysIsFound()
{
    addServer(m_server.password());
    record(2, 1000);
    record(1, 1000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 1000}), patience);
    record(1, 3000); // it grows
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 2000}), patience);
    record(0, 100); // a new day
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{3, 2000}), patience);
    RecordedSite::write(folder(3, u"New"_s), u"a"_s, 8000); // a new camera, an old day
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{4, 4000}), patience);
    QVERIFY(QDir(folder(2)).removeRecursively()); // a day that went
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{3, 5500}), patience);
}

void NasRecordingsTest::whatChangesInOldDaysIsFoundByAFullReading()
{
    addServer(m_server.password());
    for (int ago = 0; ago < 6; ++ago)
        record(ago, 1000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{6, 1000}), patience);
    record(4, 6000);
    QVERIFY(waitForConnections(8)); // rounds
    QCOMPARE(figures(), (QList<qint64>{6, 1000}));
    reload();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{6, 2000}), patience);
}

void NasRecordingsTest::aSilentShareKeepsItsFiguresAndSaysOfWhen()
{
    addServer(m_server.password());
    record(1, 3000);
    record(2, 3000);
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    start(2s);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 3000}), patience);
    QVERIFY(m_server.signalAll(SIGSTOP));
    const auto resume = qScopeGuard([this] { m_server.signalAll(SIGCONT); });
    QTRY_COMPARE_WITH_TIMEOUT(size(), 0, patience);
    QCOMPARE(figures(), (QList<qint64>{2, 3000}));
    const QRegularExpression words(
        u"^ShareNotAnswering The NAS server of //.*; figures as of (....-..-.. ..:..:..)\\.$"_s);
    const QStringList told = alarms().filter(u"ShareNotAnswering"_s);
    QCOMPARE(told.size(), 1);
    const QRegularExpressionMatch match = words.match(told.first());
    QVERIFY2(match.hasMatch(), qPrintable(told.first()));
    const QDateTime time = QDateTime::fromString(match.captured(1), u"yyyy-MM-dd HH:mm:ss"_s);
    QVERIFY(time >= before && time <= QDateTime::currentDateTime());
    QVERIFY(m_server.signalAll(SIGCONT));
    record(1, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 4000}), patience);
    QTRY_COMPARE_WITH_TIMEOUT(alarms(), QStringList(), patience);
}

void NasRecordingsTest::aRestartKeepsTheFigures()
{
    addServer(m_server.password());
    record(1, 3000);
    record(2, 3000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 3000}), patience);
    m_station.reset();
    m_events.clear();
    m_relay->failAfter(0, SmbRelay::Fault::Close);
    start(2s);
    QTRY_COMPARE_WITH_TIMEOUT(size(), 0, patience);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 3000}), patience);
    const QStringList told = alarms().filter(u"figures as of "_s);
    QCOMPARE(told.size(), 1);
    for (const QVariantMap &event : std::as_const(m_events))
        QVERIFY(event[u"volumeRecordedDays"_s].toLongLong() != 0);
}

void NasRecordingsTest::aShareThatListsTooSlowlyIsTold()
{
    addServer(m_server.password());
    for (int ago = 0; ago < 60; ++ago)
        record(ago, 1000);
    m_relay->failAfter(60, SmbRelay::Fault::Silence); // enough for the capacity
    start(2s);
    QTRY_VERIFY_WITH_TIMEOUT(!alarms().filter(u"takes too long to list the recordings in //"_s).isEmpty(), patience);
    QVERIFY(!alarms().filter(u"the recordings were never counted"_s).isEmpty());
    QVERIFY(size() > 0);
    QCOMPARE(figures(), (QList<qint64>{-1, -1}));
    m_relay->failAfter(0, SmbRelay::Fault::None);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{60, 1000}), patience);
    QTRY_COMPARE_WITH_TIMEOUT(alarms(), QStringList(), patience);
}

void NasRecordingsTest::aReloadEndsThoughAServerIsSilent()
{
    addServer(m_server.password());
    record(1, 3000);
    start(2s, 1h);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{1, 3000}), patience);
    QVERIFY(m_server.signalAll(SIGSTOP));
    const auto resume = qScopeGuard([this] { m_server.signalAll(SIGCONT); });
    QElapsedTimer timer;
    timer.start();
    reload();
    QTRY_VERIFY(!alarms(StationKey::pending).isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(alarms(StationKey::pending), QStringList(), patience);
    QVERIFY2(timer.elapsed() < 10'000, qPrintable(QString::number(timer.elapsed())));
    QTRY_COMPARE_WITH_TIMEOUT(size(), 0, patience);
    QCOMPARE(figures(), (QList<qint64>{1, 3000}));
}

void NasRecordingsTest::aWrongPasswordIsTriedOnce()
{
    addServer(u"an old password"_s);
    record(1, 3000);
    start(15s, 20ms);
    QTRY_COMPARE_WITH_TIMEOUT(alarms().filter(u"the recordings were never counted"_s).size(), 1, patience);
    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY(timer.hasExpired(1000)); // rounds
    QCOMPARE(m_relay->refusedLogOns(), 1);
    QCOMPARE(figures(), (QList<qint64>{-1, -1}));
    reload();
    QTRY_COMPARE_WITH_TIMEOUT(m_relay->refusedLogOns(), 2, patience);
    QTRY_COMPARE_WITH_TIMEOUT(alarms(StationKey::pending), QStringList(), patience);
    QCOMPARE(m_relay->refusedLogOns(), 2);
}

void NasRecordingsTest::aFolderThatMayNotBeReadIsNoEmptyOne()
{
    const bool isRoot = geteuid() == 0;
    if (isRoot) { // who may read everything
        m_share = u"nobody"_s;
        m_server.addShare(m_share, {u"force user = nobody"_s});
        m_site->addGroup(u"None"_s, {});
        Database database(m_site->dataFolder());
        RecordingGroup group = RecordedSite::group(u"Doors"_s, {}, 10);
        group.paths.append({path(), PathKind::NetHost, 0, false});
        GroupStore(database).replace(group);
        for (QString above = m_server.folderOf(m_share); above.startsWith(QDir::tempPath() + u'/');
             above = QFileInfo(above).path())
            QCOMPARE(chmod(qPrintable(above), 0755), 0);
    }
    addServer(m_server.password());
    record(1, 3000);
    RecordedSite::write(folder(2, u"Yard"_s), u"a"_s, 1000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 2000}), patience);
    const QByteArray closed = QFile::encodeName(QFileInfo(folder(2, u"Yard"_s)).path());
    QCOMPARE(chmod(closed.constData(), 0), 0);
    record(0, 100);
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{3, 2000}), patience);
    QTRY_COMPARE_WITH_TIMEOUT(alarms().size(), 1, patience);
    const QRegularExpression words(
        u"^FolderNotReadable The recordings in //.*/Doors/Yard cannot be read; figures as of "_s);
    QVERIFY2(words.match(alarms().first()).hasMatch(), qPrintable(alarms().first()));
    QCOMPARE(chmod(closed.constData(), 0755), 0);
    QTRY_COMPARE_WITH_TIMEOUT(alarms(), QStringList(), patience);
}

void NasRecordingsTest::aRemovedPathTellsWhatIsKept()
{
    addServer(m_server.password());
    record(1, 3000);
    record(2, 4000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(figures(), (QList<qint64>{2, 3500}), patience);
    const QVariantMap request{{u"recordingGroupIDList"_s, QStringList{u"Doors"_s}},
                              {u"recordingGroupPathList"_s, QStringList{path()}}};
    const StationReply reply = StationCall(*m_station, u"removePathFromRecordingGroup"_s, request).reply();
    QCOMPARE(reply.returnCode, u"0"_s);
    QCOMPARE(reply.data.toMap()[u"keptBytes"_s].toLongLong(), 7000);
}

void NasRecordingsTest::aShareIsListedWithItsRecordings()
{
    addServer(m_server.password());
    record(1, 3000);
    record(2, 4000);
    const QDateTime before = QDateTime::currentDateTimeUtc();
    start(2s);
    QCOMPARE(groupTexts(share()), QStringList{u"Doors -1 -1 -1 0 false"_s});
    QVERIFY(!share().contains(u"countedAt"_s));
    QTRY_COMPARE_WITH_TIMEOUT(groupTexts(share()), QStringList{u"Doors 7000 2 3500 0 true"_s}, patience);
    QVariantMap listed = share();
    QCOMPARE(listed[u"state"_s], u"there"_s);
    QCOMPARE(listed[u"counted"_s], QVariant(true));
    QCOMPARE(gapOf(listed), 0);
    const auto countedAt = [](const QVariantMap &volume) {
        return QDateTime::fromString(volume[u"countedAt"_s].toString(), Qt::ISODateWithMs);
    };
    const QDateTime counted = countedAt(listed);
    QVERIFY(counted >= before && counted <= QDateTime::currentDateTimeUtc());
    QTRY_VERIFY_WITH_TIMEOUT(countedAt(share()) > counted, patience); // rounds

    QVERIFY(m_server.signalAll(SIGSTOP));
    const auto resume = qScopeGuard([this] { m_server.signalAll(SIGCONT); });
    QTRY_COMPARE_WITH_TIMEOUT(share()[u"state"_s].toString(), u"notAnswering"_s, patience);
    listed = share();
    QCOMPARE(groupTexts(listed), QStringList{u"Doors 7000 2 3500 0 false"_s});
    QCOMPARE(partsText(listed), u"-1 -1 -1 0 0 -1 -1 -1"_s);
    QVERIFY(countedAt(listed) >= counted);
    QVERIFY(m_server.signalAll(SIGCONT));
    QTRY_COMPARE_WITH_TIMEOUT(share()[u"counted"_s], QVariant(true), patience);
    QVERIFY(countedAt(share()) > countedAt(listed));
    m_station.reset();

    // After a start the figures are as they were, and not counted before they were read again.
    m_relay->failAfter(0, SmbRelay::Fault::Close);
    start(2s);
    QTRY_COMPARE_WITH_TIMEOUT(share()[u"state"_s].toString(), u"notAnswering"_s, patience);
    QTRY_COMPARE_WITH_TIMEOUT(groupTexts(share()), QStringList{u"Doors 7000 2 3500 0 false"_s}, patience);
    QVERIFY(countedAt(share()).addSecs(1) > countedAt(listed));
}

void NasRecordingsTest::whatARemovedPathLeftIsOfNoGroup()
{
    addServer(m_server.password());
    QVERIFY(QDir(m_server.folderOf(m_share)).mkpath(u"yard"_s));
    {
        RecordingGroup yard = RecordedSite::group(u"Yard"_s, {});
        yard.paths.append({u"//%1/%2/yard"_s.arg(host(), m_share), PathKind::NetHost, 0, false});
        Database database(m_site->dataFolder());
        GroupStore(database).insert(yard);
    }
    record(1, 3000);
    record(2, 4000);
    start();
    QTRY_COMPARE_WITH_TIMEOUT(share()[u"counted"_s], QVariant(true), patience);
    QCOMPARE(groupTexts(share()), (QStringList{u"Doors 7000 2 3500 0 true"_s, u"Yard 0 0 -1 0 true"_s}));
    const QVariantMap request{{u"recordingGroupIDList"_s, QStringList{u"Doors"_s}},
                              {u"recordingGroupPathList"_s, QStringList{path()}}};
    QCOMPARE(StationCall(*m_station, u"removePathFromRecordingGroup"_s, request).reply().returnCode, u"0"_s);
    const QVariantMap listed = share();
    QCOMPARE(groupTexts(listed), QStringList{u"Yard 0 0 -1 0 true"_s});
    QCOMPARE(listed[u"withoutGroupBytes"_s].toLongLong(), 7000);
    QCOMPARE(listed[u"counted"_s], QVariant(false));
    QVERIFY(listed.contains(u"countedAt"_s));
    QCOMPARE(gapOf(listed), 0);
}

QTEST_GUILESS_MAIN(NasRecordingsTest)
#include "tst_nas_recordings.moc"
