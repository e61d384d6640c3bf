#include "DeletionStore.h"

#include "store/Database.h"

DeletionStore::DeletionStore(Database &database)
    : m_database(database)
{
}

void DeletionStore::begin(qint64 place, const QDateTime &time)
{
    m_database.run(QStringLiteral("INSERT OR REPLACE INTO recording_deletion (place, begun, ended, return_code)"
                                  " VALUES (?, ?, NULL, '')"),
                   {place, time.toMSecsSinceEpoch()});
}

void DeletionStore::end(qint64 place, const QString &returnCode, const QDateTime &time)
{
    m_database.run(QStringLiteral("UPDATE recording_deletion SET ended = ?, return_code = ? WHERE place = ?"),
                   {time.toMSecsSinceEpoch(), boundText(returnCode), place});
}

QHash<qint64, KeptDeletion> DeletionStore::all() const
{
    QHash<qint64, KeptDeletion> found;
    Rows rows = m_database.rows(QStringLiteral("SELECT place, begun, ended, return_code FROM recording_deletion"));
    while (rows.next()) {
        KeptDeletion deletion;
        deletion.begun = QDateTime::fromMSecsSinceEpoch(rows.value(1).toLongLong()).toUTC();
        if (!rows.value(2).isNull())
            deletion.ended = QDateTime::fromMSecsSinceEpoch(rows.value(2).toLongLong()).toUTC();
        deletion.returnCode = rows.value(3).toString();
        found.insert(rows.value(0).toLongLong(), deletion);
    }
    return found;
}
