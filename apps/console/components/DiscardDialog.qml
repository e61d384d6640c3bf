import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks whether something may be left undone: what was entered, unless it is told otherwise.
ConsoleDialog {
    id: dialog

    property string explanation: qsTr("What was entered has not been sent to the station.")
    property string discardText: qsTr("Discard")
    property string keepText: qsTr("Keep editing")

    objectName: "discardDialog"
    title: qsTr("Discard the changes?")
    width: Math.min(Theme.sized(420), parent.width - 2 * Theme.large)
    onOpened: buttons.cancelButton.forceActiveFocus()

    contentItem: ColumnLayout {
        Text {
            text: dialog.explanation
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
    }
    footer: DialogButtons {
        id: buttons

        text: dialog.discardText
        cancelText: dialog.keepText
        onAccepted: {
            dialog.discarded();
            dialog.close();
        }
        onRejected: dialog.close()
    }
}
