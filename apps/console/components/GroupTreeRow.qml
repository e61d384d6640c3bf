import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The station, or one of its recording groups, in the tree.
ItemDelegate {
    id: row

    // What the tree view tells each row.
    required property TreeView treeView
    required property bool expanded
    required property int hasChildren
    required property int depth
    required property int row

    required property string nameRole
    required property string typeRole
    required property var stationIPRole
    required property var recordingGroupIDRole

    required property string selectedId
    readonly property bool isGroup: typeRole === "RecordingGroup"
    readonly property string groupId: recordingGroupIDRole ?? ""
    readonly property bool current: groupId === selectedId

    signal chosen
    signal toggleRequested

    objectName: isGroup ? "group:" + nameRole : "station"
    implicitWidth: Math.max(1, treeView.width)
    implicitHeight: 42
    leftPadding: Theme.medium + depth * (Theme.huge + Theme.large)
    rightPadding: Theme.large
    Accessible.role: Accessible.TreeItem
    Accessible.name: isGroup ? nameRole : qsTr("Station %1").arg(stationIPRole ? nameRole + ", " + stationIPRole : nameRole)
    Accessible.selected: current
    onClicked: chosen()

    contentItem: RowLayout {
        spacing: Theme.small

        Icon {
            objectName: "twist"
            opacity: row.hasChildren ? 1 : 0
            name: row.expanded ? "down" : "chevron"
            color: Theme.secondaryText
            size: 16
            visible: !row.isGroup

            TapHandler { onTapped: row.toggleRequested() }
        }
        Icon {
            name: row.isGroup ? "group" : "station"
            color: row.isGroup ? Theme.accent : Theme.secondaryText
            size: Theme.iconSize
        }
        Text {
            id: nameText

            objectName: "name"
            text: row.nameRole
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: row.isGroup ? Font.Normal : Font.DemiBold
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        Text {
            objectName: "address"
            visible: !row.isGroup && text !== "" && row.width >= 280
            text: row.stationIPRole ?? ""
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
        }
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.margins: 3
            radius: Theme.radius
            color: row.current ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
            border.width: row.current && row.treeView.activeFocus ? 2 : 0
            border.color: Theme.accent
        }
    }

    ConsoleToolTip {
        visible: row.hovered && nameText.truncated
        text: row.nameRole
    }
}
