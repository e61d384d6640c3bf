import QtQuick
import QtTest

/// A folder or a volume is given to a recording group: the choice of the group, and the editor with the path.
GroupsTest {
    id: test

    name: "RecordHere"

    SignalSpy {
        id: wanted

        signalName: "placeWanted"
    }

    function dialog() {
        return opened("recordHereDialog");
    }

    function test_fromTheFolders(): void {
        open("FoldersPage", {});
        server.reply("getServerDir", { basePath: "", dirFolderList: ["/srv/video", "/"] }, "0");
        part("folders").list.forceActiveFocus();
        part("folders").list.currentIndex = 0;
        wanted.target = page;
        wanted.clear();
        compare(part("recordHere").enabled, true);
        keyClick(Qt.Key_G, Qt.ControlModifier);
        compare(wanted.count, 1);
        compare(Array.from(wanted.signalArguments[0]), ["groups", page.recordingPlace("/srv/video")], "the current volume");
        page.open("/srv/video");
        verify(!part("recordHere").enabled || page.folder === "", "not while it is not known");
        server.reply("getServerDir", { basePath: "/srv/video", dirFolderList: ["cars"] }, "0");
        compare(page.folder, "/srv/video");
        click("recordHere");
        compare(Array.from(wanted.signalArguments[1]), ["groups", page.recordingPlace("/srv/video")], "the folder in view");
        server.takeRequests();
    }

    function test_fromTheVolumes(): void {
        open("VolumesPage", {});
        verify(!part("recordHere").enabled, "nothing is chosen");
        server.reply("getVolume", volumes, "0");
        tryCompare(part("volumes").list, "count", 2);
        part("volumes").list.forceActiveFocus();
        part("volumes").list.currentIndex = 1;
        tryVerify(() => part("recordHere").enabled);
        wanted.target = page;
        wanted.clear();
        keyClick(Qt.Key_G, Qt.ControlModifier);
        compare(wanted.count, 1);
        compare(Array.from(wanted.signalArguments[0]), ["groups", page.recordingPlace(part("volumes").list.currentItem.path)]);
    }

    function test_newGroup(): void {
        openFilled({});
        page.goTo(page.recordingPlace("/srv/video/new"));
        const choice = dialog();
        compare(field(choice, "recordPath").text, "/srv/video/new");
        const list = field(choice, "groupChoices");
        compare(list.count, 4);
        verify(list.activeFocus);
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        compare(editor.group, null);
        compare(field(field(editor, "pathRow:0"), "path").text, "/srv/video/new");
        compare(findChild(editor.contentItem, "pathRow:1"), null);
        enter(field(editor, "groupNameField"), "East");
        press(findChild(editor.footer, "accept"));
        compare(request().data.pathInfoList, [{ isRecoveryMode: false, path: "/srv/video/new", pathType: 0, reserveSpace: 2048 }]);
    }

    function test_existingGroup(): void {
        openFilled({});
        page.goTo(page.recordingPlace("/srv/video/new/"));
        const choice = dialog();
        keyClick("c");
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        compare(editor.group.id, "{cars}");
        compare(page.selectedId, "{cars}");
        compare(field(field(editor, "pathRow:0"), "path").text, "/srv/video/cars", "its own path stays");
        compare(field(field(editor, "pathRow:1"), "path").text, "/srv/video/new");
        verify(editor.dirty, "closing asks");
        press(findChild(editor.footer, "accept"));
        const sent = request();
        compare(sent.data.recordingGroupID, "{cars}");
        compare(sent.data.updateAddPathList.map(path => path.path), ["/srv/video/new"]);
        compare(sent.data.updateRmPathList, []);
    }

    function test_groupThatHasThePath(): void {
        openFilled({});
        page.goTo(page.recordingPlace("/rec/ramp"));
        dialog();
        keyClick("r");
        keyClick(Qt.Key_Return);
        const editor = opened("groupEditor");
        compare(editor.group.id, "{ramp}");
        compare(findChild(editor.contentItem, "pathRow:1"), null, "it is not added twice");
        verify(!editor.dirty);
    }

    function test_waitsForTheGroups(): void {
        open("RecordingGroupsPage", {});
        page.goTo(page.recordingPlace("/srv/video/new"));
        verify(!findChild(page, "recordHereDialog").visible, "which groups there are is not known");
        answer([north]);
        compare(field(dialog(), "groupChoices").count, 2);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !findChild(page, "recordHereDialog").visible);
        page.refresh();
        answer([north]);
        verify(!findChild(page, "recordHereDialog").visible, "it asks once");
    }
}
