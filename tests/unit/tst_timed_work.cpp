#include "TimedWork.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTest>
#include <QThread>

#include <atomic>
#include <stdexcept>

using namespace std::chrono_literals;

/// Work that may hang, and an answer in time.
class TimedWorkTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void workRunsElsewhereAndIsAnsweredHere();
    void hangingWorkIsAnsweredInTimeAndOnce();
    void hangingWorkDoesNotDelayOtherWork();
    void workThatThrowsIsAnsweredAsLate();
    void theEndWaitsForWorkThatIsAlmostDone();
    void theEndLeavesWorkThatHangs();
};

void TimedWorkTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void TimedWorkTest::workRunsElsewhereAndIsAnsweredHere()
{
    TimedWork work(1min);
    std::atomic<QThread *> worker = nullptr;
    QThread *receiver = nullptr;
    int result = 0;
    work.run<int>(
        [&worker] {
            worker = QThread::currentThread();
            return 7;
        },
        -1,
        [&](int given) {
            receiver = QThread::currentThread();
            result = given;
        });
    QCOMPARE(result, 0); // never from within the call
    QTRY_COMPARE(result, 7);
    QCOMPARE(receiver, QThread::currentThread());
    QVERIFY(worker != receiver);
}

void TimedWorkTest::hangingWorkIsAnsweredInTimeAndOnce()
{
    QSemaphore gate;
    std::atomic<bool> isDone = false;
    QList<int> results;
    TimedWork work(50ms);
    QElapsedTimer timer;
    timer.start();
    work.run<int>(
        [&] {
            gate.acquire();
            isDone = true;
            return 7;
        },
        -1, [&results](int given) { results.append(given); });
    QTRY_COMPARE(results, QList<int>{-1});
    QVERIFY(timer.elapsed() >= 50);
    QVERIFY(!isDone);
    gate.release();
    QTRY_VERIFY(isDone);
    // What the late result would bring comes before the end of work that starts now.
    bool isNextDone = false;
    work.run<int>([] { return 1; }, -1, [&isNextDone](int) { isNextDone = true; });
    QTRY_VERIFY(isNextDone);
    QCOMPARE(results, QList<int>{-1});
}

void TimedWorkTest::hangingWorkDoesNotDelayOtherWork()
{
    constexpr int many = 20;
    QSemaphore gate;
    TimedWork work(1min);
    for (int i = 0; i < many; ++i) {
        work.run<int>(
            [&gate] {
                gate.acquire();
                return 0;
            },
            0, [](int) {});
    }
    int result = 0;
    work.run<int>([] { return 7; }, -1, [&result](int given) { result = given; });
    QTRY_COMPARE(result, 7);
    gate.release(many);
}

void TimedWorkTest::workThatThrowsIsAnsweredAsLate()
{
    TimedWork work(1min);
    int result = 0;
    work.run<int>([]() -> int { throw std::runtime_error("no work today"); }, -1,
                  [&result](int given) { result = given; });
    QTRY_COMPARE(result, -1);
}

void TimedWorkTest::theEndWaitsForWorkThatIsAlmostDone()
{
    QSemaphore begun;
    std::atomic<bool> isDone = false;
    bool isAnswered = false;
    {
        TimedWork work(1min);
        work.run<int>(
            [&] {
                begun.release();
                QThread::yieldCurrentThread();
                isDone = true;
                return 7;
            },
            -1, [&isAnswered](int) { isAnswered = true; });
        begun.acquire();
    }
    QVERIFY(isDone);
    QCoreApplication::processEvents();
    QVERIFY(!isAnswered);
}

void TimedWorkTest::theEndLeavesWorkThatHangs()
{
    struct Shared
    {
        QSemaphore begun;
        QSemaphore gate;
        QSemaphore done;
    };
    const auto shared = std::make_shared<Shared>();
    bool isAnswered = false;
    auto work = std::make_unique<TimedWork>(1min);
    work->run<int>(
        [shared] {
            shared->begun.release();
            shared->gate.acquire();
            shared->done.release();
            return 7;
        },
        -1, [&isAnswered](int) { isAnswered = true; });
    shared->begun.acquire();
    QElapsedTimer timer;
    timer.start();
    work.reset();
    QVERIFY(timer.elapsed() < 5000);
    shared->gate.release();
    QVERIFY(shared->done.tryAcquire(1, 5000));
    QCoreApplication::processEvents();
    QVERIFY(!isAnswered);
}

QTEST_GUILESS_MAIN(TimedWorkTest)
#include "tst_timed_work.moc"
