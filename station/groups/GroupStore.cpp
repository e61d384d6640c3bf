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

/// The number under which the tables know the group with @p id; invalid where they do not.
QVariant numberOf(Database &database, const QString &id)
{
    return database.value(QStringLiteral("SELECT number FROM recording_group WHERE id = ?"), {id});
}

void insertLists(Database &database, qint64 number, const RecordingGroup &group)
{
    Statement insertPath = database.prepared(QStringLiteral(
        "INSERT INTO group_path (group_number, path, kind, reserved_megabytes, recovery) VALUES (?, ?, ?, ?, ?)"));
    for (const GroupPath &path : group.paths) {
        insertPath.run(
            {number, boundText(path.path), static_cast<int>(path.kind), path.reservedMegabytes, path.isRecovery});
    }
    Statement insertMember = database.prepared(QStringLiteral(
        "INSERT INTO group_member (group_number, camera, stream, time_shift, seamless) VALUES (?, ?, ?, ?, ?)"));
    for (const GroupMember &member : group.members)
        insertMember.run({number, boundText(member.camera), member.stream, member.timeShift, member.seamless});
    Statement insertNode =
        database.prepared(QStringLiteral("INSERT INTO group_node (group_number, node) VALUES (?, ?)"));
    for (const QString &node : group.nodeIds)
        insertNode.run({number, boundText(node)});
}

/// The groups by their numbers in the tables, and what their lists have of groups that are not there.
class GroupList
{
public:
    void append(qint64 number, const RecordingGroup &group)
    {
        m_places.insert(number, m_groups.size());
        m_groups.append(group);
    }

    /// Calls @p take with the group that @p rows names in its first column, for every row.
    template<typename Take>
    void fill(Rows rows, const Take &take)
    {
        while (rows.next()) {
            const auto place = m_places.constFind(rows.value(0).toLongLong());
            if (place == m_places.cend())
                ++m_orphans;
            else
                take(m_groups[*place], rows);
        }
    }

    const QList<RecordingGroup> &groups() const { return m_groups; }
    int orphans() const { return m_orphans; }

private:
    QList<RecordingGroup> m_groups;
    QHash<qint64, qsizetype> m_places;
    int m_orphans = 0;
};
} // namespace

GroupStore::GroupStore(Database &database)
    : m_database(database)
{
}

QList<RecordingGroup> GroupStore::groups() const
{
    const Snapshot snapshot(m_database);
    GroupList list;
    Rows rows = m_database.rows(selectGroups);
    while (rows.next()) {
        RecordingGroup group;
        group.id = rows.value(1).toString();
        group.name = rows.value(2).toString();
        group.folder = rows.value(3).toString();
        group.reservedMinutes = rows.value(4).toInt();
        group.isReservedTimeEnabled = rows.value(5).toBool();
        list.append(rows.value(0).toLongLong(), group);
    }
    list.fill(m_database.rows(selectPaths), [](RecordingGroup &group, const Rows &row) {
        group.paths.append({row.value(1).toString(), static_cast<PathKind>(row.value(2).toInt()),
                            row.value(3).toLongLong(), row.value(4).toBool()});
    });
    list.fill(m_database.rows(selectMembers), [](RecordingGroup &group, const Rows &row) {
        group.members.append(
            {row.value(1).toString(), row.value(2).toInt(), row.value(3).toBool(), row.value(4).toBool()});
    });
    list.fill(m_database.rows(selectNodes),
              [](RecordingGroup &group, const Rows &row) { group.nodeIds.append(row.value(1).toString()); });
    if (list.orphans() > 0) {
        m_database.warnOnce(
            QStringLiteral("The database has %1 entries of recording groups that it does not have; they are left out.")
                .arg(list.orphans()));
    }
    return list.groups();
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
    const Effect inserted = m_database.run(
        QStringLiteral("INSERT INTO recording_group (id, name, folder, reserved_minutes, reserved_time_enabled) "
                       "VALUES (?, ?, ?, ?, ?)"),
        {boundText(group.id), boundText(group.name), boundText(group.folder), group.reservedMinutes,
         group.isReservedTimeEnabled});
    insertLists(m_database, inserted.lastNumber, group);
}

void GroupStore::replace(const RecordingGroup &group)
{
    const QVariant number = numberOf(m_database, group.id);
    if (!number.isValid()) {
        throw DatabaseError(DatabaseTrouble::Failed,
                            QStringLiteral("There is no recording group %1 to replace").arg(group.id));
    }
    m_database.run(
        QStringLiteral("UPDATE recording_group SET name = ?, folder = ?, reserved_minutes = ?, "
                       "reserved_time_enabled = ? WHERE number = ?"),
        {boundText(group.name), boundText(group.folder), group.reservedMinutes, group.isReservedTimeEnabled, number});
    for (const char *table : {"group_path", "group_member", "group_node"}) {
        m_database.run(QStringLiteral("DELETE FROM %1 WHERE group_number = ?").arg(QLatin1String(table)), {number});
    }
    insertLists(m_database, number.toLongLong(), group);
}

void GroupStore::remove(const QString &id)
{
    m_database.run(QStringLiteral("DELETE FROM recording_group WHERE id = ?"), {id}); // its lists go with it
}

QList<Camera> GroupStore::cameras() const
{
    QList<Camera> cameras;
    Rows rows = m_database.rows(QStringLiteral("SELECT name, streams FROM camera"));
    while (rows.next())
        cameras.append({rows.value(0).toString(), rows.value(1).toInt()});
    std::sort(cameras.begin(), cameras.end(),
              [](const Camera &left, const Camera &right) { return nameLess(left.name, right.name); });
    return cameras;
}

void GroupStore::insert(const Camera &camera)
{
    m_database.run(QStringLiteral("INSERT INTO camera (name, streams) VALUES (?, ?)"),
                   {boundText(camera.name), camera.streams});
}

void GroupStore::removeCamera(const QString &name)
{
    m_database.run(QStringLiteral("DELETE FROM camera WHERE name = ?"), {name});
}
