import QtQuick
import RecordingConsole

/// How much of something is done, as a bar. The words stand beside it.
Item {
    id: bar

    /// Of 1.
    required property real share

    implicitHeight: 10
    implicitWidth: 160
    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("Progress")
    Accessible.description: Units.percent(share)

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.track
        border.color: Theme.controlOutline
    }
    Rectangle {
        width: bar.share <= 0 ? 0 : Math.max(height, parent.width * Math.min(bar.share, 1))
        height: parent.height
        radius: height / 2
        color: Theme.accent
    }
}
