import QtQuick
import "../pages"

/// The page of the recording groups on a real station.
PageTest {
    id: test

    property string folder

    name: "GroupsOnAStation"

    function openFilled(): void {
        folder = server.makeFolder("north");
        server.makeFolder("south");
        server.ask("station.addCamera", { camName: "Gate", streams: 2 });
        server.ask("station.addCamera", { camName: "Yard", streams: 1 });
        const added = server.ask("addRecordingGroupWithCompleteInfo", {
            recordingGroupName: "South", recordingGroupReservedTimeEnabled: true, recordingGroupReservedTime: 1440,
            pathInfoList: [{ path: server.pathOf("south"), pathType: 0, reserveSpace: 2048, isRecoveryMode: false }],
            deviceInfos: [{ camName: "Yard", streamIndex: 0, enableTimeShift: false, enableSeamless: false }]
        });
        verify(added.recordingGroupID, added);
        open("RecordingGroupsPage", {});
        tryVerify(() => findChild(page, "group:South") !== null);
        tryVerify(() => !page.loading);
    }

    function groups() {
        return server.ask("retrieveRecordingGroupTreeModel", { relayPath: "" });
    }

    function group(name) {
        return groups().find(candidate => candidate.recordingGroupName === name);
    }

    function opened(name) {
        const dialog = findChild(page, name);
        tryVerify(() => dialog.opened);
        return dialog;
    }

    function openEditor(button) {
        mouseClick(part(button));
        const editor = opened("groupEditor");
        tryVerify(() => server.session.cameras.length === 2);
        return editor;
    }

    /// Adds a camera through the editor's picker.
    function pick(editor, name): void {
        const members = field(editor, "members").count;
        press(field(editor, "addCamera"));
        const picker = field(editor, "cameraPicker");
        tryVerify(() => picker.opened && field(picker, "cameraChoices").count > 0);
        picker.toggle(name);
        mouseClick(findChild(picker.footer, "accept"));
        tryVerify(() => !picker.visible);
        tryVerify(() => field(editor, "members").itemAtIndex(members) !== null);
    }

    function field(owner, name) {
        const found = findChild(owner.contentItem ?? owner, name);
        verify(found, name);
        return found;
    }

    function enter(item, words): void {
        item.forceActiveFocus();
        item.selectAll();
        keyClick(Qt.Key_Delete);
        for (const key of words)
            keyClick(key);
    }

    function press(item): void {
        item.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
    }

    function test_followsAnotherClient(): void {
        openFilled();
        const added = server.ask("addRecordingGroup", {
            recordingGroupName: "East", path: server.makeFolder("east"), pathType: 0, reserveSpace: 0
        });
        verify(added.recordingGroupID, added);
        tryVerify(() => findChild(page, "group:East") !== null);
    }

    function test_lateOutcomesReachThePages(): void {
        openFilled();
        compare(server.session.lateOutcomes, []);
        server.tellLateOutcome("South");
        compare(server.session.lateOutcomes.length, 1);
        verify(server.session.lateOutcomes[0].startsWith("The edit of the recording group South that timed out at "));
        verify(!server.session.lateFailure);
    }

    function test_aGroupIsAdded(): void {
        openFilled();
        const editor = openEditor("newGroup");
        enter(field(editor, "groupNameField"), "North");
        press(field(editor, "timeApplies"));
        enter(field(editor, "timeAmount"), "3");
        const path = field(editor, "pathRow:0");
        enter(field(path, "path"), folder);
        enter(field(path, "reserve"), "1");
        pick(editor, "Gate");
        press(field(field(editor, "memberRow:0"), "timeShift"));
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        const added = group("North");
        compare(added.recordingGroupPathList, [folder]);
        compare(added.reserveSpace, [1024]);
        compare(added.recordingGroupReservedTime, 4320);
        compare(added.recordingGroupMemberList,
                [{ camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: false }]);
        tryVerify(() => findChild(page, "group:North")?.current ?? false);
        tryCompare(part("groupName"), "text", "North");
        compare(text(page, "reservedTime"), "3 days");
        verify(part("path:" + folder));
    }

    function test_everyRefusalStandsAtItsField(): void {
        openFilled();
        const editor = openEditor("newGroup");
        enter(field(editor, "groupNameField"), "South");
        enter(field(field(editor, "pathRow:0"), "path"), server.pathOf("nowhere"));
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:1") !== null);
        enter(field(field(editor, "pathRow:1"), "path"), folder);
        enter(field(field(editor, "pathRow:1"), "reserve"), "999999999");
        pick(editor, "Gate");
        pick(editor, "Yard");
        server.ask("station.removeCamera", { camName: "Gate" });
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.busy);
        verify(editor.visible);
        compare(field(editor, "nameMessage").text, "Another recording group has this name.");
        compare(field(field(editor, "pathRow:0"), "rowMessage").text, "There is no such folder.");
        const refusal = field(field(editor, "pathRow:1"), "rowMessage").text;
        verify(refusal.startsWith("All reserves on this volume together would be more than it holds. "), refusal);
        verify(/ [0-9.]+ .B are left to reserve; other groups reserve 2.00 GB of [0-9.]+ .B\.$/.test(refusal), refusal);
        compare(field(field(editor, "memberRow:0"), "rowMessage").text, "The station does not know this camera.");
        compare(field(field(editor, "memberRow:1"), "rowMessage").text, "");
        compare(field(editor, "groupNameField").text, "South", "nothing that was entered is lost");
        compare(groups().length, 1, "and nothing is half done");
    }

    function test_aGroupIsChanged(): void {
        openFilled();
        const editor = openEditor("edit");
        enter(field(editor, "groupNameField"), "Doors");
        enter(field(field(editor, "pathRow:0"), "path"), folder);
        press(field(editor, "timeApplies"));
        press(field(field(editor, "memberRow:0"), "seamless"));
        pick(editor, "Gate");
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        const changed = group("Doors");
        compare(changed.recordingGroupPathList, [folder], "the only path gave way to another");
        compare(changed.reserveSpace, [2048]);
        compare(changed.recordingGroupReservedTime, 0);
        compare(changed.recordingGroupMemberList,
                [{ camName: "Yard", streamIndex: 0, enableTimeShift: false, enableSeamless: true },
                 { camName: "Gate", streamIndex: 0, enableTimeShift: false, enableSeamless: false }]);
        tryVerify(() => findChild(page, "group:Doors")?.current ?? false);
        tryCompare(part("reservedTime"), "text", "Does not apply");
    }

    function test_forecastOfTheStation(): void {
        openFilled();
        const editor = openEditor("edit");
        enter(field(field(editor, "pathRow:0"), "path"), folder);
        const panel = field(editor, "forecast");
        tryVerify(() => panel.lines.length === 1
                        && panel.lines[0].text.startsWith("South: how long it keeps recordings is not known"));
        enter(field(field(editor, "pathRow:0"), "path"), server.pathOf("nowhere"));
        tryVerify(() => panel.lines.length === 1
                        && panel.lines[0].text === "The station would refuse this. There is no such folder.");
        compare(group("South").recordingGroupPathList, [server.pathOf("south")], "nothing is changed");
    }

    function test_forecastHasTheFiguresOfTheStation(): void {
        server.ask("station.createSampleSite");
        open("RecordingGroupsPage", {});
        tryVerify(() => page.count === 3 && !page.loading);
        const groups = () => server.session.storage.volumes.reduce((list, volume) => list.concat(volume.groups), []);
        tryVerify(() => groups().length > 0 && groups().every(group => group.counted && group.bytesPerDay > 0));
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        if (!field(editor, "timeApplies").checked)
            press(field(editor, "timeApplies"));
        enter(field(editor, "timeAmount"), "40000");
        const panel = field(editor, "forecast");
        const told = /^.* keeps [0-9]+ days, as now, [0-9]+ days short\. 40000 days need [0-9.]+ .B, [0-9.]+ .B are missing\.$/;
        tryVerify(() => panel.lines.length > 0 && !panel.pending);
        verify(told.test(panel.lines[0].text), panel.lines[0].text);
        verify(panel.warned);
        verify(field(field(editor, "pathRow:0"), "own").text.startsWith("this group has recorded "));
    }

    function test_proposedFolderIsTaken(): void {
        openFilled();
        const editor = openEditor("newGroup");
        enter(field(editor, "groupNameField"), "North");
        const path = field(field(editor, "pathRow:0"), "path");
        tryVerify(() => path.folders.length > 0);
        if (path.text === "")
            path.chosen(path.folders[0].path); // the system's volume is all there is
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        compare(group("North").recordingGroupPathList.length, 1);
    }

    function test_aFolderIsMadeWhereItIsNeeded(): void {
        openFilled();
        const editor = openEditor("edit");
        press(field(field(editor, "pathRow:0"), "browse"));
        const dialog = opened("folderDialog");
        tryVerify(() => dialog.inView);
        compare(dialog.folder, server.pathOf("south"));
        press(field(dialog, "newFolderHere"));
        const naming = opened("newFolderDialog");
        for (const key of "new")
            keyClick(key);
        keyClick(Qt.Key_Return);
        tryVerify(() => dialog.inView && dialog.folder === server.pathOf("south/new"));
        press(findChild(dialog.footer, "accept"));
        tryVerify(() => !dialog.visible && !naming.visible);
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        compare(group("South").recordingGroupPathList, [server.pathOf("south/new")]);
    }

    function test_anAppliedChangeIsUndone(): void {
        openFilled();
        const editor = openEditor("edit");
        enter(field(editor, "groupNameField"), "Doors");
        enter(field(field(editor, "pathRow:0"), "path"), folder);
        press(field(editor, "timeApplies"));
        press(field(field(editor, "memberRow:0"), "seamless"));
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        const strip = part("undoStrip");
        tryVerify(() => !strip.ownEditOutstanding);
        verify(strip.visible);
        press(findChild(strip, "errorAction"));
        tryVerify(() => !strip.visible);
        const back = group("South");
        compare(back.recordingGroupPathList, [server.pathOf("south")]);
        compare(back.reserveSpace, [2048]);
        compare(back.recordingGroupReservedTime, 1440);
        compare(back.recordingGroupMemberList,
                [{ camName: "Yard", streamIndex: 0, enableTimeShift: false, enableSeamless: false }]);
    }

    function test_undoGoesWithAnotherEdit(): void {
        openFilled();
        const editor = openEditor("edit");
        press(field(editor, "timeApplies"));
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.visible);
        const strip = part("undoStrip");
        tryVerify(() => !strip.ownEditOutstanding);
        server.ask("updateRecordingGroup", { recordingGroupID: group("South").recordingGroupID,
                                             updateSetRecordingGroup: { recordingGroupName: "West" } });
        tryVerify(() => !strip.visible);
    }

    function test_aGroupIsRemoved(): void {
        openFilled();
        mouseClick(part("remove"));
        const dialog = opened("removeGroupDialog");
        mouseClick(findChild(dialog.footer, "accept"));
        tryVerify(() => !dialog.visible);
        compare(groups(), []);
        tryCompare(part("placeholder"), "title", "No recording groups yet");
    }

    function test_aGroupThatIsGoneIsSaid(): void {
        openFilled();
        const editor = openEditor("edit");
        server.ask("removeRecordingGroup", { recordingGroupIDList: [group("South").recordingGroupID] });
        enter(field(editor, "groupNameField"), "Doors");
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.busy);
        compare(field(editor, "editorStrip").text.includes("There is no such recording group any more."), true);
        compare(field(editor, "groupNameField").text, "Doors");
    }

    function test_severalGroupsAtOnce(): void {
        openFilled();
        for (const name of ["East", "West"]) {
            server.ask("addRecordingGroup", { recordingGroupName: name, path: server.makeFolder(name), pathType: 0, reserveSpace: 0 });
            tryVerify(() => findChild(page, "group:" + name) !== null);
        }
        tryVerify(() => !page.loading);
        part("groups").tree.forceActiveFocus();
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(part("groups").choice.count, 3);
        keyClick(Qt.Key_Return);
        const bulk = opened("bulkEditor");
        press(field(bulk, "changesTime"));
        if (!field(bulk, "timeApplies").checked)
            press(field(bulk, "timeApplies"));
        enter(field(bulk, "timeAmount"), "5");
        press(field(bulk, "addPath"));
        enter(field(field(bulk, "pathRow:0"), "path"), folder);
        enter(field(field(bulk, "pathRow:0"), "reserve"), "1");
        keyClick(Qt.Key_Tab);
        press(findChild(bulk.footer, "accept"));
        compare(bulk.step, "summary");
        const panel = field(bulk, "forecast");
        tryVerify(() => panel.lines.some(line => line.text.includes("all groups reserve")), 5000, "the station forecasts all of it");
        press(findChild(bulk.footer, "accept"));
        tryCompare(bulk, "step", "outcomes");
        compare(field(bulk, "bulkSummary").text, "3 groups are changed.");
        for (const name of ["South", "East", "West"]) {
            compare(group(name).recordingGroupReservedTime, 7200, name);
            verify(group(name).recordingGroupPathList.includes(folder), name);
        }
        compare(group("South").recordingGroupMemberList.length, 1, "nothing else of it has changed");
        compare(group("South").reserveSpace, [2048, 1024]);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !bulk.visible);
        tryVerify(() => !page.loading);
    }
}
