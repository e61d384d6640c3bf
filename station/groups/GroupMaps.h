#pragma once

#include "GroupEdit.h"
#include "RequestMap.h"

#include <QVariantList>

/// Recording groups as they travel: requests read, replies written. docs/station-protocol.md tells the keys. What reads
/// throws BadRequest.

/// The path that stands in @p map itself; recovery mode may be missing.
NewPath newPath(const RequestMap &map);
/// The list under @p key of @p map. Likewise below; a missing list is an empty one.
QList<NewPath> newPaths(const RequestMap &map, const QString &key);
QList<PathChange> pathChanges(const RequestMap &map, const QString &key);
QList<GroupMember> newMembers(const RequestMap &map, const QString &key);
QList<MemberRemoval> memberRemovals(const RequestMap &map, const QString &key);
/// The settings that stand in @p map itself.
GroupSettings groupSettings(const RequestMap &map);

/// What "getRecordingGroup" tells of a group.
QVariantMap groupMap(const RecordingGroup &group);
/// What "retrieveRecordingGroupTreeModel" tells of a group of the station behind @p relayPath.
QVariantMap treeMap(const RecordingGroup &group, const QString &relayPath);
/// Why an edit was refused.
QVariantList errorList(const QList<EditError> &errors);
