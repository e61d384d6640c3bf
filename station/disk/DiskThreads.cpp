#include "DiskThreads.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {
struct Pool
{
    std::mutex mutex;
    std::condition_variable hasWork;
    std::deque<std::function<void()>> waiting;
    std::size_t idle = 0;
    int busy = 0;
};

Pool &pool()
{
    static auto *const pool = new Pool; // the threads outlive everything static
    return *pool;
}

void serve()
{
    constexpr std::chrono::seconds patience{10};
    Pool &threads = pool();
    std::unique_lock lock(threads.mutex);
    while (true) {
        ++threads.idle;
        const bool isWanted = threads.hasWork.wait_for(lock, patience, [&threads] { return !threads.waiting.empty(); });
        --threads.idle;
        if (!isWanted)
            return;
        std::function<void()> work = std::move(threads.waiting.front());
        threads.waiting.pop_front();
        ++threads.busy;
        lock.unlock();
        try {
            work();
        } catch (...) { // whoever waits for it is told that it is late
        }
        work = nullptr;
        lock.lock();
        --threads.busy;
    }
}
} // namespace

void DiskThreads::start(std::function<void()> work)
{
    Pool &threads = pool();
    const std::lock_guard lock(threads.mutex);
    threads.waiting.push_back(std::move(work));
    if (threads.idle >= threads.waiting.size())
        return threads.hasWork.notify_one();
    try {
        std::thread(serve).detach();
    } catch (const std::system_error &) {
        threads.waiting.pop_back();
        throw;
    }
}

int DiskThreads::busyThreads()
{
    Pool &threads = pool();
    const std::lock_guard lock(threads.mutex);
    return threads.busy + static_cast<int>(threads.waiting.size());
}
