#include "MountedVolumes.h"

#include <QElapsedTimer>
#include <QHash>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTest>

#include <atomic>
#include <memory>
#include <mutex>

namespace {
using namespace std::chrono_literals;

MountRecord disk(int id, const QString &mountPoint, const QString &root = QStringLiteral("/"))
{
    MountRecord record;
    record.id = id;
    record.parentId = mountPoint == u'/' ? 0 : 1;
    record.device = QStringLiteral("250:%1").arg(id);
    record.root = root;
    record.mountPoint = mountPoint;
    record.fileSystem = QStringLiteral("ext4");
    record.source = QStringLiteral("/dev/sda%1").arg(id);
    return record;
}

/// Looks at mounts, of which some do not answer before the test lets them. Shared with the threads.
struct Disks
{
    std::mutex mutex;
    QHash<QString, std::shared_ptr<QSemaphore>> hanging; // by mount point
    QHash<QString, int> looks; // likewise
    QStringList files; // likewise

    MountedVolumes::Look lookAt(const MountRecord &mount)
    {
        std::shared_ptr<QSemaphore> gate;
        bool isFile = false;
        {
            const std::lock_guard lock(mutex);
            ++looks[mount.mountPoint];
            gate = hanging.value(mount.mountPoint);
            isFile = files.contains(mount.mountPoint);
        }
        if (gate)
            gate->acquire();
        if (isFile)
            return {true, {}};
        return {false, Volume{mount.mountPoint, QStringLiteral("Disk"), 4096, 2048, false, false}};
    }

    std::shared_ptr<QSemaphore> hang(const QString &mountPoint)
    {
        const std::lock_guard lock(mutex);
        return hanging[mountPoint] = std::make_shared<QSemaphore>();
    }
    void answer(const QString &mountPoint)
    {
        const std::lock_guard lock(mutex);
        if (const auto gate = hanging.take(mountPoint))
            gate->release(100);
    }
    int looksAt(const QString &mountPoint)
    {
        const std::lock_guard lock(mutex);
        return looks.value(mountPoint);
    }
};

QStringList pathsOf(const QList<Volume> &volumes)
{
    QStringList paths;
    for (const Volume &volume : volumes)
        paths.append(volume.path);
    return paths;
}
} // namespace

/// Mounts that do not answer: they are left out and told, and nobody waits for them.
class StationSilentMountsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aSilentMountIsLeftOutAndTold();
    void manySilentMountsTakeNoLongerThanOne();
    void aSilentMountIsNotAskedAgainWhileItHangs();
    void aSilentMountThatAnswersIsThereAgain();
    void aLateFailureIsAskedAgainRarely();
    void theRootIsThereEvenIfItIsSilent();
    void theVolumeOfAPathIsFoundBesideASilentOne();
    void volumesOfManyPathsAreAskedOnce();
    void aMountThatIsGoneIsNoTroubleAnyMore();
    void aFileIsNoVolume();
    void mountsThatCanBeNoVolumeAreNotLookedAt();
    void theEndWaitsForNobody();

private:
    MountedVolumes source(std::chrono::milliseconds answer = 50ms, std::chrono::milliseconds pause = 1h);

    std::shared_ptr<Disks> m_disks;
    std::shared_ptr<QList<MountRecord>> m_mounts;
};

void StationSilentMountsTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!The volume /.* does not answer\\.$).*")));
    m_disks = std::make_shared<Disks>();
    m_mounts = std::make_shared<QList<MountRecord>>(
        QList<MountRecord>{disk(1, QStringLiteral("/")), disk(2, QStringLiteral("/a")), disk(3, QStringLiteral("/b"))});
}

void StationSilentMountsTest::cleanup()
{
    for (const char *path : {"/", "/a", "/b"})
        m_disks->answer(QString::fromLatin1(path));
}

MountedVolumes StationSilentMountsTest::source(std::chrono::milliseconds answer, std::chrono::milliseconds pause)
{
    return MountedVolumes([mounts = m_mounts] { return MountTable(*mounts); },
                          [disks = m_disks](const MountRecord &mount) { return disks->lookAt(mount); },
                          {answer, pause});
}

void StationSilentMountsTest::aSilentMountIsLeftOutAndTold()
{
    const MountedVolumes volumes = source();
    QCOMPARE(pathsOf(volumes.volumes()),
             (QStringList{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/")}));
    QVERIFY(volumes.troubles().isEmpty());
    m_disks->hang(QStringLiteral("/a"));
    const QDateTime before = QDateTime::currentDateTimeUtc();
    QCOMPARE(pathsOf(volumes.volumes()), (QStringList{QStringLiteral("/b"), QStringLiteral("/")}));
    const QList<StationTrouble> troubles = volumes.troubles();
    QCOMPARE(troubles.size(), 1);
    QCOMPARE(troubles.front().kind, QStringLiteral("VolumeNotAnswering"));
    QCOMPARE(troubles.front().severity, StationTrouble::Severity::Error);
    QCOMPARE(troubles.front().subject, QStringLiteral("/a"));
    QVERIFY(troubles.front().text.contains(QStringLiteral("/a")));
    QVERIFY(troubles.front().since >= before && troubles.front().since <= QDateTime::currentDateTimeUtc());
    QVERIFY(volumes.isSilent(QStringLiteral("/a/rec")));
    QVERIFY(!volumes.isSilent(QStringLiteral("/b/rec")));
}

void StationSilentMountsTest::manySilentMountsTakeNoLongerThanOne()
{
    constexpr int count = 20;
    for (int i = 0; i < count; ++i) {
        const QString path = QStringLiteral("/m%1").arg(i);
        m_mounts->append(disk(10 + i, path));
        m_disks->hang(path);
    }
    const MountedVolumes volumes = source(200ms);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(volumes.volumes().size(), 3);
    QVERIFY2(timer.elapsed() < count * 200 / 2, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(volumes.troubles().size(), count);
    for (int i = 0; i < count; ++i)
        m_disks->answer(QStringLiteral("/m%1").arg(i));
}

void StationSilentMountsTest::aSilentMountIsNotAskedAgainWhileItHangs()
{
    m_disks->hang(QStringLiteral("/a"));
    const MountedVolumes volumes = source(50ms, 0ms);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(volumes.volumes().size(), 2);
    QVERIFY(!volumes.volumeHolding(QStringLiteral("/a/rec")));
    QCOMPARE(m_disks->looksAt(QStringLiteral("/a")), 1);
    QCOMPARE(m_disks->looksAt(QStringLiteral("/b")), 5);
}

void StationSilentMountsTest::aSilentMountThatAnswersIsThereAgain()
{
    m_disks->hang(QStringLiteral("/a"));
    const MountedVolumes volumes = source();
    QCOMPARE(volumes.volumes().size(), 2);
    m_disks->answer(QStringLiteral("/a"));
    QTRY_VERIFY(volumes.troubles().isEmpty());
    QCOMPARE(volumes.volumes().size(), 3);
    QVERIFY(!volumes.isSilent(QStringLiteral("/a")));
}

void StationSilentMountsTest::aLateFailureIsAskedAgainRarely()
{
    auto gate = std::make_shared<QSemaphore>();
    auto looks = std::make_shared<std::atomic<int>>(0);
    const auto lookAt = [gate, looks](const MountRecord &mount) -> MountedVolumes::Look {
        if (mount.mountPoint != u"/a")
            return {false, Volume{mount.mountPoint, QStringLiteral("Disk"), 4096, 2048, false, false}};
        ++*looks;
        gate->acquire();
        return {}; // an error, as a server's that is gone
    };
    const MountedVolumes volumes([mounts = m_mounts] { return MountTable(*mounts); }, lookAt, {50ms, 1h});
    QCOMPARE(volumes.volumes().size(), 2);
    gate->release();
    QTRY_COMPARE(gate->available(), 0);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(volumes.volumes().size(), 2);
    QCOMPARE(looks->load(), 1);
    QCOMPARE(volumes.troubles().size(), 1);
}

void StationSilentMountsTest::theRootIsThereEvenIfItIsSilent()
{
    m_disks->hang(QStringLiteral("/"));
    const MountedVolumes volumes = source();
    const QList<Volume> list = volumes.volumes();
    QCOMPARE(pathsOf(list), (QStringList{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/")}));
    QCOMPARE(list.back().bytesTotal, 0);
    QCOMPARE(list.back().name, QStringLiteral("System"));
    QCOMPARE(volumes.troubles().size(), 1);
}

void StationSilentMountsTest::theVolumeOfAPathIsFoundBesideASilentOne()
{
    m_disks->hang(QStringLiteral("/a"));
    const MountedVolumes volumes = source(1h); // who waited for the other would never come back
    const std::optional<Volume> holder = volumes.volumeHolding(QStringLiteral("/b/rec"));
    QVERIFY(holder);
    QCOMPARE(holder->path, QStringLiteral("/b"));
    QCOMPARE(m_disks->looksAt(QStringLiteral("/a")), 0);
}

void StationSilentMountsTest::volumesOfManyPathsAreAskedOnce()
{
    m_disks->hang(QStringLiteral("/b"));
    m_mounts->append(disk(4, QStringLiteral("/view"))); // the disk of /a, to be read only
    m_mounts->last().device = m_mounts->at(1).device;
    m_mounts->last().isReadOnly = true;
    const MountedVolumes volumes = source();
    const QList<std::optional<Volume>> holders =
        volumes.volumesHolding({QStringLiteral("/a/one"), QStringLiteral("/b/one"), QStringLiteral("/view/one"),
                                QStringLiteral("/one"), QStringLiteral("/a/two"), QStringLiteral("/b/two")});
    QCOMPARE(holders.size(), 6);
    QVERIFY(!holders[1] && !holders[5]);
    QCOMPARE(pathsOf({*holders[0], *holders[2], *holders[3], *holders[4]}),
             (QStringList{QStringLiteral("/a"), QStringLiteral("/a"), QStringLiteral("/"), QStringLiteral("/a")}));
    QVERIFY(!holders[0]->isReadOnly && holders[2]->isReadOnly && !holders[4]->isReadOnly);
    for (const char *mount : {"/", "/a", "/b"})
        QCOMPARE(m_disks->looksAt(QString::fromLatin1(mount)), 1);
}

void StationSilentMountsTest::aMountThatIsGoneIsNoTroubleAnyMore()
{
    m_disks->hang(QStringLiteral("/a"));
    const MountedVolumes volumes = source();
    volumes.volumes();
    QCOMPARE(volumes.troubles().size(), 1);
    m_mounts->removeAt(1);
    QCOMPARE(volumes.volumes().size(), 2);
    QVERIFY(volumes.troubles().isEmpty());
}

void StationSilentMountsTest::aFileIsNoVolume()
{
    // As containers have it: files and folders of one file system, none of which shows all of it.
    m_mounts->append(disk(4, QStringLiteral("/etc/hosts"), QStringLiteral("/var/hosts")));
    m_mounts->append(disk(5, QStringLiteral("/srv/rec"), QStringLiteral("/rec")));
    (*m_mounts)[4].device = m_mounts->at(3).device;
    m_disks->files = QStringList{QStringLiteral("/etc/hosts")};
    const MountedVolumes volumes = source(1h);
    QCOMPARE(
        pathsOf(volumes.volumes()),
        (QStringList{QStringLiteral("/a"), QStringLiteral("/b"), QStringLiteral("/srv/rec"), QStringLiteral("/")}));
}

void StationSilentMountsTest::mountsThatCanBeNoVolumeAreNotLookedAt()
{
    MountRecord memory = disk(4, QStringLiteral("/dev/shm"));
    memory.fileSystem = memory.source = QStringLiteral("tmpfs");
    m_mounts->append(memory);
    m_disks->hang(memory.mountPoint);
    const MountedVolumes volumes = source(1h);
    QCOMPARE(volumes.volumes().size(), 3);
    QVERIFY(!volumes.volumeHolding(QStringLiteral("/dev/shm/rec")));
    QCOMPARE(m_disks->looksAt(memory.mountPoint), 0);
}

void StationSilentMountsTest::theEndWaitsForNobody()
{
    const std::weak_ptr<Disks> disks = m_disks;
    auto gate = m_disks->hang(QStringLiteral("/a"));
    source().volumes(); // ends here
    m_mounts.reset();
    m_disks.reset();
    QVERIFY(!disks.expired()); // the thread holds them
    gate->release();
    QTRY_VERIFY(disks.expired());
    m_disks = std::make_shared<Disks>();
}

QTEST_GUILESS_MAIN(StationSilentMountsTest)
#include "tst_station_silent_mounts.moc"
