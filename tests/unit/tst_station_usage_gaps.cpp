#include "UsageStation.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <mutex>
#include <utility>

#include <sys/inotify.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// What happens in the moment before the system watches a path.
struct Gap
{
    std::mutex mutex;
    QByteArray path;
    std::function<void()> happens; // once
};

Gap &gap()
{
    static Gap theGap;
    return theGap;
}
} // namespace

/// In place of the C library's, which does the same without the gap.
extern "C" Q_DECL_EXPORT int inotify_add_watch(int descriptor, const char *path, uint32_t mask) noexcept
{
    {
        const std::lock_guard lock(gap().mutex);
        if (gap().happens && gap().path == path)
            std::exchange(gap().happens, {})();
    }
    return static_cast<int>(syscall(SYS_inotify_add_watch, descriptor, path, mask));
}

/// What is recorded while the station begins to watch a folder is counted, though no watch tells of it.
class StationUsageGapsTest : public QObject, private UsageStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nothingIsMissed_data();
    void nothingIsMissed();
};

void StationUsageGapsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
}

void StationUsageGapsTest::cleanup()
{
    tearDown();
    const std::lock_guard lock(gap().mutex);
    gap().happens = {};
}

void StationUsageGapsTest::nothingIsMissed_data()
{
    QTest::addColumn<QString>("there");
    QTest::addColumn<QString>("watched");
    const QString day = daysAgo(1).toString(Qt::ISODate);
    QTest::newRow("the group's folder") << u""_s << u""_s;
    QTest::newRow("a camera") << u"/Doors"_s << u"/Doors"_s;
    QTest::newRow("a day") << u"/Doors/Gate"_s << u"/Doors/Gate"_s;
    QTest::newRow("a file") << u"/Doors/Gate/"_s + day << u"/Doors/Gate/"_s + day;
    QTest::newRow("what is written") << u"/Doors/Gate/"_s + day << u"/Doors/Gate/"_s + day + u"/0001.rec"_s;
}

void StationUsageGapsTest::nothingIsMissed()
{
    QFETCH(const QString, there);
    QFETCH(const QString, watched);
    QVERIFY(QDir().mkpath(m_path + there));
    if (watched.endsWith(u".rec"_s))
        RecordedSite::write(day(1), u"0001.rec"_s, 1000);
    {
        const std::lock_guard lock(gap().mutex);
        gap().path = QFile::encodeName(m_path + watched);
        gap().happens = [this] { RecordedSite::write(day(1), u"0001.rec"_s, 3000); };
    }
    start();
    QTRY_COMPARE(lines(), u"Doors 1 3000 1024000 614400"_s);
    const std::lock_guard lock(gap().mutex);
    QVERIFY(!gap().happens);
}

QTEST_GUILESS_MAIN(StationUsageGapsTest)
#include "tst_station_usage_gaps.moc"
