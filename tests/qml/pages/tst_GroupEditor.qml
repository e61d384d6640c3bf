import QtQuick

GroupsTest {
    id: test

    name: "GroupEditor"

    function test_addsAGroup(): void {
        openFilled({});
        keyClick("n", Qt.ControlModifier);
        const editor = opened("groupEditor");
        for (const key of ["E", "a", "s", "t"])
            keyClick(key);
        press(field(editor, "timeApplies"));
        enter(field(editor, "timeAmount"), "36");
        choose(field(editor, "timeUnit"), 1);
        const path = field(editor, "pathRow:0");
        enter(field(path, "path"), "/srv/east");
        enter(field(path, "reserve"), "3000000");
        press(field(path, "recovery"));
        choose(field(path, "kind"), 1);
        pick(editor, ["Yard"]);
        const member = memberRow(editor, 0);
        compare(field(member, "camera").text, "Yard");
        tryVerify(() => field(member, "stream").activeFocus, 5000, "the new row has the focus");
        choose(field(member, "stream"), 2);
        press(field(member, "timeShift"));
        enter(field(editor, "groupNameField"), "East");
        keyClick(Qt.Key_Return);
        const sent = request();
        compare(sent.command, "addRecordingGroupWithCompleteInfo");
        compare(sent.data, {
            recordingGroupName: "East", recordingGroupReservedTimeEnabled: true, recordingGroupReservedTime: 2160,
            pathInfoList: [{ path: "/srv/east", pathType: 1, reserveSpace: 3072000000, isRecoveryMode: true }],
            deviceInfos: [{ camName: "Yard", streamIndex: 2, enableTimeShift: true, enableSeamless: false }]
        });
        verify(editor.busy);
        keyClick(Qt.Key_Return);
        editor.submit();
        compare(server.takeRequests(), [], "one request is under way");
        verify(editor.visible);
        compare(findChild(editor.footer, "accept").text, "Adding…");
        server.reply("addRecordingGroupWithCompleteInfo", { recordingGroupID: "{cars}" }, "0");
        tryVerify(() => !editor.visible);
        compare(server.takeRequests(), ["getVolume ", askTree]);
        answer([north, cars]);
        compare(page.selectedId, "{cars}", "the new group is selected");
    }

    function test_aWaitCanBeLeft_data() {
        return [
            { tag: "done", code: "0", words: "Edit North gate: done.", failed: false },
            { tag: "refused", code: "DatabaseFull", failed: true,
              words: "Edit North gate: The disk of the station's data is full: nothing can be changed." },
            { tag: "refused in its elements", code: "RecordingGroupNameInUse", failed: true,
              data: { errorAction: [{ element: "recordingGroupName", returnCode: "RecordingGroupNameInUse" }] },
              words: "Edit North gate: Another recording group has this name." }
        ];
    }
    function test_aWaitCanBeLeft(row): void {
        openFilled({});
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        editor.footer.tick = 1;
        enter(field(editor, "groupNameField"), "South");
        const cancel = findChild(editor.footer, "cancel");
        compare(cancel.text, "Cancel");
        press(findChild(editor.footer, "accept"));
        compare(cancel.text, "Leave");
        tryVerify(() => /^[0-9]+ s so far$/.test(findChild(editor.footer, "waited").text));
        request();
        keyClick(Qt.Key_Escape);
        tryVerify(() => !editor.visible);
        verify(findChild(page, "discardDialog") === null || !findChild(page, "discardDialog").visible);
        compare(server.session.lateOutcomes, []);

        part("groups").tree.forceActiveFocus();
        keyClick(Qt.Key_Return);
        opened("groupEditor");
        compare(field(editor, "groupNameField").text, "South", "what is under way is shown again");
        verify(editor.busy);
        press(cancel);
        tryVerify(() => !editor.visible);

        server.reply("updateRecordingGroup", row.data ?? {}, row.code);
        verify(!editor.visible);
        compare(server.session.lateOutcomes, [row.words]);
        compare(server.session.lateFailure, row.failed);
        server.session.forgetLateOutcomes();
        if (!row.failed)
            answer([north, cars, ramp]);
        keyClick(Qt.Key_Return);
        opened("groupEditor");
        verify(!editor.busy);
        compare(field(editor, "groupNameField").text, "North gate");
        compare(findChild(editor.footer, "waited").text, "");
    }

    /// What was entered outlasts its refusal and the edit of another group.
    function test_whatWasLeftAndRefusedIsOfferedAgain(): void {
        openFilled({});
        verify(!part("draftStrip").visible);
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        enter(field(editor, "groupNameField"), "South");
        enter(field(field(editor, "pathRow:0"), "reserve"), "7");
        pick(editor, ["Roof"]);
        press(findChild(editor.footer, "accept"));
        const sent = request().data;
        keyClick(Qt.Key_Escape);
        tryVerify(() => !editor.visible);
        server.reply("updateRecordingGroup", {}, "DatabaseFull");
        tryVerify(() => part("draftStrip").visible);
        compare(part("draftStrip").text, "Edit North gate: The disk of the station's data is full: nothing can be changed. "
                + "What you entered is kept.");

        page.select("{cars}");
        page.edit();
        opened("groupEditor");
        compare(field(editor, "groupNameField").text, "Car park");
        verify(!editor.dirty);
        press(findChild(editor.footer, "cancel"));
        tryVerify(() => !editor.visible);
        verify(part("draftStrip").visible);

        press(findChild(part("draftStrip"), "errorAction"));
        opened("groupEditor");
        verify(!part("draftStrip").visible);
        compare(editor.title, "Edit North gate");
        compare(field(editor, "groupNameField").text, "South");
        compare(field(field(editor, "pathRow:0"), "reserve").text, "7");
        verify(editor.dirty, "none of it is saved");
        compare(field(editor, "editorStrip").text, "The disk of the station's data is full: nothing can be changed.");
        press(findChild(editor.footer, "accept"));
        compare(request().data, sent, "the same as before");
        server.reply("updateRecordingGroup", {}, "0");
        tryVerify(() => !editor.visible);
        answer([north, cars, ramp]);
        verify(!part("draftStrip").visible);
    }

    function test_aDraftCanBeForgotten(): void {
        openFilled({});
        keyClick("n", Qt.ControlModifier);
        const editor = opened("groupEditor");
        enter(field(editor, "groupNameField"), "East");
        enter(field(field(editor, "pathRow:0"), "path"), "/srv/east");
        press(findChild(editor.footer, "accept"));
        request();
        keyClick(Qt.Key_Escape);
        server.reply("addRecordingGroupWithCompleteInfo", {}, "DatabaseFull");
        tryVerify(() => part("draftStrip").visible);
        press(findChild(part("draftStrip"), "errorClose"));
        verify(!part("draftStrip").visible);
        compare(editor.drafts, []);
        page.add();
        opened("groupEditor");
        compare(field(editor, "groupNameField").text, "");
    }

    function test_changesOnlyWhatDiffers(): void {
        openFilled({});
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        compare(field(editor, "groupNameField").text, "North gate");
        compare(field(editor, "timeAmount").text, "30");
        compare(field(field(editor, "pathRow:1"), "reserve").text, "0.977");
        keyClick(Qt.Key_Return);
        tryVerify(() => !editor.visible);
        compare(server.takeRequests(), [], "nothing was changed");
        part("groups").tree.forceActiveFocus();

        keyClick(Qt.Key_Return);
        opened("groupEditor");
        press(field(editor, "timeApplies"));
        press(field(field(editor, "pathRow:1"), "recovery"));
        enter(field(field(editor, "pathRow:0"), "path"), "/srv/n");
        press(field(memberRow(editor, 0), "seamless"));
        press(field(memberRow(editor, 1), "removeRow"));
        tryCompare(field(editor, "members"), "count", 1);
        pick(editor, ["Roof"]);
        compare(field(memberRow(editor, 1), "camera").text, "Roof");
        enter(field(editor, "groupNameField"), "North");
        press(findChild(editor.footer, "accept"));
        const sent = request();
        compare(sent.command, "updateRecordingGroup");
        compare(sent.data, {
            recordingGroupID: "{north}",
            updateRmCameraList: [{ camName: "Gate", streamIndex: 0 }, { camName: "Yard", streamIndex: 1 }],
            updateAddCameraList: [
                { camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: true },
                { camName: "Roof", streamIndex: 0, enableTimeShift: false, enableSeamless: false }],
            updateRmPathList: ["/srv/video/north"],
            updateAddPathList: [{ path: "/srv/n", pathType: 0, reserveSpace: 102400, isRecoveryMode: false }],
            updateSetPathList: [{ path: "//nas/video", isRecoveryMode: false }],
            updateSetRecordingGroup: { recordingGroupName: "North", recordingGroupReservedTimeEnabled: false }
        });
        server.reply("updateRecordingGroup", [], "0");
        tryVerify(() => !editor.visible);
        compare(server.takeRequests(), ["getVolume ", askTree]);
    }

    function test_refusalsStandAtTheirFields(): void {
        openFilled({});
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        enter(field(editor, "groupNameField"), "Ramp");
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:2") !== null);
        enter(field(field(editor, "pathRow:2"), "path"), "/srv/x");
        enter(field(field(editor, "pathRow:0"), "reserve"), "9999");
        choose(field(memberRow(editor, 1), "stream"), 2);
        press(findChild(editor.footer, "accept"));
        compare(request().data.updateSetPathList, [{ path: "/srv/video/north", reserveSpace: 10238976 }]);
        server.reply("updateRecordingGroup", [
            { element: "recordingGroupName", index: -1, value: "Ramp", returnCode: "RecordingGroupNameInUse" },
            { element: "recordingGroupReservedTime", index: -1, value: "", returnCode: "ReservedTimeRefused" },
            { element: "updateAddPathList", index: 0, value: "/srv/x", returnCode: "PathNotWritable",
              reason: "VolumeReadOnly" },
            { element: "updateSetPathList", index: 0, value: "/srv/video/north",
              returnCode: "ReservedSpaceExceedsVolume" },
            { element: "updateAddCameraList", index: 0, value: "Yard", returnCode: "StreamNotFound" },
            { element: "updateRmCameraList", index: 0, value: "Yard", returnCode: "CameraNotInGroup" },
            { element: "recordingGroupID", index: -1, value: "", returnCode: "RecordingGroupNotFound" }
        ], "RecordingGroupNameInUse");
        verify(editor.visible && !editor.busy);
        compare(field(editor, "nameMessage").text, "Another recording group has this name.");
        compare(field(editor, "timeMessage").text, "The reserved time has to be at least one minute.");
        compare(field(field(editor, "pathRow:2"), "rowMessage").text,
                "The station cannot write into this folder. This volume cannot be written to.");
        compare(field(field(editor, "pathRow:0"), "rowMessage").text,
                "All reserves on this volume together would be more than it holds.");
        const first = field(editor, "pathRow:0");
        verify(field(first, "reserve").mistaken && !field(first, "path").mistaken, "the reserve is what was refused");
        compare(field(field(editor, "pathRow:1"), "rowMessage").text, "");
        compare(field(memberRow(editor, 1), "rowMessage").text, "This camera has no such stream.");
        compare(field(editor, "editorStrip").text,
                "Yard: The group does not record this camera.\nThere is no such recording group any more.");
        compare(field(editor, "groupNameField").text, "Ramp", "nothing that was entered is lost");
        compare(field(field(editor, "pathRow:2"), "path").text, "/srv/x");
        verify(field(editor, "groupNameField").activeFocus);
        keyClick("2");
        compare(field(editor, "nameMessage").text, "", "another name, another try");
        keyClick(Qt.Key_Return);
        compare(request().data.updateSetRecordingGroup, { recordingGroupName: "Ramp2" });
        compare(field(editor, "editorStrip").visible, false);
        server.reply("updateRecordingGroup", [], "LinkDown");
        compare(field(editor, "editorStrip").text, "There is no connection to the station.");
    }

    function test_refusedAddKeepsTheInput(): void {
        openFilled({});
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        enter(field(field(editor, "pathRow:0"), "path"), "/srv/video");
        enter(field(editor, "groupNameField"), "East");
        keyClick(Qt.Key_Return);
        compare(request().command, "addRecordingGroupWithCompleteInfo");
        server.reply("addRecordingGroupWithCompleteInfo", { errorAction: [
            { element: "pathInfoList", index: 0, value: "/srv/video", returnCode: "PathInGroup" }] }, "PathInGroup");
        compare(field(field(editor, "pathRow:0"), "rowMessage").text, "The group has this path already.");
        verify(field(field(editor, "pathRow:0"), "path").activeFocus);
        compare(field(editor, "groupNameField").text, "East");
        server.setAccepts(false);
        keyClick(Qt.Key_Return);
        compare(field(editor, "editorStrip").text, "The request could not be sent.");
        verify(!editor.busy);
    }

    function test_whatThePluginWouldNotSend(): void {
        openFilled({});
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        enter(field(field(editor, "pathRow:0"), "path"), "/srv/x");
        enter(field(editor, "groupNameField"), " ");
        press(field(editor, "timeApplies"));
        enter(field(editor, "timeAmount"), "0");
        enter(field(field(editor, "pathRow:0"), "reserve"), "1.5");
        keyClick(Qt.Key_Return);
        compare(server.takeRequests(), []);
        compare(field(editor, "nameMessage").text, "Enter a name.");
        verify(field(editor, "timeMessage").visible);
        compare(field(field(editor, "pathRow:0"), "rowMessage").text, "Enter the reserve in whole gigabytes.");
        verify(field(field(editor, "pathRow:0"), "reserve").mistaken);
        press(field(field(editor, "pathRow:0"), "removeRow"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:0") === null);
        press(findChild(editor.footer, "accept"));
        compare(field(editor, "pathsMessage").text, "A recording group needs a path.");
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:0") !== null);
        compare(field(editor, "pathsMessage").text, "");
        press(findChild(editor.footer, "accept"));
        compare(field(field(editor, "pathRow:0"), "rowMessage").text, "Enter a path.");
        compare(server.takeRequests(), []);
    }

    function test_kindFollowsThePath(): void {
        openFilled({});
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        const row = field(editor, "pathRow:1");
        const kind = field(row, "kind");
        compare(kind.displayText, "NAS", "it stays as it is");
        enter(field(row, "path"), "//nas/othe");
        compare(kind.displayText, "NAS host");
        choose(kind, 2);
        field(row, "path").forceActiveFocus();
        keyClick(Qt.Key_End);
        keyClick("r");
        compare(kind.displayText, "NAS domain");
        enter(field(row, "reserve"), "1");
        press(findChild(editor.footer, "accept"));
        compare(request().data.updateAddPathList,
                [{ path: "//nas/other", pathType: 2, reserveSpace: 1024, isRecoveryMode: true }]);
        server.reply("updateRecordingGroup", [], "LinkDown");
        enter(field(row, "path"), "/srv/video/o");
        compare(kind.displayText, "Local");
        enter(field(row, "path"), "//nas/video");
        compare(kind.displayText, "NAS", "and back again");
    }

    function test_pathFromTheFolders(): void {
        openFilled({});
        server.setStorage([
            { volumePath: "/", volumeName: "System", volumeIsSystem: true, kind: "local", state: "there",
              size: 100 * gigabyte, free: 90 * gigabyte, groups: [] },
            { volumePath: "/srv/video", volumeName: "Recordings", kind: "local", state: "there", size: 100 * gigabyte,
              free: 2048, groups: [] }]);
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        server.answerStation({ returnCode: "0", errors: [] });
        const path = field(field(editor, "pathRow:0"), "path");
        compare(path.text, "/srv/video");
        path.forceActiveFocus();
        keyClick(Qt.Key_Down);
        const list = findChild(path, "folderList");
        tryVerify(() => list.opened);
        compare(list.list.count, 1, "the group has the other one");
        compare(list.list.currentItem.words, "90.00 MB free · system volume");
        keyClick(Qt.Key_Return);
        tryVerify(() => !list.visible);
        compare(path.text, "/");
    }

    function test_otherGroupsStreamIsSaid(): void {
        openFilled({});
        mouseClick(part("group:Ramp"));
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        pick(editor, ["Gate", "Roof", "Yard"]);
        compare(memberRow(editor, 0).camName, "Roof", "in the order of the picker");
        compare(field(memberRow(editor, 0), "elsewhere").text, "");
        compare(field(memberRow(editor, 1), "elsewhere").text,
                "Another group records stream 0 of this camera with time shift or seamless already.");
        verify(field(memberRow(editor, 2), "elsewhere").text.includes("stream 1 "));
        editor.close();
        mouseClick(part("group:North gate"));
        mouseClick(part("edit"));
        opened("groupEditor");
        compare(field(memberRow(editor, 0), "elsewhere").text, "", "its own streams do not count");
    }

    function test_camerasAreAskedFor(): void {
        openFilled({});
        server.setCameras([]);
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        verify(field(editor, "noCameras").visible && !field(editor, "addCamera").enabled);
        compare(field(memberRow(editor, 1), "camera").text, "Yard", "a camera that nobody names stays");
        const asked = server.camerasAsked;
        server.setCameras(cameras);
        verify(field(editor, "addCamera").enabled);
        editor.close();
        mouseClick(part("edit"));
        compare(server.camerasAsked, asked + 1);
    }

    function test_pickerNamesTheGroups(): void {
        openFilled({});
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        press(field(editor, "addCamera"));
        const picker = field(editor, "cameraPicker");
        tryVerify(() => picker.opened);
        const list = field(picker, "cameraChoices");
        compare(list.count, 3);
        tryVerify(() => list.itemAtIndex(1) !== null);
        const first = list.itemAtIndex(0);
        compare(first.camName, "Roof", "what nobody records comes first");
        compare(field(first, "groups").text, "Not recorded");
        compare(list.itemAtIndex(1).camName, "Gate");
        compare(field(list.itemAtIndex(1), "groups").text, "North gate");
        verify(list.itemAtIndex(1).enabled, "its other stream is free");
        press(field(picker, "onlyUnrecorded"));
        compare(list.count, 1);
        press(field(picker, "chooseShown"));
        compare(picker.chosenCount, 1);
        press(field(picker, "onlyUnrecorded"));
        compare(list.count, 3);
        tryVerify(() => list.itemAtIndex(2) !== null);
        mouseClick(list.itemAtIndex(2));
        compare(Object.keys(picker.chosen), ["Roof", "Yard"], "what was chosen before stays so");
        mouseClick(list.itemAtIndex(2));
        mouseClick(list.itemAtIndex(1));
        compare(findChild(picker.footer, "accept").text, "Add 2 cameras");
        enter(field(picker, "searchField"), "vault");
        compare(list.count, 0);
        compare(field(picker, "pickerNote").text, "None of 3 cameras contains “vault”.");
        mouseClick(findChild(picker.footer, "accept"));
        tryVerify(() => !picker.visible);
        compare(memberRow(editor, 2).camName, "Roof");
        compare(memberRow(editor, 3).camName, "Gate");
        compare(memberRow(editor, 3).streamIndex, 1, "stream 0 is in the group");
    }

    function test_pickerKnowsWhatIsTaken(): void {
        openFilled({});
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        pick(editor, ["Roof"]);
        press(field(editor, "addCamera"));
        const picker = field(editor, "cameraPicker");
        tryVerify(() => picker.opened);
        const list = field(picker, "cameraChoices");
        tryVerify(() => list.itemAtIndex(0) !== null);
        verify(!list.itemAtIndex(0).enabled, "each of its streams is in the group");
        list.forceActiveFocus();
        keyClick(Qt.Key_Space);
        compare(picker.chosenCount, 0);
        verify(!findChild(picker.footer, "accept").enabled);
        keyClick(Qt.Key_Return);
        verify(picker.visible, "nothing is chosen");
        keyClick("a", Qt.ControlModifier);
        compare(Object.keys(picker.chosen), ["Gate", "Yard"]);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !picker.visible);
        compare(field(editor, "members").count, 3, "nothing was added");
        verify(editor.visible);
    }

    /// A group with a thousand members takes no more rows than the list shows.
    function test_rowsAreMadeForWhatIsSeen(): void {
        openFilled({});
        const many = Array.from({ length: 1000 }, (value, index) => ({ camName: "Camera " + index, streams: 2 }));
        server.setCameras(many);
        const big = Object.assign({}, north, {
            recordingGroupMemberList: many.map(camera => ({ camName: camera.camName, streamIndex: 0,
                                                           enableTimeShift: false, enableSeamless: false }))
        });
        page.refresh();
        answer([big]);
        server.setCameras(many);
        server.takeRequests();
        compare(page.selected.members.length, 1000);
        page.edit();
        const editor = opened("groupEditor");
        const list = field(editor, "members");
        compare(list.count, 1000);
        waitForRendering(editor.contentItem);
        verify(rowsMade(list) <= 12, rowsMade(list) + " rows");
        list.positionViewAtEnd();
        tryVerify(() => list.itemAtIndex(999) !== null);
        compare(list.itemAtIndex(999).camName, "Camera 999");
        press(field(editor, "addCamera"));
        const picker = field(editor, "cameraPicker");
        tryVerify(() => picker.opened);
        const choices = field(picker, "cameraChoices");
        compare(choices.count, 1000);
        tryVerify(() => choices.itemAtIndex(9) !== null);
        verify(rowsMade(choices) <= 30, rowsMade(choices) + " rows");
        compare(choices.itemAtIndex(9).camName, "Camera 9", "not Camera 107");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !picker.visible);
        list.positionViewAtEnd();
        const last = list.itemAtIndex(999);
        press(field(last, "seamless"));
        compare(editor.visible, true);
        press(findChild(editor.footer, "accept"));
        const data = request().data;
        compare(data.updateAddCameraList,
                [{ camName: "Camera 999", streamIndex: 0, enableTimeShift: false, enableSeamless: true }]);
        compare(data.updateRmCameraList, [{ camName: "Camera 999", streamIndex: 0 }]);
    }

    function rowsMade(list): int {
        let made = 0;
        for (let i = 0; i < list.contentItem.children.length; ++i)
            made += list.contentItem.children[i].camName === undefined ? 0 : 1;
        return made;
    }
}
