#include "HistoryWorker.h"

#include "StationLog.h"
#include "store/Database.h"

#include <QThread>

#include <utility>

HistoryWorker::HistoryWorker(QString dataFolder)
    : m_dataFolder(std::move(dataFolder))
{
}

HistoryWorker::~HistoryWorker() = default;

Database &HistoryWorker::database()
{
    if (!m_database)
        m_database = std::make_unique<Database>(m_dataFolder);
    return *m_database;
}

HistoryPage HistoryWorker::page(const HistoryQuery &query)
{
    try {
        return HistoryStore(database()).page(query);
    } catch (const DatabaseError &) {
        m_database.reset();
        throw;
    }
}

void HistoryWorker::keep(const QList<UsageSample> &samples, qint64 now)
{
    constexpr int attempts = 10; // of a moment each, so that the end need not wait for more
    for (int attempt = 1;; ++attempt) {
        try {
            if (m_end)
                throw DatabaseError(*m_end);
            keep(HistoryResolution::Hour, samples, now);
            keep(HistoryResolution::Day, samples, now);
            prune(now);
            return emit kept();
        } catch (const DatabaseError &error) {
            const bool isLast = attempt == attempts || QThread::currentThread()->isInterruptionRequested();
            if (error.trouble() != DatabaseTrouble::Busy || isLast)
                return drop(error, now);
        }
    }
}

/// One line an hour is seen by default: it is tried again every minute.
void HistoryWorker::drop(const DatabaseError &error, qint64 now)
{
    const qint64 hour = now - now % stepOf(HistoryResolution::Hour);
    constexpr auto line = "The samples of usage figures were dropped: %s";
    if (std::exchange(m_warnedHour, hour) == hour)
        qCInfo(stationLog, line, error.what());
    else
        qCWarning(stationLog, line, error.what());
    if (error.trouble() == DatabaseTrouble::Damaged || error.trouble() == DatabaseTrouble::Replaced)
        m_end = error;
    m_database.reset();
    emit failed(error);
}

void HistoryWorker::keep(HistoryResolution resolution, const QList<UsageSample> &samples, qint64 now)
{
    constexpr qsizetype samplesAtOnce = 500; // others wait for the database meanwhile
    Step &step = resolution == HistoryResolution::Hour ? m_hour : m_day;
    const qint64 time = now - now % stepOf(resolution);
    if (step.time != time)
        step = {time, {}};
    QList<UsageSample> missing;
    for (const UsageSample &sample : samples) {
        const auto known = step.written.constFind(sample.subject);
        if (known == step.written.cend() || (known->isOurs && sample.knowsMoreThan(known->sample)))
            missing.append(sample);
    }
    for (qsizetype first = 0; first < missing.size() && !QThread::currentThread()->isInterruptionRequested();
         first += samplesAtOnce) {
        const QList<UsageSample> batch = missing.mid(first, samplesAtOnce);
        QList<Written> done;
        Transaction transaction(database(), Transaction::Patience::Short);
        HistoryStore store(database());
        for (const UsageSample &sample : batch) {
            const auto known = step.written.constFind(sample.subject);
            if (known == step.written.cend()) {
                done.append({sample, store.insert(resolution, time, sample)});
                continue;
            }
            store.complete(resolution, time, sample);
            Written completed = *known;
            for (std::size_t i = 0; i < sample.figures.size(); ++i) {
                if (!completed.sample.figures[i])
                    completed.sample.figures[i] = sample.figures[i];
            }
            done.append(completed);
        }
        transaction.commit();
        for (const Written &written : std::as_const(done))
            step.written.insert(written.sample.subject, written);
    }
}

void HistoryWorker::prune(qint64 now)
{
    if (m_prunedHour == m_hour.time)
        return;
    HistoryStore(database()).prune(now);
    m_prunedHour = m_hour.time;
}
