#include "RecordingGroups.h"

#include "Units.h"
#include "ValueText.h"

#include <QAbstractItemModel>

namespace {

QStringList texts(const QVariantList &list)
{
    QStringList result;
    for (const QVariant &text : list)
        result.append(text.toString());
    return result;
}

QString yesOrNo(const QVariant &value)
{
    return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

QList<GroupInfo> groupsOf(const CommandRun &run, const QAbstractItemModel &tree)
{
    const QHash<int, QByteArray> roles = tree.roleNames();
    QList<GroupInfo> groups;
    for (int station = 0; station < tree.rowCount(); ++station) {
        const QModelIndex parent = tree.index(station, 0);
        for (int row = 0; row < tree.rowCount(parent); ++row) {
            const auto value = [&](const char *role) {
                return tree.index(row, 0, parent).data(roles.key(role)).toString();
            };
            const QString id = value("recordingGroupIDRole");
            const QString relayPath = value("relayPathRole");
            groups.append({id, value("nameRole"),
                           texts(run.read<QVariantList>("getRecordingGroupPathList", id, relayPath)),
                           run.read<QVariantList>("getRecordingGroupReservedSpaceList", id, relayPath),
                           texts(run.read<QVariantList>("getRecordingGroupRecoveryPathList", id, relayPath)),
                           run.read<int>("getRecordingGroupReservedTime", id, relayPath),
                           run.read<QVariantList>("getRecordingGroupMemberList", id, relayPath)});
        }
    }
    return groups;
}

const GroupInfo *findGroup(const QList<GroupInfo> &groups, const QString &text, QString *error)
{
    const GroupInfo *named = nullptr;
    QStringList names;
    for (const GroupInfo &group : groups) {
        if (group.id == text)
            return &group;
        if (group.name == text) {
            if (named) {
                *error = QStringLiteral("several recording groups are named \"%1\"; give the id").arg(text);
                return nullptr;
            }
            named = &group;
        }
        names.append(u'"' + group.name + u'"');
    }
    if (!named)
        *error = names.isEmpty() ? QStringLiteral("there is no recording group \"%1\", nor any other").arg(text)
                                 : QStringLiteral("there is no recording group \"%1\"; there are %2")
                                       .arg(text, names.join(QStringLiteral(", ")));
    return named;
}

TextTable groupTable(const QList<GroupInfo> &groups)
{
    TextTable table({QStringLiteral("Name"), QStringLiteral("Paths"), QStringLiteral("Reserved space"),
                     QStringLiteral("Reserved time"), QStringLiteral("Members"), QStringLiteral("Id")});
    table.setRightAligned(4);
    for (const GroupInfo &group : groups) {
        QStringList reserves;
        for (const QVariant &megabytes : group.reservedMegabytes)
            reserves.append(sizeText(megabytes.toLongLong() * 1024));
        QStringList paths;
        for (const QString &path : group.paths)
            paths.append(group.recoveryPaths.contains(path) ? path + QStringLiteral(" (recovery)") : path);
        table.addRow({group.name, paths.join(QStringLiteral(", ")), reserves.join(QStringLiteral(", ")),
                      minutesText(group.reservedMinutes), QString::number(group.members.size()), group.id});
    }
    return table;
}

TextTable memberTable(const QVariantList &members)
{
    TextTable table(
        {QStringLiteral("Camera"), QStringLiteral("Stream"), QStringLiteral("Time shift"), QStringLiteral("Seamless")});
    table.setRightAligned(1);
    for (const QVariant &member : members) {
        const QVariantMap map = member.toMap();
        table.addRow({map.value(QStringLiteral("camName")).toString(),
                      QString::number(map.value(QStringLiteral("streamIndex")).toInt()),
                      yesOrNo(map.value(QStringLiteral("enableTimeShift"))),
                      yesOrNo(map.value(QStringLiteral("enableSeamless")))});
    }
    return table;
}

TextTable treeTable(const QAbstractItemModel &tree)
{
    const QHash<int, QByteArray> roles = tree.roleNames();
    TextTable table({QStringLiteral("Name"), QStringLiteral("Type"), QStringLiteral("Address"), QStringLiteral("Id")});
    for (int station = 0; station < tree.rowCount(); ++station) {
        const QModelIndex parent = tree.index(station, 0);
        const auto value = [&roles](const QModelIndex &index, const char *role) {
            return index.data(roles.key(role)).toString();
        };
        table.addRow({value(parent, "nameRole"), value(parent, "typeRole"), value(parent, "stationIPRole"), QString()});
        for (int row = 0; row < tree.rowCount(parent); ++row) {
            const QModelIndex group = tree.index(row, 0, parent);
            table.addRow({QStringLiteral("  ") + value(group, "nameRole"), value(group, "typeRole"), QString(),
                          value(group, "recordingGroupIDRole")});
        }
    }
    return table;
}

QJsonArray groupsJson(const QList<GroupInfo> &groups)
{
    QJsonArray array;
    for (const GroupInfo &group : groups)
        array.append(QJsonObject{{QStringLiteral("id"), group.id},
                                 {QStringLiteral("name"), group.name},
                                 {QStringLiteral("paths"), QJsonArray::fromStringList(group.paths)},
                                 {QStringLiteral("reservedSpace"), valueJson(group.reservedMegabytes)},
                                 {QStringLiteral("recoveryPaths"), QJsonArray::fromStringList(group.recoveryPaths)},
                                 {QStringLiteral("reservedTime"), group.reservedMinutes},
                                 {QStringLiteral("members"), valueJson(group.members)}});
    return array;
}
