import QtQuick
import RecordingConsole

/// The connected station's recording groups: the tree, and the selected group beside it or, where it is narrow, below.
ConsolePage {
    id: page

    property bool treeLoading: false
    property bool volumesLoading: false
    property string problem // the first one of the replies under way
    property bool outdated: false // something changed while the page was not shown
    property int count: 0
    property int revision: 0 // counts the refreshes
    property string selectedId ///< of the selected group; empty for the station
    property int selectedRow: 0 // where it stood; its neighbour takes its place when it goes away
    property var selected: null ///< what is known of it; stays while the station is asked again
    property string wantedPath ///< that a group is to record to; it is chosen when the groups are listed
    readonly property bool free: session.connected && !treeLoading && !bulk.awaitsReply
    readonly property bool editable: free && selected !== null

    key: "groups"
    mainList: tree.tree
    search: tree.search
    help: qsTr("A recording group says which cameras are recorded to which paths, and how far back their recordings shall reach: "
               + "its reserved time, a target that raises an alarm, not a limit. The reserved space of a path is set aside for the "
               + "group on that volume. A recovery path also takes recordings that are fetched later from cameras that were cut off. "
               + "Several groups can be chosen by their marks and changed at once; before anything is sent, a summary shows what that "
               + "comes to for each of them.")
    keys: [
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: tree.tree
            text: qsTr("Change the recording group, or all chosen ones")
            onActivated: page.editChosen()
        },
        ConsoleKey {
            sequence: "Space"
            list: tree.tree
            text: qsTr("Choose the recording group, or choose it no longer")
            onActivated: choice.toggle(page.selectedId)
        },
        ConsoleKey {
            sequence: "Shift+Down"
            list: tree.tree
            text: qsTr("Choose this recording group and the next one")
            onActivated: tree.chooseTo(1)
        },
        ConsoleKey {
            sequence: "Shift+Up"
            list: tree.tree
            text: qsTr("Choose this recording group and the one before")
            onActivated: tree.chooseTo(-1)
        },
        ConsoleKey {
            sequence: StandardKey.SelectAll
            list: tree.tree
            text: qsTr("Choose all recording groups in view, or none of them")
            onActivated: choice.toggleAll(tree.shownIds())
        },
        ConsoleKey {
            sequence: "Esc"
            list: tree.tree
            allowed: choice.count > 0 && !tree.rows.filtering
            text: qsTr("Choose no recording group any more")
            onActivated: choice.clear()
        },
        ConsoleKey {
            sequence: "Del"
            list: tree.tree
            text: qsTr("Remove the recording group")
            onActivated: page.remove()
        },
        ConsoleKey {
            sequence: StandardKey.New
            allowed: addButton.enabled
            text: qsTr("Add a recording group")
            onActivated: page.add()
        }
    ]
    subtitle: count === 0 ? qsTr("Which cameras are recorded where")
        : Units.counted(count, qsTr("1 recording group"), qsTr("%1 recording groups"))
    asking: editor.visible || removal.visible || bulk.visible || recordHere.visible
    settled: answered && (failed || tree.settled)

    function ask(): bool {
        outdated = false;
        problem = "";
        treeLoading = true;
        volumesLoading = recording.getVolume();
        session.refreshCameras();
        if (!recording.retrieveRecordingGroupTreeModel())
            finishTree(qsTr("The client does not know which station it is connected to."));
        return true;
    }

    function finishTree(words: string): void {
        treeLoading = false;
        ++revision;
        count = groups.count();
        if (words !== "")
            selected = null; // what was selected will be again when the station lists it
        else
            select(groups.indexOf(selectedId).valid || tree.folded ? selectedId
                                                                   : tree.idAt(Math.min(selectedRow, tree.rows.count - 1)));
        Qt.callLater(tree.bringIntoView);
        if (words === "")
            choice.keep(groups.ids());
        bulk.takeGroups(words);
        finishPart(words);
        showWanted();
    }

    function finishVolumes(words: string): void {
        volumesLoading = false;
        showVolumes();
        finishPart(words);
    }

    function finishPart(words: string): void {
        if (!loading)
            return; // somebody else asked
        problem = problem || words;
        if (!treeLoading && !volumesLoading)
            finish(problem);
    }

    function showVolumes(): void {
        groups.volumes = volumeRows.list();
    }

    /// Selects the group called @p place, now or when it is listed.
    function goTo(place: string): void {
        const begin = recordingPlace("");
        if (place.startsWith(begin)) {
            wantedPath = place.substring(begin.length);
            showWanted();
            return;
        }
        selectedId = place;
        if (groups.indexOf(place).valid)
            tree.reveal(place);
        else
            tree.folded = false;
    }

    /// Asks which group is to record to the wanted path, once the groups are known.
    function showWanted(): void {
        if (wantedPath === "" || treeLoading || !session.connected)
            return;
        recordHere.ask(wantedPath, groups);
        wantedPath = "";
    }

    function recordTo(path: string, groupId: string): void {
        const group = groupId === "" ? null : groups.read(groupId);
        if (groupId !== "" && group === null)
            return; // it went away
        if (group)
            select(groupId);
        editor.askWithPath(group, path);
    }

    function select(groupId: string): void {
        selectedId = groupId;
        selectedRow = Math.max(0, tree.placeOf(groupId));
        selected = groups.read(groupId);
    }

    function followEdits(): void {
        if (outdated && visible && !bulk.awaitsReply)
            refresh();
    }

    function add(): void {
        if (addButton.enabled)
            editor.ask(null);
    }

    function edit(): void {
        if (editable)
            editor.ask(selected);
    }

    function showDialog(name: string): var {
        if (name === "add")
            add();
        else if (name === "edit")
            edit();
        return editor;
    }

    /// All chosen groups or, where none is chosen, the selected one.
    function editChosen(): void {
        if (choice.count === 0)
            edit();
        else if (free || bulk.awaitsReply)
            bulk.ask(chosenInOrder());
    }

    /// As the tree shows them; those that a search hides come behind.
    function chosenInOrder(): var {
        const shown = tree.shownIds().filter(id => choice.has(id));
        return shown.concat(choice.ids.filter(id => !shown.includes(id)));
    }

    function remove(): void {
        if (editable)
            removal.ask(selected);
    }

    onVisibleChanged: followEdits()

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
            else if (undo.busy)
                undo.finish(success ? "" : page.session.refusal("updateRecordingGroup"));
            else if (bulk.awaitsReply)
                bulk.takeReply(success, errList);
        }
        function onRemoveRecordingGroupResp(success: bool, finish: bool): void {
            if (removal.busy)
                removal.takePart(success ? "" : page.session.refusal("removeRecordingGroup"), finish);
        }
    }
    Connections {
        target: page.session

        function onGroupsEdited(): void {
            page.outdated = true;
            page.followEdits();
        }
        function onRefused(command: string): void {
            if (command !== "retrieveRecordingGroupTreeModel")
                return;
            if (page.treeLoading)
                page.finishTree(page.session.refusal(command));
            else
                page.outdated = true; // another page asked, and the tree is empty now
        }
    }

    function finishEdit(success: bool, errors: var, command: string): void {
        if (!success) {
            editor.refuse(errors, session.refusal(command));
            return;
        }
        editor.finish();
        refresh();
    }

    RecordingGroups {
        id: groups

        recording: page.recording
        storage: page.session.storage
    }
    VolumeList {
        id: volumeRows

        model: page.recording.getVolumeModel()
        onChanged: page.showVolumes() // a NAS path comes without a reply to getVolume
    }

    GroupChoice { id: choice }
    actions: ActionButton {
        id: addButton

        objectName: "newGroup"
        primary: true
        iconName: "add"
        text: page.width >= Theme.sized(480) ? qsTr("New group") : ""
        hint: qsTr("Add a recording group (Ctrl+N)")
        enabled: page.free
        onClicked: page.add()
    }

    strips: [
        UndoStrip {
            id: undo

            recording: page.recording
            session: page.session
        },
        DraftStrip { dialog: editor }
    ]

    GroupTree {
        id: tree

        objectName: "groups"
        groups: groups
        selectedId: page.selectedId
        settings: page.settings
        width: page.roomy ? Math.min(Theme.sized(360), Math.max(Theme.sized(220), page.width * 0.32)) : page.width
        height: column - (choiceBar.visible ? choiceBar.height + Theme.small : 0)
        choice: choice
        onChosen: groupId => page.select(groupId)

        readonly property real column: page.roomy ? page.room.height
            : Math.max(Theme.sized(choiceBar.visible ? 150 : 92), Math.min(contentHeight + 2, page.room.height * 0.36))
    }
    ChoiceBar {
        id: choiceBar

        choice: choice
        editable: page.free || bulk.awaitsReply
        y: tree.height + Theme.small
        width: tree.width
        onAllWanted: choice.toggleAll(tree.shownIds())
        onEditWanted: page.editChosen()
    }
    GroupDetail {
        objectName: "groupDetail"
        groups: groups
        group: page.selected
        editable: page.editable
        wide: page.width - x >= Theme.sized(520)
        x: page.roomy ? tree.width + Theme.large : 0
        y: page.roomy ? 0 : tree.column + Theme.large
        width: page.width - x
        height: page.room.height - y
        onEditWanted: page.edit()
        onRemoveWanted: page.remove()

        PagePlaceholder {
            objectName: "placeholder"
            owner: page
            visible: page.selected === null
            askingTitle: qsTr("Asking the station for its recording groups…")
            failedTitle: qsTr("The recording groups could not be listed")
            emptyTitle: page.count > 0 ? qsTr("Choose a recording group") : qsTr("No recording groups yet")
            emptyText: page.count > 0 ? ""
                : qsTr("A recording group records cameras to paths. “New group” adds the first one.")
            awaitedText: qsTr("The recording groups appear as soon as it is there.")
        }
    }

    GroupEditor {
        id: editor

        recording: page.recording
        session: page.session
        groups: groups
        revision: page.revision
        onTaken: (group, request) => undo.offer(group, request)
    }
    BulkEditor {
        id: bulk

        recording: page.recording
        session: page.session
        groups: groups
        groupsLoading: page.treeLoading
        blocked: editor.busy || undo.busy
        onGroupsWanted: page.refresh()
        onBegun: undo.withdraw()
        onEnded: {
            page.outdated = true;
            page.followEdits();
        }
    }
    RecordHereDialog {
        id: recordHere

        onChosen: (path, groupId) => page.recordTo(path, groupId)
    }
    RemoveGroupDialog {
        id: removal

        session: page.session
        onSubmitted: {
            if (!page.recording.removeRecordingGroup([groupId]))
                refuse(page.session.unsentText());
        }
        onRemoved: page.refresh()
    }
}
