import QtQuick
import RecordingConsole

/// Shows which control the keyboard speaks to.
Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -3
    radius: Theme.radius + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: shown
}
