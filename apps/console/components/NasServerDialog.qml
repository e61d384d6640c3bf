import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Asks for a NAS server, a new one or one to be changed. The station tests the log-on before it keeps anything; the
/// dialog stays open until it did, and a refusal stands at the field that caused it.
ConsoleDialog {
    id: dialog

    property string serverId ///< to be changed; empty: a new server
    property string shownHost ///< of the server to be changed, for the title
    property string faultyField ///< "host", "user" or "general", which is none of them
    property string refusal
    property bool hostEdited: false
    readonly property var hostReturnCodes: ["NasServerNotResponding", "NasHostRefused"] // Unknown to the plug-in
    readonly property bool changes: serverId !== ""
    /// The station sends the password that it keeps to no other host.
    readonly property bool moved: changes && NasServers.hostKey(host) !== NasServers.hostKey(shownHost)
    readonly property bool passwordMissing: moved && passwordField.text === ""
                                            && userName.toLowerCase() !== NasServers.guest.toLowerCase()
    property bool passwordAsked: false
    readonly property string mistake: host === "" ? qsTr("Enter the name or the address of the NAS server.")
        : /[\/\\]/.test(host) ? qsTr("Enter the name or the address alone, without slashes.")
        : /\s/.test(host) ? qsTr("A name or an address has no spaces in it.") : ""

    // What was entered; what is left empty is what stands as a placeholder.
    readonly property string host: hostField.text.trim()
    readonly property string logonDomain: domainField.text.trim() || NasServers.ownDomain
    readonly property string userName: userField.text.trim() || NasServers.guest

    /// The log-on shall be tested and the server kept. @p password is empty where nothing was typed.
    signal submitted(password: string)
    /// The dialog was closed while the log-on was tested.
    signal abandoned

    function ask(id: string, logon: var): void {
        serverId = id;
        shownHost = logon?.host ?? "";
        hostField.text = shownHost;
        domainField.text = logon === null || logon.logonDomain === NasServers.ownDomain ? "" : logon.logonDomain;
        userField.text = logon === null || logon.userName === NasServers.guest ? "" : logon.userName;
        passwordField.field.clear();
        hostEdited = false;
        passwordAsked = false;
        refusal = "";
        busy = false;
        open();
        hostField.field.selectAll();
        hostField.field.forceActiveFocus();
    }

    /// What would have to be typed again, but for the password, which is not kept.
    function entry(): var {
        return { id: serverId, shownHost: shownHost, host: hostField.text, logonDomain: domainField.text, userName: userField.text };
    }

    function keep(entered: var, words: string): void {
        drafts = drafts.concat([{ subject: qsTr("Change %1").arg(entered.shownHost), refusal: words, entry: entered }]);
    }

    function resume(draft: var): void {
        ask(draft.entry.id, { host: draft.entry.shownHost, logonDomain: NasServers.ownDomain, userName: NasServers.guest });
        hostField.text = draft.entry.host;
        domainField.text = draft.entry.logonDomain;
        userField.text = draft.entry.userName;
        faultyField = "general";
        refusal = draft.refusal;
    }

    function submit(): void {
        hostEdited = true;
        if (busy || mistake !== "")
            return;
        passwordAsked = passwordMissing;
        if (passwordAsked) {
            passwordField.field.forceActiveFocus();
            return;
        }
        refusal = "";
        busy = true;
        submitted(passwordField.text);
    }

    function done(): void {
        busy = false;
        close();
    }

    /// @param returnCode of the station, which says more than the plug-in's @p code
    function refuse(code: int, returnCode: string, words: string): void {
        busy = false;
        faultyField = code === PluginRecordingManagement.LogonFailed || returnCode === "NasPasswordNeeded" ? "user"
            : code === PluginRecordingManagement.ServerExist || code === PluginRecordingManagement.GetDirFailed
              || hostReturnCodes.includes(returnCode) ? "host" : "general";
        refusal = code === PluginRecordingManagement.GetDirFailed
            ? qsTr("This NAS server could not list its shares.") : words;
        const field = faultyField === "user" ? passwordField.field : hostField.field;
        field.selectAll();
        field.forceActiveFocus();
    }

    function messageOf(field: string): string {
        return faultyField === field ? refusal : "";
    }

    objectName: "nasServerDialog"
    title: changes ? qsTr("Change %1").arg(shownHost) : qsTr("Add a NAS server")
    width: Math.min(Theme.sized(460), parent.width - 2 * Theme.large)
    closePolicy: Popup.CloseOnEscape
    onClosed: {
        const wasBusy = busy;
        busy = false;
        passwordField.field.clear();
        if (wasBusy)
            abandoned();
    }

    contentItem: Flickable {
        id: view

        readonly property Item focused: Window.activeFocusItem

        /// The field that is typed into stays in view where the window is low.
        onFocusedChanged: {
            for (const field of [hostField, domainField, userField, passwordField]) {
                if (field.field === focused)
                    contentY = Math.max(0, Math.min(field.y, contentHeight - height));
            }
        }

        implicitHeight: fields.implicitHeight
        contentHeight: fields.implicitHeight
        clip: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds

        ColumnLayout {
            id: fields

            width: parent.width
            spacing: Theme.medium

            LabelledField {
                id: hostField

                objectName: "host"
                label: qsTr("Name or address")
                placeholderText: qsTr("nas.example or 192.0.2.10")
                locked: dialog.busy
                message: dialog.messageOf("host") || (dialog.hostEdited ? dialog.mistake : "")
                Layout.fillWidth: true
                onEdited: {
                    dialog.hostEdited = true;
                    dialog.refusal = "";
                }
                onAccepted: dialog.submit()
            }
            LabelledField {
                id: domainField

                objectName: "domain"
                label: qsTr("Domain of the log-on")
                placeholderText: NasServers.ownDomain
                hint: qsTr("“%1” is the NAS server itself.").arg(NasServers.ownDomain)
                locked: dialog.busy
                Layout.fillWidth: true
                onEdited: dialog.refusal = ""
                onAccepted: dialog.submit()
            }
            LabelledField {
                id: userField

                objectName: "user"
                label: qsTr("User name")
                placeholderText: NasServers.guest
                locked: dialog.busy
                mistaken: dialog.messageOf("user") !== ""
                Layout.fillWidth: true
                onEdited: dialog.refusal = ""
                onAccepted: dialog.submit()
            }
            LabelledField {
                id: passwordField

                objectName: "password"
                label: qsTr("Password")
                placeholderText: dialog.changes && !dialog.moved ? qsTr("Unchanged") : ""
                hint: dialog.changes && !dialog.moved ? qsTr("Left empty, the password stays as it is.") : ""
                echoMode: TextInput.Password
                locked: dialog.busy
                message: dialog.messageOf("user") || (dialog.passwordAsked && dialog.passwordMissing
                                                      ? qsTr("Enter the password again for another host.") : "")
                Layout.fillWidth: true
                onEdited: dialog.refusal = ""
                onAccepted: dialog.submit()
            }
            FieldMessage {
                objectName: "generalMessage"
                text: dialog.messageOf("general")
                Layout.fillWidth: true
            }
            Text {
                objectName: "testing"
                visible: dialog.busy
                text: qsTr("The station tests the log-on…")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
                Layout.fillWidth: true
            }
        }
    }

    footer: DialogButtons {
        busy: dialog.busy
        acceptable: dialog.mistake === ""
        leaveText: dialog.changes ? qsTr("Close") : qsTr("Cancel")
        text: dialog.changes ? qsTr("Test and keep") : qsTr("Test and add")
        busyText: qsTr("Testing…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
