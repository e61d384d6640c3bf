import QtQuick
import RecordingConsole

/// A mark across a bar, with a rim that sets it off from every part of it.
Rectangle {
    id: mark

    radius: 1

    Rectangle {
        z: -1
        anchors.fill: parent
        anchors.leftMargin: -1
        anchors.rightMargin: -1
        radius: 1
        color: Theme.surface
    }
}
