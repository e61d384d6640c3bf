import QtQuick

/// Browsing for a folder from a path of an edited recording group.
GroupsTest {
    id: test

    name: "FolderDialog"

    function answerFolders(path, folders): void {
        server.reply("getServerDir", { basePath: path, dirFolderList: folders }, "0");
    }

    /// Opens the dialog for the first path, with what it asks for.
    function browse() {
        openFilled({});
        mouseClick(part("edit"));
        const editor = opened("groupEditor");
        press(field(field(editor, "pathRow:0"), "browse"));
        compare(server.takeSent(), ["getServerDir /srv/video/north", "GetNasServers"]);
        const dialog = findChild(editor, "folderDialog") ?? findChild(page, "folderDialog");
        verify(dialog.opened);
        server.reply("GetNasServers", [{ id: "{1}", host: "nas1", logonDomain: "Host", userName: "camera", password: "token" }],
                     "0");
        return dialog;
    }

    function names(dialog) {
        const list = field(dialog, "folderCard").list;
        const names = [];
        for (let row = 0; row < list.count; ++row)
            names.push(list.itemAtIndex(row)?.nameRole);
        return names;
    }

    function test_aFolderIsChosen(): void {
        const dialog = browse();
        answerFolders("/srv/video/north", ["a", "b"]);
        tryVerify(() => names(dialog).join() === "a,b");
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["getServerDir /srv/video/north/b"]);
        verify(!findChild(dialog.footer, "accept").enabled, "it has not been listed yet");
        answerFolders("/srv/video/north/b", []);
        press(findChild(dialog.footer, "accept"));
        tryVerify(() => !dialog.visible);
        const row = field(findChild(page, "groupEditor"), "pathRow:0");
        compare(field(row, "path").text, "/srv/video/north/b");
        verify(findChild(page, "groupEditor").dirty);
    }

    function test_upAndRefused(): void {
        const dialog = browse();
        answerFolders("/srv/video/north", ["a"]);
        tryVerify(() => names(dialog).length === 1);
        keyClick(Qt.Key_Backspace);
        compare(server.takeSent(), ["getServerDir /srv/video"]);
        answerFolders("/srv/video", ["north", "secret"]);
        tryVerify(() => names(dialog).length === 2);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        server.takeRequests();
        server.reply("getServerDir", {}, "DirectoryNotReadable");
        compare(field(dialog, "folderStrip").text, "/srv/video/secret: The station may not read this folder.");
        compare(server.takeSent(), ["getServerDir /srv/video"], "the refusal emptied the list");
        answerFolders("/srv/video", ["north", "secret"]);
        compare(dialog.folder, "/srv/video");
        verify(dialog.choosable);
    }

    function test_aFolderThatIsGoneLeadsToTheOneAbove(): void {
        const dialog = browse();
        server.reply("getServerDir", {}, "DirectoryNotFound");
        compare(server.takeSent(), ["getServerDir /srv/video"]);
        server.reply("getServerDir", {}, "DirectoryNotFound");
        server.reply("getServerDir", {}, "DirectoryNotFound");
        server.reply("getServerDir", {}, "DirectoryNotFound");
        server.takeRequests();
        answerFolders("", ["/srv/video", "/"]);
        verify(dialog.inView);
        verify(!dialog.choosable, "the list of the volumes is no folder");
        compare(field(dialog, "folderStrip").text, "");
    }

    function test_aFolderIsMade(): void {
        const dialog = browse();
        answerFolders("/srv/video/north", []);
        press(field(dialog, "newFolderHere"));
        const naming = findChild(dialog, "newFolderDialog") ?? findChild(page, "newFolderDialog");
        tryVerify(() => naming.opened);
        for (const key of "new")
            keyClick(key);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["createDirectory /srv/video/north/new"]);
        server.reply("createDirectory", undefined, "PermissionDenied");
        compare(naming.message, "The station may not write here.");
        keyClick(Qt.Key_Return);
        server.takeRequests();
        server.reply("createDirectory", undefined, "0");
        tryVerify(() => !naming.visible);
        compare(server.takeSent(), ["getServerDir /srv/video/north/new"]);
        answerFolders("/srv/video/north/new", []);
        press(findChild(dialog.footer, "accept"));
        compare(field(field(findChild(page, "groupEditor"), "pathRow:0"), "path").text, "/srv/video/north/new");
    }

    function test_aFolderOfANasServer(): void {
        const dialog = browse();
        answerFolders("/srv/video/north", []);
        tryVerify(() => dialog.servers.length === 2);
        compare(dialog.servers[1].text, "nas1, as camera");
        choose(field(dialog, "place"), 1);
        const sent = server.takeRequestMaps();
        compare(sent.length, 1);
        compare(sent[0].data.basePath, "//nas1");
        server.reply("GetNasDir", { basePath: "//nas1", dirFolderList: ["video"] }, "0");
        verify(!dialog.choosable, "a share is needed");
        verify(!field(dialog, "newFolderHere").enabled);
        tryVerify(() => names(dialog).join() === "video");
        field(dialog, "folderCard").list.forceActiveFocus();
        keyClick(Qt.Key_Return);
        server.reply("GetNasDir", { basePath: "//nas1/video", dirFolderList: [".", "..", "north"] }, "0");
        press(findChild(dialog.footer, "accept"));
        const row = field(findChild(page, "groupEditor"), "pathRow:0");
        compare(field(row, "path").text, "//nas1/video");
        compare(field(row, "kind").displayText, "NAS host");
    }
}
