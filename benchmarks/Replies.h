#pragma once

#include <QVariantList>

/// What stations send, as large as a benchmark wants it. Keys and types are those of docs/station-protocol.md.
namespace Replies {

/// "getVolume": five keys each.
QVariantList volumes(int count);

/// "GetNasServers": five keys each.
QVariantList nasServers(int count);

/// "getRecordingGroup" and "retrieveRecordingGroupTreeModel": ten keys each, @p members members a group, all under the
/// relay path relayPath().
QVariantList recordingGroups(int count, int members = 4);
QString relayPath();
QString groupId(int group);
/// The full name under which the plug-in finds member @p member of group @p group.
QString cameraId(int group, int member);

/// How the entries of one group stand in an event.
enum class Order { Together, Spread };

/// "VolumeChanged": eleven keys each, @p perGroup entries a group.
QVariantList volumeEntries(int count, int perGroup = 16, Order order = Order::Together);

} // namespace Replies
