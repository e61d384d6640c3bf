#include "GroupMaps.h"

#include "StationProtocol.h"

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
    return {map.string(StationKey::path), optional(map, StationKey::pathType, &RequestMap::smallInteger),
            optional(map, StationKey::reserveSpace, &RequestMap::integer),
            optional(map, StationKey::isRecoveryMode, &RequestMap::boolean)};
}

GroupMember newMember(const RequestMap &map)
{
    return {map.string(StationKey::camName), map.smallInteger(StationKey::streamIndex),
            optional(map, StationKey::enableTimeShift, &RequestMap::boolean).value_or(false),
            optional(map, StationKey::enableSeamless, &RequestMap::boolean).value_or(false)};
}

MemberRemoval memberRemoval(const RequestMap &map)
{
    return {map.string(StationKey::camName), optional(map, StationKey::streamIndex, &RequestMap::smallInteger)};
}

QVariantMap memberMap(const GroupMember &member)
{
    return {
        {StationKey::camName, member.camera},
        {StationKey::streamIndex, member.stream},
        {StationKey::enableTimeShift, member.timeShift},
        {StationKey::enableSeamless, member.seamless},
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
    return {map.string(StationKey::path), map.smallInteger(StationKey::pathType), map.integer(StationKey::reserveSpace),
            optional(map, StationKey::isRecoveryMode, &RequestMap::boolean).value_or(false)};
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
    return {optional(map, StationKey::recordingGroupName, &RequestMap::string),
            optional(map, StationKey::recordingGroupReservedTimeEnabled, &RequestMap::boolean),
            optional(map, StationKey::recordingGroupReservedTime, &RequestMap::smallInteger),
            optional(map, StationKey::recordingGroupNodeIdList, &RequestMap::strings)};
}

QVariantMap groupMap(const RecordingGroup &group)
{
    return {
        {StationKey::recordingGroupID, group.id},
        {StationKey::recordingGroupName, group.name},
        {StationKey::recordingGroupPathList, pathsWhere(group, [](const GroupPath &) { return true; })},
        {StationKey::recordingGroupNASPathList,
         pathsWhere(group, [](const GroupPath &path) { return path.kind != PathKind::Local; })},
        {StationKey::recordingGroupNodeIdList, group.nodeIds},
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
    map.insert(StationKey::relayPath, relayPath);
    map.insert(StationKey::reserveSpace, reserves);
    map.insert(StationKey::recordingGroupRecoveryPathList,
               pathsWhere(group, [](const GroupPath &path) { return path.isRecovery; }));
    map.insert(StationKey::recordingGroupReservedTime, group.isReservedTimeEnabled ? group.reservedMinutes : 0);
    map.insert(StationKey::recordingGroupMemberList, members);
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
