#include "disk/DiskPath.h"
#include "disk/DiskWork.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {
using namespace std::chrono_literals;

const QString root = QStringLiteral("/");
} // namespace

/// Work on disks that may hang, and the paths that lead there.
class DiskWorkTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void quickWorkIsAnsweredAtOnce();
    void slowWorkIsAnsweredLater();
    void workThatHangsIsGivenUp();
    void workThatShowsLifeIsNotGivenUp();
    void workThatThrowsIsLate();
    void whatWasGivenUpTakesNoEffect();
    void nobodyIsSentToADiskThatHangs();
    void aDiskThatAnswersAgainIsVisited();
    void theEndWaitsForNobody();

    void pathsAreFollowedAsTheSystemDoes_data();
    void pathsAreFollowedAsTheSystemDoes();
};

void DiskWorkTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void DiskWorkTest::quickWorkIsAnsweredAtOnce()
{
    DiskWork work(1h, nullptr, 1h);
    int result = 0;
    work.run<int>([](DiskVisit &visit) { return visit.enter(root) ? 1 : 2; }, 3,
                  [&result](int value) { result = value; });
    QCOMPARE(result, 1);
    QCOMPARE(work.await<int>([](DiskVisit &) { return 5; }, 3), 5);
}

void DiskWorkTest::slowWorkIsAnsweredLater()
{
    DiskWork work(1h);
    const auto gate = std::make_shared<QSemaphore>();
    QList<int> results;
    work.run<int>(
        [gate](DiskVisit &) {
            gate->acquire();
            return 1;
        },
        3, [&results](int value) { results.append(value); });
    QVERIFY(results.isEmpty());
    work.run<int>([](DiskVisit &) { return 2; }, 3, [&results](int value) { results.append(value); });
    QTRY_COMPARE(results, QList<int>{2}); // not held up
    gate->release();
    QTRY_COMPARE(results, (QList<int>{2, 1}));
}

void DiskWorkTest::workThatHangsIsGivenUp()
{
    DiskWork work(100ms);
    const auto gate = std::make_shared<QSemaphore>();
    const auto hang = [gate](DiskVisit &) {
        gate->acquire();
        return 1;
    };
    QList<int> results;
    work.run<int>(hang, 3, [&results](int value) { results.append(value); });
    QTRY_COMPARE(results, QList<int>{3});
    QCOMPARE(work.await<int>(hang, 3), 3);
    gate->release(2);
    bool isTurned = false;
    work.run<int>([](DiskVisit &) { return 0; }, 0, [&isTurned](int) { isTurned = true; });
    QTRY_VERIFY(isTurned);
    QCOMPARE(results, QList<int>{3}); // and not once more
}

void DiskWorkTest::workThatShowsLifeIsNotGivenUp()
{
    constexpr auto limit = 500ms; // a busy machine may keep a thread waiting for a while
    const DiskWork work(limit);
    const auto busy = [limit](DiskVisit &visit) {
        QElapsedTimer timer;
        timer.start();
        while (std::chrono::milliseconds(timer.elapsed()) < 2 * limit) {
            if (!visit.goesOn())
                return 2;
        }
        return 1;
    };
    QCOMPARE(work.await<int>(busy, 3), 1);
}

void DiskWorkTest::workThatThrowsIsLate()
{
    DiskWork work(1h);
    const auto fail = [](DiskVisit &) -> int { throw std::runtime_error("no memory"); };
    QCOMPARE(work.await<int>(fail, 3), 3);
    int result = 0;
    work.run<int>(fail, 3, [&result](int value) { result = value; });
    QTRY_COMPARE(result, 3);
}

void DiskWorkTest::whatWasGivenUpTakesNoEffect()
{
    const DiskWork work(50ms);
    const auto gate = std::make_shared<QSemaphore>();
    const auto ended = std::make_shared<QSemaphore>();
    const auto took = std::make_shared<bool>(true);
    const auto make = [gate, ended, took](DiskVisit &visit) {
        gate->acquire();
        *took = visit.settle();
        ended->release();
        return 1;
    };
    QCOMPARE(work.await<int>(make, 3), 3);
    gate->release();
    ended->acquire();
    QVERIFY(!*took);

    gate->release();
    QCOMPARE(DiskWork(1h).await<int>(make, 3), 1);
    QVERIFY(*took);
}

void DiskWorkTest::nobodyIsSentToADiskThatHangs()
{
    const DiskWork work(50ms);
    const auto gate = std::make_shared<QSemaphore>();
    const auto hang = [gate](DiskVisit &visit) {
        const bool isEntered = visit.enter(root);
        gate->acquire();
        return isEntered ? 1 : 2;
    };
    QCOMPARE(work.await<int>(hang, 3), 3);
    const auto enter = [](DiskVisit &visit) { return visit.enter(root) ? 1 : 2; };
    constexpr int late = 3; // the thread that was to enter may be
    QTRY_COMPARE(work.await<int>(enter, late), 2);
    // Another disk, the kernel's own here, is none of its business.
    const auto enterOther = [](DiskVisit &visit) { return visit.enter(QStringLiteral("/proc")) ? 1 : 2; };
    QTRY_COMPARE(work.await<int>(enterOther, late), 1);
    gate->release();
}

void DiskWorkTest::aDiskThatAnswersAgainIsVisited()
{
    const DiskWork work(50ms);
    const auto gate = std::make_shared<QSemaphore>();
    const auto hang = [gate](DiskVisit &visit) {
        visit.enter(root);
        gate->acquire();
        return 1;
    };
    QCOMPARE(work.await<int>(hang, 3), 3);
    gate->release();
    const auto enter = [](DiskVisit &visit) { return visit.enter(root) ? 1 : 2; };
    QTRY_COMPARE(work.await<int>(enter, 3), 1);
}

void DiskWorkTest::theEndWaitsForNobody()
{
    const auto gate = std::make_shared<QSemaphore>();
    const auto ended = std::make_shared<QSemaphore>();
    bool isAnswered = false;
    {
        DiskWork work(1h);
        work.run<int>(
            [gate, ended](DiskVisit &visit) {
                gate->acquire();
                ended->release(visit.settle() ? 2 : 1);
                return 1;
            },
            3, [&isAnswered](int) { isAnswered = true; });
    }
    gate->release();
    ended->acquire();
    QCOMPARE(ended->available(), 0); // it could not settle
    QVERIFY(!isAnswered);
}

void DiskWorkTest::pathsAreFollowedAsTheSystemDoes_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"",         "/",      "/a",       "/a/",        "/a/.",     "/a/b/..",   "/a/b/../..",
                             "/file",    "/file/", "/file/.",  "/file/..",   "/file/x",  "/missing",  "/missing/x",
                             "/to-a",    "/to-a/", "/to-a/b",  "/to-a/..",   "/to-file", "/to-file/", "/absolute/b",
                             "/chain/b", "/up",    "/nowhere", "/nowhere/x", "/loop",    "/loop/x",   "/a//b"})
        QTest::newRow(*path ? path : "empty") << QString::fromLatin1(path);
    QTest::newRow("long name") << u'/' + QString(300, u'n');
}

void DiskWorkTest::pathsAreFollowedAsTheSystemDoes()
{
    QFETCH(QString, path);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("a/b")));
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const auto link = [&folder](const char *name, const QString &target) {
        std::filesystem::create_symlink(target.toStdString(), (folder.path() + u'/').toStdString() + name);
    };
    link("to-a", QStringLiteral("a"));
    link("to-file", QStringLiteral("file"));
    link("absolute", folder.filePath(QStringLiteral("a")));
    link("chain", QStringLiteral("./to-a/../absolute"));
    link("up", QStringLiteral("a/b/.."));
    link("nowhere", QStringLiteral("missing"));
    link("loop", QStringLiteral("loop"));

    const std::filesystem::path whole = (folder.path() + path).toStdString();
    DiskVisit everywhere;
    const DiskPath place = resolved(whole, everywhere);
    char *const expected = realpath(whole.c_str(), nullptr);
    const int error = expected ? 0 : errno;
    const std::unique_ptr<char, decltype(&free)> owner(expected, free);
    QCOMPARE(place.error, error);
    if (error == 0) {
        QCOMPARE(QString::fromStdString(place.canonical.native()), QString::fromUtf8(expected));
        QCOMPARE(place.isFolder, QFileInfo(QString::fromUtf8(expected)).isDir());
    }
}

QTEST_GUILESS_MAIN(DiskWorkTest)
#include "tst_disk_work.moc"
