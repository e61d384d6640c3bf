#include "TimedWork.h"

#include <QTimer>

#include <mutex>
#include <utility>

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
        bool isDone = true;
        try {
            work();
        } catch (...) {
            isDone = false;
        }
        const std::lock_guard lock(ledger->mutex);
        TimedWork *const owner = ledger->owner;
        if (owner) {
            QMetaObject::invokeMethod(
                owner, [owner, number, isDone] { owner->finish(number, isDone); }, Qt::QueuedConnection);
        }
    });
    QTimer::singleShot(m_limit, this, [this, number] { finish(number, false); });
}

void TimedWork::finish(quint64 number, bool isDone)
{
    if (const auto done = m_outstanding.take(number))
        done(isDone);
}
