#pragma once

#include "StationTrouble.h"

#include <QList>

class Database;

/// An alarm that ended.
struct PastAlarm
{
    StationTrouble trouble;
    QDateTime until;
};

/// The alarms in the station's database: those that stand, at most one of each kind and subject, and those that ended.
/// Throws DatabaseError.
class AlarmStore
{
public:
    /// @param database must outlive this object
    explicit AlarmStore(Database &database);

    QList<StationTrouble> standing() const;
    QList<PastAlarm> past(int limit) const; ///< those that ended last, first

    /// @p trouble stands, since its time; one that stands already goes on.
    void begin(const StationTrouble &trouble);
    /// What @p trouble, which stands, is acknowledged with from now on; with none, it is not.
    void acknowledge(const StationTrouble &trouble, const std::optional<Acknowledgement> &acknowledgement);
    /// The alarm of the kind and subject of @p trouble ended, with its words.
    void end(const StationTrouble &trouble, const QDateTime &until);

    /// Removes some of what ended before @p oldest, and of what is more than @p mostRows. Whether there is more of it.
    bool prune(const QDateTime &oldest, qint64 mostRows);

private:
    Database &m_database;
};
