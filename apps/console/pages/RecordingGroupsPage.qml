import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The connected station's recording groups: the tree, and the selected group beside it or, where it is narrow, below.
ConsolePage {
    id: page

    property bool treeLoading: false
    property bool volumesLoading: false
    property bool askAgain: false // something changed while a reply was under way
    property int count: 0
    property int revision: 0 // counts the refreshes
    property string selectedId ///< of the selected group; empty for the station
    property int selectedRow: 0 // where it stood; its neighbour takes its place when it goes away
    property var selected: null ///< what is known of it; stays while the station is asked again
    property bool answered: false
    readonly property bool loading: treeLoading || volumesLoading
    readonly property bool wide: width >= 640
    readonly property bool editable: session.connected && !treeLoading && selected !== null

    function refresh(): void {
        if (loading) {
            askAgain = true;
            return;
        }
        if (!session.connected)
            return;
        askAgain = false;
        failure = "";
        treeLoading = true;
        volumesLoading = recording.getVolume();
        session.refreshCameras();
        if (!recording.retrieveRecordingGroupTreeModel())
            finishTree(qsTr("The client does not know which station it is connected to."));
    }

    function finishTree(words: string): void {
        treeLoading = false;
        if (words !== "")
            failure = words;
        ++revision;
        count = groups.count();
        if (words !== "")
            selected = null; // what was selected will be again when the station lists it
        else
            select(groups.indexOf(selectedId).valid ? selectedId : groups.idAt(Math.min(selectedRow, count - 1)));
        Qt.callLater(tree.bringIntoView);
        finish();
    }

    function finishVolumes(words: string): void {
        volumesLoading = false;
        if (words !== "" && failure === "")
            failure = words;
        showVolumes();
        finish();
    }

    function showVolumes(): void {
        groups.volumes = volumeRows.list();
        if (!treeLoading)
            select(selectedId);
    }

    function finish(): void {
        if (loading)
            return;
        answered = true;
        if (askAgain)
            refresh();
    }

    function select(groupId: string): void {
        selectedId = groupId;
        selectedRow = Math.max(0, groups.indexOf(groupId).row);
        selected = groups.read(groupId);
    }

    function add(): void {
        if (addButton.enabled)
            editor.ask(null);
    }

    function edit(): void {
        if (editable)
            editor.ask(selected);
    }

    function remove(): void {
        if (editable)
            removal.ask(selected);
    }

    settled: answered && (failure !== "" || tree.tree.rows > (tree.folded ? 0 : count))
    Component.onCompleted: refresh()

    Connections {
        target: page.recording

        function onRetrieveRecordingGroupTreeModelFinish(): void {
            page.finishTree("");
        }
        function onGetVolumeResponded(success: bool): void {
            page.finishVolumes(success ? "" : page.session.refusal("getVolume"));
        }
        function onAddRecordingGroupWithCompleteInfoResp(success: bool, addedGrpID: string, errList: var): void {
            if (!editor.busy)
                return;
            if (success)
                page.selectedId = addedGrpID;
            page.finishEdit(success, errList, "addRecordingGroupWithCompleteInfo");
        }
        function onUpdateRecordingGroupResp(success: bool, errList: var): void {
            if (editor.busy)
                page.finishEdit(success, errList, "updateRecordingGroup");
        }
        function onRemoveRecordingGroupResp(success: bool, finish: bool): void {
            if (removal.busy)
                removal.takePart(success ? "" : page.session.refusal("removeRecordingGroup"), finish);
        }
    }
    Connections {
        target: page.session

        function onConnectedChanged(): void {
            page.refresh();
        }
        function onRefused(command: string): void {
            if (command === "retrieveRecordingGroupTreeModel" && page.treeLoading)
                page.finishTree(page.session.refusal(command));
        }
    }

    function finishEdit(success: bool, errors: var, command: string): void {
        if (!success) {
            editor.refuse(errors, session.refusal(command));
            return;
        }
        editor.close();
        refresh();
    }

    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible && !editor.visible && !removal.visible
        onActivated: page.refresh()
    }
    Shortcut {
        sequence: StandardKey.New
        enabled: page.visible && !editor.visible && !removal.visible
        onActivated: page.add()
    }
    RecordingGroups {
        id: groups

        recording: page.recording
    }
    VolumeList {
        id: volumeRows

        model: page.recording.getVolumeModel()
        onChanged: page.showVolumes() // a NAS path comes without a reply to getVolume
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.large

        PageHeader {
            title: qsTr("Recording groups")
            subtitle: page.count === 0 ? qsTr("Which cameras are recorded where")
                : page.count === 1 ? qsTr("1 recording group") : qsTr("%1 recording groups").arg(page.count)
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
                id: addButton

                objectName: "newGroup"
                primary: true
                iconName: "add"
                text: page.width >= 480 ? qsTr("New group") : ""
                hint: qsTr("Add a recording group (Ctrl+N)")
                enabled: page.session.connected && !page.treeLoading
                onClicked: page.add()
            }
        }
        ErrorStrip {
            objectName: "errorStrip"
            text: page.failure
            actionText: page.session.connected ? qsTr("Try again") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refresh()
        }
        Item {
            id: room

            Layout.fillWidth: true
            Layout.fillHeight: true

            GroupTree {
                id: tree

                objectName: "groups"
                groups: groups
                selectedId: page.selectedId
                width: page.wide ? Math.min(360, Math.max(220, page.width * 0.32)) : page.width
                height: page.wide ? room.height : Math.max(92, Math.min(contentHeight + 2, room.height * 0.36))
                onChosen: groupId => page.select(groupId)
                onEditWanted: page.edit()
                onRemoveWanted: page.remove()
            }
            GroupDetail {
                objectName: "groupDetail"
                group: page.selected
                editable: page.editable
                wide: page.width - x >= 520
                x: page.wide ? tree.width + Theme.large : 0
                y: page.wide ? 0 : tree.height + Theme.large
                width: page.width - x
                height: room.height - y
                onEditWanted: page.edit()
                onRemoveWanted: page.remove()

                Placeholder {
                    objectName: "placeholder"
                    anchors.centerIn: parent
                    width: Math.min(420, parent.width - 2 * Theme.huge)
                    visible: page.selected === null
                    busy: page.session.connected && (page.loading || !page.answered)
                    iconName: "group"
                    title: !page.session.connected ? qsTr("No connection to the station")
                        : busy ? qsTr("Asking the station for its recording groups…")
                        : page.count > 0 ? qsTr("Choose a recording group")
                        : page.failure !== "" ? qsTr("The recording groups could not be listed")
                        : qsTr("No recording groups yet")
                    text: !page.session.connected ? qsTr("The recording groups appear as soon as it is there.")
                        : busy || page.count > 0 || page.failure !== "" ? ""
                        : qsTr("A recording group records cameras to paths. “New group” adds the first one.")
                }
            }
        }
    }

    GroupEditor {
        id: editor

        recording: page.recording
        session: page.session
        volumes: groups.volumes
        revision: page.revision
    }
    RemoveGroupDialog {
        id: removal

        onSubmitted: {
            if (!page.recording.removeRecordingGroup([groupId]))
                refuse(qsTr("The request could not be sent."));
        }
        onRemoved: page.refresh()
    }
}
