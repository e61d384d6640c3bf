#include "GroupCommands.h"

#include "GroupForecast.h"
#include "JsonFields.h"
#include "Output.h"
#include "RecordingGroups.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "Units.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

const QString retrieve = QStringLiteral("retrieveRecordingGroupTreeModel");
const QString update = QStringLiteral("updateRecordingGroup");

/// Maps of what --member and its likes name: "camName" and, where it was typed, "streamIndex".
QVariantList membersFrom(const QStringList &texts)
{
    QVariantList members;
    for (const QString &text : texts) {
        const qsizetype colon = text.lastIndexOf(u':');
        bool isStream = false;
        const int stream = text.mid(colon + 1).toInt(&isStream);
        QVariantMap member{{QStringLiteral("camName"), text}};
        if (colon > 0 && isStream)
            member = {{QStringLiteral("camName"), text.left(colon)}, {QStringLiteral("streamIndex"), stream}};
        members.append(member);
    }
    return members;
}

/// The members that @p option names, complete, with --time-shift and --seamless.
QVariantList newMembers(const CommandLine &line, const QString &option)
{
    QVariantList members = membersFrom(line.values(option));
    for (QVariant &member : members) {
        QVariantMap map = member.toMap();
        map.insert(QStringLiteral("streamIndex"), map.value(QStringLiteral("streamIndex"), 0));
        map.insert(QStringLiteral("enableTimeShift"), line.has(QStringLiteral("time-shift")));
        map.insert(QStringLiteral("enableSeamless"), line.has(QStringLiteral("seamless")));
        member = map;
    }
    return members;
}

int kindFrom(const QString &name)
{
    return static_cast<int>(
        QStringList{QStringLiteral("Local"), QStringLiteral("NetHost"), QStringLiteral("NetDomain")}.indexOf(name));
}

/// One map for each of @p paths, with what --kind, --reserve and --recovery say.
QVariantList newPaths(const CommandLine &line, const QStringList &paths)
{
    QVariantList list;
    for (const QString &path : paths)
        list.append(QVariantMap{
            {QStringLiteral("path"), path},
            {QStringLiteral("pathType"), kindFrom(line.value(QStringLiteral("kind"), QStringLiteral("Local")))},
            {QStringLiteral("reserveSpace"),
             line.value(QStringLiteral("reserve"), QStringLiteral("2048")).toLongLong()},
            {QStringLiteral("isRecoveryMode"), line.has(QStringLiteral("recovery"))}});
    return list;
}

/// The changes that --kind, --reserve, --recovery and --no-recovery ask for; empty when none was given.
QVariantMap pathChanges(const CommandLine &line)
{
    QVariantMap changes;
    if (line.has(QStringLiteral("kind")))
        changes.insert(QStringLiteral("pathType"), kindFrom(line.value(QStringLiteral("kind"))));
    if (line.has(QStringLiteral("reserve")))
        changes.insert(QStringLiteral("reserveSpace"), line.value(QStringLiteral("reserve")).toLongLong());
    for (const auto &[option, isRecovery] : {std::pair("recovery", true), std::pair("no-recovery", false)}) {
        if (line.has(QLatin1String(option)))
            changes.insert(QStringLiteral("isRecoveryMode"), isRecovery);
    }
    return changes;
}

void insertReservedTime(QVariantMap &map, int minutes)
{
    map.insert(QStringLiteral("recordingGroupReservedTimeEnabled"), minutes > 0);
    map.insert(QStringLiteral("recordingGroupReservedTime"), minutes);
}

/// Fetches the groups, and gives @p use those that @p texts name. Ends the command when that fails.
ExitCode withGroups(CommandRun &run, const QStringList &texts,
                    const std::function<ExitCode(const QList<GroupInfo> &named)> &use)
{
    const CallOutcome tree = run.call(retrieve);
    if (!tree.model)
        return run.end(tree);
    const QList<GroupInfo> groups = groupsOf(run, *tree.model);
    QList<GroupInfo> named;
    for (const QString &text : texts) {
        QString error;
        const GroupInfo *group = findGroup(groups, text, &error);
        if (!group)
            return run.refused(ToolErrorCode::NotFound, QStringLiteral("%1: %2").arg(run.line().command, error));
        named.append(*group);
    }
    return use(texts.isEmpty() ? groups : named);
}

/// What updateRecordingGroup takes besides the group, in the order of its parameters.
struct Changes
{
    QVariantList addMembers = {};
    QVariantList removeMembers = {};
    QVariantList addPaths = {};
    QVariantList removePaths = {};
    QVariantList setPaths = {};
    QVariantMap setGroup = {};
};

QJsonObject idJson(const QString &id)
{
    return {{QStringLiteral("id"), id}};
}

ExitCode change(CommandRun &run, const Changes &changes)
{
    return withGroups(run, {run.line().arguments.first()}, [&](const QList<GroupInfo> &named) {
        const QVariantList arguments{named.first().id,    changes.addMembers, changes.removeMembers, changes.addPaths,
                                     changes.removePaths, changes.setPaths,   changes.setGroup};
        if (!run.line().edit.isEmpty())
            return showForecast(run, update, arguments);
        return run.end(run.call(update, arguments), {[&named] { return idJson(named.first().id); }, {}});
    });
}

/// Something that a removal took away.
struct Removal
{
    GroupInfo group;
    QStringList paths;
    QVariant keptBytes; ///< what stays on the disks; invalid when it is not known
};

TextTable removalTable(const QList<Removal> &removals)
{
    TextTable table({QStringLiteral("Group"), QStringLiteral("Path"), QStringLiteral("Kept on disk")});
    table.setRightAligned(2);
    for (const Removal &removal : removals) {
        const QVariant &kept = removal.keptBytes;
        table.addRow({removal.group.name, removal.paths.join(QStringLiteral(", ")),
                      kept.isValid() ? sizeText(kept.toLongLong() / 1024) : QStringLiteral("unknown")});
    }
    return table;
}

QJsonArray removalsJson(const QList<Removal> &removals)
{
    QJsonArray array;
    for (const Removal &removal : removals)
        array.append(fieldsJson({{QStringLiteral("groupId"), removal.group.id},
                                 {QStringLiteral("group"), removal.group.name},
                                 {QStringLiteral("paths"), removal.paths},
                                 {StationKey::keptBytes, removal.keptBytes}}));
    return array;
}

/// Ends an edit that the station answered for each of @p groups, and of @p paths where there are any: what stays on the
/// disks is only in the parts of the answer.
ExitCode endRemoval(CommandRun &run, const CallOutcome &outcome, const QList<GroupInfo> &groups,
                    const QStringList &paths)
{
    QList<Removal> done;
    for (qsizetype index = 0; index < std::min(outcome.parts.size(), groups.size()); ++index) {
        const StationReply &part = outcome.parts[index];
        if (part.returnCode == ReturnCode::Success)
            done.append({groups[index], paths.isEmpty() ? groups[index].paths : QStringList{paths.value(index)},
                         part.data.toMap().value(StationKey::keptBytes)});
    }
    const ResultView view{[&done] { return removalsJson(done); },
                          [&done] { printText(removalTable(done).toString()); }};
    if (outcome.exitCode != ExitCode::Done && !done.isEmpty())
        run.show(view); // though others were refused
    return run.end(outcome, view);
}

} // namespace

ExitCode showTree(CommandRun &run)
{
    const CallOutcome tree = run.call(retrieve);
    return run.end(
        tree, {[&tree] { return treeJson(*tree.model); }, [&tree] { printText(treeTable(*tree.model).toString()); }});
}

ExitCode showGroups(CommandRun &run)
{
    return withGroups(run, {}, [&run](const QList<GroupInfo> &groups) {
        run.show({[&groups] { return groupsJson(groups); }, [&groups] { printText(groupTable(groups).toString()); }});
        return ExitCode::Done;
    });
}

ExitCode showMembers(CommandRun &run)
{
    return withGroups(run, run.line().arguments, [&run](const QList<GroupInfo> &named) {
        const QVariantList &members = named.first().members;
        run.show(
            {[&members] { return membersJson(members); }, [&members] { printText(memberTable(members).toString()); }});
        return ExitCode::Done;
    });
}

ExitCode addGroup(CommandRun &run)
{
    const CommandLine &line = run.line();
    const QString name = QStringLiteral("addRecordingGroupWithCompleteInfo");
    QVariantMap group{{QStringLiteral("recordingGroupName"), line.arguments.first()}};
    insertReservedTime(group, line.value(QStringLiteral("reserved-time")).toInt());
    const QVariantList arguments{group, newPaths(line, line.values(QStringLiteral("path"))),
                                 newMembers(line, QStringLiteral("member"))};
    if (!line.edit.isEmpty())
        return showForecast(run, name, arguments);
    const CallOutcome outcome = run.call(name, arguments);
    const QString id = outcome.answered("addedGrpID").toString();
    return run.end(outcome, {[&id] { return idJson(id); }, [&id] { printLine(id); }});
}

ExitCode updateGroup(CommandRun &run)
{
    const CommandLine &line = run.line();
    Changes changes;
    changes.addMembers = newMembers(line, QStringLiteral("add-member"));
    changes.removeMembers = membersFrom(line.values(QStringLiteral("remove-member")));
    if (line.has(QStringLiteral("name")))
        changes.setGroup.insert(QStringLiteral("recordingGroupName"), line.value(QStringLiteral("name")));
    if (line.has(QStringLiteral("reserved-time")))
        insertReservedTime(changes.setGroup, line.value(QStringLiteral("reserved-time")).toInt());
    if (changes.addMembers.isEmpty() && changes.removeMembers.isEmpty() && changes.setGroup.isEmpty())
        return run.wrongUse(QStringLiteral(
            "group-update: one of --name, --reserved-time, --add-member and --remove-member was expected"));
    return change(run, changes);
}

ExitCode removeGroups(CommandRun &run)
{
    return withGroups(run, run.line().arguments, [&run](const QList<GroupInfo> &named) {
        const QString name = QStringLiteral("removeRecordingGroup");
        QStringList ids;
        for (const GroupInfo &group : named)
            ids.append(group.id);
        if (!run.line().edit.isEmpty())
            return showForecast(run, name, {ids});
        return endRemoval(run, run.call(name, {ids}), named, {});
    });
}

ExitCode addGroupPaths(CommandRun &run)
{
    Changes changes;
    changes.addPaths = newPaths(run.line(), run.line().arguments.mid(1));
    return change(run, changes);
}

ExitCode setGroupPaths(CommandRun &run)
{
    const QVariantMap wanted = pathChanges(run.line());
    const bool both = run.line().has(QStringLiteral("recovery")) && run.line().has(QStringLiteral("no-recovery"));
    if (wanted.isEmpty() || both)
        return run.wrongUse(QStringLiteral(
            "group-path-set: one or more of --kind, --reserve and either --recovery or --no-recovery was expected"));
    Changes changes;
    for (const QString &path : run.line().arguments.mid(1)) {
        QVariantMap set = wanted;
        set.insert(QStringLiteral("path"), path);
        changes.setPaths.append(set);
    }
    return change(run, changes);
}

ExitCode removeGroupPaths(CommandRun &run)
{
    return withGroups(run, {run.line().arguments.first()}, [&run](const QList<GroupInfo> &named) {
        const QString name = QStringLiteral("removePathFromRecordingGroup");
        const QStringList paths = run.line().arguments.mid(1);
        const QStringList ids(paths.size(), named.first().id);
        const QList<GroupInfo> groups(paths.size(), named.first());
        if (!run.line().edit.isEmpty())
            return showForecast(run, name, {ids, paths});
        return endRemoval(run, run.call(name, {ids, paths}), groups, paths);
    });
}
