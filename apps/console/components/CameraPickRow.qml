import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// A camera that can be chosen, and the groups that record it.
ItemDelegate {
    id: row

    required property int index
    required property string camName
    required property int streams
    required property var groupNames
    required property int groupCount
    required property bool unrecorded
    property bool chosen: false
    property string fullText ///< why it cannot be chosen
    property bool free: true ///< a stream of it could still be added
    readonly property bool current: ListView.isCurrentItem
    readonly property string recordedBy: groupCount < 0 ? qsTr("Not known who records it")
        : unrecorded ? qsTr("Not recorded") : groupNames.join(", ")

    objectName: "pick:" + camName
    implicitHeight: Theme.sized(48)
    leftPadding: Theme.large
    rightPadding: Theme.large
    enabled: free
    highlighted: current && (ListView.view?.activeFocus ?? false)
    Accessible.role: Accessible.CheckBox
    Accessible.name: qsTr("%1: %2").arg(camName).arg(recordedBy)
    Accessible.checkable: true
    Accessible.checked: chosen
    onClicked: {
        ListView.view.currentIndex = index;
        toggled();
    }

    contentItem: RowLayout {
        spacing: Theme.medium

        Rectangle {
            implicitWidth: 20
            implicitHeight: 20
            radius: 4
            color: row.chosen ? Theme.accent : Theme.window
            border.width: row.chosen ? 0 : 1
            border.color: row.free ? Theme.controlOutline : Theme.outline

            Icon {
                anchors.centerIn: parent
                visible: row.chosen
                name: "check"
                color: Theme.accentText
                size: 18
            }
        }
        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true

            Text {
                objectName: "name"
                text: row.camName
                color: row.free ? Theme.text : Theme.disabledText
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                objectName: "groups"
                text: row.free ? row.recordedBy : qsTr("%1 · %2").arg(row.fullText).arg(row.recordedBy)
                color: row.unrecorded ? Theme.warning : row.free ? Theme.secondaryText : Theme.disabledText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        Text {
            objectName: "streams"
            visible: row.streams > 1
            text: qsTr("%1 streams").arg(row.streams)
            color: row.free ? Theme.secondaryText : Theme.disabledText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
        border.width: row.highlighted ? 2 : 0
        border.color: Theme.accent
    }
}
