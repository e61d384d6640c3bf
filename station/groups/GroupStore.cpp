#include "GroupStore.h"

#include "NameOrder.h"
#include "store/Database.h"

#include <QHash>

#include <algorithm>

namespace {
const QString selectGroups = QStringLiteral(
    "SELECT number, id, name, folder, reserved_minutes, reserved_time_enabled FROM recording_group ORDER BY number");
const QString selectPaths =
    QStringLiteral("SELECT group_number, path, kind, reserved_megabytes, recovery FROM group_path ORDER BY number");
const QString selectMembers =
    QStringLiteral("SELECT group_number, camera, stream, time_shift, seamless FROM group_member ORDER BY number");
const QString selectNodes = QStringLiteral("SELECT group_number, node FROM group_node ORDER BY number");

/// The number under which the tables know the group with @p id.
std::optional<qint64> numberOf(Database &database, const QString &id)
{
    QSqlQuery query = database.run(QStringLiteral("SELECT number FROM recording_group WHERE id = ?"), {id});
    if (!query.next())
        return {};
    return query.value(0).toLongLong();
}

/// An empty text is bound as such: a null QString would be NULL.
QVariant text(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

void executeWith(QSqlQuery &query, const QVariantList &values)
{
    for (const QVariant &value : values)
        query.addBindValue(value);
    execute(query);
}

void insertLists(Database &database, qint64 number, const RecordingGroup &group)
{
    QSqlQuery insert = database.prepared(QStringLiteral(
        "INSERT INTO group_path (group_number, path, kind, reserved_megabytes, recovery) VALUES (?, ?, ?, ?, ?)"));
    for (const GroupPath &path : group.paths) {
        executeWith(insert,
                    {number, text(path.path), static_cast<int>(path.kind), path.reservedMegabytes, path.isRecovery});
    }
    insert = database.prepared(QStringLiteral(
        "INSERT INTO group_member (group_number, camera, stream, time_shift, seamless) VALUES (?, ?, ?, ?, ?)"));
    for (const GroupMember &member : group.members)
        executeWith(insert, {number, text(member.camera), member.stream, member.timeShift, member.seamless});
    insert = database.prepared(QStringLiteral("INSERT INTO group_node (group_number, node) VALUES (?, ?)"));
    for (const QString &node : group.nodeIds)
        executeWith(insert, {number, text(node)});
}
} // namespace

GroupStore::GroupStore(Database &database)
    : m_database(database)
{
}

QList<RecordingGroup> GroupStore::groups() const
{
    const Snapshot snapshot(m_database);
    QList<RecordingGroup> groups;
    QHash<qint64, qsizetype> places;
    QSqlQuery query = m_database.run(selectGroups);
    while (query.next()) {
        places.insert(query.value(0).toLongLong(), groups.size());
        RecordingGroup group;
        group.id = query.value(1).toString();
        group.name = query.value(2).toString();
        group.folder = query.value(3).toString();
        group.reservedMinutes = query.value(4).toInt();
        group.isReservedTimeEnabled = query.value(5).toBool();
        groups.append(group);
    }
    const auto groupOf = [&groups, &places](const QSqlQuery &row) -> RecordingGroup & {
        return groups[places.value(row.value(0).toLongLong())];
    };
    query = m_database.run(selectPaths);
    while (query.next()) {
        groupOf(query).paths.append({query.value(1).toString(), static_cast<PathKind>(query.value(2).toInt()),
                                     query.value(3).toLongLong(), query.value(4).toBool()});
    }
    query = m_database.run(selectMembers);
    while (query.next()) {
        groupOf(query).members.append(
            {query.value(1).toString(), query.value(2).toInt(), query.value(3).toBool(), query.value(4).toBool()});
    }
    query = m_database.run(selectNodes);
    while (query.next())
        groupOf(query).nodeIds.append(query.value(1).toString());
    return groups;
}

std::optional<RecordingGroup> GroupStore::group(const QString &id) const
{
    const QList<RecordingGroup> all = groups();
    for (const RecordingGroup &group : all) {
        if (group.id == id)
            return group;
    }
    return {};
}

void GroupStore::insert(const RecordingGroup &group)
{
    const QSqlQuery query = m_database.run(
        QStringLiteral("INSERT INTO recording_group (id, name, folder, reserved_minutes, reserved_time_enabled) "
                       "VALUES (?, ?, ?, ?, ?)"),
        {text(group.id), text(group.name), text(group.folder), group.reservedMinutes, group.isReservedTimeEnabled});
    insertLists(m_database, query.lastInsertId().toLongLong(), group);
}

void GroupStore::replace(const RecordingGroup &group)
{
    const std::optional<qint64> number = numberOf(m_database, group.id);
    if (!number)
        throw DatabaseError(QStringLiteral("There is no recording group %1 to replace").arg(group.id));
    m_database.run(QStringLiteral("UPDATE recording_group SET name = ?, folder = ?, reserved_minutes = ?, "
                                  "reserved_time_enabled = ? WHERE number = ?"),
                   {text(group.name), text(group.folder), group.reservedMinutes, group.isReservedTimeEnabled, *number});
    for (const char *table : {"group_path", "group_member", "group_node"}) {
        m_database.run(QStringLiteral("DELETE FROM %1 WHERE group_number = ?").arg(QLatin1String(table)), {*number});
    }
    insertLists(m_database, *number, group);
}

void GroupStore::remove(const QString &id)
{
    m_database.run(QStringLiteral("DELETE FROM recording_group WHERE id = ?"), {id}); // its lists go with it
}

QList<Camera> GroupStore::cameras() const
{
    QList<Camera> cameras;
    QSqlQuery query = m_database.run(QStringLiteral("SELECT name, streams FROM camera"));
    while (query.next())
        cameras.append({query.value(0).toString(), query.value(1).toInt()});
    std::sort(cameras.begin(), cameras.end(),
              [](const Camera &left, const Camera &right) { return nameLess(left.name, right.name); });
    return cameras;
}

void GroupStore::insert(const Camera &camera)
{
    m_database.run(QStringLiteral("INSERT INTO camera (name, streams) VALUES (?, ?)"),
                   {text(camera.name), camera.streams});
}

void GroupStore::removeCamera(const QString &name)
{
    m_database.run(QStringLiteral("DELETE FROM camera WHERE name = ?"), {name});
}
