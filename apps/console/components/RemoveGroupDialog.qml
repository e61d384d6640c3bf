import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks before a recording group is removed. It stays open until the group is gone: a refusal stands in it.
ConsoleDialog {
    id: dialog

    property string groupId
    property string groupName
    property string refusal
    property string partsRefusal // of the parts so far

    /// The operator wants the group removed.
    signal submitted
    /// The answer is complete, and the group gone.
    signal removed

    function ask(group: var): void {
        groupId = group.id;
        groupName = group.name;
        refusal = "";
        busy = false;
        open();
        buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit(): void {
        if (busy)
            return;
        refusal = "";
        partsRefusal = "";
        busy = true;
        submitted();
    }

    /// Takes a part of the answer: @p words say why it is a refusal, empty when it is none.
    function takePart(words: string, finish: bool): void {
        partsRefusal = partsRefusal || words;
        if (!finish)
            return;
        if (partsRefusal !== "") {
            refuse(partsRefusal);
            return;
        }
        close();
        removed();
    }

    function refuse(words: string): void {
        busy = false;
        refusal = words;
        buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    objectName: "removeGroupDialog"
    title: qsTr("Remove recording group")
    width: Math.min(460, parent.width - 2 * Theme.large)

    contentItem: ColumnLayout {
        spacing: Theme.medium

        Text {
            objectName: "question"
            text: qsTr("Remove “%1”? Its cameras are recorded by this group no longer.").arg(dialog.groupName)
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Text {
            objectName: "promise"
            text: qsTr("Recorded files stay on the disk.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
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
