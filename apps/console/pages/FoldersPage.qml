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
    property bool listed: false ///< the folder in view could be listed when it was asked for last
    property real keptPosition: -1 ///< how far the list is scrolled, for the same folder listed again
    readonly property bool loading: outstanding > 0
    readonly property bool atVolumes: folder === ""
    readonly property int nameRoleNumber: 258 // of nameRole, for match()

    function ask(path: string, select: string): void {
        if (!session.connected)
            return;
        asked = path;
        entryToSelect = select;
        ++outstanding;
        if (!recording.getServerDir(path)) {
            --outstanding;
            fail(qsTr("The request could not be sent."));
        }
    }

    function open(path: string): void {
        pendingFailure = "";
        ask(path, "");
    }

    function refresh(): void {
        if (loading)
            return;
        keptPosition = card.list.contentY;
        ask(folder, (card.list.currentItem as FolderRow)?.nameRole ?? "");
    }

    function goUp(): void {
        if (atVolumes)
            return;
        pendingFailure = "";
        const path = FolderPath.trimmed(folder);
        const above = FolderPath.above(path);
        ask(above, above === "" ? path : path.substring(path.lastIndexOf("/") + 1));
    }

    function answered(path: string): void {
        if (loading)
            --outstanding;
        if (loading)
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
        listed = true;
        fail(pendingFailure);
        pendingFailure = "";
        const model = card.model;
        const found = model.match(model.index(0, 0), nameRoleNumber, entryToSelect, 1, Qt.MatchExactly
                                  | Qt.MatchCaseSensitive);
        card.currentIndex = card.count === 0 ? -1 : found.length > 0 ? found[0].row : 0;
        if (card.count > 0)
            card.list.positionViewAtIndex(card.currentIndex, ListView.Contain);
        if (again && keptPosition >= 0)
            card.list.contentY = Math.max(0, Math.min(keptPosition, card.list.contentHeight - card.list.height));
        keptPosition = -1;
    }

    /// The refused reply emptied the model: what was in view is asked for again and the refusal shown above it.
    function stay(words: string): void {
        const sentence = asked === "" ? words : qsTr("%1: %2").arg(asked).arg(words);
        if (asked !== folder && everListed && session.connected) {
            pendingFailure = sentence;
            ask(folder, FolderPath.above(asked) === folder ? asked.substring(asked.lastIndexOf("/") + 1) : "");
        } else {
            listed = false;
            keptPosition = -1;
            fail(sentence);
        }
    }

    function fail(words: string): void {
        tellFailure(words);
        settled = true;
    }

    Component.onCompleted: ask(folder, "")
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace) {
            goUp();
            event.accepted = true;
        }
    }

    Connections {
        target: page.recording

        function onGetServerDirResponded(path: string): void {
            page.answered(path);
        }
        function onCreateDirectoryResponded(success: bool): void {
            if (!dialog.busy)
                return;
            if (!success) {
                dialog.refuse(page.session.refusal("createDirectory"));
                return;
            }
            dialog.close();
            if (dialog.folder === page.folder)
                page.ask(page.folder, dialog.name);
        }
    }
    Connections {
        target: page.session

        function onConnectedChanged(): void {
            page.refresh();
        }
    }
    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible && !dialog.visible
        onActivated: page.refresh()
    }
    Shortcut {
        sequence: "Alt+Up"
        enabled: page.visible && !dialog.visible
        onActivated: page.goUp()
    }
    Shortcut {
        sequence: StandardKey.New
        enabled: newFolder.enabled && page.visible && !dialog.visible
        onActivated: dialog.ask(page.folder)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.large

        PageHeader {
            title: qsTr("Folders")
            subtitle: page.atVolumes ? qsTr("Choose a volume to look into")
                : card.count === 1 ? qsTr("1 folder") : qsTr("%1 folders").arg(card.count)
            Layout.fillWidth: true

            ActionButton {
                objectName: "refresh"
                iconName: "refresh"
                text: page.width >= 640 ? qsTr("Refresh") : ""
                hint: qsTr("Ask the station again (F5)")
                enabled: page.session.connected && !page.loading
                onClicked: page.refresh()
            }
            ActionButton {
                id: newFolder

                objectName: "newFolder"
                primary: true
                iconName: "newFolder"
                text: page.width >= 420 ? qsTr("New folder") : ""
                hint: page.atVolumes ? qsTr("Open a volume first: a folder is made inside one")
                                     : qsTr("Make a folder here (Ctrl+N)")
                enabled: page.session.connected && !page.atVolumes && page.listed
                onClicked: dialog.ask(page.folder)
            }
        }
        RowLayout {
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
        ErrorStrip {
            objectName: "errorStrip"
            text: page.failure
            Layout.fillWidth: true
        }
        ListCard {
            id: card

            objectName: "folders"
            focus: true
            model: page.recording.getServerDirModel()
            list.Accessible.name: qsTr("Folders")
            list.Keys.onReturnPressed: (list.currentItem as FolderRow)?.opened()
            list.Keys.onEnterPressed: (list.currentItem as FolderRow)?.opened()
            delegate: FolderRow {
                width: ListView.view?.width ?? 0
                isVolume: page.atVolumes
                onOpened: page.open(FolderPath.child(page.folder, nameRole))
            }
            Layout.fillWidth: true
            Layout.fillHeight: true

            Placeholder {
                objectName: "placeholder"
                anchors.centerIn: parent
                width: Math.min(420, parent.width - 2 * Theme.huge)
                visible: card.count === 0
                busy: page.session.connected && (page.loading || !page.settled)
                iconName: "folder"
                title: !page.session.connected ? qsTr("No connection to the station")
                    : busy ? qsTr("Asking the station for its folders…")
                    : page.failure !== "" ? qsTr("The folders could not be listed")
                    : page.atVolumes ? qsTr("No volumes to show") : qsTr("No folders in here")
                text: busy || page.failure !== "" ? ""
                    : !page.session.connected ? qsTr("The folders appear as soon as it is there.")
                    : page.atVolumes ? "" : qsTr("“New folder” makes the first one.")
            }
        }
    }

    NewFolderDialog {
        id: dialog

        onSubmitted: name => {
            if (!page.recording.createDirectory(FolderPath.child(folder, name)))
                refuse(qsTr("The request could not be sent."));
        }
    }
}
