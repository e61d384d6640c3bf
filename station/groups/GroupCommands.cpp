#include "GroupCommands.h"

#include "GroupMaps.h"
#include "GroupStore.h"
#include "PathText.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationVocabulary.h"
#include "service/Edit.h"
#include "store/Database.h"

#include <utility>

namespace {
/// A number of the connection that changes when others commit something.
const QString dataVersion = QStringLiteral("PRAGMA data_version");
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
    enter(ServerCommand::getRecordingGroup, &GroupCommands::getRecordingGroup);
    enter(ServerCommand::retrieveRecordingGroupTreeModel, &GroupCommands::retrieveRecordingGroupTreeModel);
    const auto enterEdit = [this, &table](const QString &name, auto member) {
        table.insert(name, [this, member](const std::shared_ptr<Edit> &edit) { (this->*member)(*edit); });
    };
    enterEdit(ServerCommand::addRecordingGroup, &GroupCommands::addRecordingGroup);
    enterEdit(ServerCommand::addRecordingGroupWithCompleteInfo, &GroupCommands::addRecordingGroupWithCompleteInfo);
    enterEdit(ServerCommand::addPathToRecordingGroup, &GroupCommands::addPathToRecordingGroup);
    enterEdit(ServerCommand::updateRecordingGroup, &GroupCommands::updateRecordingGroup);
    enterEdit(ServerCommand::removePathFromRecordingGroup, &GroupCommands::removePathFromRecordingGroup);
    enterEdit(ServerCommand::removeRecordingGroup, &GroupCommands::removeRecordingGroup);
}

namespace {
QList<EditRequest> requestsOf(const Edit &edit)
{
    return *editRequests(edit.command().name, edit.data());
}

/// The subject is set first, so that a refusal of the other data is kept under it.
EditRequest requestForNewGroup(Edit &edit)
{
    edit.setSubject({{}, RequestMap(edit.data()).string(FieldKey::recordingGroupName), {}});
    return requestsOf(edit).constFirst();
}

EditRequest requestForGroup(Edit &edit)
{
    edit.setSubject({RequestMap(edit.data()).string(FieldKey::recordingGroupID), {}, {}});
    return requestsOf(edit).constFirst();
}
} // namespace

void GroupCommands::getRecordingGroup(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        throw BadRequest(QStringLiteral("no data was expected"));
    QVariantList list;
    const QList<RecordingGroup> groups = GroupStore(m_data.database()).groups();
    for (const RecordingGroup &group : groups)
        list.append(groupMap(group));
    answer(lastPart(ReturnCode::Success, list));
}

void GroupCommands::retrieveRecordingGroupTreeModel(const QVariant &data, const Answer &answer)
{
    const QString relayPath = RequestMap(data).string(FieldKey::relayPath);
    if (!relayPath.isEmpty() && relayPath != m_relayPath)
        return answer(lastPart(StationReturnCode::UnknownStation));
    QVariantList list;
    const QList<RecordingGroup> groups = GroupStore(m_data.database()).groups();
    for (const RecordingGroup &group : groups)
        list.append(treeMap(group, m_relayPath));
    answer(lastPart(ReturnCode::Success, list));
}

void GroupCommands::addRecordingGroup(Edit &edit)
{
    carryOut(edit, requestForNewGroup(edit), [](const EditOutcome &outcome) {
        const QVariantMap added{{FieldKey::recordingGroupID, outcome.after.id}};
        return lastPart(outcome.returnCode(), outcome.errors.isEmpty() ? added : QVariant());
    });
}

void GroupCommands::addRecordingGroupWithCompleteInfo(Edit &edit)
{
    carryOut(edit, requestForNewGroup(edit), [](const EditOutcome &outcome) {
        const QVariantMap added{{FieldKey::recordingGroupID, outcome.after.id}};
        const QVariantMap refused{{FieldKey::errorAction, errorList(outcome.errors)}};
        return lastPart(outcome.returnCode(), outcome.errors.isEmpty() ? added : refused);
    });
}

void GroupCommands::addPathToRecordingGroup(Edit &edit)
{
    carryOut(edit, requestForGroup(edit), [](const EditOutcome &outcome) { return lastPart(outcome.returnCode()); });
}

void GroupCommands::updateRecordingGroup(Edit &edit)
{
    carryOut(edit, requestForGroup(edit),
             [](const EditOutcome &outcome) { return lastPart(outcome.returnCode(), errorList(outcome.errors)); });
}

void GroupCommands::removePathFromRecordingGroup(Edit &edit)
{
    const QList<EditRequest> requests = requestsOf(edit);
    for (qsizetype place = edit.partsGiven(); place < requests.size(); ++place) {
        const EditRequest &request = requests.at(place);
        carryOut(edit, request, [&](const EditOutcome &outcome) {
            QVariantMap part{{FieldKey::recordingGroupID, request.id}, {FieldKey::path, request.path}};
            if (outcome.errors.isEmpty()) {
                QList<GroupPath> removed = outcome.before.paths;
                removed.removeIf(
                    [kept = keptPath(request.path)](const GroupPath &other) { return other.path != kept; });
                part.insert(StationKey::keptBytes, keptBytes(outcome.before, removed));
            }
            return StationReply{outcome.returnCode(), part, place == requests.size() - 1};
        });
    }
}

void GroupCommands::removeRecordingGroup(Edit &edit)
{
    const QList<EditRequest> requests = requestsOf(edit);
    for (qsizetype place = edit.partsGiven(); place < requests.size(); ++place) {
        const EditRequest &request = requests.at(place);
        carryOut(edit, request, [&](const EditOutcome &outcome) {
            QVariantMap part{{FieldKey::recordingGroupID, request.id}};
            if (outcome.errors.isEmpty())
                part.insert(StationKey::keptBytes, keptBytes(outcome.before, outcome.before.paths));
            return StationReply{outcome.returnCode(), part, place == requests.size() - 1};
        });
    }
}

/// An edit may wait for disks and NAS servers, and nobody else shall wait for the database meanwhile: it is judged
/// first, and again where somebody else has changed what it was judged against before it could be written.
void GroupCommands::carryOut(Edit &edit, const EditRequest &request, const Reply &reply)
{
    constexpr int mostAttempts = 20;
    const bool isNew = request.kind == EditRequest::Kind::Add;
    const ActivitySubject asked{request.id, isNew ? edit.subject().groupName : QString(), request.path};
    edit.setSubject(asked); // no longer that of the part before
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const Judged before = judged();
        const EditOutcome outcome = judge(request, before.site);
        const StationReply part = reply(outcome);
        edit.setSubject({asked.groupId, isNew ? asked.groupName : outcome.before.name, asked.object});
        if (!outcome.errors.isEmpty())
            return edit.answer(part);
        Database &database = m_data.database();
        Transaction transaction(database);
        if (!isAsJudged(before))
            continue;
        GroupStore store(database);
        if (isNew)
            store.insert(outcome.after);
        else if (request.kind == EditRequest::Kind::Change)
            store.replace(outcome.after);
        else
            store.remove(request.id);
        if (request.kind != EditRequest::Kind::Remove)
            edit.setSubject({outcome.after.id, outcome.after.name, asked.object});
        edit.commit(transaction, part);
        if (m_hooks.groupsChanged)
            m_hooks.groupsChanged();
        return;
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
