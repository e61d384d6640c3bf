#pragma once

#include "Activity.h"

#include <QList>

class Database;

/// Which activity is asked for; what is not given excludes nothing.
struct ActivityQuery
{
    QDateTime from; ///< of that time or later
    QDateTime until; ///< before that time
    QString groupId;
    qint64 before = 0; ///< with a lower number than that; 0: with any
    int limit = 100;
};

/// The activity in the station's database. Throws DatabaseError.
class ActivityStore
{
public:
    /// @param database must outlive this object
    explicit ActivityStore(Database &database);

    /// The number of the new entry.
    qint64 insert(const Activity &activity);
    QList<Activity> list(const ActivityQuery &query) const; ///< the newest first

    /// Removes some of what is older than @p oldest, and of what is more than @p mostRows. Whether there is more of it.
    bool prune(const QDateTime &oldest, qint64 mostRows);

private:
    Database &m_database;
};
