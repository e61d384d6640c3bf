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
        Keys.onPressed: event => {
            const rowsInView = Math.max(1, Math.floor(list.height * list.count / Math.max(1, list.contentHeight)) - 1);
            const target = event.key === Qt.Key_Home ? 0
                : event.key === Qt.Key_End ? list.count - 1
                : event.key === Qt.Key_PageUp ? list.currentIndex - rowsInView
                : event.key === Qt.Key_PageDown ? list.currentIndex + rowsInView : NaN;
            if (isNaN(target) || list.count === 0)
                return;
            list.currentIndex = Math.max(0, Math.min(list.count - 1, target));
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
            event.accepted = true;
        }

        ScrollBar.vertical: ScrollMark { flickable: list }
    }
}
