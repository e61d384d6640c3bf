import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// The shares of one NAS server and the folders in them.
FocusScope {
    id: browser

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    required property NasVolumes volumes
    property bool alone: false ///< the list of the servers is not beside it
    property string host
    property string entryToSelect
    property real keptPosition: -1
    readonly property alias listing: listing
    readonly property alias list: card.list
    readonly property alias search: card.search
    readonly property bool open: listing.serverId !== ""
    readonly property string path: listing.folder || listing.asked || (open ? NasPath.root(host) : "")
    readonly property bool atRoot: NasPath.above(path) === ""

    /// Why a folder could not be listed, and which one; empty where nothing was refused.
    readonly property string problem: listing.refusal === "" ? ""
        : qsTr("%1: %2").arg(listing.refusedPath).arg(listing.refusal)

    /// The operator wants to see the servers.
    signal backWanted

    function show(serverId: string, newHost: string): void {
        host = newHost;
        entryToSelect = "";
        keptPosition = -1;
        listing.begin(serverId, newHost);
        card.list.forceActiveFocus();
    }

    function close(): void {
        listing.end();
        host = "";
    }

    function enter(newPath: string): void {
        card.rows.clear(); // what was looked for was looked for in another folder
        entryToSelect = "";
        keptPosition = -1;
        listing.ask(newPath);
    }

    function enterCurrent(): void {
        if (listing.inView)
            (card.list.currentItem as FolderRow)?.opened();
    }

    function refresh(): void {
        if (!open || listing.loading)
            return;
        entryToSelect = (card.list.currentItem as FolderRow)?.nameRole ?? "";
        keptPosition = card.list.contentY;
        listing.ask(path);
    }

    function retry(): void {
        enter(listing.refusedPath);
    }

    function forgetProblem(): void {
        listing.refusal = "";
    }

    function goUp(): void {
        if (!open)
            return;
        if (!atRoot) {
            entryToSelect = NasPath.entry(path);
            keptPosition = -1;
            listing.ask(NasPath.above(path));
        } else if (alone) {
            backWanted();
        }
    }

    function placeCursor(): void {
        if (!card.reveal(ModelLookup.rowOf(card.model, "nameRole", entryToSelect)) && card.count > 0)
            card.revealFirst();
        if (keptPosition >= 0)
            card.list.contentY = Math.max(0, Math.min(keptPosition, card.list.contentHeight - card.list.height));
        keptPosition = -1;
    }

    NasListing {
        id: listing

        recording: browser.recording
        session: browser.session
        watching: browser.visible
        onListed: {
            browser.placeCursor();
            capacity.show(folder, serverId);
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.medium

        RowLayout {
            visible: browser.open
            spacing: Theme.small
            Layout.fillWidth: true

            ActionButton {
                objectName: "up"
                iconName: "up"
                hint: browser.atRoot ? qsTr("The NAS servers (Alt+Up)") : qsTr("The folder above (Alt+Up)")
                enabled: !browser.atRoot || browser.alone
                onClicked: browser.goUp()
            }
            Breadcrumb {
                objectName: "breadcrumb"
                folder: browser.path
                steps: (browser.alone ? [{ name: qsTr("Servers"), path: "" }] : []).concat(NasPath.steps(folder))
                Layout.fillWidth: true
                onOpened: path => path === "" ? browser.backWanted() : browser.enter(path)
            }
        }
        NasCapacityCard {
            id: capacity

            objectName: "capacity"
            volumes: browser.volumes
            visible: browser.open && NasPath.inShare(listing.folder)
            Layout.fillWidth: true
        }
        ListCard {
            id: card

            objectName: "nasFolders"
            focus: true
            model: browser.recording.getNASServerDirModel()
            nameRole: "nameRole"
            orders: [{ text: qsTr("Name"), role: "nameRole" }]
            search.hint: browser.atRoot ? qsTr("Search shares") : qsTr("Search folders")
            search.keyed: browser.alone || browser.activeFocus
            search.visible: listing.inView
            list.opacity: !listing.inView ? 0 : listing.loading ? 0.7 : 1
            list.Accessible.name: browser.atRoot ? qsTr("Shares of %1").arg(browser.host) : qsTr("Folders")
            delegate: FolderRow {
                width: ListView.view?.width ?? 0
                visible: browser.listing.inView
                iconName: browser.atRoot ? "share" : "folder"
                onOpened: browser.enter(NasPath.child(browser.listing.folder, nameRole))
            }
            Layout.fillWidth: true
            Layout.fillHeight: true

            Placeholder {
                objectName: "browserPlaceholder"
                anchors.centerIn: parent
                width: Math.min(Theme.sized(380), parent.width - 2 * Theme.huge)
                visible: card.total === 0 || !listing.inView
                busy: listing.loading
                iconName: browser.open ? "folder" : "network"
                title: !browser.open ? qsTr("Choose a NAS server")
                    : busy ? (browser.atRoot ? qsTr("Asking %1 for its shares…").arg(browser.host)
                                             : qsTr("Asking %1 for its folders…").arg(browser.host))
                    : !listing.inView ? qsTr("Nothing could be listed")
                    : browser.atRoot ? qsTr("No shares to show") : qsTr("No folders in here")
                text: !browser.open ? qsTr("Its shares and their folders appear here.")
                    : busy ? qsTr("A server that is far away or off may take half a minute.")
                    : listing.inView && browser.atRoot ? qsTr("This user may see no share of the server.") : ""
            }
        }
    }
    Rectangle {
        objectName: "loadingMark"
        visible: listing.loading && listing.inView
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.medium
        width: loadingText.implicitWidth + 2 * Theme.medium
        height: Theme.sized(30)
        radius: height / 2
        color: Theme.selected
        border.color: Theme.accent

        Text {
            id: loadingText

            anchors.centerIn: parent
            text: qsTr("Asking %1…").arg(browser.host)
            color: Theme.text
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
        }
    }
}
