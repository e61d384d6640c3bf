import QtQuick
import RecordingConsole

/// How much of a volume is used, as a bar. The words stand beside it; a volume that runs full is hatched as well.
Item {
    id: bar

    /// Of 1.
    required property real share
    property bool low: false

    implicitHeight: 10
    implicitWidth: 160
    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("Used space")
    Accessible.description: Units.percent(share)

    Rectangle {
        id: track

        anchors.fill: parent
        radius: height / 2
        color: Theme.track
    }
    Rectangle {
        id: fill

        width: bar.share <= 0 ? 0 : Math.max(height, parent.width * Math.min(bar.share, 1))
        height: parent.height
        radius: height / 2
        color: bar.low ? Theme.warning : Theme.accent
    }
    Hatching {
        anchors.fill: fill
        anchors.leftMargin: fill.radius
        anchors.rightMargin: fill.radius
        visible: bar.low
        color: Theme.track
        opacity: 0.55
    }
}
