#include "ActivityStore.h"

#include "store/Database.h"

namespace {
constexpr int mostPruned = 1000; // in one transaction
} // namespace

ActivityStore::ActivityStore(Database &database)
    : m_database(database)
{
}

qint64 ActivityStore::insert(const Activity &activity)
{
    return m_database
        .run(QStringLiteral("INSERT INTO activity (time, client, user, command, group_id, group_name, subject, "
                            "return_code, duration) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
             {activity.time.toMSecsSinceEpoch(), boundText(activity.client), boundText(activity.user),
              boundText(activity.command), boundText(activity.subject.groupId), boundText(activity.subject.groupName),
              boundText(activity.subject.object), boundText(activity.returnCode), activity.duration})
        .lastNumber;
}

QList<Activity> ActivityStore::list(const ActivityQuery &query) const
{
    QStringList conditions;
    QVariantList values;
    const auto require = [&](bool isGiven, const char *condition, const QVariant &value) {
        if (!isGiven)
            return;
        conditions.append(QString::fromLatin1(condition));
        values.append(value);
    };
    require(query.from.isValid(), "time >= ?", query.from.toMSecsSinceEpoch());
    require(query.until.isValid(), "time < ?", query.until.toMSecsSinceEpoch());
    require(!query.groupId.isEmpty(), "group_id = ?", query.groupId);
    require(query.before > 0, "number < ?", query.before);
    const QString where =
        conditions.isEmpty() ? QString() : QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    values.append(query.limit);
    QList<Activity> list;
    Rows rows = m_database.rows(QStringLiteral("SELECT number, time, client, user, command, group_id, group_name, "
                                               "subject, return_code, duration FROM activity%1 "
                                               "ORDER BY number DESC LIMIT ?")
                                    .arg(where),
                                values);
    while (rows.next()) {
        list.append({rows.value(0).toLongLong(),
                     QDateTime::fromMSecsSinceEpoch(rows.value(1).toLongLong()).toUTC(),
                     rows.value(2).toString(),
                     rows.value(3).toString(),
                     rows.value(4).toString(),
                     {rows.value(5).toString(), rows.value(6).toString(), rows.value(7).toString()},
                     rows.value(8).toString(),
                     rows.value(9).toLongLong()});
    }
    return list;
}

bool ActivityStore::prune(const QDateTime &oldest, qint64 mostRows)
{
    const QString remove = QStringLiteral("DELETE FROM activity WHERE number IN (SELECT number FROM activity "
                                          "WHERE %1 LIMIT %2)");
    const qint64 tooOld =
        m_database.run(remove.arg(QStringLiteral("time < ?")).arg(mostPruned), {oldest.toMSecsSinceEpoch()}).rows;
    const qint64 tooMany =
        m_database
            .run(remove.arg(QStringLiteral("number <= (SELECT max(number) FROM activity) - ?")).arg(mostPruned),
                 {mostRows})
            .rows;
    return tooOld == mostPruned || tooMany == mostPruned;
}
