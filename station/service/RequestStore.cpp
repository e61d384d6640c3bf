#include "RequestStore.h"

#include "store/Database.h"

#include <QDataStream>
#include <QIODevice>

namespace {
constexpr int mostPruned = 1000; // in one transaction

QByteArray written(const QVariant &data)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << data;
    return bytes;
}

QVariant read(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_6_4);
    QVariant data;
    stream >> data;
    if (stream.status() != QDataStream::Ok)
        throw DatabaseError(DatabaseTrouble::Damaged, QStringLiteral("a kept answer cannot be read"));
    return data;
}
} // namespace

RequestStore::RequestStore(Database &database)
    : m_database(database)
{
}

std::optional<KeptRequest> RequestStore::find(const QString &id, const QDateTime &oldest) const
{
    const Snapshot snapshot(m_database);
    Rows requests =
        m_database.rows(QStringLiteral("SELECT number, fingerprint FROM edit_request WHERE id = ? AND time >= ?"),
                        {boundText(id), oldest.toMSecsSinceEpoch()});
    if (!requests.next())
        return {};
    KeptRequest kept{requests.value(1).toByteArray(), {}};
    Rows parts = m_database.rows(
        QStringLiteral("SELECT return_code, data, is_last FROM edit_reply WHERE request = ? ORDER BY part"),
        {requests.value(0)});
    while (parts.next())
        kept.parts.append({parts.value(0).toString(), read(parts.value(1).toByteArray()), parts.value(2).toBool()});
    return kept;
}

void RequestStore::insert(const QString &id, const QByteArray &fingerprint, const QDateTime &time)
{
    m_database.run(QStringLiteral("DELETE FROM edit_request WHERE id = ?"), {boundText(id)});
    m_database.run(QStringLiteral("INSERT INTO edit_request (id, fingerprint, time) VALUES (?, ?, ?)"),
                   {boundText(id), fingerprint, time.toMSecsSinceEpoch()});
}

void RequestStore::append(const QString &id, qsizetype first, const QList<StationReply> &parts)
{
    Statement insertPart =
        m_database.prepared(QStringLiteral("INSERT INTO edit_reply (request, part, return_code, data, is_last) "
                                           "SELECT number, ?, ?, ?, ? FROM edit_request WHERE id = ?"));
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const StationReply &part = parts.at(i);
        insertPart.run({first + i, boundText(part.returnCode), written(part.data), part.finish, boundText(id)});
    }
}

bool RequestStore::prune(const QDateTime &oldest, const QDateTime &newest)
{
    const Effect removed =
        m_database.run(QStringLiteral("DELETE FROM edit_request WHERE number IN (SELECT number FROM edit_request "
                                      "WHERE time < ? OR time > ? LIMIT %1)")
                           .arg(mostPruned),
                       {oldest.toMSecsSinceEpoch(), newest.toMSecsSinceEpoch()});
    return removed.rows == mostPruned;
}
