import QtQuick
import RecordingConsole

GroupsTest {
    id: test

    name: "RecordingGroupsPage"

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

    function test_everyWidthFits(): void {
        openFilled({ height: 712 });
        dragThroughWidths();
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
