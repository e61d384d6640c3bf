#include "TimedWork.h"

#include <QDeadlineTimer>
#include <QSemaphore>
#include <QThread>
#include <QTimer>

#include <deque>
#include <limits>
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

struct TimedWork::Piece
{
    std::function<void()> work;
    std::function<void(bool isDone)> ended; // called on the thread that did the work
    QDeadlineTimer deadline;
};

/// What a thread that was given up may still look at.
struct TimedWork::Queues
{
    struct Queue
    {
        std::deque<std::shared_ptr<Piece>> waiting;
        int threads = 0;
    };

    std::mutex mutex;
    QHash<QString, Queue> byKey;
    TimedWork *owner = nullptr; // null once it ended

    bool add(const QString &key, const std::shared_ptr<Piece> &piece);
    void drop(const QString &key, const std::shared_ptr<Piece> &piece);
    std::shared_ptr<Piece> next(const QString &key);
    void workThrough(const QString &key);
};

/// Whether the queue is to get another thread, which is counted already.
bool TimedWork::Queues::add(const QString &key, const std::shared_ptr<Piece> &piece)
{
    const std::lock_guard lock(mutex);
    Queue &queue = byKey[key];
    queue.waiting.push_back(piece);
    if (queue.threads == threadsForEachKey)
        return false;
    ++queue.threads;
    return true;
}

/// Nothing happens to a piece that began.
void TimedWork::Queues::drop(const QString &key, const std::shared_ptr<Piece> &piece)
{
    const std::lock_guard lock(mutex);
    const auto queue = byKey.find(key);
    if (queue != byKey.end())
        std::erase(queue->waiting, piece);
}

/// None when the thread that asks is to leave the queue.
std::shared_ptr<TimedWork::Piece> TimedWork::Queues::next(const QString &key)
{
    const std::lock_guard lock(mutex);
    Queue &queue = byKey[key];
    while (!queue.waiting.empty()) {
        const std::shared_ptr<Piece> piece = std::move(queue.waiting.front());
        queue.waiting.pop_front();
        if (!piece->deadline.hasExpired())
            return piece;
    }
    if (--queue.threads == 0)
        byKey.remove(key);
    return {};
}

void TimedWork::Queues::workThrough(const QString &key)
{
    while (const std::shared_ptr<Piece> piece = next(key))
        piece->ended(succeeds(piece->work));
}

TimedWork::TimedWork(std::chrono::milliseconds limit, QObject *parent)
    : QObject(parent)
    , m_limit(limit)
    , m_threads(std::make_unique<QThreadPool>())
    , m_queues(std::make_shared<Queues>())
{
    m_threads->setMaxThreadCount(std::numeric_limits<int>::max()); // the queues bound them
    m_queues->owner = this;
}

TimedWork::~TimedWork()
{
    {
        const std::lock_guard lock(m_queues->mutex);
        m_queues->owner = nullptr;
        for (Queues::Queue &queue : m_queues->byKey)
            queue.waiting.clear();
    }
    constexpr int moment = 500; // milliseconds
    if (!m_threads->waitForDone(moment))
        m_threads.release(); // its destructor would wait for the threads that hang
}

void TimedWork::start(const QString &key, std::function<void()> work, std::function<void(bool)> done)
{
    const quint64 number = ++m_lastNumber;
    const auto ended = [queues = m_queues, number](bool isDone) {
        const std::lock_guard lock(queues->mutex);
        TimedWork *const owner = queues->owner;
        if (owner) {
            QMetaObject::invokeMethod(
                owner, [owner, number, isDone] { owner->finish(number, isDone); }, Qt::QueuedConnection);
        }
    };
    const auto piece = std::make_shared<Piece>(Piece{std::move(work), ended, QDeadlineTimer(m_limit)});
    m_outstanding.insert(number, {std::move(done), key, piece});
    enqueue(key, piece);
    QTimer::singleShot(m_limit, this, [this, number] { finish(number, false); });
}

bool TimedWork::awaitDone(const QString &key, std::function<void()> work)
{
    struct Outcome
    {
        QSemaphore ended;
        bool isDone = false;
    };
    const auto outcome = std::make_shared<Outcome>();
    const auto ended = [outcome](bool isDone) {
        outcome->isDone = isDone;
        outcome->ended.release();
    };
    const QDeadlineTimer deadline(m_limit);
    const auto piece = std::make_shared<Piece>(Piece{std::move(work), ended, deadline});
    enqueue(key, piece);
    constexpr int look = 20; // milliseconds between two looks at whether this thread shall end
    while (!outcome->ended.tryAcquire(1, look)) {
        if (deadline.hasExpired() || QThread::currentThread()->isInterruptionRequested()) {
            m_queues->drop(key, piece);
            return false;
        }
    }
    return outcome->isDone;
}

void TimedWork::enqueue(const QString &key, const std::shared_ptr<Piece> &piece)
{
    if (m_queues->add(key, piece))
        m_threads->start([queues = m_queues, key] { queues->workThrough(key); });
}

void TimedWork::finish(quint64 number, bool isDone)
{
    const Outstanding outstanding = m_outstanding.take(number);
    if (!outstanding.done)
        return;
    m_queues->drop(outstanding.key, outstanding.piece);
    outstanding.done(isDone);
}
