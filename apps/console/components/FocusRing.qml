import QtQuick
import RecordingConsole

/// Shows which control the keyboard speaks to. It lies within the control, so that no pane cuts it off.
Rectangle {
    id: ring

    property bool shown: false
    property bool filled: false ///< the control is painted in the ring's colour: a line within sets the ring off

    objectName: "focusRing"
    anchors.fill: parent
    radius: Theme.radius
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: shown

    Rectangle {
        anchors.fill: parent
        anchors.margins: 2
        visible: ring.filled
        radius: Math.max(0, ring.radius - 2)
        color: "transparent"
        border.width: 2
        border.color: Theme.accentText
    }
}
