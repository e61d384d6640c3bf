import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// How many recording groups are chosen, and what can be done with all of them.
Rectangle {
    id: bar

    required property GroupChoice choice
    property bool editable: true
    readonly property bool roomy: width >= Theme.sized(280)

    signal editWanted
    signal allWanted ///< all groups in view

    objectName: "choiceBar"
    implicitHeight: line.implicitHeight + 2 * Theme.small
    visible: choice.count > 0
    radius: Theme.radius
    color: Theme.selected
    border.color: Theme.accent

    RowLayout {
        id: line

        x: bar.roomy ? Theme.medium : Theme.small
        y: Theme.small
        width: parent.width - x - Theme.small
        spacing: bar.roomy ? Theme.tiny : 0

        Text {
            objectName: "choiceCount"
            text: qsTr("%1 chosen").arg(bar.choice.count)
            color: Theme.text
            font.pixelSize: bar.roomy ? Theme.bodySize : Theme.captionSize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        ActionButton {
            objectName: "chooseShown"
            quiet: true
            iconName: "check"
            hint: qsTr("Choose all groups in view, or none of them (Ctrl+A)")
            onClicked: bar.allWanted()
        }
        ActionButton {
            objectName: "chooseNone"
            quiet: true
            iconName: "close"
            hint: qsTr("Choose none (Esc)")
            onClicked: bar.choice.clear()
        }
        ActionButton {
            objectName: "editChosen"
            primary: true
            iconName: "edit"
            text: bar.roomy ? qsTr("Edit…") : ""
            hint: qsTr("Change all chosen recording groups (Enter)")
            enabled: bar.editable
            onClicked: bar.editWanted()
        }
    }
}
