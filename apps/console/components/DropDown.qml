import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The list that opens below a field.
Popup {
    id: dropDown

    property alias model: list.model
    property alias delegate: list.delegate
    property alias currentIndex: list.currentIndex
    property alias list: list

    padding: Theme.tiny
    enter: null
    exit: null
    implicitHeight: Math.min(Theme.sized(260), list.contentHeight + topPadding + bottomPadding)

    contentItem: ListView {
        id: list

        clip: true
        implicitHeight: contentHeight
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        Accessible.role: Accessible.List

        ScrollBar.vertical: ScrollMark { flickable: list }
    }
    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius
    }
}
