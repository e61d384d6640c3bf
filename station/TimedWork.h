#pragma once

#include <QHash>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <functional>
#include <memory>

/// Runs work that may hang on threads of its own, and answers in time whether it hangs or not. Lives on one thread with
/// an event loop, and answers there.
///
/// Each piece of work names a key: what it waits for, a host for instance. The pieces of one key share a few threads
/// and wait in a queue for them; those of different keys never wait for each other. A piece that nobody waits for any
/// more is taken out of its queue and never begins.
class TimedWork : public QObject
{
    Q_OBJECT
public:
    static constexpr int threadsForEachKey = 4;

    /// @param limit after which a piece of work is given up, the time in its queue included
    explicit TimedWork(std::chrono::milliseconds limit, QObject *parent = nullptr);
    /// What is outstanding is not answered any more. Waits a moment for the threads; one that still hangs is left to
    /// itself, so work must not use what ends before the process does.
    ~TimedWork() override;

    std::chrono::milliseconds limit() const { return m_limit; }

    /// Runs @p work, and gives what it returned to @p done; @p late instead when the limit passed before, or when the
    /// work threw. Exactly one of them, and never from within this call.
    template<typename Result>
    void run(const QString &key, std::function<Result()> work, const Result &late,
             std::function<void(const Result &)> done)
    {
        const auto result = std::make_shared<Result>(late);
        start(
            key, [result, work = std::move(work)] { *result = work(); },
            [result, late, done = std::move(done)](bool isDone) { done(isDone ? *result : late); });
    }

    /// Runs @p work and waits for it here, no longer than the limit, nor than until this thread is asked to end; the
    /// result is @p late then, and when the work threw.
    template<typename Result>
    Result await(const QString &key, std::function<Result()> work, const Result &late)
    {
        const auto result = std::make_shared<Result>(late);
        return awaitDone(key, [result, work = std::move(work)] { *result = work(); }) ? *result : late;
    }

private:
    struct Piece;
    struct Queues;
    struct Outstanding
    {
        std::function<void(bool isDone)> done;
        QString key;
        std::shared_ptr<Piece> piece;
    };

    void start(const QString &key, std::function<void()> work, std::function<void(bool)> done);
    bool awaitDone(const QString &key, std::function<void()> work);
    void finish(quint64 number, bool isDone);
    void enqueue(const QString &key, const std::shared_ptr<Piece> &piece);

    std::chrono::milliseconds m_limit;
    std::unique_ptr<QThreadPool> m_threads;
    std::shared_ptr<Queues> m_queues;
    QHash<quint64, Outstanding> m_outstanding;
    quint64 m_lastNumber = 0;
};
