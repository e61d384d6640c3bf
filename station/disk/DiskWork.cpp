#include "DiskWork.h"

#include "DiskThreads.h"

#include <QThread>
#include <QTimer>

#include <condition_variable>
#include <mutex>
#include <utility>

namespace {
using Clock = DiskVisit::Clock;
using namespace std::chrono_literals;
} // namespace

/// One piece of work, seen from both threads.
struct DiskWork::Job
{
    std::shared_ptr<DiskVisit::Progress> progress = std::make_shared<DiskVisit::Progress>();
    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;
    bool isDone = false; // it threw nothing

    bool waitFor(std::chrono::milliseconds time)
    {
        std::unique_lock lock(mutex);
        return ended.wait_for(lock, time, [this] { return hasEnded; });
    }
    void end(bool done)
    {
        const std::lock_guard lock(mutex);
        hasEnded = true;
        isDone = done;
        ended.notify_all();
    }
};

/// What a thread that was left behind may still look at.
struct DiskWork::Ledger
{
    std::mutex mutex;
    DiskWork *owner = nullptr; // null once it ended
};

DiskWork::DiskWork(std::chrono::milliseconds limit, QObject *parent, std::chrono::milliseconds moment)
    : QObject(parent)
    , m_limit(limit)
    , m_moment(moment)
    , m_guests(std::make_shared<DiskVisit::Guests>())
    , m_ledger(std::make_shared<Ledger>())
{
    m_guests->limit = limit;
    m_ledger->owner = this;
}

DiskWork::~DiskWork()
{
    for (const Outstanding &outstanding : std::as_const(m_outstanding))
        outstanding.job->progress->giveUp();
    const std::lock_guard lock(m_ledger->mutex);
    m_ledger->owner = nullptr;
}

/// @param number under which finish() is called at its end; 0: nobody is called
std::shared_ptr<DiskWork::Job> DiskWork::begin(Work work, quint64 number) const
{
    const auto job = std::make_shared<Job>();
    DiskThreads::start([job, guests = m_guests, ledger = m_ledger, number, work = std::move(work)] {
        bool isDone = true;
        try {
            DiskVisit visit(job->progress, guests);
            work(visit);
        } catch (...) {
            isDone = false;
        }
        job->end(isDone);
        const std::lock_guard lock(ledger->mutex);
        DiskWork *const owner = ledger->owner;
        if (owner && number != 0) {
            QMetaObject::invokeMethod(
                owner, [owner, number, isDone] { owner->finish(number, isDone); }, Qt::QueuedConnection);
        }
    });
    return job;
}

void DiskWork::start(Work work, std::function<void(bool)> done)
{
    const quint64 number = ++m_lastNumber;
    const std::shared_ptr<Job> job = begin(std::move(work), number);
    if (job->waitFor(m_moment))
        return done(job->isDone);
    m_outstanding.insert(number, {job, std::move(done)});
    watch(number);
}

void DiskWork::watch(quint64 number)
{
    const auto outstanding = m_outstanding.constFind(number);
    if (outstanding == m_outstanding.cend())
        return;
    DiskVisit::Progress &progress = *outstanding->job->progress;
    const auto silent = std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - progress.lastSign.load());
    if (silent >= m_limit && progress.giveUp())
        return finish(number, false);
    QTimer::singleShot(std::max(m_limit - silent, std::chrono::milliseconds(10ms)), this,
                       [this, number] { watch(number); });
}

bool DiskWork::awaitDone(Work work) const
{
    const std::shared_ptr<Job> job = begin(std::move(work), 0);
    constexpr auto look = 20ms; // between two looks at whether this thread shall end
    while (!job->waitFor(look)) {
        const bool isLate = Clock::now() - job->progress->lastSign.load() >= m_limit;
        if ((isLate || QThread::currentThread()->isInterruptionRequested()) && job->progress->giveUp())
            return false;
    }
    return job->isDone;
}

void DiskWork::finish(quint64 number, bool isDone)
{
    const auto outstanding = m_outstanding.constFind(number);
    if (outstanding == m_outstanding.cend())
        return;
    const std::function<void(bool)> done = outstanding->done;
    m_outstanding.erase(outstanding);
    done(isDone);
}
