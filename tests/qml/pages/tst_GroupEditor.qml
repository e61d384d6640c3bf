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
        compare(field(path, "path").text, "/srv/video", "the first volume stands there to begin with");
        enter(field(path, "path"), "/srv/east");
        enter(field(path, "reserve"), "3000000");
        press(field(path, "recovery"));
        choose(field(path, "kind"), 1);
        press(field(editor, "addCamera"));
        const member = field(editor, "memberRow:0");
        choose(field(member, "camera"), 2);
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
        keyClick(Qt.Key_Escape);
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
        press(field(field(editor, "memberRow:0"), "seamless"));
        press(field(field(editor, "memberRow:1"), "removeRow"));
        tryVerify(() => findChild(editor.contentItem, "memberRow:1") === null);
        press(field(editor, "addCamera"));
        tryVerify(() => findChild(editor.contentItem, "memberRow:1") !== null);
        compare(field(field(editor, "memberRow:1"), "camera").displayText, "Roof", "the next one that is free");
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
        choose(field(field(editor, "memberRow:1"), "stream"), 2);
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
        compare(field(field(editor, "memberRow:1"), "rowMessage").text, "This camera has no such stream.");
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
        keyClick(Qt.Key_Escape);
        tryVerify(() => !editor.visible);
    }

    function test_refusedAddKeepsTheInput(): void {
        openFilled({});
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
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

    function test_pathFromTheVolumes(): void {
        openFilled({});
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        const path = field(field(editor, "pathRow:0"), "path");
        path.forceActiveFocus();
        keyClick(Qt.Key_Down);
        const list = findChild(path, "volumeList");
        tryVerify(() => list.opened);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !list.visible);
        compare(path.text, "/");
    }

    function test_otherGroupsStreamIsSaid(): void {
        openFilled({});
        mouseClick(part("group:Ramp"));
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        press(field(editor, "addCamera"));
        tryVerify(() => findChild(editor.contentItem, "memberRow:0") !== null);
        const member = field(editor, "memberRow:0");
        compare(field(member, "camera").displayText, "Gate");
        compare(field(member, "elsewhere").text,
                "Another group records stream 0 of this camera with time shift or seamless already.");
        choose(field(member, "camera"), 1);
        compare(field(member, "elsewhere").text, "");
        choose(field(member, "camera"), 2);
        verify(field(member, "elsewhere").text.includes("stream 1 "));
        editor.close();
        mouseClick(part("group:North gate"));
        mouseClick(part("edit"));
        opened("groupEditor");
        compare(field(field(editor, "memberRow:0"), "elsewhere").text, "", "its own streams do not count");
    }

    function test_camerasAreAskedFor(): void {
        openFilled({});
        server.setCameras([]);
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        verify(field(editor, "noCameras").visible && !field(editor, "addCamera").enabled);
        compare(field(field(editor, "memberRow:1"), "camera").displayText, "Yard", "a camera that nobody names stays");
        const asked = server.camerasAsked;
        server.setCameras(cameras);
        verify(field(editor, "addCamera").enabled);
        editor.close();
        mouseClick(part("edit"));
        compare(server.camerasAsked, asked + 1);
    }
}
