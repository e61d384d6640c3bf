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

    function test_aGroupIsAdded(): void {
        openFilled();
        const editor = openEditor("newGroup");
        enter(field(editor, "groupNameField"), "North");
        press(field(editor, "timeApplies"));
        enter(field(editor, "timeAmount"), "3");
        const path = field(editor, "pathRow:0");
        enter(field(path, "path"), folder);
        enter(field(path, "reserve"), "1");
        press(field(editor, "addCamera"));
        tryVerify(() => findChild(editor.contentItem, "memberRow:0") !== null);
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
        for (const row of [0, 1]) {
            press(field(editor, "addCamera"));
            tryVerify(() => findChild(editor.contentItem, "memberRow:" + row) !== null);
        }
        server.ask("station.removeCamera", { camName: "Gate" });
        press(findChild(editor.footer, "accept"));
        tryVerify(() => !editor.busy);
        verify(editor.visible);
        compare(field(editor, "nameMessage").text, "Another recording group has this name.");
        compare(field(field(editor, "pathRow:0"), "rowMessage").text, "There is no such folder.");
        compare(field(field(editor, "pathRow:1"), "rowMessage").text,
                "All reserves on this volume together would be more than it holds.");
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
        press(field(editor, "addCamera"));
        tryVerify(() => findChild(editor.contentItem, "memberRow:1") !== null);
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
}
