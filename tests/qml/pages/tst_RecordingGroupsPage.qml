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
        compare(part("group:Car park").current, true, "the first group by name is selected");
    }

    function test_detailOfTheSelectedGroup(): void {
        openFilled({ width: 1000 });
        compare(text(page, "groupName"), "North gate");
        compare(text(page, "reservedTime"), "30 days");
        const path = part("path:/srv/video/north");
        compare(text(path, "reserve"), "100.00 GB reserved");
        compare(text(path, "name"), "Recordings");
        compare(text(path, "free"), "1.00 TB free of 4.00 TB · 25 %");
        verify(findChild(path, "mark:Local"));
        verify(!findChild(path, "mark:Recovery"));
        const nas = part("path://nas/video");
        compare(text(nas, "reserve"), "1000.00 MB reserved");
        compare(text(nas, "name"), "Volume unknown", "the root holds no share");
        compare(text(nas, "free"), "Size unknown");
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
        compare(text(part("path:/rec/ramp"), "name"), "System");
        compare(text(part("path:/rec/ramp"), "free"), "40.00 GB free of 100.00 GB · 40 %");
    }

    function test_keysWalkTheTree(): void {
        openFilled({});
        keyClick(Qt.Key_Up);
        compare(page.selectedId, "{cars}");
        keyClick(Qt.Key_End);
        compare(page.selectedId, "{ramp}");
        keyClick(Qt.Key_Down);
        compare(page.selectedId, "{ramp}");
        keyClick(Qt.Key_Home);
        compare(page.selectedId, "");
        compare(part("placeholder").title, "Choose a recording group");
        keyClick(Qt.Key_Right);
        compare(page.selectedId, "{cars}");
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
        compare(page.selectedId, "{north}", "the neighbour takes the place of a group that is gone");
    }

    function test_followsWhatOthersChange(): void {
        openFilled({});
        mouseClick(part("group:Car park"));
        const edit = { recordingGroupID: "{ramp}", recordingGroupName: "Ramp", returnCode: "0", client: "recordingctl" };
        server.raise("station.ActivityAdded", Object.assign({}, edit, { returnCode: "LastPathOfGroup" }));
        server.raise("station.ActivityAdded", Object.assign({}, edit, { recordingGroupID: "", subject: "Gate" }));
        compare(server.takeRequests(), [], "no group has changed");
        server.raise("station.ActivityAdded", edit);
        compare(server.takeRequests(), ["getVolume ", askTree]);
        answer([north, cars]);
        tryCompare(part("groups").tree, "rows", 3);
        compare(page.selectedId, "{cars}");
        page.visible = false;
        server.raise("station.ActivityAdded", edit);
        server.raise("station.ActivityAdded", edit);
        compare(server.takeRequests(), [], "nobody looks at it");
        page.visible = true;
        compare(server.takeRequests(), ["getVolume ", askTree]);
        answer([north, cars, ramp]);
        compare(server.takeRequests(), []);
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
        click("errorAction");
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
        compare(text(part("path:/srv/video/cars"), "name"), "Volume unknown");
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
        compare(text(nas, "name"), "Volume unknown");
        server.recording.addNASPathToVolume("//nas/video", "Host", "me", "token");
        server.reply("GetNasCapacity", { total: 100 * gigabyte, used: 40 * gigabyte }, "0");
        tryVerify(() => text(part("path://nas/video"), "free") === "60.00 GB free of 100.00 GB · 60 %");
        mouseClick(part("newGroup"));
        const editor = opened("groupEditor");
        compare(field(field(editor, "pathRow:0"), "path").folders.map(folder => folder.path), ["//nas/video"]);
    }

    function test_volumeOfAPathIsTheClosest(): void {
        openFilled({ width: 1000 });
        const near = Object.assign({}, ramp, { recordingGroupPathList: ["/srv/video2/ramp"] });
        page.refresh();
        answer([near]);
        tryVerify(() => findChild(page, "path:/srv/video2/ramp") !== null);
        compare(text(part("path:/srv/video2/ramp"), "name"), "System", "another folder's name begins as that of the volume");
    }

    function test_removesAGroup(): void {
        openFilled({});
        keyClick(Qt.Key_Up);
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
        compare(page.selectedId, "{north}");
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

    function test_widthsMayJump(): void {
        openFilled({});
        jumpBetweenWidths();
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

    function many(count) {
        return Array.from({ length: count }, (value, index) => Object.assign({}, ramp, {
            recordingGroupID: "{g" + (count - index) + "}", recordingGroupName: "Hall " + (count - index)
        }));
    }

    function test_namesAreInNaturalOrder(): void {
        open("RecordingGroupsPage", {});
        answer(many(200));
        tryVerify(() => page.settled);
        compare(page.selectedId, "{g1}");
        keyClick(Qt.Key_Down);
        compare(page.selectedId, "{g2}", "not Hall 10");
        keyClick(Qt.Key_End);
        compare(page.selectedId, "{g200}");
        keyClick(Qt.Key_F5);
        answer(many(150));
        compare(page.selectedId, "{g150}", "the last one takes the place of those that are gone");
    }

    function test_searchInTheTree(): void {
        open("RecordingGroupsPage", {});
        answer(many(200));
        tryVerify(() => page.settled);
        const tree = part("groups");
        tree.tree.forceActiveFocus();
        keyClick("f", Qt.ControlModifier);
        const field = findChild(tree, "searchField");
        verify(field.activeFocus);
        for (const key of "hall 19")
            keyClick(key);
        compare(text(tree, "searchCount"), "12 of 200");
        tryCompare(tree.tree, "rows", 13);
        compare(page.selectedId, "{g1}", "what is selected stays selected, in view or not");
        keyClick(Qt.Key_Down);
        verify(tree.tree.activeFocus);
        keyClick(Qt.Key_End);
        compare(page.selectedId, "{g199}");
        keyClick(Qt.Key_F5);
        answer(many(200));
        tryCompare(tree.tree, "rows", 13);
        compare(page.selectedId, "{g199}", "by its id");
        keyClick(Qt.Key_Escape);
        tryCompare(tree.tree, "rows", 201);
        compare(page.selectedId, "{g199}");
        verify(tree.tree.activeFocus);
        tryVerify(() => findChild(page, "group:Hall 199") !== null, 5000, "it is in view again");
        keyClick("f", Qt.ControlModifier);
        for (const key of "xyz")
            keyClick(key);
        verify(part("nothingFound").visible);
        tree.reveal("{g7}");
        compare(page.selectedId, "{g7}");
        tryVerify(() => findChild(page, "group:Hall 7") !== null, 5000, "what somebody is led to is never hidden");
        compare(field.text, "");
    }

    function test_lettersLeadToGroups(): void {
        openFilled({});
        keyClick("r");
        compare(page.selectedId, "{ramp}");
        wait(0);
        keyClick("r");
        compare(page.selectedId, "{ramp}", "no other one begins so");
        tryCompare(part("groups"), "typed", "", 3000);
        keyClick("C", Qt.ShiftModifier);
        keyClick("a");
        compare(page.selectedId, "{cars}");
        keyClick("n", Qt.AltModifier);
        compare(page.selectedId, "{cars}");
    }

    function test_troubledGroupsAreMarked(): void {
        openFilled({ width: 1000 });
        verify(!field(part("group:Ramp"), "trouble").visible);
        const volume = (path, state, id) => ({ volumePath: path, kind: "local", state: state,
                                               groups: [{ recordingGroupID: id, paths: [path] }] });
        server.setStorage([volume("/a", "gone", "{ramp}"), volume("/b", "notAnswering", "{ramp}"),
                           volume("/c", "gone", "{cars}"), volume("/d", "there", "{cars}")]);
        tryVerify(() => field(part("group:Ramp"), "trouble").visible);
        compare(part("group:Ramp").trouble, "No storage");
        compare(part("group:Car park").trouble, "", "one of its volumes is there");
        const day = 24 * 60;
        server.raise("VolumeChanged", [
            { recordingGroupID: "{north}", recordingGroupName: "North gate", recordingGroupReservedTime: 30 * day,
              recordingPath: "/srv/video/north", volumeName: "Recordings", volumeSize: 1000, volumeAvailableSize: 0,
              volumeOneDayUsage: 1024, volumeRecordedDays: 18, volumeIsSystem: false, volumeIsNAS: false }]);
        tryCompare(part("group:North gate"), "trouble", "12 days short");
        verify(part("group:North gate").Accessible.name.includes("12 days short"));
        compare(part("group:Ramp").trouble, "No storage", "no figures of it have come");
    }

    function test_aRefusalToAnotherPageIsAskedAbout(): void {
        openFilled({});
        page.visible = false;
        server.recording.retrieveRecordingGroupTreeModel();
        server.takeRequests();
        server.reply("retrieveRecordingGroupTreeModel", [], "DatabaseFailed");
        compare(server.takeRequests(), []);
        page.visible = true;
        compare(server.takeRequests(), ["getVolume ", askTree], "the tree is empty, and nobody knows the groups");
    }

    function crowded(count): var {
        return Object.assign({}, north, { recordingGroupMemberList: Array.from({ length: count }, (value, index) => ({
            camName: "Camera " + index, streamIndex: 0, enableTimeShift: false, enableSeamless: false })) });
    }

    /// A group with a thousand cameras takes no more rows than the page shows.
    function test_camerasOfAGroupAreMadeAsTheyAreSeen(): void {
        openFilled({ width: 1000 });
        page.refresh();
        answer([crowded(1000), cars]);
        const detail = part("detail");
        compare(detail.count, 1000);
        waitForRendering(page);
        const made = () => Array.from(detail.contentItem.children).filter(row => row.modelData?.camName !== undefined).length;
        tryVerify(() => made() > 0);
        verify(made() < 60, made() + " rows");
        verify(part("reservedTime").visible);
        detail.forceActiveFocus();
        keyClick(Qt.Key_End);
        tryVerify(() => findChild(page, "member:Camera 999:0") !== null);
        const last = part("member:Camera 999:0");
        tryVerify(() => last.mapToItem(detail, 0, last.height).y <= detail.height);
        verify(made() < 60, made() + " rows");
        const top = last.mapToItem(detail, 0, 0).y;
        keyClick(Qt.Key_F5);
        answer([crowded(1000), cars]);
        waitForRendering(page);
        fuzzyCompare(part("member:Camera 999:0").mapToItem(detail, 0, 0).y, top, 1, "what was asked for again stays where it was");
        keyClick(Qt.Key_Home);
        tryVerify(() => part("reservedTime").mapToItem(detail, 0, 0).y > 0);
        keyClick(Qt.Key_End);
        page.select("{cars}");
        waitForRendering(page);
        verify(part("reservedTime").mapToItem(detail, 0, 0).y > 0, "another group begins at its top");
    }

    /// What stands at the top stays in view when the paths grow.
    function test_theTopOfAGroupStaysInView(): void {
        openFilled({ width: 1000 });
        page.refresh();
        answer([crowded(100), cars]);
        waitForRendering(page);
        for (const width of [500, 1000, 360, 800]) {
            page.width = width;
            waitForRendering(page);
            tryVerify(() => Math.abs(part("reservedTime").mapToItem(part("detail"), 0, 0).y - Theme.large) < Theme.huge * 2, 5000,
                      "at " + width);
        }
    }

    Component {
        id: memory

        ConsoleSettings {}
    }

    function test_whatWasFoldedIsRemembered(): void {
        const settings = memory.createObject(test);
        openFilled({ settings: settings });
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Left);
        tryCompare(part("groups").tree, "rows", 1);
        page.destroy();
        wait(0);
        open("RecordingGroupsPage", { settings: settings });
        answer([north, cars, ramp]);
        tryVerify(() => page.settled);
        compare(part("groups").tree.rows, 1);
        compare(page.selectedId, "", "nothing is chosen that is not in view");
        page.goTo("{ramp}");
        tryVerify(() => findChild(page, "group:Ramp") !== null, 5000, "what somebody is led to is in view");
        page.destroy();
        wait(0);
        open("RecordingGroupsPage", { settings: settings });
        answer([north, cars, ramp]);
        tryVerify(() => page.settled);
        compare(part("groups").tree.rows, 1, "an alarm unfolds it for once");
        part("groups").tree.forceActiveFocus();
        keyClick(Qt.Key_Right);
        page.destroy();
        wait(0);
        open("RecordingGroupsPage", { settings: settings });
        answer([north, cars, ramp]);
        tryCompare(part("groups").tree, "rows", 4);
        page.destroy();
        page = null;
        settings.destroy();
    }
}
