#include "GroupCommands.h"

#include "FolderNames.h"
#include "GroupMaps.h"
#include "GroupStore.h"
#include "PathText.h"
#include "StationData.h"
#include "StationProtocol.h"
#include "store/Database.h"

#include <QUuid>

#include <algorithm>
#include <utility>

namespace {
/// A number of the connection that changes when others commit something.
const QString dataVersion = QStringLiteral("PRAGMA data_version");

EditError unknownGroup(const QString &id)
{
    return {StationKey::recordingGroupID, -1, id, StationReturnCode::RecordingGroupNotFound, {}};
}

std::optional<RecordingGroup> groupWith(const QString &id, const QList<RecordingGroup> &groups)
{
    const auto group =
        std::find_if(groups.begin(), groups.end(), [&id](const RecordingGroup &other) { return other.id == id; });
    return group == groups.end() ? std::optional<RecordingGroup>() : *group;
}
} // namespace

GroupCommands::GroupCommands(StationData &data, const PathChecks &paths, const QString &relayPath, Hooks hooks)
    : m_data(data)
    , m_paths(paths)
    , m_relayPath(relayPath)
    , m_hooks(std::move(hooks))
{
}

void GroupCommands::enterInto(CommandTable &table)
{
    const auto enter = [this, &table](const QString &name, auto member) {
        table.insert(name,
                     [this, member](const QVariant &data, const Answer &answer) { (this->*member)(data, answer); });
    };
    enter(StationCommandName::getRecordingGroup, &GroupCommands::getRecordingGroup);
    enter(StationCommandName::retrieveRecordingGroupTreeModel, &GroupCommands::retrieveRecordingGroupTreeModel);
    enter(StationCommandName::addRecordingGroup, &GroupCommands::addRecordingGroup);
    enter(StationCommandName::addRecordingGroupWithCompleteInfo, &GroupCommands::addRecordingGroupWithCompleteInfo);
    enter(StationCommandName::addPathToRecordingGroup, &GroupCommands::addPathToRecordingGroup);
    enter(StationCommandName::updateRecordingGroup, &GroupCommands::updateRecordingGroup);
    enter(StationCommandName::removePathFromRecordingGroup, &GroupCommands::removePathFromRecordingGroup);
    enter(StationCommandName::removeRecordingGroup, &GroupCommands::removeRecordingGroup);
}

QString GroupCommands::Outcome::returnCode() const
{
    return errors.isEmpty() ? StationReturnCode::Success : errors.front().returnCode;
}

void GroupCommands::getRecordingGroup(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        throw BadRequest(QStringLiteral("no data was expected"));
    QVariantList list;
    const QList<RecordingGroup> groups = GroupStore(m_data.database()).groups();
    for (const RecordingGroup &group : groups)
        list.append(groupMap(group));
    answer(lastPart(StationReturnCode::Success, list));
}

void GroupCommands::retrieveRecordingGroupTreeModel(const QVariant &data, const Answer &answer)
{
    const QString relayPath = RequestMap(data).string(StationKey::relayPath);
    if (!relayPath.isEmpty() && relayPath != m_relayPath)
        return answer(lastPart(StationReturnCode::UnknownStation));
    QVariantList list;
    const QList<RecordingGroup> groups = GroupStore(m_data.database()).groups();
    for (const RecordingGroup &group : groups)
        list.append(treeMap(group, m_relayPath));
    answer(lastPart(StationReturnCode::Success, list));
}

void GroupCommands::addRecordingGroup(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    GroupSettings settings;
    settings.name = request.string(StationKey::recordingGroupName);
    const NewPath path = newPath(request);
    const Outcome outcome = add([&settings, &path](GroupEdit &edit) {
        edit.change(settings);
        edit.addPaths(StationKey::path, {path});
    });
    const QVariantMap added{{StationKey::recordingGroupID, outcome.after.id}};
    answerEdit(outcome, answer, lastPart(outcome.returnCode(), outcome.errors.isEmpty() ? added : QVariant()));
}

void GroupCommands::addRecordingGroupWithCompleteInfo(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    GroupSettings settings;
    settings.name = request.string(StationKey::recordingGroupName);
    settings.isReservedTimeEnabled = request.boolean(StationKey::recordingGroupReservedTimeEnabled);
    settings.reservedMinutes = request.smallInteger(StationKey::recordingGroupReservedTime);
    const QList<NewPath> paths = newPaths(request, StationKey::pathInfoList);
    const QList<GroupMember> members = newMembers(request, StationKey::deviceInfos);
    const Outcome outcome = add([&settings, &paths, &members](GroupEdit &edit) {
        edit.change(settings);
        edit.addPaths(StationKey::pathInfoList, paths);
        edit.addMembers(StationKey::deviceInfos, members);
    });
    const QVariantMap added{{StationKey::recordingGroupID, outcome.after.id}};
    const QVariantMap refused{{StationKey::errorAction, errorList(outcome.errors)}};
    answerEdit(outcome, answer, lastPart(outcome.returnCode(), outcome.errors.isEmpty() ? added : refused));
}

void GroupCommands::addPathToRecordingGroup(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const QString id = request.string(StationKey::recordingGroupID);
    const NewPath path = newPath(request);
    const Outcome outcome = change(id, [&path](GroupEdit &edit) { edit.addPaths(StationKey::path, {path}); });
    answerEdit(outcome, answer, lastPart(outcome.returnCode()));
}

void GroupCommands::updateRecordingGroup(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const QString id = request.string(StationKey::recordingGroupID);
    const QList<MemberRemoval> lostMembers = memberRemovals(request, StationKey::updateRmCameraList);
    const QList<GroupMember> members = newMembers(request, StationKey::updateAddCameraList);
    const QStringList lostPaths =
        request.contains(StationKey::updateRmPathList) ? request.strings(StationKey::updateRmPathList) : QStringList();
    const QList<NewPath> paths = newPaths(request, StationKey::updateAddPathList);
    const QList<PathChange> changes = pathChanges(request, StationKey::updateSetPathList);
    const GroupSettings settings = request.contains(StationKey::updateSetRecordingGroup)
        ? groupSettings(request.map(StationKey::updateSetRecordingGroup))
        : GroupSettings();
    const Outcome outcome = change(id, [&](GroupEdit &edit) {
        edit.removeMembers(StationKey::updateRmCameraList, lostMembers);
        edit.addMembers(StationKey::updateAddCameraList, members);
        edit.removePaths(StationKey::updateRmPathList, lostPaths);
        edit.addPaths(StationKey::updateAddPathList, paths);
        edit.changePaths(StationKey::updateSetPathList, changes);
        edit.change(settings);
    });
    answerEdit(outcome, answer, lastPart(outcome.returnCode(), errorList(outcome.errors)));
}

void GroupCommands::removePathFromRecordingGroup(const QVariant &data, const Answer &answer)
{
    const RequestMap request(data);
    const QStringList ids = request.strings(StationKey::recordingGroupIDList);
    const QStringList paths = request.strings(StationKey::recordingGroupPathList);
    if (ids.isEmpty() || ids.size() != paths.size())
        throw BadRequest(QStringLiteral("a path for each of one or more recording groups was expected"));
    for (qsizetype place = 0; place < ids.size(); ++place) {
        const QString &path = paths.at(place);
        const Outcome outcome = change(
            ids.at(place), [&path](GroupEdit &edit) { edit.removePaths(StationKey::recordingGroupPathList, {path}); });
        QVariantMap part{{StationKey::recordingGroupID, ids.at(place)}, {StationKey::path, path}};
        if (outcome.errors.isEmpty()) {
            QList<GroupPath> removed = outcome.before.paths;
            removed.removeIf([kept = keptPath(path)](const GroupPath &other) { return other.path != kept; });
            part.insert(StationKey::keptBytes, keptBytes(outcome.before, removed));
        }
        answerEdit(outcome, answer, {outcome.returnCode(), part, place == ids.size() - 1});
    }
}

void GroupCommands::removeRecordingGroup(const QVariant &data, const Answer &answer)
{
    const QStringList ids = RequestMap(data).strings(StationKey::recordingGroupIDList);
    if (ids.isEmpty())
        throw BadRequest(QStringLiteral("one or more recording groups were expected"));
    for (qsizetype place = 0; place < ids.size(); ++place) {
        const Outcome outcome = remove(ids.at(place));
        QVariantMap part{{StationKey::recordingGroupID, ids.at(place)}};
        if (outcome.errors.isEmpty())
            part.insert(StationKey::keptBytes, keptBytes(outcome.before, outcome.before.paths));
        answerEdit(outcome, answer, {outcome.returnCode(), part, place == ids.size() - 1});
    }
}

GroupCommands::Outcome GroupCommands::add(const Steps &steps)
{
    RecordingGroup group;
    group.id = QUuid::createUuid().toString();
    return edit([&group](const GroupSite &) { return std::optional(group); }, steps,
                [](GroupStore &store, const GroupSite &site, Outcome &outcome) {
                    outcome.after.folder = newGroupFolder(outcome.after.name, site.groups);
                    store.insert(outcome.after);
                });
}

GroupCommands::Outcome GroupCommands::change(const QString &id, const Steps &steps)
{
    const Outcome outcome =
        edit([&id](const GroupSite &site) { return groupWith(id, site.groups); }, steps,
             [](GroupStore &store, const GroupSite &, Outcome &done) { store.replace(done.after); });
    return outcome.isFound ? outcome : Outcome{{}, {}, {unknownGroup(id)}};
}

/// An edit may wait for disks and NAS servers, and nobody else shall wait for the database meanwhile: it is judged
/// first, and again where somebody else has changed what it was judged against before it could be written.
GroupCommands::Outcome GroupCommands::edit(const Find &find, const Steps &steps, const Write &write)
{
    constexpr int mostAttempts = 20;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const Judged before = judged();
        const std::optional<RecordingGroup> group = find(before.site);
        if (!group)
            return {{}, {}, {}, false};
        GroupEdit edit(*group, before.site);
        steps(edit);
        Outcome outcome{*group, edit.group(), edit.finish()};
        if (!outcome.errors.isEmpty())
            return outcome;
        Database &database = m_data.database();
        Transaction transaction(database);
        if (!isAsJudged(before))
            continue;
        GroupStore store(database);
        write(store, before.site, outcome);
        transaction.commit();
        return outcome;
    }
    throw DatabaseError(DatabaseTrouble::Busy, QStringLiteral("others change the recording groups all the time"));
}

GroupCommands::Judged GroupCommands::judged() const
{
    Database &database = m_data.database();
    const Snapshot snapshot(database);
    const GroupStore store(database);
    return {database.value(dataVersion).toLongLong(), {store.groups(), store.cameras(), m_paths}};
}

bool GroupCommands::isAsJudged(const Judged &before) const
{
    Database &database = m_data.database();
    if (database.value(dataVersion).toLongLong() == before.version)
        return true; // nobody wrote anything
    const GroupStore store(database);
    return store.groups() == before.site.groups && store.cameras() == before.site.cameras;
}

GroupCommands::Outcome GroupCommands::remove(const QString &id)
{
    Database &database = m_data.database();
    Transaction transaction(database);
    GroupStore store(database);
    const std::optional<RecordingGroup> group = store.group(id);
    if (!group)
        return {{}, {}, {unknownGroup(id)}};
    store.remove(id);
    transaction.commit();
    return {*group, {}, {}};
}

qint64 GroupCommands::keptBytes(const RecordingGroup &group, const QList<GroupPath> &paths) const
{
    qint64 bytes = 0;
    for (const GroupPath &path : paths) {
        const std::optional<qint64> counted =
            m_hooks.countedBytes ? m_hooks.countedBytes(path.path, group.folder) : std::nullopt;
        bytes += counted ? *counted : m_paths.bytesBelow(path.kind, path.path + u'/' + group.folder);
    }
    return bytes;
}

void GroupCommands::answerEdit(const Outcome &outcome, const Answer &answer, const StationReply &part)
{
    answer(part);
    if (outcome.errors.isEmpty() && m_hooks.groupsChanged)
        m_hooks.groupsChanged();
}
