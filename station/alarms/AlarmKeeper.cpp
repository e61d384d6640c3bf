#include "AlarmKeeper.h"

#include "StationData.h"
#include "StationLog.h"
#include "store/Database.h"

#include <utility>

namespace {
constexpr qint64 timeToTryAgain = 1000; // milliseconds
constexpr qsizetype mostChanges = 10'000; // that wait for the database

bool isPending(const StationTrouble &trouble)
{
    return trouble.severity == StationTrouble::Severity::Pending;
}
} // namespace

AlarmKeeper::AlarmKeeper(StationData &data, const RecordSettings &settings)
    : m_data(data)
    , m_settings(settings)
{
}

void AlarmKeeper::follow(QList<StationTrouble> &now, bool isSettled)
{
    load(now);
    const QDateTime time = m_settings.currentTime();
    Alarms before = std::exchange(m_standing, {});
    for (StationTrouble &trouble : now) {
        if (isPending(trouble))
            continue;
        if (const auto known = before.constFind(trouble.key()); known != before.cend()) {
            trouble.acknowledgement = known->acknowledgement;
            before.erase(known);
        } else if (const auto earlier = m_earlier.constFind(trouble.key()); earlier != m_earlier.cend()) {
            trouble.since = earlier->since;
            trouble.acknowledgement = earlier->acknowledgement;
            m_earlier.erase(earlier);
        } else {
            note(trouble, {});
        }
        m_standing.insert(trouble.key(), trouble);
    }
    for (const StationTrouble &ended : std::as_const(before))
        note(ended, time);
    if (m_isLoaded && isSettled) {
        const Alarms notMet = std::exchange(m_earlier, {});
        for (const StationTrouble &ended : notMet)
            note(ended, time);
    }
    keep();
}

QList<PastAlarm> AlarmKeeper::past(int limit)
{
    return m_data.isDatabaseThere() ? AlarmStore(m_data.database()).past(limit) : QList<PastAlarm>();
}

/// What is known of this run already goes on with the time of the runs before.
void AlarmKeeper::load(QList<StationTrouble> &now)
{
    if (m_isLoaded || !mayTry() || !m_data.isDatabaseThere())
        return;
    try {
        const QList<StationTrouble> standing = AlarmStore(m_data.database()).standing();
        for (const StationTrouble &trouble : standing)
            m_earlier.insert(trouble.key(), trouble);
        m_isLoaded = true;
    } catch (const DatabaseError &error) {
        return putOff(error);
    }
    for (StationTrouble &told : now) {
        const auto known = m_standing.find(told.key());
        const auto earlier = m_earlier.constFind(told.key());
        if (known == m_standing.end() || earlier == m_earlier.cend())
            continue;
        told.since = earlier->since;
        known->acknowledgement = earlier->acknowledgement;
        m_earlier.erase(earlier);
    }
}

void AlarmKeeper::note(const StationTrouble &trouble, const QDateTime &until)
{
    if (m_changes.size() == mostChanges)
        m_changes.removeFirst();
    m_changes.append({trouble, until});
}

void AlarmKeeper::keep()
{
    if (m_changes.isEmpty() || !mayTry() || !m_data.isDatabaseThere())
        return;
    try {
        flush();
    } catch (const DatabaseError &error) {
        putOff(error);
    }
}

void AlarmKeeper::flush()
{
    if (m_changes.isEmpty())
        return;
    Database &database = m_data.database();
    Transaction transaction(database, Transaction::Patience::Short);
    AlarmStore store(database);
    for (const Change &change : std::as_const(m_changes)) {
        if (change.until.isValid())
            store.end(change.trouble, change.until);
        else
            store.begin(change.trouble);
    }
    transaction.commit();
    m_changes.clear();
}

void AlarmKeeper::setAcknowledgement(const StationTrouble &trouble,
                                     const std::optional<Acknowledgement> &acknowledgement)
{
    const auto standing = m_standing.find(trouble.key());
    if (standing != m_standing.end())
        standing->acknowledgement = acknowledgement;
}

bool AlarmKeeper::mayTry() const
{
    return !m_failed.isValid() || m_failed.hasExpired(timeToTryAgain);
}

void AlarmKeeper::putOff(const DatabaseError &error)
{
    qCInfo(stationLog, "The alarms are not kept at the moment: %s", error.what());
    if (error.trouble() == DatabaseTrouble::Damaged)
        m_data.note(error);
    m_failed.start();
}
