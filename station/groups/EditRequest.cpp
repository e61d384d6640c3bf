#include "EditRequest.h"

#include "FolderNames.h"
#include "GroupMaps.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QHash>
#include <QUuid>

#include <algorithm>

namespace {
using Requests = QList<EditRequest>;
using Kind = EditRequest::Kind;

Requests newGroup(const RequestMap &request)
{
    GroupSettings settings;
    settings.name = request.string(FieldKey::recordingGroupName);
    const NewPath path = newPath(request);
    return {{Kind::Add, {}, {}, [settings, path](GroupEdit &edit) {
                 edit.change(settings);
                 edit.addPaths(FieldKey::path, {path});
             }}};
}

Requests newCompleteGroup(const RequestMap &request)
{
    GroupSettings settings;
    settings.name = request.string(FieldKey::recordingGroupName);
    settings.isReservedTimeEnabled = request.boolean(FieldKey::recordingGroupReservedTimeEnabled);
    settings.reservedMinutes = request.smallInteger(FieldKey::recordingGroupReservedTime);
    const QList<NewPath> paths = newPaths(request, FieldKey::pathInfoList);
    const QList<GroupMember> members = newMembers(request, FieldKey::deviceInfos);
    return {{Kind::Add, {}, {}, [settings, paths, members](GroupEdit &edit) {
                 edit.change(settings);
                 edit.addPaths(FieldKey::pathInfoList, paths);
                 edit.addMembers(FieldKey::deviceInfos, members);
             }}};
}

Requests newPathOfGroup(const RequestMap &request)
{
    const QString id = request.string(FieldKey::recordingGroupID);
    const NewPath path = newPath(request);
    return {{Kind::Change, id, {}, [path](GroupEdit &edit) { edit.addPaths(FieldKey::path, {path}); }}};
}

Requests update(const RequestMap &request)
{
    const QString id = request.string(FieldKey::recordingGroupID);
    const QList<MemberRemoval> lostMembers = memberRemovals(request, FieldKey::updateRmCameraList);
    const QList<GroupMember> members = newMembers(request, FieldKey::updateAddCameraList);
    const QStringList lostPaths =
        request.contains(FieldKey::updateRmPathList) ? request.strings(FieldKey::updateRmPathList) : QStringList();
    const QList<NewPath> paths = newPaths(request, FieldKey::updateAddPathList);
    const QList<PathChange> changes = pathChanges(request, FieldKey::updateSetPathList);
    const GroupSettings settings = request.contains(FieldKey::updateSetRecordingGroup)
        ? groupSettings(request.map(FieldKey::updateSetRecordingGroup))
        : GroupSettings();
    return {{Kind::Change, id, {}, [=](GroupEdit &edit) {
                 edit.removeMembers(FieldKey::updateRmCameraList, lostMembers);
                 edit.addMembers(FieldKey::updateAddCameraList, members);
                 edit.removePaths(FieldKey::updateRmPathList, lostPaths);
                 edit.addPaths(FieldKey::updateAddPathList, paths);
                 edit.changePaths(FieldKey::updateSetPathList, changes);
                 edit.change(settings);
             }}};
}

Requests removedPaths(const RequestMap &request)
{
    const QStringList ids = request.strings(FieldKey::recordingGroupIDList);
    const QStringList paths = request.strings(FieldKey::recordingGroupPathList);
    if (ids.isEmpty() || ids.size() != paths.size())
        throw BadRequest(QStringLiteral("a path for each of one or more recording groups was expected"));
    Requests requests;
    for (qsizetype place = 0; place < ids.size(); ++place) {
        const QString &path = paths.at(place);
        requests.append({Kind::Change, ids.at(place), path,
                         [path](GroupEdit &edit) { edit.removePaths(FieldKey::recordingGroupPathList, {path}); }});
    }
    return requests;
}

Requests removedGroups(const RequestMap &request)
{
    const QStringList ids = request.strings(FieldKey::recordingGroupIDList);
    if (ids.isEmpty())
        throw BadRequest(QStringLiteral("one or more recording groups were expected"));
    Requests requests;
    for (const QString &id : ids)
        requests.append({Kind::Remove, id});
    return requests;
}
} // namespace

std::optional<QList<EditRequest>> editRequests(const QString &command, const QVariant &data)
{
    using Read = Requests (*)(const RequestMap &);
    static const QHash<QString, Read> readers{
        {ServerCommand::addRecordingGroup, newGroup},
        {ServerCommand::addRecordingGroupWithCompleteInfo, newCompleteGroup},
        {ServerCommand::addPathToRecordingGroup, newPathOfGroup},
        {ServerCommand::updateRecordingGroup, update},
        {ServerCommand::removePathFromRecordingGroup, removedPaths},
        {ServerCommand::removeRecordingGroup, removedGroups},
    };
    const Read read = readers.value(command);
    if (!read)
        return {};
    return read(RequestMap(data));
}

QString EditOutcome::returnCode() const
{
    return errors.isEmpty() ? ReturnCode::Success : errors.front().returnCode;
}

EditOutcome judge(const EditRequest &request, const GroupSite &site)
{
    RecordingGroup before;
    if (request.kind == Kind::Add) {
        before.id = QUuid::createUuid().toString();
    } else {
        const auto found = std::find_if(site.groups.begin(), site.groups.end(),
                                        [&request](const RecordingGroup &group) { return group.id == request.id; });
        if (found == site.groups.end()) {
            return {
                {}, {}, {{FieldKey::recordingGroupID, -1, request.id, StationReturnCode::RecordingGroupNotFound, {}}}};
        }
        before = *found;
    }
    if (request.kind == Kind::Remove)
        return {before};
    GroupEdit edit(before, site);
    request.steps(edit);
    EditOutcome outcome{before, edit.group(), edit.finish()};
    if (request.kind == Kind::Add && outcome.errors.isEmpty())
        outcome.after.folder = newGroupFolder(outcome.after.name, site.groups);
    return outcome;
}
