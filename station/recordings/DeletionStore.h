#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

class Database;

/// A deletion of recordings that was begun.
struct KeptDeletion
{
    QDateTime begun; ///< UTC
    QDateTime ended; ///< null: it goes on, or was cut off by the end of its station
    QString returnCode; ///< what it came to; empty before
};

/// What the station's database knows of deletions: the last one of each place, as long as the place holds recordings
/// that belong to no group. Throws DatabaseError.
class DeletionStore
{
public:
    /// @param database must outlive this object
    explicit DeletionStore(Database &database);

    /// Takes the place of an older one. To be called within a Transaction.
    void begin(qint64 place, const QDateTime &time);
    void end(qint64 place, const QString &returnCode, const QDateTime &time);
    QHash<qint64, KeptDeletion> all() const; ///< by the number of the place

private:
    Database &m_database;
};
