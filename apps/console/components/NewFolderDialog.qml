import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import RecordingConsole

/// Asks for the name of a new folder. It stays open until the folder is made: a refusal stands at the field.
Dialog {
    id: dialog

    /// Where the folder shall be made.
    property string folder
    property string refusal
    property bool busy: false
    readonly property alias name: field.text
    readonly property string mistake: name.trim() === "" ? qsTr("Enter a name.")
        : name.includes("/") ? qsTr("A name has no slash in it.")
        : name.includes("\\") ? qsTr("A name has no backslash in it.")
        : name === "." || name === ".." ? qsTr("“%1” means another folder.").arg(name) : ""
    readonly property string message: refusal !== "" ? refusal : field.edited ? mistake : ""

    /// The operator wants a folder called @p name.
    signal submitted(name: string)

    function ask(where: string): void {
        folder = where;
        refusal = "";
        busy = false;
        field.clear();
        field.edited = false;
        open();
        field.forceActiveFocus();
    }

    function submit(): void {
        field.edited = true;
        if (busy || mistake !== "")
            return;
        refusal = "";
        busy = true;
        submitted(name);
    }

    function refuse(words: string): void {
        busy = false;
        refusal = words;
        field.selectAll();
        field.forceActiveFocus();
    }

    objectName: "newFolderDialog"
    modal: true
    anchors.centerIn: parent
    width: Math.min(440, parent.width - 2 * Theme.large)
    padding: Theme.huge
    topPadding: Theme.small
    closePolicy: busy ? Popup.NoAutoClose : Popup.CloseOnEscape
    enter: null
    exit: null

    header: Text {
        text: qsTr("New folder")
        color: Theme.text
        font.pixelSize: 18
        font.weight: Font.DemiBold
        padding: Theme.huge
        bottomPadding: Theme.small
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius + 2
    }
    T.Overlay.modal: Rectangle { color: Theme.scrim }

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
        TextField {
            id: field

            property bool edited: false

            objectName: "nameField"
            enabled: !dialog.busy
            focus: true
            color: Theme.text
            placeholderText: qsTr("Name")
            placeholderTextColor: Theme.disabledText
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentText
            selectByMouse: true
            font.pixelSize: Theme.bodySize
            leftPadding: Theme.medium
            rightPadding: Theme.medium
            Layout.fillWidth: true
            Layout.preferredHeight: Theme.controlHeight
            Layout.topMargin: Theme.small
            Accessible.name: qsTr("Name of the new folder")
            Accessible.description: dialog.message
            onTextEdited: {
                edited = true;
                dialog.refusal = "";
            }
            onAccepted: dialog.submit()

            background: Rectangle {
                radius: Theme.radius
                color: Theme.window
                border.width: field.activeFocus ? 2 : 1
                border.color: dialog.message !== "" ? Theme.danger
                            : field.activeFocus ? Theme.accent : Theme.controlOutline
            }
        }
        RowLayout {
            spacing: Theme.small
            Layout.minimumHeight: 36

            Icon {
                visible: dialog.message !== ""
                name: "alert"
                color: Theme.danger
                size: 16
                Layout.alignment: Qt.AlignTop
            }
            Text {
                objectName: "fieldMessage"
                text: dialog.message
                color: Theme.danger
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
            }
        }
    }

    footer: RowLayout {
        spacing: Theme.small

        Item { Layout.fillWidth: true }
        ActionButton {
            objectName: "cancel"
            text: qsTr("Cancel")
            enabled: !dialog.busy
            Layout.bottomMargin: Theme.large
            onClicked: dialog.close()
        }
        ActionButton {
            objectName: "create"
            primary: true
            text: dialog.busy ? qsTr("Creating…") : qsTr("Create")
            enabled: !dialog.busy && dialog.mistake === ""
            Layout.bottomMargin: Theme.large
            Layout.rightMargin: Theme.huge
            onClicked: dialog.submit()
        }
    }
}
