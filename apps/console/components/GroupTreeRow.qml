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
    required property var figures ///< of GroupStandings; empty for a station
    readonly property bool lost: figures.lost ?? false
    readonly property real missingDays: figures.missingDays ?? 0
    readonly property string trouble: lost ? qsTr("No storage")
        : missingDays > 0 ? qsTr("%1 short").arg(Units.days(missingDays)) : ""
    readonly property bool isGroup: typeRole === "RecordingGroup"
    readonly property string groupId: recordingGroupIDRole ?? ""
    readonly property bool current: groupId === selectedId
    property bool choosable: false ///< a group can be chosen beside the selected one
    property bool chosenToo: false ///< it is

    signal chosen
    signal toggleRequested
    signal choiceToggled ///< by its mark, or with Ctrl
    signal choiceExtended ///< up to here, with Shift

    objectName: isGroup ? "group:" + nameRole : "station"
    implicitWidth: Math.max(1, treeView.width)
    implicitHeight: Theme.sized(42)
    leftPadding: Theme.medium + depth * (Theme.huge + Theme.large)
    rightPadding: Theme.large
    Accessible.role: Accessible.TreeItem
    Accessible.name: isGroup ? (trouble === "" ? nameRole : nameRole + ", " + trouble) : qsTr("Station %1").arg(stationIPRole ? nameRole + ", " + stationIPRole : nameRole)
    Accessible.selected: current
    Accessible.checkable: choosable && isGroup
    Accessible.checked: chosenToo
    onClicked: chosen()

    Rectangle {
        objectName: "choice"
        x: row.leftPadding - width - Theme.small
        anchors.verticalCenter: parent.verticalCenter
        visible: row.choosable && row.isGroup
        width: Theme.sized(18)
        height: width
        radius: 4
        color: row.chosenToo ? Theme.accent : Theme.window
        border.width: row.chosenToo ? 0 : 1
        border.color: Theme.controlOutline

        Icon {
            anchors.centerIn: parent
            visible: row.chosenToo
            name: "check"
            color: Theme.accentText
            size: Theme.sized(16)
        }
        TapHandler {
            margin: 10
            gesturePolicy: TapHandler.ReleaseWithinBounds
            acceptedModifiers: Qt.NoModifier
            onTapped: row.choiceToggled()
        }
    }
    Item {
        anchors.fill: parent
        z: 1 // before the row itself
        visible: row.choosable && row.isGroup

        TapHandler {
            gesturePolicy: TapHandler.ReleaseWithinBounds
            acceptedModifiers: Qt.ControlModifier
            onTapped: row.choiceToggled()
        }
        TapHandler {
            gesturePolicy: TapHandler.ReleaseWithinBounds
            acceptedModifiers: Qt.ShiftModifier
            onTapped: row.choiceExtended()
        }
    }

    contentItem: RowLayout {
        spacing: Theme.small

        Icon {
            objectName: "twist"
            opacity: row.hasChildren ? 1 : 0
            name: row.expanded ? "down" : "chevron"
            color: Theme.secondaryText
            size: Theme.sized(16)
            visible: !row.isGroup

            TapHandler { onTapped: row.toggleRequested() }
        }
        Icon {
            name: row.isGroup ? "group" : "station"
            color: row.lost ? Theme.danger : row.missingDays > 0 ? Theme.warning
                 : row.isGroup ? Theme.accent : Theme.secondaryText
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
        Mark {
            objectName: "trouble"
            visible: row.trouble !== "" && row.width >= Theme.sized(240)
            iconName: "alert"
            text: row.trouble
            danger: row.lost
            warning: !row.lost
        }
        Icon {
            visible: row.trouble !== "" && row.width < Theme.sized(240)
            name: "alert"
            color: row.lost ? Theme.danger : Theme.warning
            size: 16
        }
        Text {
            objectName: "address"
            visible: !row.isGroup && text !== "" && row.width >= Theme.sized(280)
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
            color: row.current || row.chosenToo ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
            border.width: row.current && row.treeView.activeFocus ? 2 : 0
            border.color: Theme.accent
        }
    }

    ConsoleToolTip {
        visible: row.hovered && (nameText.truncated || row.trouble !== "")
        text: row.trouble === "" ? row.nameRole : row.nameRole + "\n" + row.trouble
    }
}
