#pragma once

#include <QStringList>
#include <QVariantList>

/// What stations send, as large as a benchmark wants it. Keys and types are those of docs/station-protocol.md.
namespace Replies {

constexpr int entriesPerGroup = 16;
/// How the entries of one group stand in an event.
enum class Order { Together, Spread };

QVariantList volumes(int count); ///< "getVolume": five keys each
QVariantList nasServers(int count); ///< "GetNasServers": five keys each
/// "getRecordingGroup" and "retrieveRecordingGroupTreeModel": ten keys each, all under the relay path relayPath().
QVariantList recordingGroups(int count, int members = 4);
QVariantList volumeEntries(int count, Order order = Order::Together); ///< "VolumeChanged": eleven keys each

QString relayPath();
QString groupId(int group);
QStringList groupIds(int entries); ///< of an event
/// The full name under which the plug-in finds member @p member of group @p group.
QString cameraId(int group, int member);

} // namespace Replies
