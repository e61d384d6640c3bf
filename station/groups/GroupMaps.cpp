#include "GroupMaps.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <functional>

namespace {
/// The elements of the list under @p key, each read by @p read.
template<typename Element>
QList<Element> listOf(const RequestMap &map, const QString &key, Element (*read)(const RequestMap &))
{
    QList<Element> list;
    if (!map.contains(key))
        return list;
    const QList<RequestMap> elements = map.maps(key);
    for (const RequestMap &element : elements)
        list.append(read(element));
    return list;
}

/// What @p read finds under @p key; none where it is missing.
template<typename Value>
std::optional<Value> optional(const RequestMap &map, const QString &key,
                              Value (RequestMap::*read)(const QString &) const)
{
    if (!map.contains(key))
        return {};
    return (map.*read)(key);
}

PathChange pathChange(const RequestMap &map)
{
    return {map.string(FieldKey::path), optional(map, FieldKey::pathType, &RequestMap::smallInteger),
            optional(map, FieldKey::reserveSpace, &RequestMap::integer),
            optional(map, FieldKey::isRecoveryMode, &RequestMap::boolean)};
}

GroupMember newMember(const RequestMap &map)
{
    return {map.string(FieldKey::camName), map.smallInteger(FieldKey::streamIndex),
            optional(map, FieldKey::enableTimeShift, &RequestMap::boolean).value_or(false),
            optional(map, FieldKey::enableSeamless, &RequestMap::boolean).value_or(false)};
}

MemberRemoval memberRemoval(const RequestMap &map)
{
    return {map.string(FieldKey::camName), optional(map, FieldKey::streamIndex, &RequestMap::smallInteger)};
}

QVariantMap memberMap(const GroupMember &member)
{
    return {
        {FieldKey::camName, member.camera},
        {FieldKey::streamIndex, member.stream},
        {FieldKey::enableTimeShift, member.timeShift},
        {FieldKey::enableSeamless, member.seamless},
    };
}

QStringList pathsWhere(const RecordingGroup &group, const std::function<bool(const GroupPath &)> &isMeant)
{
    QStringList paths;
    for (const GroupPath &path : group.paths) {
        if (isMeant(path))
            paths.append(path.path);
    }
    return paths;
}
} // namespace

NewPath newPath(const RequestMap &map)
{
    return {map.string(FieldKey::path), map.smallInteger(FieldKey::pathType), map.integer(FieldKey::reserveSpace),
            optional(map, FieldKey::isRecoveryMode, &RequestMap::boolean).value_or(false)};
}

QList<NewPath> newPaths(const RequestMap &map, const QString &key)
{
    return listOf(map, key, newPath);
}

QList<PathChange> pathChanges(const RequestMap &map, const QString &key)
{
    return listOf(map, key, pathChange);
}

QList<GroupMember> newMembers(const RequestMap &map, const QString &key)
{
    return listOf(map, key, newMember);
}

QList<MemberRemoval> memberRemovals(const RequestMap &map, const QString &key)
{
    return listOf(map, key, memberRemoval);
}

GroupSettings groupSettings(const RequestMap &map)
{
    return {optional(map, FieldKey::recordingGroupName, &RequestMap::string),
            optional(map, FieldKey::recordingGroupReservedTimeEnabled, &RequestMap::boolean),
            optional(map, FieldKey::recordingGroupReservedTime, &RequestMap::smallInteger),
            optional(map, FieldKey::recordingGroupNodeIdList, &RequestMap::strings)};
}

QVariantMap groupMap(const RecordingGroup &group)
{
    return {
        {FieldKey::recordingGroupID, group.id},
        {FieldKey::recordingGroupName, group.name},
        {FieldKey::recordingGroupPathList, pathsWhere(group, [](const GroupPath &) { return true; })},
        {FieldKey::recordingGroupNASPathList,
         pathsWhere(group, [](const GroupPath &path) { return path.kind != PathKind::Local; })},
        {FieldKey::recordingGroupNodeIdList, group.nodeIds},
    };
}

QVariantMap treeMap(const RecordingGroup &group, const QString &relayPath)
{
    QVariantList reserves;
    for (const GroupPath &path : group.paths)
        reserves.append(path.reservedMegabytes);
    QVariantList members;
    for (const GroupMember &member : group.members)
        members.append(memberMap(member));

    QVariantMap map = groupMap(group);
    map.insert(FieldKey::relayPath, relayPath);
    map.insert(FieldKey::reserveSpace, reserves);
    map.insert(FieldKey::recordingGroupRecoveryPathList,
               pathsWhere(group, [](const GroupPath &path) { return path.isRecovery; }));
    map.insert(FieldKey::recordingGroupReservedTime, group.isReservedTimeEnabled ? group.reservedMinutes : 0);
    map.insert(FieldKey::recordingGroupMemberList, members);
    return map;
}

QVariantList errorList(const QList<EditError> &errors)
{
    QVariantList list;
    for (const EditError &error : errors) {
        QVariantMap map{
            {StationKey::element, error.element},
            {StationKey::index, error.index},
            {StationKey::value, error.value},
            {StationKey::returnCode, error.returnCode},
        };
        if (!error.reason.isEmpty())
            map.insert(StationKey::reason, error.reason);
        list.append(map);
    }
    return list;
}
