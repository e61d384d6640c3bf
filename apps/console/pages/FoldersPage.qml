import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The folders of the connected station. startPlace is the folder to begin in; the empty one lists the volumes.
ConsolePage {
    id: page

    property string folder: startPlace ///< what is listed
    property string asked: startPlace ///< what was asked for last
    property int outstanding: 0 ///< replies still to come; they come in the order of the requests
    property string entryToSelect ///< becomes the current one when it is listed
    property string pendingFailure ///< shown when the folder that stays in view is listed again
    property bool everListed: false
    readonly property bool listed: answered && !failed ///< the folder in view could be listed when it was asked for last
    property real keptPosition: -1 ///< how far the list is scrolled, for the same folder listed again
    property bool replaced: false // the model has another folder than the one in view
    readonly property bool atVolumes: folder === ""

    key: "folders"
    mainList: card.list
    search: card.search
    help: qsTr("The folders on the station's volumes. Look here for the path that a recording group is to record to, or make a "
               + "new folder for it. “Record here” gives the folder in view to a recording group.")
    keys: [
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: card.list
            text: qsTr("Open the folder")
            onActivated: (card.list.currentItem as FolderRow)?.opened()
        },
        ConsoleKey {
            sequence: "Alt+Up"
            text: qsTr("Go to the folder above")
            onActivated: page.goUp()
        },
        ConsoleKey {
            sequence: "Backspace"
            list: card.list
            text: qsTr("Go to the folder above")
            onActivated: page.goUp()
        },
        ConsoleKey {
            sequence: "Ctrl+G"
            allowed: recordHere.enabled
            text: qsTr("Record to this folder")
            onActivated: page.record()
        },
        ConsoleKey {
            sequence: StandardKey.New
            allowed: newFolder.enabled
            text: qsTr("Make a folder")
            onActivated: newFolderDialog.ask(page.folder)
        }
    ]
    loading: outstanding > 0
    asking: newFolderDialog.visible
    subtitle: atVolumes ? qsTr("Choose a volume to look into")
        : Units.counted(card.total, qsTr("1 folder"), qsTr("%1 folders"))

    function list(path: string, select: string): void {
        if (!session.connected)
            return;
        asked = path;
        entryToSelect = select;
        ++outstanding;
        if (!recording.getServerDir(path)) {
            --outstanding;
            fail(session.unsentText(), true);
        }
    }

    function open(path: string): void {
        pendingFailure = "";
        list(path, "");
    }

    function refresh(): void {
        if (loading)
            return;
        keptPosition = card.list.contentY;
        list(folder, (card.list.currentItem as FolderRow)?.nameRole ?? "");
    }

    /// Leads to the choice of a recording group for the folder in view or, where that is the list of the volumes, for the
    /// current one.
    function record(): void {
        if (recordHere.enabled)
            placeWanted("groups", recordingPlace(folderToRecord()));
    }

    function folderToRecord(): string {
        return atVolumes ? (card.list.currentItem as FolderRow)?.nameRole ?? "" : folder;
    }

    function goUp(): void {
        if (atVolumes)
            return;
        pendingFailure = "";
        const path = FolderPath.trimmed(folder);
        const above = FolderPath.above(path);
        list(above, above === "" ? path : path.substring(path.lastIndexOf("/") + 1));
    }

    function takeReply(path: string): void {
        if (!loading) {
            replaced = true; // somebody else asked
            followOthers();
            return;
        }
        if (--outstanding > 0)
            return; // an older request's reply; the newest decides
        const refusal = session.refusal("getServerDir");
        if (path === asked && refusal === "")
            showListed();
        else
            stay(refusal !== "" ? refusal : qsTr("The station listed another folder."));
    }

    function showListed(): void {
        const again = folder === asked;
        folder = asked;
        everListed = true;
        fail(pendingFailure, false);
        pendingFailure = "";
        if (!again)
            card.rows.clear(); // what was looked for was looked for in another folder
        if (!card.reveal(ModelLookup.rowOf(card.model, "nameRole", entryToSelect)) && card.count > 0)
            card.revealFirst();
        if (again && keptPosition >= 0)
            card.list.contentY = Math.max(0, Math.min(keptPosition, card.list.contentHeight - card.list.height));
        keptPosition = -1;
    }

    /// The refused reply emptied the model: what was in view is asked for again and the refusal shown above it.
    function stay(words: string): void {
        const sentence = asked === "" ? words : qsTr("%1: %2").arg(asked).arg(words);
        if (asked !== folder && everListed && session.connected) {
            pendingFailure = sentence;
            list(folder, FolderPath.above(asked) === folder ? asked.substring(asked.lastIndexOf("/") + 1) : "");
        } else {
            keptPosition = -1;
            fail(sentence, true);
        }
    }

    function followOthers(): void {
        if (!replaced || !visible)
            return;
        replaced = false;
        refresh();
    }

    /// @p inView: what is in view itself could not be listed.
    function fail(words: string, inView: bool): void {
        failed = inView;
        tellFailure(words);
        answered = true;
    }

    onVisibleChanged: followOthers()

    Connections {
        target: page.recording

        function onGetServerDirResponded(path: string): void {
            page.takeReply(path);
        }
        function onCreateDirectoryResponded(success: bool): void {
            if (!newFolderDialog.busy)
                return;
            if (!success) {
                newFolderDialog.refuse(page.session.refusal("createDirectory"));
                return;
            }
            newFolderDialog.done();
            if (newFolderDialog.folder === page.folder)
                page.list(page.folder, newFolderDialog.name);
        }
    }

    actions: [
        ActionButton {
            id: recordHere

            readonly property string place: page.folderToRecord()

            objectName: "recordHere"
            iconName: "group"
            text: page.roomy ? qsTr("Record here") : ""
            hint: place === "" ? qsTr("Choose a volume first") : qsTr("Record to %1 (Ctrl+G)").arg(place)
            enabled: page.session.connected && page.listed && place !== ""
            onClicked: page.record()
        },
        ActionButton {
            id: newFolder

            objectName: "newFolder"
            primary: true
            iconName: "newFolder"
            text: page.width >= Theme.sized(420) ? qsTr("New folder") : ""
            hint: page.atVolumes ? qsTr("Open a volume first: a folder is made inside one")
                                 : qsTr("Make a folder here (Ctrl+N)")
            enabled: page.session.connected && !page.atVolumes && page.listed
            onClicked: newFolderDialog.ask(page.folder)
        }
    ]
    tools: RowLayout {
        spacing: Theme.small
        Layout.fillWidth: true

        ActionButton {
            objectName: "up"
            iconName: "up"
            hint: qsTr("The folder above (Alt+Up)")
            enabled: page.session.connected && !page.atVolumes
            onClicked: page.goUp()
        }
        Breadcrumb {
            objectName: "breadcrumb"
            folder: page.folder
            Layout.fillWidth: true
            onOpened: path => page.open(path)
        }
    }

    ListCard {
        id: card

        objectName: "folders"
        anchors.fill: parent
        focus: true
        model: page.recording.getServerDirModel()
        nameRole: "nameRole"
        orders: page.atVolumes ? [] : [{ text: qsTr("Name"), role: "nameRole" }]
        search.hint: page.atVolumes ? qsTr("Search volumes") : qsTr("Search folders")
        list.Accessible.name: qsTr("Folders")
        delegate: FolderRow {
            width: ListView.view?.width ?? 0
            isVolume: page.atVolumes
            onOpened: page.open(FolderPath.child(page.folder, nameRole))
        }

        PagePlaceholder {
            objectName: "placeholder"
            owner: page
            visible: card.total === 0
            askingTitle: qsTr("Asking the station for its folders…")
            failedTitle: qsTr("The folders could not be listed")
            emptyTitle: page.atVolumes ? qsTr("No volumes to show") : qsTr("No folders in here")
            emptyText: page.atVolumes ? "" : qsTr("“New folder” makes the first one.")
            awaitedText: qsTr("The folders appear as soon as it is there.")
        }
    }

    strips: DraftStrip { dialog: newFolderDialog }

    NewFolderDialog {
        id: newFolderDialog

        session: page.session
        onSubmitted: name => {
            if (!page.recording.createDirectory(FolderPath.child(folder, name)))
                refuse(page.session.unsentText());
        }
    }
}
