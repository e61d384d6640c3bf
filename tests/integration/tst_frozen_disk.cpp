#include "FaultyDisk.h"
#include "LocalClient.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeFolder.h"
#include "framework/HostReturnCode.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr int patience = 30'000; // milliseconds

QVariantMap camera(const QString &name)
{
    return {{FieldKey::camName, name}, {StationKey::streams, 1}};
}
} // namespace

/// A station whose data folder lies on a file system that is frozen for a while: what is written waits.
class FrozenDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void anEditIsAnsweredInTimeAndItsOutcomeTold();
    void oneThatIsSentAgainTakesEffectOnce();

private:
    QString data() const { return m_folder->filePath(u"station"_s); }
    void freezeDuring(const QString &command, const QVariantMap &request, const QString &id);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<DiskFaults> m_faults;
    std::unique_ptr<LocalClient> m_client;
};

void FrozenDiskTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"frozen-XXXXXX"_s));
    QVERIFY(m_folder->isValid());
    m_faults = std::make_unique<DiskFaults>(QStringList{u"wait.fsync="_s + data()}, m_folder->filePath(u"faults"_s),
                                            m_folder->filePath(u"gate"_s));
    m_client = std::make_unique<LocalClient>(data());
    m_client->send(StationCommandName::addCamera, camera(u"Gate"_s)); // nothing has to be made any more
    QTRY_COMPARE_WITH_TIMEOUT(m_client->codes(), QStringList{u"0"_s}, patience);
    m_client->replies.clear();
}

void FrozenDiskTest::cleanup()
{
    m_faults->setGate(false);
    m_client.reset();
    QTRY_VERIFY_WITH_TIMEOUT(isFolderFree(data()), patience);
    m_faults.reset();
    m_folder.reset();
}

/// Returns when the client was told that there is no answer, and the station waits for its disk.
void FrozenDiskTest::freezeDuring(const QString &command, const QVariantMap &request, const QString &id)
{
    QVERIFY(m_faults->setGate(true));
    m_client->setReplyTimeout(100ms);
    m_client->send(command, request, id);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->codes(), QStringList{HostReturnCode::NoAnswer}, patience);
    QTRY_VERIFY_WITH_TIMEOUT(!befallenCalls(m_folder->filePath(u"faults"_s)).isEmpty(), patience);
    QVERIFY(m_client->outcomes.isEmpty());
    m_client->replies.clear();
}

void FrozenDiskTest::anEditIsAnsweredInTimeAndItsOutcomeTold()
{
    freezeDuring(StationCommandName::addCamera, camera(u"Yard"_s), {});
    m_client->send(StationCommandName::addCamera, camera(u"Gate"_s)); // waits behind it
    QTRY_COMPARE_WITH_TIMEOUT(m_client->codes(), QStringList{HostReturnCode::NoAnswer}, patience);
    m_client->replies.clear();

    QVERIFY(m_faults->setGate(false)); // thawed
    QTRY_COMPARE_WITH_TIMEOUT(m_client->outcomes.size(), 2, patience);
    QCOMPARE(m_client->outcomes.at(0).returnCode, u"0"_s);
    QCOMPARE(m_client->outcomes.at(1).returnCode, StationReturnCode::CameraExists);
    m_client->setReplyTimeout(1min);
    m_client->send(StationCommandName::listCameras);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->codes(), QStringList{u"0"_s}, patience);
    QCOMPARE(m_client->replies.constFirst().data.toList().size(), 2);
    QVERIFY(m_client->isUp());
}

void FrozenDiskTest::oneThatIsSentAgainTakesEffectOnce()
{
    freezeDuring(StationCommandName::addCamera, camera(u"Yard"_s), u"yard"_s);
    m_client->setReplyTimeout(1min);
    m_client->send(StationCommandName::addCamera, camera(u"Yard"_s), u"yard"_s);
    QVERIFY(m_faults->setGate(false));
    QTRY_COMPARE_WITH_TIMEOUT(m_client->codes(), QStringList{u"0"_s}, patience);
    QTRY_COMPARE_WITH_TIMEOUT(m_client->outcomes.size(), 1, patience);
    QCOMPARE(m_client->outcomes.constFirst().returnCode, u"0"_s);
}

QTEST_GUILESS_MAIN(FrozenDiskTest)
#include "tst_frozen_disk.moc"
