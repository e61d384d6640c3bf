#pragma once

#include "DiskVisit.h"

#include <QHash>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

/// Runs work on disks that may hang on threads beside the caller's, and answers in time whether it hangs or not. Lives
/// on one thread, and answers there. Work must not use what may end before it does.
class DiskWork : public QObject
{
    Q_OBJECT
public:
    /// @param limit how long a piece of work may give no sign of life (DiskVisit::enter()) before it is given up
    /// @param moment how long run() waits for work that ends soon
    explicit DiskWork(std::chrono::milliseconds limit, QObject *parent = nullptr,
                      std::chrono::milliseconds moment = std::chrono::milliseconds(50));
    /// What is outstanding is not answered any more; nothing is waited for.
    ~DiskWork() override;

    /// Runs @p work, and gives what it returned to @p done; @p late instead when it was given up, or threw. Exactly one
    /// of them: within this call when the work takes no more than a moment, so that commands to disks that answer are
    /// answered in their order, else when the event loop turns.
    template<typename Result>
    void run(std::function<Result(DiskVisit &)> work, const Result &late, std::function<void(const Result &)> done)
    {
        const auto result = std::make_shared<Result>(late);
        start([result, work = std::move(work)](DiskVisit &visit) { *result = work(visit); },
              [result, late, done = std::move(done)](bool isDone) { done(isDone ? *result : late); });
    }

    /// Runs @p work and waits for it here until it is given up, or this thread is asked to end: the result is @p late
    /// then, and when the work threw.
    template<typename Result>
    Result await(std::function<Result(DiskVisit &)> work, const Result &late) const
    {
        const auto result = std::make_shared<Result>(late);
        return awaitDone([result, work = std::move(work)](DiskVisit &visit) { *result = work(visit); }) ? *result
                                                                                                        : late;
    }

private:
    using Work = std::function<void(DiskVisit &)>;
    struct Job;
    struct Ledger;

    std::shared_ptr<Job> begin(Work work, quint64 number) const;
    bool awaitDone(Work work) const;
    void start(Work work, std::function<void(bool)> done);
    void watch(quint64 number);
    void finish(quint64 number, bool isDone);

    struct Outstanding
    {
        std::shared_ptr<Job> job;
        std::function<void(bool isDone)> done;
    };

    std::chrono::milliseconds m_limit;
    std::chrono::milliseconds m_moment;
    std::shared_ptr<DiskVisit::Guests> m_guests;
    std::shared_ptr<Ledger> m_ledger;
    QHash<quint64, Outstanding> m_outstanding;
    quint64 m_lastNumber = 0;
};
