import QtQuick
import RecordingConsole

/// The NAS servers that the station knows, and a browser for their shares.
ConsolePage {
    id: page

    property string notice
    property string chosen ///< id of the server whose shares are in view
    readonly property bool split: roomy && serverCard.total > 0 ///< servers and browser stand side by side
    readonly property bool serversShown: roomy || chosen === "" || !browsing
    property bool browsing: false ///< narrow, the browser stands in place of the servers

    readonly property var servers: recording.getNASServerModel()

    key: "nas"
    mainList: serversShown ? serverCard.list : browser.list
    search: serversShown ? serverCard.search : browser.search
    help: qsTr("The NAS servers that this station can log on to. The station tests a log-on before it keeps it, encrypted. Choose "
               + "a server to look through its shares, and use a folder there as a volume to see how full it is.")
    keys: [
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: serverCard.list
            text: qsTr("Show the shares of the server")
            onActivated: (serverCard.list.currentItem as NasServerRow)?.opened()
        },
        ConsoleKey {
            sequence: "F2"
            list: serverCard.list
            text: qsTr("Change the server")
            onActivated: serverCard.edit(serverCard.list.currentItem as NasServerRow)
        },
        ConsoleKey {
            sequence: "Del"
            list: serverCard.list
            text: qsTr("Remove the server")
            onActivated: serverCard.remove(serverCard.list.currentItem as NasServerRow)
        },
        ConsoleKey {
            sequence: StandardKey.New
            allowed: addServer.enabled
            text: qsTr("Add a NAS server")
            onActivated: edits.add()
        },
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: browser.list
            text: qsTr("Open the share or folder")
            onActivated: browser.enterCurrent()
        },
        ConsoleKey {
            sequence: "Alt+Up"
            allowed: browser.visible
            text: qsTr("Go to the folder above")
            onActivated: browser.goUp()
        },
        ConsoleKey {
            sequence: "Backspace"
            list: browser.list
            text: qsTr("Go to the folder above")
            onActivated: browser.goUp()
        }
    ]
    subtitle: serverCard.total === 0 ? qsTr("Network storage that this station can record to")
        : Units.counted(serverCard.total, qsTr("1 server"), qsTr("%1 servers"))
    asking: edits.asking
    followsOutcomes: true

    function ask(): bool {
        return recording.getNASServers();
    }

    function showAnswer(): void {
        const row = NasServers.row(servers, chosen);
        if (row >= 0) {
            serverCard.reveal(row);
        } else {
            leave();
            serverCard.list.currentIndex = Math.min(Math.max(0, serverCard.list.currentIndex), serverCard.count - 1);
        }
    }

    function refreshAll(): void {
        notice = "";
        refresh();
        browser.refresh();
    }

    function connectionChanged(): void {
        if (session.connected)
            refreshAll();
    }

    function open(id: string, host: string): void {
        chosen = id;
        browsing = true;
        browser.show(id, host);
    }

    function showDialog(name: string): var {
        if (name === "add")
            edits.add();
        return edits.dialog;
    }

    function leave(): void {
        chosen = "";
        browsing = false;
        browser.close();
    }

    Connections {
        target: page.recording

        function onGetNASServersResponded(success: bool): void {
            page.finish(success ? "" : page.session.refusal("GetNasServers"));
        }
    }

    actions: ActionButton {
        id: addServer

        objectName: "addServer"
        primary: true
        iconName: "add"
        text: page.width >= Theme.sized(420) ? qsTr("Add server") : ""
        hint: qsTr("Add a NAS server (Ctrl+N)")
        enabled: page.session.connected
        onClicked: edits.add()
    }
    strips: [
        DraftStrip {
            dialog: edits.dialog
            keptText: qsTr("What you entered is kept, but for the password.")
        },
        PageStrip {
            objectName: "browserStrip"
            text: browser.visible ? browser.problem : ""
            actionText: page.session.connected ? qsTr("Try again") : ""
            onActionTriggered: browser.retry()
            onDismissed: browser.forgetProblem()
        },
        PageStrip {
            objectName: "notice"
            notice: true
            text: page.notice
            actionText: page.session.connected && edits.changing === "" ? qsTr("Refresh") : ""
            onActionTriggered: page.refreshAll()
            onDismissed: page.notice = ""
        }
    ]

    NasServerList {
        id: serverCard

        objectName: "servers"
        focus: true
        visible: page.serversShown
        model: page.servers
        search.keyed: !browser.visible || !browser.activeFocus
        chosen: page.roomy ? page.chosen : ""
        editable: page.session.connected && edits.changing === ""
        owner: page
        width: page.split ? Math.max(Theme.sized(264), Math.min(Theme.sized(360), Math.round(page.room.width * 0.36))) : page.room.width
        height: page.room.height
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
        alone: !page.roomy
        onBackWanted: {
            page.browsing = false;
            serverCard.list.forceActiveFocus();
        }
        x: page.split ? serverCard.width + Theme.large : 0
        width: page.room.width - x
        height: page.room.height
    }

    NasServerEdits {
        id: edits

        recording: page.recording
        session: page.session
        volumes: page.nasVolumes
        onNoticed: words => page.notice = words
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
