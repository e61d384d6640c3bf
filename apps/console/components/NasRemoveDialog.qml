import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks whether a NAS server shall be removed, and stays open until the station did it.
ConsoleDialog {
    id: dialog

    property string serverId
    property string host
    property int volumes: 0 ///< paths of the server that are used as volumes
    property string refusal

    signal confirmed

    function ask(id: string, name: string, usedPaths: int): void {
        serverId = id;
        host = name;
        volumes = usedPaths;
        refusal = "";
        busy = false;
        open();
        cancelButton.forceActiveFocus();
    }

    function submit(): void {
        refusal = "";
        busy = true;
        confirmed();
    }

    function done(): void {
        busy = false;
        close();
    }

    function refuse(words: string): void {
        busy = false;
        refusal = words;
        cancelButton.forceActiveFocus();
    }

    objectName: "nasRemoveDialog"
    title: qsTr("Remove %1?").arg(host)
    width: Math.min(460, parent.width - 2 * Theme.large)

    contentItem: ColumnLayout {
        spacing: Theme.medium

        Text {
            objectName: "consequence"
            text: qsTr("The station forgets this NAS server and its password. The files on it stay as they are.")
                + (dialog.volumes === 0 ? "" : " " + (dialog.volumes === 1
                    ? qsTr("One of its folders is used as a volume and is listed as one no longer.")
                    : qsTr("%1 of its folders are used as volumes and are listed as such no longer.").arg(dialog.volumes)))
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        FieldMessage {
            objectName: "refusal"
            text: dialog.refusal
            Layout.fillWidth: true
        }
    }

    footer: RowLayout {
        spacing: Theme.small

        Item { Layout.fillWidth: true }
        ActionButton {
            id: cancelButton

            objectName: "cancel"
            text: qsTr("Cancel")
            enabled: !dialog.busy
            Layout.bottomMargin: Theme.large
            onClicked: dialog.close()
        }
        ActionButton {
            objectName: "confirm"
            primary: true
            text: dialog.busy ? qsTr("Removing…") : qsTr("Remove")
            enabled: !dialog.busy
            Layout.bottomMargin: Theme.large
            Layout.rightMargin: Theme.huge
            onClicked: dialog.submit()
        }
    }
}
