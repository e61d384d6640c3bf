#pragma once

#include <QString>
#include <QVariantList>

/// One recording group as a station reported it. The id and the relay path together identify it.
/// The lists are kept exactly as the station sent them.
struct RecordingGroupData
{
    QString recordingGroupID;
    QString relayPath; ///< the station that reported the group
    QVariantList recordingGroupPathList;
    QVariantList reserveSpace; ///< in the station's unit, one value for each path
    QVariantList recordingGroupNASPathList;
    QVariantList recordingGroupNodeIdList;
    QVariantList recordingGroupRecoveryPathList;
    int recordingGroupReservedTime = 0; ///< minutes
    /// Maps with "camName" (string), "streamIndex" (int), "enableTimeShift" (bool), "enableSeamless" (bool).
    QVariantList recordingGroupMemberList;
};
