import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Lets the operator choose a folder of the station or of a NAS server, and make one on the station.
ConsoleDialog {
    id: dialog

    required property PluginRecordingManagement recording
    property var servers: [] ///< maps "id" and "text"; the first one is the station
    property string serverId ///< of the NAS server that is shown; empty: the station
    readonly property bool onNas: serverId !== ""
    readonly property string folder: onNas ? nas.folder : local.folder
    readonly property bool inView: onNas ? nas.inView : local.inView
    readonly property bool loading: onNas ? nas.loading : local.loading
    readonly property string refusal: onNas ? nas.refusal : local.refusal
    readonly property string refusedPath: onNas ? nas.refusedPath : local.refusedPath
    readonly property bool choosable: inView && (onNas ? NasPath.inShare(folder) : folder !== "")
    readonly property string above: onNas ? NasPath.above(folder) : FolderPath.above(folder)
    readonly property bool atTop: onNas ? above === "" : folder === ""

    signal chosen(path: string)

    /// Begins in the folder @p path, of the station.
    function ask(path: string): void {
        serverId = "";
        local.begin(path.startsWith("//") || !path.startsWith("/") ? "" : path);
        recording.getNASServers();
        open();
        card.list.forceActiveFocus();
    }

    function showServers(rows: var): void {
        const list = rows.map(row => ({ id: row.id, text: qsTr("%1, as %2").arg(row.host).arg(row.user) }));
        list.unshift({ id: "", text: qsTr("This station") });
        servers = list;
    }

    function showServer(id: string): void {
        if (id === serverId)
            return;
        serverId = id;
        if (onNas)
            nas.begin(id, NasServers.logon(recording.getNASServerModel(), id)?.host ?? "");
        else
            local.begin("");
    }

    function list(path: string): void {
        if (onNas)
            nas.ask(path);
        else
            local.ask(path);
    }

    function goUp(): void {
        if (!atTop)
            list(above);
    }

    function choose(): void {
        if (!choosable)
            return;
        close();
        chosen(folder);
    }

    function placeCursor(): void {
        card.currentIndex = card.count > 0 ? 0 : -1;
        card.list.positionViewAtBeginning();
    }

    objectName: "folderDialog"
    title: qsTr("Choose a folder")
    width: Math.min(Theme.sized(560), parent.width - 2 * Theme.large)
    height: Math.min(Theme.sized(560), room)

    FolderListing {
        id: local

        recording: dialog.recording
        session: dialog.session
        watching: dialog.visible && !dialog.onNas
        onListed: dialog.placeCursor()
    }
    NasListing {
        id: nas

        recording: dialog.recording
        session: dialog.session
        watching: dialog.visible && dialog.onNas
        onListed: dialog.placeCursor()
    }
    ModelReader {
        id: serverRows

        function show(): void {
            dialog.showServers(read({ id: "idRole", host: "nameRole", user: "userNameRole" }));
        }

        model: dialog.recording.getNASServerModel()
        onChanged: show()
        Component.onCompleted: show()
    }
    Connections {
        target: dialog.recording
        enabled: newFolder.busy

        function onCreateDirectoryResponded(success: bool): void {
            if (!success) {
                newFolder.refuse(dialog.session.refusal("createDirectory"));
                return;
            }
            newFolder.done();
            if (dialog.visible)
                dialog.list(FolderPath.child(newFolder.folder, newFolder.name));
        }
    }
    NewFolderDialog {
        id: newFolder

        parent: dialog.parent
        session: dialog.session
        onSubmitted: name => {
            if (!dialog.recording.createDirectory(FolderPath.child(folder, name)))
                refuse(dialog.session.unsentText());
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.small
        Keys.onPressed: event => {
            if (event.key !== Qt.Key_Backspace)
                return;
            dialog.goUp();
            event.accepted = true;
        }

        RowLayout {
            spacing: Theme.small

            ChoiceBox {
                objectName: "place"
                model: dialog.servers
                textRole: "text"
                currentIndex: dialog.servers.findIndex(server => server.id === dialog.serverId)
                Accessible.name: qsTr("Where the folder is")
                Layout.fillWidth: true
                onActivated: index => dialog.showServer(dialog.servers[index].id)
            }
            ActionButton {
                objectName: "newFolderHere"
                iconName: "newFolder"
                text: qsTr("New folder")
                hint: dialog.onNas ? qsTr("The station makes no folders on NAS servers")
                    : dialog.folder === "" ? qsTr("Open a volume first: a folder is made inside one") : qsTr("Make a folder here")
                enabled: dialog.session.connected && dialog.choosable && !dialog.onNas
                onClicked: newFolder.ask(dialog.folder)
            }
        }
        RowLayout {
            spacing: Theme.small

            ActionButton {
                objectName: "folderUp"
                iconName: "up"
                hint: qsTr("The folder above (Backspace)")
                enabled: !dialog.atTop && !dialog.loading
                onClicked: dialog.goUp()
            }
            Breadcrumb {
                folder: dialog.folder
                steps: dialog.onNas ? NasPath.steps(folder) : FolderPath.steps(folder)
                Layout.fillWidth: true
                onOpened: path => dialog.list(path)
            }
        }
        ErrorStrip {
            objectName: "folderStrip"
            text: dialog.refusal === "" ? ""
                : dialog.refusedPath === "" ? dialog.refusal : qsTr("%1: %2").arg(dialog.refusedPath).arg(dialog.refusal)
            Layout.fillWidth: true
        }
        ListCard {
            id: card

            objectName: "folderCard"
            color: Theme.window
            model: dialog.onNas ? dialog.recording.getNASServerDirModel() : dialog.recording.getServerDirModel()
            list.opacity: dialog.inView ? (dialog.loading ? 0.55 : 1) : 0
            list.Accessible.name: qsTr("Folders")
            list.Keys.onReturnPressed: (list.currentItem as FolderRow)?.opened()
            list.Keys.onEnterPressed: (list.currentItem as FolderRow)?.opened()
            delegate: FolderRow {
                width: ListView.view?.width ?? 0
                iconName: dialog.atTop ? (dialog.onNas ? "share" : "volume") : "folder"
                onOpened: {
                    if (dialog.inView && !dialog.loading)
                        dialog.list(dialog.onNas ? NasPath.child(dialog.folder, nameRole)
                                                  : FolderPath.child(dialog.folder, nameRole));
                }
            }
            Layout.fillWidth: true
            Layout.fillHeight: true

            Placeholder {
                anchors.centerIn: parent
                width: Math.min(Theme.sized(360), parent.width - 2 * Theme.huge)
                visible: card.count === 0 || !dialog.inView
                busy: dialog.loading
                iconName: "folder"
                title: busy ? qsTr("Asking for the folders…")
                    : dialog.inView ? qsTr("No folders in here") : qsTr("The folders could not be listed")
            }
        }
    }
    footer: DialogButtons {
        text: qsTr("Choose this folder")
        acceptable: dialog.choosable && !dialog.loading
        onAccepted: dialog.choose()
        onRejected: dialog.close()
    }
}
