#pragma once

#include "UsageSample.h"

#include <QList>

#include <optional>

class Database;

/// How far apart samples are.
enum class HistoryResolution { Hour = 0, Day = 1 };

/// Seconds from one sample to the next.
qint64 stepOf(HistoryResolution resolution);
/// How many steps back samples are kept: three months of hours, five years of days. So a subject has 4040 samples at
/// most, but for those of times to come that a wrong clock made.
qint64 keptSteps(HistoryResolution resolution);

/// What is asked for. Times are seconds since 1970, in UTC.
struct HistoryQuery
{
    HistorySubject subject;
    HistoryResolution resolution = HistoryResolution::Hour;
    std::optional<qint64> from; ///< none: the first sample
    qint64 until = 0; ///< samples of this time are left out
    qint64 now = 0;
};

struct TimedSample
{
    qint64 time = 0; ///< the full hour, or the beginning of the day
    UsageSample sample;
};

/// From one time, which is in it, to another, which is not.
struct HistoryGap
{
    qint64 from = 0;
    qint64 until = 0;

    friend bool operator==(const HistoryGap &, const HistoryGap &) = default;
};

struct HistoryPage
{
    bool isSubjectKnown = false; ///< there are samples of it, or a recording group that will have some
    QList<TimedSample> samples; ///< the oldest first
    QList<HistoryGap> gaps; ///< when the station sampled nothing, up to moreFrom
    std::optional<qint64> moreFrom; ///< the time of the next sample, which did not fit
};

/// The samples in the station's database. Throws DatabaseError.
class HistoryStore
{
public:
    static constexpr qsizetype pageSize = 1000; ///< samples in one page

    /// @param database must outlive this object
    explicit HistoryStore(Database &database);

    /// Keeps @p sample; false where the subject has one of that time already, and nothing is done.
    /// @param time a multiple of the step
    bool insert(HistoryResolution resolution, qint64 time, const UsageSample &sample);
    /// Adds the figures that the kept sample of that time does not have; those that it has stay.
    void complete(HistoryResolution resolution, qint64 time, const UsageSample &sample);

    /// Forgets samples that are too old at @p now, and subjects without samples, in several transactions.
    void prune(qint64 now);

    HistoryPage page(const HistoryQuery &query) const;

private:
    std::optional<qint64> numberOf(const HistorySubject &subject) const;
    bool isGroup(const HistorySubject &subject) const;
    QList<HistoryGap> gaps(const HistoryQuery &query, qint64 until) const;

    Database &m_database;
};
