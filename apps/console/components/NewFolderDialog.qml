import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks for the name of a new folder. It stays open until the folder is made: a refusal stands at the field.
ConsoleDialog {
    id: dialog

    /// Where the folder shall be made.
    property string folder
    property string refusal
    readonly property alias name: field.text
    readonly property string mistake: name.trim() === "" ? qsTr("Enter a name.")
        : name.includes("/") ? qsTr("A name has no slash in it.")
        : name.includes("\\") ? qsTr("A name has no backslash in it.")
        : name === "." || name === ".." ? qsTr("“%1” means another folder.").arg(name) : ""
    readonly property string message: refusal !== "" ? refusal : field.edited ? mistake : ""

    /// The operator wants a folder called @p name.
    signal submitted(name: string)

    function ask(where: string): void {
        if (busy) {
            open();
            return;
        }
        folder = where;
        refusal = "";
        field.clear();
        field.edited = false;
        open();
        field.forceActiveFocus();
    }

    function entry(): var {
        return { folder: folder, name: name };
    }

    function resume(draft: var): void {
        ask(draft.entry.folder);
        refusal = draft.refusal;
        field.text = draft.entry.name;
        field.selectAll();
    }

    function submit(): void {
        field.edited = true;
        if (busy || mistake !== "")
            return;
        refusal = "";
        busy = true;
        submitted(name);
    }

    /// The folder is there.
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
        field.selectAll();
        field.forceActiveFocus();
    }

    objectName: "newFolderDialog"
    title: qsTr("New folder")
    subject: qsTr("New folder “%1”").arg(name)
    width: Math.min(Theme.sized(440), parent.width - 2 * Theme.large)

    contentItem: ColumnLayout {
        spacing: Theme.small

        Text {
            text: qsTr("in %1").arg(dialog.folder)
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        InputField {
            id: field

            property bool edited: false

            objectName: "nameField"
            enabled: !dialog.busy
            focus: true
            placeholderText: qsTr("Name")
            mistaken: dialog.message !== ""
            Layout.fillWidth: true
            Layout.topMargin: Theme.small
            Accessible.name: qsTr("Name of the new folder")
            Accessible.description: dialog.message
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
                objectName: "fieldMessage"
                width: parent.width
                text: dialog.message
            }
        }
    }

    footer: DialogButtons {
        busy: dialog.busy
        acceptable: dialog.mistake === ""
        text: qsTr("Create")
        busyText: qsTr("Creating…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
