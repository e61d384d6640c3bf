import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Acknowledges an alarm of the station's, with a note for others. It stays open until the station has taken it.
ConsoleDialog {
    id: dialog

    property var alarm: null ///< as in Alarms
    property string refusal

    function ask(about: var): void {
        if (busy) {
            open();
            return;
        }
        alarm = about;
        refusal = "";
        const kept = drafts.find(draft => draft.entry.word === about.word && draft.entry.subject === about.subject);
        drafts = drafts.filter(draft => draft !== kept);
        field.text = kept?.entry.note ?? about.note ?? "";
        open();
        field.forceActiveFocus();
    }

    function entry(): var {
        return { word: alarm.word, subject: alarm.subject, note: field.text };
    }

    function submit(): void {
        if (busy)
            return;
        refusal = "";
        busy = true;
        session.acknowledgeAlarm(alarm.word, alarm.subject, field.text, alarm.source ?? "");
    }

    objectName: "acknowledgeDialog"
    title: qsTr("Acknowledge the alarm")
    width: Math.min(Theme.sized(480), parent.width - 2 * Theme.large)

    Connections {
        target: dialog.session

        function onAlarmAcknowledged(refusal: string): void {
            if (!dialog.busy || dialog.endLeft(refusal))
                return;
            dialog.busy = false;
            dialog.refusal = refusal;
            if (refusal === "")
                dialog.close();
            else
                field.forceActiveFocus();
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.small

        Text {
            objectName: "alarmWords"
            text: dialog.alarm?.text ?? ""
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Text {
            text: qsTr("The alarm stays until what it tells of is mended. Your name and note stand beside it.")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        InputField {
            id: field

            objectName: "noteField"
            enabled: !dialog.busy
            placeholderText: qsTr("Note, for instance who mends it")
            mistaken: dialog.refusal !== ""
            Accessible.name: qsTr("Note")
            Accessible.description: dialog.refusal
            Layout.fillWidth: true
            Layout.topMargin: Theme.small
            onTextEdited: dialog.refusal = ""
            onAccepted: dialog.submit()
        }
        FieldMessage {
            objectName: "noteMessage"
            text: dialog.refusal
            Layout.fillWidth: true
        }
    }

    footer: DialogButtons {
        busy: dialog.busy
        text: qsTr("Acknowledge")
        busyText: qsTr("Acknowledging…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
