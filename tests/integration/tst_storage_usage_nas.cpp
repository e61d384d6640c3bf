#include "Loopback.h"
#include "RecordedSite.h"
#include "SambaServer.h"
#include "ServerVocabulary.h"
#include "nas/NasAccounts.h"
#include "nas/PasswordVault.h"

#include <QRegularExpression>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {
const QDate today(2026, 3, 20);
} // namespace

/// Usage figures of recording groups that record onto NAS servers, real ones and silent ones.
class StorageUsageNasTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aShareHasItsCapacity();
    void aServerThatGoesAndReturns();
    void aSilentServerHoldsUpNobody();
    void aServerThatIsNotRegisteredIsGone();

private:
    void addServer(const QString &host);
    void addGroup(const QString &nasPath);
    void start(std::chrono::milliseconds limit = std::chrono::seconds(15));
    QVariantMap nas() const { return m_events.isEmpty() ? QVariantMap() : m_events.constLast().value(1).toMap(); }
    QVariantMap local() const { return m_events.isEmpty() ? QVariantMap() : m_events.constLast().value(0).toMap(); }
    static QList<qint64> figures(const QVariantMap &entry);

    SambaServer m_server;
    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<Station> m_station;
    QString m_path;
    QList<QVariantList> m_events;
};

void StorageUsageNasTest::initTestCase()
{
    m_server.addShare(u"video"_s);
    QVERIFY(QDir(m_server.folderOf(u"video"_s)).mkpath(u"rec"_s));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void StorageUsageNasTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_path = m_site->makePath(u"rec"_s);
    RecordedSite::write(RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today.addDays(-1)), u"0001.rec"_s, 3000);
}

void StorageUsageNasTest::cleanup()
{
    m_station.reset();
    m_site.reset();
    m_events.clear();
}

void StorageUsageNasTest::addServer(const QString &host)
{
    StationData data(m_site->dataFolder());
    NasAccounts accounts(data, KeyFile::of({}, data.folder()));
    const QByteArray sealed = accounts.vault().encrypted(m_server.password());
    accounts.store().insert({QUuid::createUuid().toString(), host, u"Host"_s, m_server.userName(), sealed});
}

/// One group, with a local path and the NAS path.
void StorageUsageNasTest::addGroup(const QString &nasPath)
{
    RecordingGroup group = RecordedSite::group(u"Doors"_s, {m_path});
    group.paths.append({nasPath, PathKind::NetHost, 0, false});
    Database database(m_site->dataFolder());
    GroupStore(database).insert(group);
}

void StorageUsageNasTest::start(std::chrono::milliseconds limit)
{
    StationSettings settings = m_site->settings(today);
    settings.nasTimeLimit = limit;
    settings.usage.nasInterval = std::chrono::milliseconds(50);
    m_station = std::make_unique<Station>(std::move(settings));
    connect(m_station.get(), &Station::eventRaised, this, [this](const StationEvent &event) {
        if (event.name == ServerEvent::VolumeChanged)
            m_events.append(event.data.toList());
    });
}

/// Size and free space in KB, bytes of a day, days.
QList<qint64> StorageUsageNasTest::figures(const QVariantMap &entry)
{
    return {entry[u"volumeSize"_s].toLongLong(), entry[u"volumeAvailableSize"_s].toLongLong(),
            entry[u"volumeOneDayUsage"_s].toLongLong(), entry[u"volumeRecordedDays"_s].toLongLong()};
}

void StorageUsageNasTest::aShareHasItsCapacity()
{
    addServer(m_server.host());
    const QString path = u"//%1/video/rec"_s.arg(m_server.host());
    addGroup(path);
    start();
    QTRY_VERIFY_WITH_TIMEOUT(nas()[u"volumeSize"_s].toLongLong() > 0, 20'000);
    QCOMPARE(nas()[u"recordingPath"_s].toString(), path);
    QCOMPARE(nas()[u"volumeName"_s].toString(), u"//%1/video"_s.arg(m_server.host()));
    QVERIFY(nas()[u"volumeIsNAS"_s].toBool());
    QVERIFY(!local()[u"volumeIsNAS"_s].toBool());
    const QList<qint64> share = figures(nas());
    QVERIFY(share.at(1) > 0 && share.at(1) <= share.at(0));
    QTRY_COMPARE(figures(local()), (QList<qint64>{1024000, 614400, 3000, 1}));
    QCOMPARE(figures(nas()).mid(2), (QList<qint64>{0, -1})); // nothing is recorded there
}

void StorageUsageNasTest::aServerThatGoesAndReturns()
{
    addServer(m_server.host());
    addGroup(u"//%1/video/rec"_s.arg(m_server.host()));
    start();
    QTRY_VERIFY_WITH_TIMEOUT(nas()[u"volumeSize"_s].toLongLong() > 0, 20'000);
    m_server.stop();
    QTRY_COMPARE_WITH_TIMEOUT(figures(nas()).mid(0, 2), (QList<qint64>{0, 0}), 20'000);
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
    QTRY_VERIFY_WITH_TIMEOUT(nas()[u"volumeSize"_s].toLongLong() > 0, 20'000);
}

void StorageUsageNasTest::aSilentServerHoldsUpNobody()
{
    const SilentServer silent;
    const QString host = u"127.0.0.1:%1"_s.arg(silent.port());
    addServer(host);
    addGroup(u"//%1/video/rec"_s.arg(host));
    start(std::chrono::seconds(2));
    QTRY_COMPARE(figures(local()), (QList<qint64>{1024000, 614400, -1, -1}));
    QCOMPARE(figures(m_events.constFirst().value(1).toMap()), (QList<qint64>{-1, -1, -1, -1})); // told meanwhile
    QTRY_COMPARE_WITH_TIMEOUT(figures(nas()), (QList<qint64>{0, 0, -1, -1}), 20'000);
    const qsizetype before = m_events.size();
    m_station->handle({ServerCommand::reloadStorageUsageInfo, {}}, {});
    QTRY_COMPARE_WITH_TIMEOUT(m_events.size(), before + 1, 20'000);
    QCOMPARE(figures(nas()), (QList<qint64>{0, 0, -1, -1}));
}

void StorageUsageNasTest::aServerThatIsNotRegisteredIsGone()
{
    addGroup(u"//127.0.0.1/video/rec"_s);
    start();
    QTRY_COMPARE(figures(nas()), (QList<qint64>{0, 0, -1, -1}));
}

QTEST_GUILESS_MAIN(StorageUsageNasTest)
#include "tst_storage_usage_nas.moc"
