import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The NAS servers that the station knows, and a browser for their shares.
ConsolePage {
    id: page

    property bool loading: false
    property bool askAgain: false // something changed while a reply was under way
    property bool failed: false // the servers could not be listed when they were asked for last
    property string notice
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
        tellFailure(words);
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

    Component.onCompleted: refresh()

    Connections {
        target: page.recording

        function onGetNASServersResponded(success: bool): void {
            page.finish(success ? "" : page.session.refusal("GetNasServers"));
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
        enabled: page.visible && !edits.asking
        onActivated: page.refreshAll()
    }
    Shortcut {
        sequence: StandardKey.New
        enabled: page.visible && addServer.enabled && !edits.asking
        onActivated: edits.add()
    }
    Shortcut {
        sequence: "Alt+Up"
        enabled: page.visible && browser.visible && !edits.asking
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
                onClicked: edits.add()
            }
        }
        ErrorStrip {
            objectName: "errorStrip"
            text: page.failure
            actionText: page.session.connected && page.failed ? qsTr("Try again") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refresh()
        }
        ErrorStrip {
            objectName: "notice"
            notice: true
            text: page.notice
            actionText: page.session.connected && edits.changing === "" ? qsTr("Refresh") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refreshAll()
            onDismissed: page.notice = ""
        }
        Item {
            id: place

            Layout.fillWidth: true
            Layout.fillHeight: true

            NasServerList {
                id: serverCard

                objectName: "servers"
                visible: page.serversShown
                model: page.servers
                chosen: page.wide ? page.chosen : ""
                connected: page.session.connected
                editable: connected && edits.changing === ""
                loading: page.loading || !page.settled
                failed: page.failed
                width: page.split ? Math.max(264, Math.min(360, Math.round(place.width * 0.36))) : place.width
                height: place.height
                onOpened: (id, host) => page.open(id, host)
                onEditWanted: id => edits.change(id)
                onRemoveWanted: (id, host) => edits.remove(id, host)
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

    NasServerEdits {
        id: edits

        recording: page.recording
        session: page.session
        volumes: page.nasVolumes
        onNoticed: words => page.notice = words
        onRefused: words => page.tellFailure(words)
        onAdded: (id, host) => page.open(id, host)
        onChanged: id => {
            if (page.chosen === id)
                browser.show(id, NasServers.logon(page.servers, id)?.host ?? "");
        }
        onRemoved: id => {
            if (page.chosen === id)
                page.leave();
            serverCard.list.forceActiveFocus();
        }
        onOutdated: page.refresh()
    }
}
