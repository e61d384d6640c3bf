import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// The NAS servers that the station knows, and a browser for their shares.
ConsolePage {
    id: page

    property bool loading: false
    property bool askAgain: false // something changed while a reply was under way
    property bool failed: false // the servers could not be listed when they were asked for last
    property string notice
    property string changing ///< id of the server whose change goes on after its dialog was closed
    property string chosen ///< id of the server whose shares are in view
    readonly property bool wide: width >= 640
    readonly property bool split: wide && serverCard.count > 0 ///< servers and browser stand side by side
    readonly property bool serversShown: wide || chosen === "" || !browsing
    property bool browsing: false ///< narrow, the browser stands in place of the servers

    readonly property var servers: recording.getNASServerModel()

    function refresh(): void {
        if (loading) {
            askAgain = true;
            return;
        }
        if (!session.connected)
            return;
        askAgain = false;
        loading = true;
        if (!recording.getNASServers())
            finish(qsTr("The request could not be sent."));
    }

    function refreshAll(): void {
        notice = "";
        refresh();
        browser.refresh();
    }

    function finish(words: string): void {
        loading = false;
        failed = words !== "";
        failure = words;
        settled = true;
        const row = NasServers.row(servers, chosen);
        if (row >= 0) {
            serverCard.list.currentIndex = row;
        } else {
            leave();
            serverCard.list.currentIndex = Math.min(Math.max(0, serverCard.list.currentIndex), serverCard.count - 1);
        }
        if (askAgain)
            refresh();
    }

    function open(id: string, host: string): void {
        chosen = id;
        browsing = true;
        browser.show(id, host);
    }

    function leave(): void {
        chosen = "";
        browsing = false;
        browser.close();
    }

    function edit(row: NasServerRow): void {
        if (row && row.editable)
            dialog.ask(row.idRole, NasServers.logon(servers, row.idRole));
    }

    function askToRemove(row: NasServerRow): void {
        if (row && row.editable)
            removal.ask(row.idRole, row.nameRole,
                        nasVolumes.entries.filter(entry => entry.serverId === row.idRole).length);
    }

    function submit(password: string): void {
        const sent = dialog.changes
            ? recording.updateNASServer(dialog.serverId, dialog.host, dialog.logonDomain, dialog.userName,
                                        password !== "" ? password : NasServers.logon(servers, dialog.serverId)?.password ?? "")
            : recording.addNASServer(dialog.host, dialog.logonDomain, dialog.userName, password);
        if (!sent)
            dialog.refuse(PluginRecordingManagement.Unknown, "", qsTr("The request could not be sent."));
    }

    function abandon(): void {
        if (dialog.changes) {
            changing = dialog.serverId;
            notice = qsTr("The station still tests the new log-on of %1 and keeps it if the test succeeds.").arg(dialog.host);
            return;
        }
        recording.ignoreAddNASServerResponse();
        notice = qsTr("Adding %1 was cancelled. If the station had accepted the log-on by then, the server appears "
                      + "with the next refresh and can be removed.").arg(dialog.host);
    }

    function refuseLogon(command: string, code: int): void {
        dialog.refuse(code, session.returnCode(command), NasServers.refusal(session, command, code));
    }

    function added(code: int, id: string): void {
        if (!dialog.busy || dialog.changes)
            return;
        if (code !== PluginRecordingManagement.NonError) {
            refuseLogon("AddNasServer", code);
        } else {
            notice = "";
            dialog.done();
            open(id, dialog.host);
        }
        if (code === PluginRecordingManagement.NonError || code === PluginRecordingManagement.ServerExist)
            refresh(); // the station's own list: with a token in place of the password
    }

    function updated(code: int, id: string): void {
        const words = NasServers.refusal(session, "UpdateNASServer", code);
        if (dialog.busy && dialog.serverId === id) {
            if (words !== "")
                refuseLogon("UpdateNASServer", code);
            else
                dialog.done();
        } else if (changing === id) {
            changing = "";
            notice = "";
            if (words !== "")
                failure = qsTr("The change was refused: %1").arg(words);
        }
        if (words !== "")
            return;
        if (chosen === id)
            browser.show(id, NasServers.logon(servers, id)?.host ?? "");
        refresh();
    }

    function removed(success: bool): void {
        if (!removal.busy)
            return;
        if (!success) {
            removal.refuse(session.refusal("RemoveNASServer"));
            return;
        }
        removal.done();
        nasVolumes.forgetServer(removal.serverId);
        if (chosen === removal.serverId)
            leave();
        serverCard.list.forceActiveFocus();
    }

    Component.onCompleted: refresh()

    Connections {
        target: page.recording

        function onGetNASServersResponded(success: bool): void {
            page.finish(success ? "" : page.session.refusal("GetNasServers"));
        }
        function onAddNASServerResponded(result: int, srvId: string): void {
            page.added(result, srvId);
        }
        function onUpdateNASServerResponsed(result: int, nasId: string): void {
            page.updated(result, nasId);
        }
        function onRemoveNASServerResponsed(success: bool): void {
            page.removed(success);
        }
    }
    Connections {
        target: page.session

        function onConnectedChanged(): void {
            if (page.session.connected)
                page.refreshAll();
        }
    }
    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible && !dialog.visible && !removal.visible
        onActivated: page.refreshAll()
    }
    Shortcut {
        sequence: StandardKey.New
        enabled: page.visible && addServer.enabled && !dialog.visible && !removal.visible
        onActivated: dialog.ask("", null)
    }
    Shortcut {
        sequence: "Alt+Up"
        enabled: page.visible && browser.visible && !dialog.visible && !removal.visible
        onActivated: browser.goUp()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.large

        PageHeader {
            title: qsTr("NAS servers")
            subtitle: serverCard.count === 0 ? qsTr("Network storage that this station can record to")
                : serverCard.count === 1 ? qsTr("1 server") : qsTr("%1 servers").arg(serverCard.count)
            Layout.fillWidth: true

            ActionButton {
                objectName: "refresh"
                iconName: "refresh"
                text: page.wide ? qsTr("Refresh") : ""
                hint: qsTr("Ask the station again (F5)")
                enabled: page.session.connected && !page.loading
                onClicked: page.refreshAll()
            }
            ActionButton {
                id: addServer

                objectName: "addServer"
                primary: true
                iconName: "add"
                text: page.width >= 420 ? qsTr("Add server") : ""
                hint: qsTr("Add a NAS server (Ctrl+N)")
                enabled: page.session.connected
                onClicked: dialog.ask("", null)
            }
        }
        ErrorStrip {
            objectName: "errorStrip"
            text: page.failure
            actionText: page.session.connected && page.failed ? qsTr("Try again") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refresh()
            onDismissed: page.failure = ""
        }
        ErrorStrip {
            objectName: "notice"
            notice: true
            text: page.notice
            actionText: page.session.connected && page.changing === "" ? qsTr("Refresh") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refreshAll()
            onDismissed: page.notice = ""
        }
        Item {
            id: place

            Layout.fillWidth: true
            Layout.fillHeight: true

            ListCard {
                id: serverCard

                objectName: "servers"
                visible: page.serversShown
                model: page.servers
                list.Accessible.name: qsTr("NAS servers")
                list.Keys.onReturnPressed: (list.currentItem as NasServerRow)?.opened()
                list.Keys.onEnterPressed: (list.currentItem as NasServerRow)?.opened()
                list.Keys.onDeletePressed: page.askToRemove(list.currentItem as NasServerRow)
                Keys.onPressed: event => {
                    if (event.key !== Qt.Key_F2)
                        return;
                    page.edit(serverCard.list.currentItem as NasServerRow);
                    event.accepted = true;
                }
                delegate: NasServerRow {
                    id: row

                    width: ListView.view?.width ?? 0
                    shown: page.wide && idRole === page.chosen
                    editable: page.session.connected && page.changing === ""
                    onOpened: page.open(idRole, nameRole)
                    onEditWanted: page.edit(row)
                    onRemoveWanted: page.askToRemove(row)
                }
                width: page.split ? Math.max(264, Math.min(360, Math.round(place.width * 0.36))) : place.width
                height: place.height

                Placeholder {
                    objectName: "placeholder"
                    anchors.centerIn: parent
                    width: Math.min(320, parent.width - 2 * Theme.large)
                    visible: serverCard.count === 0
                    busy: page.session.connected && (page.loading || !page.settled)
                    iconName: "network"
                    title: !page.session.connected ? qsTr("No connection to the station")
                        : busy ? qsTr("Asking the station for its NAS servers…")
                        : page.failed ? qsTr("The NAS servers could not be listed") : qsTr("No NAS servers yet")
                    text: busy ? "" : !page.session.connected ? qsTr("The NAS servers appear as soon as it is there.")
                        : page.failed ? "" : qsTr("“Add server” tests the log-on and adds the first one.")
                }
            }
            NasBrowser {
                id: browser

                objectName: "browser"
                visible: page.split || !page.serversShown
                recording: page.recording
                session: page.session
                volumes: page.nasVolumes
                alone: !page.wide
                onBackWanted: {
                    page.browsing = false;
                    serverCard.list.forceActiveFocus();
                }
                x: page.split ? serverCard.width + Theme.large : 0
                width: place.width - x
                height: place.height
            }
        }
    }

    NasServerDialog {
        id: dialog

        onSubmitted: password => page.submit(password)
        onAbandoned: page.abandon()
    }
    NasRemoveDialog {
        id: removal

        onSubmitted: {
            if (!page.recording.removeNASServer(serverId))
                refuse(qsTr("The request could not be sent."));
        }
    }
}
