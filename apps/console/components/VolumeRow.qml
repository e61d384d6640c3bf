import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// One volume in a list.
ItemDelegate {
    id: row

    required property int index
    required property string nameRole
    required property string rootPathRole
    required property real sizeRole
    required property real availableSizeRole
    required property bool isSystemRole
    required property bool isNASRole

    objectName: "volume:" + rootPathRole
    leftPadding: Theme.large
    rightPadding: Theme.huge
    topPadding: Theme.large
    bottomPadding: Theme.large
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: figures.summary()
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }

    contentItem: VolumeFigures {
        id: figures

        name: row.nameRole
        path: row.rootPathRole
        size: row.sizeRole
        availableSize: row.availableSizeRole
        isSystem: row.isSystemRole
        isNas: row.isNASRole
        room: row.availableWidth
        wide: row.width >= 760
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
    }

    ConsoleToolTip {
        visible: row.hovered && figures.truncated
        text: figures.fullName
    }
}
