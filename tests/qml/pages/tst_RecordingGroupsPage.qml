import QtQuick
import RecordingConsole

PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024
    readonly property var volumes: [
        { volumePath: "/srv/video", volumeName: "Recordings", volumeSize: 4096 * gigabyte,
          volumeAvailableSize: 1024 * gigabyte, volumeIsSystem: false },
        { volumePath: "/", volumeName: "System", volumeSize: 100 * gigabyte, volumeAvailableSize: 40 * gigabyte,
          volumeIsSystem: true }
    ]
    readonly property var north: ({
        recordingGroupID: "{north}", recordingGroupName: "North gate", relayPath: "st1",
        recordingGroupPathList: ["/srv/video/north", "//nas/video"], reserveSpace: [102400, 1000],
        recordingGroupNASPathList: ["//nas/video"], recordingGroupRecoveryPathList: ["//nas/video"],
        recordingGroupReservedTime: 43200,
        recordingGroupMemberList: [
            { camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: false },
            { camName: "Yard", streamIndex: 1, enableTimeShift: false, enableSeamless: true }]
    })
    readonly property var cars: ({
        recordingGroupID: "{cars}", recordingGroupName: "Car park", relayPath: "st1",
        recordingGroupPathList: ["/srv/video/cars"], reserveSpace: [0], recordingGroupNASPathList: [],
        recordingGroupRecoveryPathList: [], recordingGroupReservedTime: 2190, recordingGroupMemberList: []
    })
    readonly property var ramp: ({
        recordingGroupID: "{ramp}", recordingGroupName: "Ramp", relayPath: "st1", recordingGroupPathList: ["/rec/ramp"],
        reserveSpace: [2048], recordingGroupNASPathList: [], recordingGroupRecoveryPathList: [],
        recordingGroupReservedTime: 0, recordingGroupMemberList: []
    })
    readonly property var cameras: [{ camName: "Gate", streams: 2 }, { camName: "Roof", streams: 1 },
                                    { camName: "Yard", streams: 3 }]
    readonly property string askTree: 'retrieveRecordingGroupTreeModel {"relayPath":"st1"}'

    name: "RecordingGroupsPage"

    function answer(groups): void {
        server.reply("getVolume", volumes, "0");
        server.reply("retrieveRecordingGroupTreeModel", groups, "0");
        server.setCameras(cameras);
    }

    function openFilled(properties): void {
        open("RecordingGroupsPage", properties);
        answer([north, cars, ramp]);
        tryVerify(() => findChild(page, "group:Ramp") !== null);
        server.takeRequests();
        part("groups").tree.forceActiveFocus();
    }

    function opened(name) {
        const dialog = findChild(page, name);
        tryVerify(() => dialog.opened);
        return dialog;
    }

    function field(owner, name) {
        const found = findChild(owner.contentItem ?? owner, name);
        verify(found, name);
        return found;
    }

    /// Brings a field into view and types over what stands in it.
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

    function choose(box, row): void {
        box.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryVerify(() => box.popup.opened);
        keyClick(Qt.Key_Home);
        for (let i = 0; i < row; ++i)
            keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !box.popup.visible);
        compare(box.currentIndex, row);
    }

    function request() {
        const requests = server.takeRequests();
        compare(requests.length, 1, requests);
        const space = requests[0].indexOf(" ");
        return { command: requests[0].substring(0, space), data: JSON.parse(requests[0].substring(space + 1)) };
    }

    function test_asksAtOnceAndShowsTheTree(): void {
        open("RecordingGroupsPage", {});
        compare(server.takeRequests(), ["getVolume ", askTree]);
        verify(!page.settled);
        verify(part("placeholder").busy);
        answer([north, cars]);
        verify(!page.settled, "the tree does not show them yet");
        tryVerify(() => page.settled);
        compare(page.failure, "");
        verify(findChild(page, "group:Car park"));
        compare(text(part("station"), "name"), "North station");
        compare(text(page, "subtitle"), "2 recording groups");
        verify(!part("placeholder").visible);
        compare(part("group:North gate").current, true, "the first group is selected");
    }

    function test_detailOfTheSelectedGroup(): void {
        openFilled({ width: 1000 });
        compare(text(page, "groupName"), "North gate");
        compare(text(page, "reservedTime"), "30 days");
        const path = part("path:/srv/video/north");
        compare(text(path, "reserve"), "100.00 GB reserved");
        compare(text(path, "volume"), "Recordings: 1.00 TB free of 4.00 TB");
        verify(findChild(path, "mark:Local"));
        verify(!findChild(path, "mark:Recovery"));
        const nas = part("path://nas/video");
        compare(text(nas, "reserve"), "1000.00 MB reserved");
        compare(text(nas, "volume"), "Volume unknown", "the root holds no share");
        verify(findChild(nas, "mark:NAS") && findChild(nas, "mark:Recovery"));
        const gate = part("member:Gate:0");
        compare(text(gate, "stream"), "Stream 0");
        verify(findChild(gate, "mark:Time shift") && !findChild(gate, "mark:Seamless"));
        verify(findChild(part("member:Yard:1"), "mark:Seamless"));
        mouseClick(part("group:Car park"));
        compare(text(page, "groupName"), "Car park");
        compare(text(page, "reservedTime"), "1 day 12 hours 30 minutes");
        compare(text(part("path:/srv/video/cars"), "reserve"), "Nothing reserved");
        verify(part("noMembers").visible);
        mouseClick(part("group:Ramp"));
        compare(text(page, "reservedTime"), "Does not apply");
        compare(text(part("path:/rec/ramp"), "volume"), "System: 40.00 GB free of 100.00 GB");
    }

    function test_keysWalkTheTree(): void {
        openFilled({});
        keyClick(Qt.Key_Down);
        compare(page.selectedId, "{cars}");
        keyClick(Qt.Key_End);
        compare(page.selectedId, "{ramp}");
        keyClick(Qt.Key_Down);
        compare(page.selectedId, "{ramp}");
        keyClick(Qt.Key_Home);
        compare(page.selectedId, "");
        compare(part("placeholder").title, "Choose a recording group");
        keyClick(Qt.Key_Right);
        compare(page.selectedId, "{north}");
        keyClick(Qt.Key_Left);
        compare(page.selectedId, "");
        keyClick(Qt.Key_Left);
        tryCompare(part("groups").tree, "rows", 1);
        keyClick(Qt.Key_F5);
        answer([north, cars, ramp]);
        waitForRendering(page);
        compare(part("groups").tree.rows, 1, "what was folded stays folded");
        keyClick(Qt.Key_Right);
        tryCompare(part("groups").tree, "rows", 4);
    }

    function test_refreshKeepsTheSelection(): void {
        openFilled({});
        mouseClick(part("group:Car park"));
        keyClick(Qt.Key_F5);
        compare(server.takeRequests(), ["getVolume ", askTree]);
        compare(text(page, "groupName"), "Car park", "what is shown stays until the reply");
        verify(!part("edit").enabled && !part("newGroup").enabled);
        keyClick(Qt.Key_F5);
        compare(server.takeRequests(), [], "the reply is still to come");
        answer([ramp, cars, north]);
        compare(server.takeRequests(), ["getVolume ", askTree], "asked again once it was there");
        answer([ramp, cars, north]);
        compare(page.selectedId, "{cars}");
        tryVerify(() => findChild(page, "group:Car park")?.current ?? false);
        page.refresh();
        answer([north, ramp]);
        compare(page.selectedId, "{ramp}", "the neighbour takes the place of a group that is gone");
    }

    function test_refusedTreeIsSaid(): void {
        openFilled({});
        mouseClick(part("group:Car park"));
        page.refresh();
        server.reply("getVolume", volumes, "0");
        server.reply("retrieveRecordingGroupTreeModel", [], "DatabaseFailed");
        compare(text(page, "errorStrip"), "The station could not use its database; its log says why.");
        compare(part("placeholder").title, "The recording groups could not be listed");
        server.takeRequests();
        mouseClick(part("errorAction"));
        compare(server.takeRequests(), ["getVolume ", askTree]);
        answer([north, cars]);
        verify(!part("errorStrip").visible);
        compare(page.selectedId, "{cars}");
    }

    function test_refusedVolumesAreSaid(): void {
        open("RecordingGroupsPage", {});
        server.reply("getVolume", [], "NoAnswer");
        server.reply("retrieveRecordingGroupTreeModel", [cars], "0");
        compare(text(page, "errorStrip"), "The station did not answer in time.");
        compare(text(part("path:/srv/video/cars"), "volume"), "Volume unknown");
    }

    function test_waitsForTheConnection(): void {
        server.setConnected(false);
        open("RecordingGroupsPage", {});
        compare(server.takeRequests(), []);
        compare(part("placeholder").title, "No connection to the station");
        verify(!part("newGroup").enabled && !part("refresh").enabled);
        server.setConnected(true);
        compare(server.takeRequests(), ["getVolume ", askTree]);
    }

    function test_noGroupsYet(): void {
        open("RecordingGroupsPage", {});
        answer([]);
        compare(part("placeholder").title, "No recording groups yet");
        keyClick(Qt.Key_Delete);
        verify(!findChild(page, "removeGroupDialog").visible);
    }

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

    function test_nasVolumeIsOfferedAndKnown(): void {
        openFilled({ width: 1000 });
        const nas = part("path://nas/video");
        compare(text(nas, "volume"), "Volume unknown");
        server.recording.addNASPathToVolume("//nas/video", "Host", "me", "token");
        server.reply("GetNasCapacity", { total: 100 * gigabyte, used: 40 * gigabyte }, "0");
        tryVerify(() => text(part("path://nas/video"), "volume").endsWith("60.00 GB free of 100.00 GB"));
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        compare(editor.volumes.map(volume => volume.path), ["/srv/video", "/", "//nas/video"]);
    }

    function test_volumeOfAPathIsTheClosest(): void {
        openFilled({ width: 1000 });
        const near = Object.assign({}, ramp, { recordingGroupPathList: ["/srv/video2/ramp"] });
        page.refresh();
        answer([near]);
        tryVerify(() => findChild(page, "path:/srv/video2/ramp") !== null);
        compare(text(part("path:/srv/video2/ramp"), "volume"), "System: 40.00 GB free of 100.00 GB",
                "another folder's name begins as that of the volume");
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

    function test_removesAGroup(): void {
        openFilled({});
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Delete);
        const dialog = opened("removeGroupDialog");
        verify(field(dialog, "question").text.includes("“Car park”"));
        compare(field(dialog, "promise").text, "Recorded files stay on the disk.");
        keyClick(Qt.Key_Return);
        tryVerify(() => !dialog.visible);
        compare(server.takeRequests(), [], "Cancel has the focus at first");
        part("groups").tree.forceActiveFocus();
        keyClick(Qt.Key_Delete);
        opened("removeGroupDialog");
        mouseClick(findChild(dialog.footer, "accept"));
        compare(server.takeRequests(), ['removeRecordingGroup {"recordingGroupIDList":["{cars}"]}']);
        dialog.submit();
        compare(server.takeRequests(), []);
        server.reply("removeRecordingGroup", { recordingGroupID: "{cars}" }, "0", false);
        verify(dialog.visible, "the last part is still to come");
        server.reply("removeRecordingGroup", { recordingGroupID: "{cars}", keptBytes: 7 }, "0");
        tryVerify(() => !dialog.visible);
        compare(server.takeRequests(), ["getVolume ", askTree]);
        answer([north, ramp]);
        compare(page.selectedId, "{ramp}");
    }

    function test_refusedRemovalStaysOpen(): void {
        openFilled({});
        mouseClick(part("remove"));
        const dialog = opened("removeGroupDialog");
        mouseClick(findChild(dialog.footer, "accept"));
        server.takeRequests();
        server.reply("removeRecordingGroup", {}, "RecordingGroupNotFound", false);
        server.reply("removeRecordingGroup", {}, "0");
        compare(field(dialog, "removeStrip").text, "There is no such recording group any more.");
        verify(dialog.visible && !dialog.busy);
        compare(server.takeRequests(), []);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
    }

    function test_sizesFit_data() {
        return [{ tag: "wide", width: 1004, height: 712 }, { tag: "middle", width: 692, height: 512 },
                { tag: "narrow", width: 308, height: 560 }];
    }
    function test_sizesFit(row): void {
        openFilled({ width: row.width, height: row.height });
        waitForRendering(page);
        checkGeometry(page);
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        waitForRendering(editor.contentItem);
        verify(editor.height <= test.height);
        editor.width = Math.min(editor.width, row.width + 60);
        waitForRendering(editor.contentItem);
        checkGeometry(editor.contentItem, editor.contentItem);
    }

    function test_themesDiffer(): void {
        openFilled({});
        const grounds = [];
        for (const scheme of [Theme.alwaysLight, Theme.alwaysDark]) {
            Theme.scheme = scheme;
            waitForRendering(page);
            grounds.push(String(part("groupDetail").color));
        }
        Theme.scheme = Theme.followDesktop;
        compare(grounds, ["#ffffff", "#1b222a"]);
    }
}
