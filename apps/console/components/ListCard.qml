import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The ground of a list, and the list's behaviour that every page shares.
Rectangle {
    id: card

    property alias model: list.model
    property alias delegate: list.delegate
    property alias currentIndex: list.currentIndex
    property alias count: list.count
    property alias list: list

    radius: Theme.radius
    color: Theme.surface
    border.color: list.activeFocus ? Theme.accent : Theme.outline

    ListView {
        id: list

        objectName: "list"
        anchors.fill: parent
        anchors.margins: 1
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        highlightResizeDuration: 0
        Accessible.role: Accessible.List

        ScrollBar.vertical: ScrollBar {
            policy: list.contentHeight > list.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
            contentItem: Rectangle {
                implicitWidth: 6
                radius: 3
                color: Theme.controlOutline
            }
        }
    }
}
