import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Deletes recordings of no group for good: asks for the folder's name, shows how far the station is, and says what came
/// of it. The deletion goes on without it, and can be shown again.
ConsoleDialog {
    id: dialog

    required property UnassignedWords words
    readonly property UnassignedRecordingsModel recordings: session.unassigned
    readonly property RecordingsDeletion deletion: recordings.deletion
    property string place
    property string name ///< to be typed
    property string amount ///< what is to be deleted, in words
    property string refusal
    property bool asking: false
    readonly property bool running: deletion.running && deletion.place === place
    readonly property bool ended: !running && !asking

    /// Asks whether the recordings of @p where, @p what in words, shall be deleted.
    function ask(where: string, what: string): void {
        if (busy) {
            open(); // on what was left
            return;
        }
        place = where;
        name = recordings.valueOf(where, "confirmation") ?? "";
        amount = what;
        refusal = "";
        asking = true;
        field.text = "";
        open();
        field.field.forceActiveFocus();
    }

    /// Shows the deletion that runs, or what came of it.
    function show(): void {
        place = deletion.place;
        refusal = "";
        busy = false;
        asking = false;
        open();
        buttons.acceptButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit(): void {
        if (busy || field.text !== name)
            return;
        refusal = "";
        busy = true;
        recordings.remove(place, field.text);
    }

    /// Some of what is left, a line each.
    function leftText(): string {
        const most = 4;
        const all = Array.from(deletion.left);
        const lines = all.slice(0, most);
        const rest = Math.max(deletion.leftEntries, all.length) - lines.length;
        if (rest > 0 && lines.length > 0)
            lines.push(qsTr("and %1 more").arg(rest));
        return lines.join("\n");
    }

    objectName: "deletionDialog"
    title: running ? qsTr("Deleting recordings") : asking ? qsTr("Delete recordings for good") : qsTr("Deletion ended")
    width: Math.min(Theme.sized(520), parent.width - 2 * Theme.large)
    onRunningChanged: {
        if (!running)
            return;
        asking = false;
        busy = false;
        buttons.acceptButton.forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: {
        if (ended && deletion.place === place)
            deletion.forget();
    }

    Connections {
        target: dialog.recordings

        function onDeletionAnswered(place: string, refusal: string): void {
            if (!dialog.busy || place !== dialog.place)
                return;
            if (refusal !== "" && dialog.endLeft(refusal))
                return;
            dialog.left = false;
            dialog.busy = false;
            dialog.refusal = refusal;
            dialog.asking = refusal !== "";
            if (refusal !== "")
                field.field.forceActiveFocus();
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.small

        Text {
            objectName: "deletionPlace"
            text: dialog.place
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        Text {
            objectName: "deletionWords"
            text: dialog.running ? dialog.words.progress : dialog.asking
                ? qsTr("%1 will be deleted. They cannot be brought back. Other files in the folder stay.").arg(dialog.amount)
                : dialog.words.outcome
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        ShareBar {
            objectName: "deletionBar"
            visible: dialog.running && dialog.words.share >= 0
            share: dialog.words.share
            Layout.fillWidth: true
        }
        Text {
            objectName: "deletionFiles"
            visible: dialog.running && text !== ""
            text: dialog.words.fileProgress
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        Text {
            visible: dialog.running
            text: qsTr("The deletion goes on when this window is closed.")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        FieldMessage {
            objectName: "cancelMessage"
            visible: dialog.running && text !== ""
            text: dialog.deletion.cancelFailure
            Layout.fillWidth: true
        }
        Text {
            objectName: "left"
            visible: dialog.ended && text !== ""
            text: dialog.leftText()
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            wrapMode: Text.WrapAnywhere
            Layout.fillWidth: true
        }
        LabelledField {
            id: field

            objectName: "confirmation"
            visible: dialog.asking && !dialog.running
            label: qsTr("Type “%1” to confirm").arg(dialog.name)
            locked: dialog.busy
            message: dialog.refusal
            Layout.fillWidth: true
            Layout.topMargin: Theme.small
            onEdited: dialog.refusal = ""
            onAccepted: dialog.submit()
        }
    }

    footer: DialogButtons {
        id: buttons

        readonly property bool closes: dialog.running || dialog.ended

        busy: dialog.busy && !closes
        acceptable: closes || field.text === dialog.name
        cancellable: !(dialog.running && (dialog.deletion.cancelling || !dialog.session.connected))
        cancelButton.visible: !dialog.ended
        cancelText: !dialog.running ? qsTr("Cancel")
            : dialog.deletion.cancelling ? qsTr("Cancelling…") : qsTr("Cancel the deletion")
        text: closes ? qsTr("Close") : qsTr("Delete")
        busyText: qsTr("Deleting…")
        onAccepted: closes ? dialog.close() : dialog.submit()
        onRejected: dialog.running ? dialog.recordings.cancelDeletion() : dialog.close()
    }
}
