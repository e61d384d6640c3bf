import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One alarm in the list of alarms.
ItemDelegate {
    id: row

    required property int index
    required property var modelData ///< of Alarms
    required property string words
    required property string since
    required property bool severe

    signal chosen

    objectName: "alarm:" + index
    padding: Theme.medium
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: words + ", " + since
    Accessible.description: modelData.remedy ?? ""
    onClicked: chosen()

    contentItem: RowLayout {
        spacing: Theme.medium

        Icon {
            name: row.modelData.groupId === "" ? "volume" : "gauge"
            color: row.severe ? Theme.danger : Theme.warning
            size: Theme.iconSize
        }
        ColumnLayout {
            spacing: 2

            Text {
                text: row.words
                color: Theme.text
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
            Text {
                visible: text !== ""
                text: row.modelData.remedy ?? ""
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
            Text {
                text: row.since
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                Layout.fillWidth: true
            }
        }
        Icon {
            name: "chevron"
            color: Theme.disabledText
            size: 16
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
    }
}
