#include "TimedWork.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QThread>
#include <QTimer>

#include <mutex>
#include <utility>

namespace {
bool succeeds(const std::function<void()> &work)
{
    try {
        work();
        return true;
    } catch (...) {
        return false;
    }
}
} // namespace

/// What a thread that was given up may still look at.
struct TimedWork::Ledger
{
    std::mutex mutex;
    TimedWork *owner = nullptr; // null once it ended
};

TimedWork::TimedWork(std::chrono::milliseconds limit, QObject *parent)
    : QObject(parent)
    , m_limit(limit)
    , m_threads(std::make_unique<QThreadPool>())
    , m_ledger(std::make_shared<Ledger>())
{
    constexpr int enoughForMostToHang = 32;
    m_threads->setMaxThreadCount(enoughForMostToHang);
    m_threads->setExpiryTimeout(-1); // libsmbclient keeps a little memory for every thread that ever used it
    m_ledger->owner = this;
}

TimedWork::~TimedWork()
{
    {
        const std::lock_guard lock(m_ledger->mutex);
        m_ledger->owner = nullptr;
    }
    m_threads->clear();
    constexpr int moment = 500; // milliseconds
    if (!m_threads->waitForDone(moment))
        m_threads.release(); // its destructor would wait for the threads that hang
}

void TimedWork::start(std::function<void()> work, std::function<void(bool)> done)
{
    const quint64 number = ++m_lastNumber;
    m_outstanding.insert(number, std::move(done));
    m_threads->start([ledger = m_ledger, number, work = std::move(work)] {
        const bool isDone = succeeds(work);
        const std::lock_guard lock(ledger->mutex);
        TimedWork *const owner = ledger->owner;
        if (owner) {
            QMetaObject::invokeMethod(
                owner, [owner, number, isDone] { owner->finish(number, isDone); }, Qt::QueuedConnection);
        }
    });
    QTimer::singleShot(m_limit, this, [this, number] { finish(number, false); });
}

bool TimedWork::awaitDone(std::function<void()> work)
{
    struct Outcome
    {
        QSemaphore ended;
        bool isDone = false;
    };
    const auto outcome = std::make_shared<Outcome>();
    m_threads->start([outcome, work = std::move(work)] {
        outcome->isDone = succeeds(work);
        outcome->ended.release();
    });
    constexpr int look = 20; // milliseconds between two looks at whether this thread shall end
    const QDeadlineTimer deadline(m_limit);
    while (!outcome->ended.tryAcquire(1, look)) {
        if (deadline.hasExpired() || QThread::currentThread()->isInterruptionRequested())
            return false;
    }
    return outcome->isDone;
}

void TimedWork::finish(quint64 number, bool isDone)
{
    if (const auto done = m_outstanding.take(number))
        done(isDone);
}
