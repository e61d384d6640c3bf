#pragma once

#include <QVariantList>

/// Made-up figures of a station with ten recording groups, each on two paths.
namespace Figures {

constexpr int groupCount = 10;
constexpr int pathCount = 2; ///< of each group
/// Events that differ in every entry's free space, as those of a station that records do.
constexpr int variantCount = 8;

/// What "VolumeChanged" tells. @param variant from 0 to variantCount - 1
QVariantList volumeEntries(int variant);
/// The reply to "getVolume".
QVariantList volumes();
/// The reply of the station @p relayPath to "retrieveRecordingGroupTreeModel", and to "getRecordingGroup".
QVariantList recordingGroups(const QString &relayPath);

} // namespace Figures
