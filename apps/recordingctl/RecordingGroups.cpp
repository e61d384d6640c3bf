#include "RecordingGroups.h"

#include "JsonFields.h"
#include "ServerVocabulary.h"
#include "Units.h"

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

QString groupId(CommandRun &run, const QString &text, ExitCode *exitCode)
{
    if (text.startsWith(u'{') && text.endsWith(u'}'))
        return text;
    const CallOutcome tree = run.call(QStringLiteral("retrieveRecordingGroupTreeModel"));
    if (!tree.model) {
        *exitCode = run.end(tree);
        return {};
    }
    QString error;
    const QList<GroupInfo> groups = groupsOf(run, *tree.model);
    const GroupInfo *const group = findGroup(groups, text, &error);
    if (!group) {
        *exitCode = run.refused(ToolErrorCode::NotFound, QStringLiteral("%1: %2").arg(run.line().command, error));
        return {};
    }
    return group->id;
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
    for (const GroupInfo &group : groups) {
        QJsonArray paths;
        for (qsizetype index = 0; index < group.paths.size(); ++index)
            paths.append(
                QJsonObject{{QStringLiteral("path"), group.paths[index]},
                            {QStringLiteral("reservedSpaceMegabytes"), plainJson(group.reservedMegabytes.value(index))},
                            {QStringLiteral("isRecovery"), group.recoveryPaths.contains(group.paths[index])}});
        array.append(QJsonObject{{QStringLiteral("id"), group.id},
                                 {QStringLiteral("name"), group.name},
                                 {QStringLiteral("paths"), paths},
                                 {QStringLiteral("reservedTimeMinutes"), group.reservedMinutes},
                                 {QStringLiteral("members"), membersJson(group.members)}});
    }
    return array;
}

QJsonArray membersJson(const QVariantList &members)
{
    QJsonArray array;
    for (const QVariant &member : members) {
        const QVariantMap map = member.toMap();
        array.append(QJsonObject{{QStringLiteral("camera"), map.value(FieldKey::camName).toString()},
                                 {QStringLiteral("stream"), map.value(FieldKey::streamIndex).toInt()},
                                 {QStringLiteral("isTimeShift"), map.value(FieldKey::enableTimeShift).toBool()},
                                 {QStringLiteral("isSeamless"), map.value(FieldKey::enableSeamless).toBool()}});
    }
    return array;
}

QJsonArray treeJson(const QAbstractItemModel &tree)
{
    const QHash<int, QByteArray> roles = tree.roleNames();
    const auto value = [&roles](const QModelIndex &index, const char *role) {
        return textJson(index.data(roles.key(role)).toString());
    };
    QJsonArray stations;
    for (int row = 0; row < tree.rowCount(); ++row) {
        const QModelIndex station = tree.index(row, 0);
        QJsonArray groups;
        for (int child = 0; child < tree.rowCount(station); ++child) {
            const QModelIndex group = tree.index(child, 0, station);
            groups.append(QJsonObject{{QStringLiteral("id"), value(group, "recordingGroupIDRole")},
                                      {QStringLiteral("name"), value(group, "nameRole")},
                                      {QStringLiteral("type"), value(group, "typeRole")}});
        }
        stations.append(QJsonObject{{QStringLiteral("name"), value(station, "nameRole")},
                                    {QStringLiteral("type"), value(station, "typeRole")},
                                    {QStringLiteral("address"), value(station, "stationIPRole")},
                                    {QStringLiteral("relayPath"), value(station, "relayPathRole")},
                                    {QStringLiteral("groups"), groups}});
    }
    return stations;
}
