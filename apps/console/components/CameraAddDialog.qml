import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Makes a camera known to the station. It stays open until that is done: a refusal stands at the field.
ConsoleDialog {
    id: dialog

    required property StationCameras cameras
    property string refusal
    readonly property int mostStreams: 16
    readonly property string mistake: field.text.trim() === "" ? qsTr("Enter a name.") : ""
    readonly property string message: refusal !== "" ? refusal : field.edited ? mistake : ""

    /// The station has the camera.
    signal added(name: string)

    function ask(): void {
        if (busy) {
            open(); // on what was left
            return;
        }
        refusal = "";
        field.clear();
        field.edited = false;
        streamBox.currentIndex = 0;
        open();
        field.forceActiveFocus();
    }

    function entry(): var {
        return { name: field.text, streams: streamBox.currentIndex };
    }

    function resume(draft: var): void {
        ask();
        refusal = draft.refusal;
        field.text = draft.entry.name;
        streamBox.currentIndex = draft.entry.streams;
        field.selectAll();
    }

    function submit(): void {
        field.edited = true;
        if (busy || mistake !== "")
            return;
        refusal = "";
        if (cameras.add(field.text, streamBox.currentIndex + 1))
            busy = true;
        else
            refusal = qsTr("Another change of the cameras is under way. Try again when it is done.");
    }

    objectName: "cameraAddDialog"
    title: qsTr("Add camera")
    subject: qsTr("Add camera “%1”").arg(field.text)
    width: Math.min(Theme.sized(440), parent.width - 2 * Theme.large)

    Connections {
        target: dialog.cameras

        function onAdded(name: string, refusal: string): void {
            if (dialog.endLeft(refusal) || !dialog.busy)
                return;
            dialog.busy = false;
            dialog.refusal = refusal;
            if (refusal === "") {
                dialog.close();
                dialog.added(name);
                return;
            }
            field.selectAll();
            field.forceActiveFocus();
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.small

        InputField {
            id: field

            property bool edited: false

            objectName: "cameraName"
            enabled: !dialog.busy
            focus: true
            placeholderText: qsTr("Name")
            mistaken: dialog.message !== ""
            Accessible.name: qsTr("Name of the new camera")
            Accessible.description: dialog.message
            Layout.fillWidth: true
            onTextEdited: {
                edited = true;
                dialog.refusal = "";
            }
            onAccepted: dialog.submit()
        }
        Item {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.sized(36)

            FieldMessage {
                objectName: "cameraMessage"
                width: parent.width
                text: dialog.message
            }
        }
        RowLayout {
            spacing: Theme.small

            FieldLabel { text: qsTr("Streams") }
            ChoiceBox {
                id: streamBox

                objectName: "cameraStreams"
                enabled: !dialog.busy
                model: Array.from({ length: dialog.mostStreams }, (value, index) => String(index + 1))
                Accessible.name: qsTr("Number of streams of the new camera")
                Layout.preferredWidth: Theme.sized(88)
            }
        }
    }

    footer: DialogButtons {
        busy: dialog.busy
        acceptable: dialog.mistake === ""
        text: qsTr("Add")
        busyText: qsTr("Adding…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
