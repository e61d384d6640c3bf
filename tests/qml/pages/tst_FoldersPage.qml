import QtQuick
import RecordingConsole

PageTest {
    id: test

    readonly property string longName: "a-folder-with-a-name-that-does-not-fit-into-any-window-".repeat(4)

    name: "FoldersPage"

    function answer(path, folders): void {
        server.reply("getServerDir", { basePath: path, dirFolderList: folders }, "0");
    }

    function openAt(path, folders, properties): void {
        open("FoldersPage", Object.assign({ startPlace: path }, properties));
        answer(path, folders);
        server.takeSent();
        waitForRendering(page);
    }

    function test_listsAgainWhatSomebodyElseReplaced(): void {
        open("FoldersPage", { startPlace: "/srv" });
        answer("/srv", ["a"]);
        server.takeSent();
        page.visible = false;
        server.recording.getServerDir("/var");
        answer("/var", ["log"]);
        compare(server.takeSent(), ["getServerDir /var"]);
        page.visible = true;
        compare(server.takeSent(), ["getServerDir /srv"]);
        answer("/srv", ["a"]);
        compare(page.folder, "/srv");
        compare(page.failure, "");
    }

    function test_beginsWithTheVolumes(): void {
        open("FoldersPage", {});
        compare(server.takeSent(), ["getServerDir"]);
        answer("", ["/", "/srv/video"]);
        verify(page.settled);
        compare(page.failure, "");
        tryVerify(() => findChild(page, "folder:/srv/video") !== null);
        verify(!part("up").enabled);
        verify(!part("newFolder").enabled);
        mouseClick(part("folder:/srv/video"));
        compare(server.takeSent(), ["getServerDir /srv/video"]);
    }

    function test_opensFoldersAndGoesUp(): void {
        openAt("/srv", ["audio", "video"]);
        mouseClick(part("folder:video"));
        compare(server.takeSent(), ["getServerDir /srv/video"]);
        compare(page.folder, "/srv", "not before the reply");
        answer("/srv/video", ["north"]);
        compare(page.folder, "/srv/video");
        compare(text(page, "subtitle"), "1 folder");
        keyClick(Qt.Key_Up, Qt.AltModifier);
        compare(server.takeSent(), ["getServerDir /srv"]);
        answer("/srv", ["audio", "video"]);
        compare(part("folders").currentIndex, 1, "the folder that was left is the current one");
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["getServerDir /srv/video"]);
        answer("/srv/video", []);
        compare(part("placeholder").title, "No folders in here");
        keyClick(Qt.Key_Backspace);
        compare(server.takeSent(), ["getServerDir /srv"]);
    }

    function test_keysCrossALongList(): void {
        const names = Array.from({ length: 500 }, (value, index) => "cam" + index);
        openAt("/srv", names);
        const folders = part("folders");
        folders.list.forceActiveFocus();
        keyClick(Qt.Key_End);
        compare(folders.currentIndex, 499);
        verify(folders.list.contentY > 0);
        keyClick(Qt.Key_PageUp);
        verify(folders.currentIndex < 499 && folders.currentIndex > 400, folders.currentIndex);
        const position = folders.list.contentY;
        keyClick(Qt.Key_F5);
        answer("/srv", names);
        compare(folders.list.contentY, position, "a list that is asked for again stays where it is");
        keyClick(Qt.Key_Home);
        compare(folders.currentIndex, 0);
        keyClick(Qt.Key_PageDown);
        verify(folders.currentIndex > 0 && folders.currentIndex < 100, folders.currentIndex);
    }

    function test_nothingIsMadeWhereNothingCouldBeListed(): void {
        openAt("/srv", ["audio"]);
        verify(part("newFolder").enabled);
        keyClick(Qt.Key_F5);
        server.reply("getServerDir", {}, "DirectoryNotFound");
        verify(page.failure !== "");
        verify(!part("newFolder").enabled);
        keyClick(Qt.Key_F5);
        answer("/srv", ["audio"]);
        verify(part("newFolder").enabled);
    }

    function test_breadcrumbLeadsUp_data() {
        return [{ tag: "folder", path: "/srv" }, { tag: "root", path: "/" }, { tag: "volumes", path: "" }];
    }
    function test_breadcrumbLeadsUp(row): void {
        openAt("/srv/video/north", []);
        mouseClick(part("crumb:" + row.path));
        compare(server.takeSent(), [("getServerDir " + row.path).trim()]);
        answer(row.path, []);
        compare(page.folder, row.path);
    }

    function test_newestOfTwoRequestsDecides(): void {
        openAt("/srv", ["a", "b"]);
        page.open("/srv/a");
        page.open("/srv/b");
        answer("/srv/a", ["in-a"]);
        compare(page.folder, "/srv");
        answer("/srv/b", ["in-b"]);
        compare(page.folder, "/srv/b");
    }

    function test_refusedFolderKeepsTheOldOne(): void {
        openAt("/srv", ["audio", "locked"]);
        mouseClick(part("folder:locked"));
        compare(server.takeSent(), ["getServerDir /srv/locked"]);
        server.reply("getServerDir", {}, "DirectoryNotReadable");
        compare(server.takeSent(), ["getServerDir /srv"], "the refusal emptied the list");
        answer("/srv", ["audio", "locked"]);
        compare(page.folder, "/srv");
        compare(part("folders").count, 2);
        compare(part("folders").currentIndex, 1);
        verify(part("errorStrip").visible);
        compare(part("errorStrip").text, "/srv/locked: The station may not read this folder.");
        mouseClick(part("errorClose"));
        verify(!part("errorStrip").visible);
    }

    function test_refusedStartIsSaid(): void {
        open("FoldersPage", { startPlace: "/nowhere" });
        server.reply("getServerDir", {}, "DirectoryNotFound");
        verify(page.settled);
        compare(part("errorStrip").text, "/nowhere: There is no such folder.");
        compare(server.takeSent(), ["getServerDir /nowhere"]);
    }

    function test_refusedVolumesAreNotTakenForAnEmptyList(): void {
        open("FoldersPage", {});
        server.reply("getServerDir", {}, "LinkDown");
        compare(part("errorStrip").text, "There is no connection to the station.");
        compare(part("placeholder").title, "The folders could not be listed");
    }

    function test_createsAFolder(): void {
        openAt("/srv", ["audio"]);
        mouseClick(part("newFolder"));
        const dialog = findChild(page, "newFolderDialog");
        tryVerify(() => dialog.opened);
        for (const key of ["c", "a", "m"])
            keyClick(key);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["createDirectory /srv/cam"]);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), [], "one request is under way");
        server.reply("createDirectory", undefined, "0");
        tryVerify(() => !dialog.visible);
        compare(server.takeSent(), ["getServerDir /srv"]);
        answer("/srv", ["audio", "cam"]);
        compare(part("folders").currentIndex, 1, "the new folder is the current one");
    }

    function test_aFolderThatTakesLongCanBeLeft_data() {
        return [{ tag: "0", words: "New folder “x”: done." },
                { tag: "VolumeFull", words: "New folder “x”: This volume is full." }];
    }
    function test_aFolderThatTakesLongCanBeLeft(row): void {
        openAt("/", ["srv"]);
        mouseClick(part("newFolder"));
        const dialog = findChild(page, "newFolderDialog");
        keyClick("x");
        keyClick(Qt.Key_Return);
        server.takeSent();
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        server.reply("createDirectory", undefined, row.tag);
        verify(!dialog.visible);
        compare(server.session.lateOutcomes, [row.words]);
        compare(server.takeSent(), row.tag === "0" ? ["getServerDir /"] : []);
        compare(part("draftStrip").visible, row.tag !== "0");
        if (row.tag === "0")
            return;
        tryVerify(() => !isUnsettled(page));
        mouseClick(findChild(part("draftStrip"), "errorAction"));
        tryVerify(() => dialog.opened);
        compare(dialog.name, "x");
        compare(dialog.message, "This volume is full.");
        keyClick("y");
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["createDirectory /y"]);
    }

    function test_refusedNameStaysAtTheField(): void {
        openAt("/", ["srv"]);
        mouseClick(part("newFolder"));
        const dialog = findChild(page, "newFolderDialog");
        tryVerify(() => dialog.opened);
        keyClick("x");
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["createDirectory /x"]);
        server.reply("createDirectory", undefined, "PermissionDenied");
        verify(dialog.visible);
        compare(dialog.message, "The station may not write here.");
        keyClick("y");
        compare(dialog.message, "", "another name, another try");
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["createDirectory /y"]);
        server.reply("createDirectory", undefined, "DirectoryExists");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
    }

    function test_obviousMistakesAreNotSent_data() {
        return [{ tag: "slash", name: "a/b" }, { tag: "backslash", name: "a\\b" }, { tag: "dot", name: "." },
                { tag: "dots", name: ".." }, { tag: "blank", name: " " }, { tag: "empty", name: "" }];
    }
    function test_obviousMistakesAreNotSent(row): void {
        openAt("/srv", []);
        mouseClick(part("newFolder"));
        const dialog = findChild(page, "newFolderDialog");
        tryVerify(() => dialog.opened);
        for (const key of row.name)
            keyClick(key);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), []);
        verify(dialog.message !== "");
        verify(dialog.visible);
    }

    function test_sizesFit_data() {
        return [{ tag: "wide", width: 1000, height: 700 }, { tag: "narrow", width: 380, height: 560 }];
    }
    function test_sizesFit(row): void {
        openAt("/srv", ["audio", longName], { width: row.width, height: row.height });
        tryVerify(() => findChild(page, "folder:" + longName) !== null);
        verify(findChild(part("folder:" + longName), "name").truncated);
        checkGeometry(page);
    }

    function test_everyWidthFits(): void {
        openAt("/srv", ["audio", longName], { height: 700 });
        tryVerify(() => findChild(page, "folder:" + longName) !== null);
        dragThroughWidths();
    }

    function test_breadcrumbNeedsNoRoom(): void {
        const breadcrumb = createTemporaryObject(breadcrumbComponent, test, { width: 10 });
        collectTexts(breadcrumb, []); // looks at the sides, too
        breadcrumb.width = 400;
        verify(findChild(breadcrumb, "crumb:/srv").width > 0);
    }

    Component {
        id: breadcrumbComponent

        Breadcrumb { folder: "/srv" }
    }
}
