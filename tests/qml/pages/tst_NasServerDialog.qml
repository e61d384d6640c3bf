import QtQuick

/// Adding and changing NAS servers.
NasTest {
    id: test

    readonly property var newServer: ({ host: "nas9", logonDomain: "Host", userName: "Guest", password: "",
                                        relayPath: "" })
    property var dialog: null

    name: "NasServerDialog"

    function openDialog(button): void {
        openWith(servers, {});
        click(button ? findChild(part("nas:{2}"), button) : part("addServer"));
        dialog = findChild(page, "nasServerDialog");
        tryVerify(() => dialog.opened);
    }

    function piece(name) {
        const found = findChild(dialog.contentItem, name) ?? findChild(dialog.footer, name);
        verify(found, name);
        return found;
    }

    function submitHost(host): void {
        type(host);
        keyClick(Qt.Key_Return);
    }

    function test_addsWithEveryField(): void {
        openDialog();
        verify(piece("hostInput").activeFocus);
        type("nas9");
        keyClick(Qt.Key_Tab);
        type("WORK");
        keyClick(Qt.Key_Tab);
        type("me");
        keyClick(Qt.Key_Tab);
        type("secret");
        compare(piece("passwordInput").echoMode, TextInput.Password);
        verify(!piece("passwordInput").displayText.includes("s"));
        keyClick(Qt.Key_Return);
        compare(sent("AddNasServer"), { host: "nas9", logonDomain: "WORK", userName: "me", password: "secret",
                                        relayPath: "" });
        verify(piece("testing").visible);
        compare(piece("accept").text, "Testing…");
        verify(piece("hostInput").readOnly);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), [], "one test at a time");
        verify(dialog.busy, "and nothing was abandoned");
    }

    function test_addedServerIsOpenedAndTheListAskedForAgain(): void {
        openDialog();
        submitHost("nas9");
        compare(sent("AddNasServer"), newServer, "what is left empty is what stands as a placeholder");
        server.reply("AddNasServer", "{9}", "0");
        tryVerify(() => !dialog.visible);
        compare(page.chosen, "{9}");
        const requests = server.takeRequestMaps();
        compare(requests.map(request => request.command), ["GetNasDir", "GetNasServers"]);
        compare(requests[0].data.basePath, "//nas9");
        answerServers(servers.concat([{ id: "{9}", host: "nas9", logonDomain: "Host", userName: "Guest",
                                        password: "token-9" }]));
        compare(part("servers").count, 3);
        compare(part("servers").currentIndex, 2);
        answerFolders("//nas9", ["video"]);
        clickPart("folder:video");
        compare(sent("GetNasDir").password, "token-9", "what was typed is not used any longer");
    }

    function test_refusalStandsAtItsField_data() {
        return [
            { tag: "LogonNASServerFaled", field: "passwordMessage", focus: "passwordInput",
              words: "The NAS server refused this user name and password." },
            { tag: "NASServerExist", field: "hostMessage", focus: "hostInput",
              words: "This user of the host is registered already." },
            { tag: "GetNasDirFailed", field: "hostMessage", focus: "hostInput",
              words: "This NAS server could not list its shares." },
            { tag: "GetNasCapacityFailed", field: "generalMessage", focus: "hostInput",
              words: "The NAS server does not tell how much this folder holds." },
            { tag: "NasServerNotResponding", field: "hostMessage", focus: "hostInput", words: "" },
            { tag: "NasHostRefused", field: "hostMessage", focus: "hostInput", words: "" },
            { tag: "NoAnswer", field: "generalMessage", focus: "hostInput",
              words: "The station did not answer in time. The change may take effect all the same." },
            { tag: "Code77", field: "generalMessage", focus: "hostInput", words: "The station refused: Code77" }
        ];
    }
    function test_refusalStandsAtItsField(row): void {
        openDialog();
        submitHost("nas9");
        server.takeSent();
        server.reply("AddNasServer", "", row.tag);
        verify(dialog.visible);
        verify(!piece("testing").visible);
        for (const name of ["hostMessage", "domainMessage", "userMessage", "passwordMessage", "generalMessage"])
            compare(piece(name).visible, name === row.field, name);
        verify(piece(row.field).text !== "");
        if (row.words !== "")
            compare(piece(row.field).text, row.words);
        verify(piece(row.focus).activeFocus);
        compare(piece("userInput").mistaken, row.tag === "LogonNASServerFaled");
        compare(server.takeSent(), row.tag === "NASServerExist" ? ["GetNasServers"] : [],
                "a server that exists already may be missing in the list");
        compare(part("servers").count, 2);
        piece("hostInput").forceActiveFocus();
        keyClick(Qt.Key_End);
        type("x");
        compare(dialog.refusal, "", "another entry, another try");
        keyClick(Qt.Key_Return);
        compare(sent("AddNasServer").host, "nas9x");
    }

    function test_cancelAbandonsTheAdd_data() {
        return [{ tag: "Escape" }, { tag: "Cancel" }];
    }
    function test_cancelAbandonsTheAdd(row): void {
        openDialog();
        submitHost("nas9");
        compare(server.takeSent(), ["AddNasServer"]);
        if (row.tag === "Escape")
            keyClick(Qt.Key_Escape);
        else
            click(piece("cancel"));
        tryVerify(() => !dialog.visible);
        verify(part("notice").visible);
        verify(part("notice").text.startsWith("Adding nas9 was cancelled."), part("notice").text);
        server.reply("AddNasServer", "{9}", "0");
        compare(part("servers").count, 2, "the late success changes nothing in view");
        compare(page.chosen, "");
        compare(server.takeSent(), []);
        click(findChild(part("notice"), "errorAction"));
        compare(server.takeSent(), ["GetNasServers"]);
        verify(!part("notice").visible);
        answerServers(servers.concat([{ id: "{9}", host: "nas9", logonDomain: "Host", userName: "Guest" }]));
        compare(part("servers").count, 3, "the station's list tells the truth");
    }

    function test_lateReplyDoesNotAnswerTheNextAdd(): void {
        openDialog();
        submitHost("nas8");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        clickPart("addServer");
        tryVerify(() => dialog.opened);
        compare(piece("hostInput").text, "", "nothing of the old entries is left");
        submitHost("nas9");
        server.takeSent();
        server.reply("AddNasServer", "", "LogonNASServerFaled"); // of nas8
        verify(dialog.busy);
        compare(dialog.refusal, "");
        server.reply("AddNasServer", "{9}", "0");
        tryVerify(() => !dialog.visible);
        compare(page.chosen, "{9}");
    }

    function test_cancelBeforeTheTestSaysNothing(): void {
        openDialog();
        type("nas9");
        piece("passwordInput").text = "secret";
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        compare(piece("passwordInput").text, "", "no password outlives its dialog");
        verify(!part("notice").visible);
        compare(server.takeSent(), []);
    }

    function test_obviousMistakesAreNotSent_data() {
        return [{ tag: "empty", host: "" }, { tag: "slash", host: "nas/video" }, { tag: "backslash", host: "\\\\nas" },
                { tag: "spaces", host: "n as" }];
    }
    function test_obviousMistakesAreNotSent(row): void {
        openDialog();
        submitHost(row.host);
        compare(server.takeSent(), []);
        verify(piece("hostMessage").visible);
        verify(!piece("accept").enabled);
    }

    function test_unsentAddIsSaid(): void {
        openDialog();
        server.setAccepts(false);
        submitHost("nas9");
        compare(piece("generalMessage").text, "The request could not be sent.");
        verify(!dialog.busy);
    }

    function test_changeKeepsThePassword_data() {
        return [{ tag: "the same host", host: "nas2" }, { tag: "another spelling", host: "NAS2:445" }];
    }
    function test_changeKeepsThePassword(row): void {
        openDialog("edit");
        compare(dialog.title, "Change nas2");
        compare(piece("hostInput").text, "nas2");
        compare(piece("domainInput").text, "OFFICE");
        compare(piece("userInput").text, "recorder");
        compare(piece("passwordInput").text, "");
        compare(piece("passwordInput").placeholderText, "Unchanged");
        submitHost(row.host);
        compare(sent("UpdateNASServer"), { id: "{2}", host: row.host, logonDomain: "OFFICE", userName: "recorder",
                                           password: "token-2", relayPath: "" });
        server.reply("UpdateNASServer", undefined, "0");
        tryVerify(() => !dialog.visible);
        compare(server.takeSent(), ["GetNasServers"]);
        compare(text(part("nas:{2}"), "host"), row.host);
    }

    function test_anotherHostNeedsThePasswordAgain(): void {
        openDialog("edit");
        submitHost("nas3");
        compare(server.takeSent(), []);
        verify(piece("passwordMessage").visible);
        compare(piece("passwordMessage").text, "Enter the password again for another host.");
        compare(piece("passwordInput").placeholderText, "");
        verify(piece("passwordInput").activeFocus);
        type("secret");
        verify(!piece("passwordMessage").visible);
        keyClick(Qt.Key_Return);
        compare(sent("UpdateNASServer"), { id: "{2}", host: "nas3", logonDomain: "OFFICE", userName: "recorder",
                                           password: "secret", relayPath: "" });
        server.reply("UpdateNASServer", undefined, "NasPasswordNeeded");
        verify(piece("passwordMessage").visible);
        verify(piece("passwordInput").activeFocus);
    }

    function test_aGuestNeedsNoPasswordOnAnotherHost(): void {
        openDialog("edit");
        piece("userInput").text = "";
        submitHost("nas3");
        compare(sent("UpdateNASServer"), { id: "{2}", host: "nas3", logonDomain: "OFFICE", userName: "Guest",
                                           password: "", relayPath: "" });
    }

    function test_changeSendsANewPassword(): void {
        openDialog("edit");
        piece("passwordInput").forceActiveFocus();
        type("new");
        keyClick(Qt.Key_Return);
        compare(sent("UpdateNASServer").password, "new");
        server.reply("UpdateNASServer", undefined, "LogonNASServerFaled");
        compare(piece("passwordMessage").text, "The NAS server refused this user name and password.");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        verify(!part("notice").visible);
        compare(text(part("nas:{2}"), "host"), "nas2");
    }

    function test_changeGoesOnWhenItsDialogIsClosed(): void {
        openDialog("edit");
        piece("passwordInput").text = "secret";
        submitHost("nas3");
        compare(piece("cancel").text, "Close");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        verify(part("notice").text.includes("nas3"), part("notice").text);
        verify(!findChild(part("nas:{1}"), "edit").enabled, "one change at a time");
        server.reply("UpdateNASServer", undefined, "LogonNASServerFaled");
        verify(!part("notice").visible);
        compare(part("draftStrip").text, "Change nas2: The NAS server refused this user name and password. "
                + "What you entered is kept, but for the password.");
        verify(findChild(part("nas:{1}"), "edit").enabled);
        click(findChild(part("draftStrip"), "errorAction"));
        tryVerify(() => dialog.opened);
        compare(dialog.serverId, "{2}");
        compare(dialog.host, "nas3");
        compare(dialog.logonDomain, "OFFICE");
        compare(piece("passwordInput").text, "", "no password is kept");
        compare(piece("generalMessage").text, "The NAS server refused this user name and password.");
    }

    function test_F2Changes(): void {
        openWith(servers, {});
        part("servers").list.forceActiveFocus();
        keyClick(Qt.Key_F2);
        const opened = findChild(page, "nasServerDialog");
        tryVerify(() => opened.opened);
        compare(opened.serverId, "{1}");
        compare(findChild(opened.contentItem, "domainInput").text, "", "the default stands as a placeholder");
    }

    function test_fitsIntoALowWindow(): void {
        openWith(servers, { width: 308, height: 300 });
        clickPart("addServer");
        dialog = findChild(page, "nasServerDialog");
        dialog.parent = page; // stands for a window of that size
        tryVerify(() => dialog.opened);
        submitHost("a/b");
        verify(dialog.y >= 0 && dialog.x >= 0);
        verify(dialog.height <= page.height);
        verify(dialog.contentItem.height > 0 && dialog.contentItem.height < dialog.contentItem.contentHeight);
        compare(dialog.contentItem.contentY, 0);
        for (let i = 0; i < 3; ++i)
            keyClick(Qt.Key_Tab);
        const field = piece("passwordInput");
        verify(field.activeFocus);
        verify(field.mapToItem(dialog.contentItem, 0, field.height).y <= dialog.contentItem.height);
    }
}
