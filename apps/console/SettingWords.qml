pragma Singleton

import QtQuick
import com.meridon.pluginrecordingmanagement

/// What each setting of a recording group does, in a sentence: for tool tips and captions.
QtObject {
    readonly property string reservedTime:
        qsTr("How far back the recordings shall reach. A target, not a limit: the station raises an alarm when it will "
             + "not be reached, and goes on recording.")
    readonly property string reservedSpace:
        qsTr("Set aside for this group on the volume. Groups on one volume share its free space in proportion to their reserves.")
    readonly property string recovery:
        qsTr("Also takes recordings that are fetched later from cameras that were cut off.")
    readonly property string timeShift:
        qsTr("While this stream is watched live, the operator can go back in it.")
    readonly property string seamless:
        qsTr("Live picture and recordings of this stream follow one another without a gap.")
    readonly property string localPath: qsTr("A folder on a volume of the station's own machine.")
    readonly property string hostPath:
        qsTr("A folder on a NAS server, where the station logs on with an account of the server itself.")
    readonly property string domainPath:
        qsTr("A folder on a NAS server, where the station logs on with an account of a domain.")
    readonly property string keptNasPath: qsTr("A folder on a NAS server that the group has already; it stays as it is.")

    /// Of a kind of path as GroupEdit has them.
    function pathKind(kind: int): string {
        switch (kind) {
        case PluginRecordingManagement.Local:
            return localPath;
        case PluginRecordingManagement.NetHost:
            return hostPath;
        case PluginRecordingManagement.NetDomain:
            return domainPath;
        default:
            return keptNasPath;
        }
    }
}
