import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks before something is removed. It stays open until that is done: a refusal stands in it.
ConsoleDialog {
    id: dialog

    required property string question
    required property string promise ///< what stays as it is
    property string refusal

    /// The operator wants it removed.
    signal submitted

    function begin(): void {
        refusal = "";
        open();
        buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit(): void {
        if (busy)
            return;
        refusal = "";
        busy = true;
        submitted();
    }

    function done(): void {
        if (endLeft(""))
            return;
        busy = false;
        close();
    }

    function refuse(words: string): void {
        if (endLeft(words))
            return;
        busy = false;
        refusal = words;
        buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    width: Math.min(Theme.sized(460), parent.width - 2 * Theme.large)

    contentItem: ColumnLayout {
        spacing: Theme.medium

        Text {
            objectName: "question"
            text: dialog.question
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        Text {
            objectName: "promise"
            text: dialog.promise
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        ErrorStrip {
            objectName: "removeStrip"
            text: dialog.refusal
            Layout.fillWidth: true
            onDismissed: dialog.refusal = ""
        }
    }

    footer: DialogButtons {
        id: buttons

        busy: dialog.busy
        text: qsTr("Remove")
        busyText: qsTr("Removing…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
