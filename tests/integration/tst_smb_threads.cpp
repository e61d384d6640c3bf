#include "Loopback.h"
#include "SambaServer.h"
#include "smb/SmbClient.h"

#include <QDir>
#include <QTest>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <dlfcn.h>

using namespace std::chrono_literals;

namespace {
std::atomic<int> conversions = 0;
}

/// In place of libc's: libsmbclient shares a descriptor among threads, which iconv() does not allow.
extern "C" Q_DECL_EXPORT std::size_t iconv(void *descriptor, char **in, std::size_t *inLeft, char **out,
                                           std::size_t *outLeft)
{
    static const auto libcs = reinterpret_cast<decltype(&iconv)>(dlsym(RTLD_NEXT, "iconv"));
    ++conversions;
    return libcs(descriptor, in, inLeft, out, outLeft);
}

/// Several threads in libsmbclient at once, from the first call in the process on.
class SmbThreadsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void noDescriptorOfIconvIsShared();
    void manyThreadsBrowseAtOnce();
    void aSilentServerDoesNotHoldOthersUp();

private:
    SambaServer m_server;
};

void SmbThreadsTest::initTestCase()
{
    m_server.addShare(QStringLiteral("video"));
    for (const char *folder : {"a", "b", "c"})
        QVERIFY(QDir(m_server.folderOf(QStringLiteral("video"))).mkdir(QString::fromLatin1(folder)));
    QVERIFY2(m_server.start(), qPrintable(m_server.error()));
}

void SmbThreadsTest::noDescriptorOfIconvIsShared()
{
    SmbClient client({{}, m_server.userName(), m_server.password()}, 20s);
    QCOMPARE(client.folders(*SmbPath::parse(QStringLiteral("//%1/video").arg(m_server.host()))).names.size(), 5);
    QCOMPARE(conversions.load(), 0);
}

void SmbThreadsTest::manyThreadsBrowseAtOnce()
{
    constexpr int threadCount = 8;
    constexpr int rounds = 15;
    const QString video = QStringLiteral("//%1/video").arg(m_server.host());
    const SmbPath path = *SmbPath::parse(video);
    const QStringList expected{QStringLiteral("."), QStringLiteral(".."), QStringLiteral("a"), QStringLiteral("b"),
                               QStringLiteral("c")};
    std::atomic<int> refused = 0;
    std::mutex mutex;
    QStringList wrong; // what else came
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < rounds; ++round) {
                const bool isWrong = i == 0;
                SmbClient client({{}, m_server.userName(), isWrong ? QStringLiteral("wrong") : m_server.password()},
                                 20s);
                const SmbFolders folders = client.folders(path);
                if (isWrong) {
                    refused += folders.returnCode == QStringLiteral("LogonNASServerFaled");
                    continue;
                }
                const SmbSpace space = client.space(path);
                if (folders.names == expected && space.bytesTotal > 0)
                    continue;
                const std::lock_guard lock(mutex);
                wrong.append(folders.returnCode + u' ' + folders.names.join(u',') + u' ' + space.returnCode);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(refused.load(), rounds);
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
}

void SmbThreadsTest::aSilentServerDoesNotHoldOthersUp()
{
    auto silent = std::make_unique<SilentServer>();
    QVERIFY(silent->port() != 0);
    const SmbPath silentPath = *SmbPath::parse(QStringLiteral("//127.0.0.1:%1/video").arg(silent->port()));
    std::atomic<bool> isAnswered = false;
    std::thread hanging([&] {
        SmbClient client({{}, m_server.userName(), m_server.password()}, 60s); // longer than what it must not hold up
        client.folders(silentPath);
        isAnswered = true;
    });
    const SmbPath path = *SmbPath::parse(QStringLiteral("//%1/video").arg(m_server.host()));
    for (int round = 0; round < 5; ++round) {
        SmbClient client({{}, m_server.userName(), m_server.password()}, 20s);
        QCOMPARE(client.folders(path).names.size(), 5);
    }
    const bool wasFirst = !isAnswered;
    silent.reset(); // ends the wait
    hanging.join();
    QVERIFY(wasFirst);
}

QTEST_GUILESS_MAIN(SmbThreadsTest)
#include "tst_smb_threads.moc"
