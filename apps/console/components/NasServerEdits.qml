import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Adds, changes and removes NAS servers: the dialogs, what is sent, and what comes of it.
Item {
    id: edits

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    required property NasVolumes volumes
    property var abandoned: null // what was entered in that dialog
    property alias dialog: dialog
    property string changing ///< id of the server whose change goes on after its dialog was closed
    readonly property bool asking: dialog.visible || removal.visible
    readonly property var servers: recording.getNASServerModel()

    /// The operator has to know something; @p words are empty when it is settled.
    signal noticed(words: string)
    signal added(id: string, host: string)
    signal changed(id: string)
    signal removed(id: string)
    /// The station's list of servers is another one than that in view.
    signal outdated

    function add(): void {
        dialog.ask("", null);
    }

    function change(id: string): void {
        dialog.ask(id, NasServers.logon(servers, id));
    }

    function remove(id: string, host: string): void {
        removal.ask(id, host, volumes.entries.filter(entry => entry.serverId === id).length);
    }

    function submit(password: string): void {
        const kept = password === "" && !dialog.moved;
        const sent = dialog.changes
            ? recording.updateNASServer(dialog.serverId, dialog.host, dialog.logonDomain, dialog.userName,
                                        kept ? NasServers.logon(servers, dialog.serverId)?.password ?? "" : password)
            : recording.addNASServer(dialog.host, dialog.logonDomain, dialog.userName, password);
        if (!sent)
            dialog.refuse(PluginRecordingManagement.Unknown, "", session.unsentText());
    }

    function abandon(): void {
        if (dialog.changes) {
            changing = dialog.serverId;
            abandoned = dialog.entry();
            noticed(qsTr("The station still tests the new log-on of %1 and keeps it if the test succeeds.").arg(dialog.host));
            return;
        }
        recording.ignoreAddNASServerResponse();
        noticed(qsTr("Adding %1 was cancelled. If the station had accepted the log-on by then, the server appears "
                     + "with the next refresh and can be removed.").arg(dialog.host));
    }

    function refuseLogon(command: string, code: int): void {
        dialog.refuse(code, session.returnCode(command), NasServers.refusal(session, command, code));
    }

    function finishAdd(code: int, id: string): void {
        if (!dialog.busy || dialog.changes)
            return;
        if (code !== PluginRecordingManagement.NonError) {
            refuseLogon("AddNasServer", code);
        } else {
            noticed("");
            dialog.done();
            added(id, dialog.host);
        }
        if (code === PluginRecordingManagement.NonError || code === PluginRecordingManagement.ServerExist)
            outdated(); // the station's own list has a token in place of the password
    }

    function finishChange(code: int, id: string): void {
        const words = NasServers.refusal(session, "UpdateNASServer", code);
        if (dialog.busy && dialog.serverId === id) {
            if (words !== "")
                refuseLogon("UpdateNASServer", code);
            else
                dialog.done();
        } else if (changing === id) {
            changing = "";
            noticed("");
            if (words !== "")
                dialog.keep(abandoned, words);
        }
        if (words !== "")
            return;
        changed(id);
        outdated();
    }

    function finishRemoval(success: bool): void {
        if (!removal.busy)
            return;
        if (!success) {
            removal.refuse(session.refusal("RemoveNASServer"));
            return;
        }
        removal.done();
        volumes.forgetServer(removal.serverId);
        removed(removal.serverId);
    }

    Connections {
        target: edits.recording

        function onAddNASServerResponded(result: int, srvId: string): void {
            edits.finishAdd(result, srvId);
        }
        function onUpdateNASServerResponsed(result: int, nasId: string): void {
            edits.finishChange(result, nasId);
        }
        function onRemoveNASServerResponsed(success: bool): void {
            edits.finishRemoval(success);
        }
    }

    NasServerDialog {
        id: dialog

        onSubmitted: password => edits.submit(password)
        onAbandoned: edits.abandon()
    }
    NasRemoveDialog {
        id: removal

        session: edits.session
        onSubmitted: {
            if (!edits.recording.removeNASServer(serverId))
                refuse(edits.session.unsentText());
        }
    }
}
