#include "AlarmStore.h"

#include "store/Database.h"

namespace {
constexpr int mostPruned = 1000; // in one transaction

QDateTime timeOf(const QVariant &milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds.toLongLong()).toUTC();
}

const QString columns =
    QStringLiteral("kind, severity, subject, text, remedy, since, acknowledged_at, acknowledged_by, note");

/// Of those columns, in front.
StationTrouble troubleIn(const Rows &row)
{
    std::optional<Acknowledgement> acknowledgement;
    if (!row.value(6).isNull())
        acknowledgement = {timeOf(row.value(6)), row.value(7).toString(), row.value(8).toString()};
    const bool isWarning = row.value(1).toInt() == static_cast<int>(StationTrouble::Severity::Warning);
    return {row.value(0).toString(), isWarning ? StationTrouble::Severity::Warning : StationTrouble::Severity::Error,
            row.value(2).toString(), row.value(3).toString(),
            row.value(4).toString(), timeOf(row.value(5)),
            acknowledgement};
}
} // namespace

AlarmStore::AlarmStore(Database &database)
    : m_database(database)
{
}

QList<StationTrouble> AlarmStore::standing() const
{
    QList<StationTrouble> troubles;
    Rows rows = m_database.rows(QStringLiteral("SELECT %1 FROM alarm WHERE until IS NULL").arg(columns));
    while (rows.next())
        troubles.append(troubleIn(rows));
    return troubles;
}

QList<PastAlarm> AlarmStore::past(int limit) const
{
    QList<PastAlarm> alarms;
    Rows rows = m_database.rows(QStringLiteral("SELECT %1, until FROM alarm WHERE until IS NOT NULL "
                                               "ORDER BY until DESC, number DESC LIMIT ?")
                                    .arg(columns),
                                {limit});
    while (rows.next())
        alarms.append({troubleIn(rows), timeOf(rows.value(9))});
    return alarms;
}

void AlarmStore::begin(const StationTrouble &trouble)
{
    m_database.run(QStringLiteral("INSERT INTO alarm (kind, severity, subject, text, remedy, since) "
                                  "VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING"),
                   {boundText(trouble.kind), static_cast<int>(trouble.severity), boundText(trouble.subject),
                    boundText(trouble.text), boundText(trouble.remedy), trouble.since.toMSecsSinceEpoch()});
}

void AlarmStore::acknowledge(const StationTrouble &trouble, const std::optional<Acknowledgement> &acknowledgement)
{
    const QVariant none; // NULL
    m_database.run(QStringLiteral("UPDATE alarm SET acknowledged_at = ?, acknowledged_by = ?, note = ? "
                                  "WHERE kind = ? AND subject = ? AND until IS NULL"),
                   {acknowledgement ? QVariant(acknowledgement->time.toMSecsSinceEpoch()) : none,
                    acknowledgement ? boundText(acknowledgement->by) : none,
                    acknowledgement ? boundText(acknowledgement->note) : none, boundText(trouble.kind),
                    boundText(trouble.subject)});
}

void AlarmStore::end(const StationTrouble &trouble, const QDateTime &until)
{
    m_database.run(QStringLiteral("UPDATE alarm SET severity = ?, text = ?, remedy = ?, until = ? "
                                  "WHERE kind = ? AND subject = ? AND until IS NULL"),
                   {static_cast<int>(trouble.severity), boundText(trouble.text), boundText(trouble.remedy),
                    until.toMSecsSinceEpoch(), boundText(trouble.kind), boundText(trouble.subject)});
}

bool AlarmStore::prune(const QDateTime &oldest, qint64 mostRows)
{
    const qint64 tooOld =
        m_database
            .run(QStringLiteral("DELETE FROM alarm WHERE number IN (SELECT number FROM alarm WHERE until < ? LIMIT %1)")
                     .arg(mostPruned),
                 {oldest.toMSecsSinceEpoch()})
            .rows;
    const qint64 tooMany =
        m_database
            .run(QStringLiteral("DELETE FROM alarm WHERE number IN (SELECT number FROM alarm WHERE until IS NOT NULL "
                                "ORDER BY until DESC, number DESC LIMIT %1 OFFSET ?)")
                     .arg(mostPruned),
                 {mostRows})
            .rows;
    return tooOld == mostPruned || tooMany == mostPruned;
}
