import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One alarm in the list of alarms.
ItemDelegate {
    id: row

    required property int index
    property var alarm: ({}) ///< of Alarms
    required property string words
    required property string since
    required property bool severe
    required property string acknowledgement ///< empty: nobody has acknowledged it
    required property bool acknowledgeable
    required property bool leadsOn ///< some page shows what it is about

    signal chosen
    signal acknowledgementAsked

    objectName: "alarm:" + index
    padding: Theme.medium
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: words + ", " + since + (acknowledgement === "" ? "" : ", " + acknowledgement)
    Accessible.description: alarm.remedy ?? ""
    onClicked: chosen()

    contentItem: RowLayout {
        spacing: Theme.medium

        Icon {
            name: (row.alarm.groupId ?? "") === "" ? "volume" : "gauge"
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
                text: row.alarm.remedy ?? ""
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
            Text {
                objectName: "acknowledgement"
                visible: text !== ""
                text: row.acknowledgement
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
        }
        ActionButton {
            objectName: "acknowledge"
            visible: row.acknowledgeable
            quiet: true
            focusPolicy: Qt.NoFocus
            text: row.acknowledgement === "" ? qsTr("Acknowledge") : qsTr("Take back")
            hint: row.acknowledgement === "" ? qsTr("Say that you have seen it (A)") : qsTr("Take the acknowledgement back (A)")
            onClicked: row.acknowledgementAsked()
        }
        Icon {
            visible: row.leadsOn
            name: "chevron"
            color: Theme.disabledText
            size: Theme.sized(16)
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
        FocusRing { shown: row.activeFocus }
    }
}
