import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// One volume in a list.
ItemDelegate {
    id: row

    required property int index
    required property string path
    required property var volume
    required property var parts
    readonly property string name: figures.name
    readonly property alias lost: figures.lost
    readonly property bool holdsUnassigned: parts.some(part => part.kind === "withoutGroup")

    /// The operator wants to see the recordings of no group.
    signal unassignedChosen

    objectName: "volume:" + path
    leftPadding: Theme.large
    rightPadding: Theme.huge
    topPadding: Theme.large
    bottomPadding: Theme.large
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: figures.summary()
    Accessible.description: holdsUnassigned ? qsTr("Return shows the recordings of no group") : ""
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }

    contentItem: VolumeFigures {
        id: figures

        volume: row.volume
        parts: row.parts
        room: row.availableWidth
        wide: row.width >= Theme.sized(760)
        onUnassignedChosen: row.unassignedChosen()
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.hovered ? Theme.hover : "transparent"
        border.color: figures.lost ? Theme.danger : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
        FocusRing { shown: row.activeFocus }
    }

    ConsoleToolTip {
        visible: row.hovered && figures.truncated
        text: figures.fullName
    }
}
