import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One line about the recordings of no group, which leads to their list.
AbstractButton {
    id: summary

    required property ConsoleSession session
    readonly property UnassignedRecordingsModel recordings: session.unassigned
    readonly property bool troubled: recordings.failure !== "" && session.connected
    readonly property string figures: words.outcome !== "" ? words.outcome
        : recordings.deletion.running ? words.progress
        : troubled ? qsTr("Not known: %1").arg(recordings.failure)
        : recordings.known ? words.figures
        : session.connected ? qsTr("Asking the station…") : qsTr("Not known without a connection")

    implicitHeight: Theme.sized(48)
    leftPadding: Theme.large
    rightPadding: Theme.medium
    text: qsTr("Recordings of no group")
    hoverEnabled: true
    Accessible.name: qsTr("%1: %2").arg(text).arg(figures)
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    UnassignedWords {
        id: words

        session: summary.session
    }

    contentItem: RowLayout {
        spacing: Theme.medium

        Icon {
            name: "folder"
            color: Theme.secondaryText
            size: Theme.iconSize
        }
        Text {
            text: summary.text
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.maximumWidth: Math.ceil(implicitWidth)
        }
        Text {
            objectName: "figures"
            text: summary.figures
            color: summary.troubled ? Theme.danger : Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignRight
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.preferredWidth: 1
        }
        Icon {
            name: "chevron"
            color: Theme.secondaryText
            size: Theme.sized(16)
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: summary.down ? Theme.pressed : summary.hovered ? Theme.hover : Theme.surface
        border.color: Theme.outline

        FocusRing { shown: summary.visualFocus }
    }
}
