import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks whether what was entered may be lost.
ConsoleDialog {
    id: dialog

    objectName: "discardDialog"
    title: qsTr("Discard the changes?")
    width: Math.min(Theme.sized(420), parent.width - 2 * Theme.large)
    onOpened: buttons.cancelButton.forceActiveFocus()

    contentItem: ColumnLayout {
        Text {
            text: qsTr("What was entered has not been sent to the station.")
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
    }
    footer: DialogButtons {
        id: buttons

        text: qsTr("Discard")
        cancelText: qsTr("Keep editing")
        onAccepted: {
            dialog.discarded();
            dialog.close();
        }
        onRejected: dialog.close()
    }
}
