#pragma once

#include <QHash>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <functional>
#include <memory>

/// Runs work that may hang on threads of its own, and answers in time whether it hangs or not. Lives on one thread with
/// an event loop, and answers there.
class TimedWork : public QObject
{
    Q_OBJECT
public:
    /// @param limit after which a piece of work is given up
    explicit TimedWork(std::chrono::milliseconds limit, QObject *parent = nullptr);
    /// What is outstanding is not answered any more. Waits a moment for the threads; one that still hangs is left to
    /// itself, so work must not use what ends before the process does.
    ~TimedWork() override;

    std::chrono::milliseconds limit() const { return m_limit; }

    /// Runs @p work, and gives what it returned to @p done; @p late instead when the limit passed before, or when the
    /// work threw. Exactly one of them, and never from within this call.
    template<typename Result>
    void run(std::function<Result()> work, const Result &late, std::function<void(const Result &)> done)
    {
        const auto result = std::make_shared<Result>(late);
        start([result, work = std::move(work)] { *result = work(); },
              [result, late, done = std::move(done)](bool isDone) { done(isDone ? *result : late); });
    }

    /// Runs @p work and waits for it here, no longer than the limit, nor than until this thread is asked to end; the
    /// result is @p late then, and when the work threw.
    template<typename Result>
    Result await(std::function<Result()> work, const Result &late)
    {
        const auto result = std::make_shared<Result>(late);
        return awaitDone([result, work = std::move(work)] { *result = work(); }) ? *result : late;
    }

private:
    struct Ledger;

    bool awaitDone(std::function<void()> work);

    void start(std::function<void()> work, std::function<void(bool)> done);
    void finish(quint64 number, bool isDone);

    std::chrono::milliseconds m_limit;
    std::unique_ptr<QThreadPool> m_threads;
    std::shared_ptr<Ledger> m_ledger;
    QHash<quint64, std::function<void(bool isDone)>> m_outstanding;
    quint64 m_lastNumber = 0;
};
