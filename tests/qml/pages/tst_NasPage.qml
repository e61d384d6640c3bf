import QtQuick
import RecordingConsole

NasTest {
    id: test

    name: "NasPage"

    function test_listsTheServers(): void {
        openWith(null, {});
        compare(server.takeRequestMaps(), [{ command: "GetNasServers", data: "" }]);
        verify(!page.settled);
        verify(part("placeholder").busy);
        answerServers(servers);
        verify(page.settled);
        compare(text(page, "subtitle"), "2 servers");
        tryVerify(() => findChild(page, "nas:{2}") !== null);
        compare(text(part("nas:{1}"), "host"), "nas1");
        compare(text(part("nas:{1}"), "account"), "camera");
        compare(text(part("nas:{2}"), "account"), "recorder in OFFICE");
        compare(part("browserPlaceholder").title, "Choose a NAS server");
    }

    function test_emptyListSaysSo(): void {
        openWith([], {});
        compare(part("placeholder").title, "No NAS servers yet");
        verify(!part("errorStrip").visible);
        verify(!part("browser").visible, "there is nothing to look into");
        answerServers(servers);
        verify(part("browser").visible);
    }

    function test_refusedListKeepsTheRows(): void {
        openWith(servers, {});
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), ["GetNasServers"]);
        server.reply("GetNasServers", [], "NoAnswer");
        compare(part("errorStrip").text, "The station did not answer in time.");
        compare(part("servers").count, 2);
        click(findChild(part("errorStrip"), "errorAction"));
        compare(server.takeSent(), ["GetNasServers"]);
        answerServers(servers);
        verify(!part("errorStrip").visible);
    }

    function test_unsentRequestIsSaid(): void {
        server.setAccepts(false);
        openWith(null, {});
        compare(part("errorStrip").text, "The request could not be sent.");
        compare(part("placeholder").title, "The NAS servers could not be listed");
    }

    function test_waitsForTheConnection(): void {
        server.setConnected(false);
        openWith(null, {});
        compare(server.takeSent(), []);
        compare(part("placeholder").title, "No connection to the station");
        verify(!part("addServer").enabled);
        server.setConnected(true);
        compare(server.takeSent(), ["GetNasServers"]);
    }

    function test_selectionOutlivesARefresh(): void {
        openWith(servers, {});
        openShares("{2}", ["video"]);
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), ["GetNasServers", "GetNasDir"]);
        answerServers(servers.slice().reverse());
        compare(part("servers").currentIndex, 1, "by name, whatever the station's order");
        compare(page.chosen, "{2}");
        keyClick(Qt.Key_F5);
        answerServers([servers[0]]);
        compare(page.chosen, "", "the server in view is gone");
        compare(part("browserPlaceholder").title, "Choose a NAS server");
    }

    function test_removesAfterAQuestion(): void {
        openWith(servers, {});
        volumes.use("//nas2/video", "{2}");
        answerCapacity(10, 1);
        server.takeSent();
        part("servers").list.forceActiveFocus();
        keyClick(Qt.Key_End);
        keyClick(Qt.Key_Delete);
        const dialog = findChild(page, "nasRemoveDialog");
        tryVerify(() => dialog.opened);
        verify(text(dialog.contentItem, "question").startsWith("Remove “nas2”?"));
        verify(text(dialog.contentItem, "question").includes("One of its folders is used as a volume"));
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        compare(server.takeSent(), []);

        click(findChild(part("nas:{2}"), "remove"));
        tryVerify(() => dialog.opened);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Return);
        compare(sent("RemoveNASServer"), { id: "{2}", relayPath: "" });
        verify(dialog.visible, "the station is at it");
        server.reply("RemoveNASServer", undefined, "DatabaseFailed");
        verify(dialog.visible);
        compare(findChild(dialog.contentItem, "removeStrip").text,
                "The station could not use its database; its log says why.");
        compare(part("servers").count, 2);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Return);
        compare(sent("RemoveNASServer"), { id: "{2}", relayPath: "" });
        server.reply("RemoveNASServer", undefined, "0");
        tryVerify(() => !dialog.visible);
        compare(part("servers").count, 1);
        compare(volumes.entries, [], "its folders are volumes no longer");
        compare(server.takeSent(), ["getVolume"]);
    }

    function test_unsentRemovalIsSaid(): void {
        openWith(servers, {});
        server.setAccepts(false);
        click(findChild(part("nas:{1}"), "remove"));
        const dialog = findChild(page, "nasRemoveDialog");
        tryVerify(() => dialog.opened);
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Return);
        compare(dialog.refusal, "The request could not be sent.");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
    }

    function test_keyboardReachesEverything(): void {
        openWith(servers, {});
        verify(part("servers").list.activeFocus, "at once");
        part("refresh").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Tab);
        verify(part("addServer").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(part("servers").list.activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(part("nas:{1}"), "edit").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(findChild(part("nas:{1}"), "remove").activeFocus);
        keyClick(Qt.Key_Tab);
        verify(part("nasFolders").list.activeFocus, "the buttons of the current server alone are on the way");
        part("servers").list.forceActiveFocus();
        keyClick(Qt.Key_Down);
        compare(server.takeSent(), [], "walking past servers asks none of them");
        keyClick(Qt.Key_Return);
        compare(sent("GetNasDir"), nasRequest("//nas2", 1));
    }

    function test_namesForScreenReaders(): void {
        openWith(servers, {});
        compare(part("nas:{2}").Accessible.name, "nas2, as recorder in OFFICE");
        compare(findChild(part("nas:{1}"), "edit").Accessible.name, "Change nas1 (F2)");
        compare(findChild(part("nas:{1}"), "remove").Accessible.name, "Remove nas1 (Del)");
        openShares("{1}", ["video"]);
        compare(part("nasFolders").list.Accessible.name, "Shares of nas1");
    }

    function test_noItemHoldsThePassword(): void {
        openWith(servers, {});
        openShares("{1}", ["video"]);
        click(findChild(part("nas:{1}"), "edit"));
        tryVerify(() => findChild(page, "nasServerDialog").opened);
        const words = propertyWords(page) + propertyWords(findChild(page, "nasServerDialog").contentItem);
        verify(/camera/.test(words), "what may be seen is seen");
        verify(!/token-/.test(words));
        verify(!JSON.stringify(volumes.entries).includes("token-"));
    }

    function propertyWords(item): string {
        let words = "";
        for (const key in item) {
            if (typeof item[key] === "string")
                words += item[key] + "\n";
        }
        for (let i = 0; i < (item.children?.length ?? 0); ++i)
            words += propertyWords(item.children[i]);
        return words;
    }

    function test_narrowShowsOneAtATime(): void {
        openWith(servers, { width: 308 });
        verify(part("servers").visible);
        verify(!part("browser").visible);
        openShares("{1}", ["video"]);
        verify(!part("servers").visible);
        verify(part("browser").visible);
        verify(part("nasFolders").list.activeFocus);
        keyClick(Qt.Key_Backspace);
        verify(part("servers").visible);
        verify(part("servers").list.activeFocus);
        keyClick(Qt.Key_Return);
        answerFolders("//nas1", ["video"]);
        clickPart("crumb:");
        verify(part("servers").visible);
    }

    function test_sizesFit_data() {
        return [{ tag: "1280", width: 1020, height: 712 }, { tag: "800", width: 692, height: 512 },
                { tag: "400", width: 308, height: 560 }];
    }
    function test_sizesFit(row): void {
        const longName = "a-name-that-does-not-fit-into-any-window-".repeat(4);
        openWith([{ id: "{1}", host: longName, logonDomain: longName, userName: longName, password: "" }],
                 { width: row.width, height: row.height });
        checkGeometry(page);
        verify(findChild(part("nas:{1}"), "host").truncated);
        keyClick(Qt.Key_Return);
        checkGeometry(page);
        answerFolders("//" + longName, [longName]);
        clickPart("folder:" + longName);
        answerFolders("//" + longName + "/" + longName, ["a", longName]);
        answerCapacity(4096 * gigabyte, 4090 * gigabyte);
        clickPart("useAsVolume");
        server.reply("GetNasCapacity", {}, "LogonNASServerFaled");
        waitForRendering(page);
        checkGeometry(page);
        clickPart("folder:a");
        server.reply("GetNasDir", {}, "GetNasDirFailed");
        waitForRendering(page);
        verify(part("browserStrip").visible);
        page.notice = "Adding " + longName + " was cancelled.";
        page.failure = "The station did not answer in time.";
        waitForRendering(page);
        verify(part("notice").visible);
    }

    function test_everyWidthFits(): void {
        const longName = "a-name-that-does-not-fit-into-any-window-".repeat(4);
        openWith(servers, { width: 1020, height: 712 });
        openShares("{1}", [longName]);
        clickPart("folder:" + longName);
        answerFolders("//nas1/" + longName, ["a", longName]);
        answerCapacity(4096 * gigabyte, 4090 * gigabyte);
        page.failure = "The station did not answer in time.";
        dragThroughWidths();
    }

    function test_themesDiffer(): void {
        openWith(servers, {});
        const grounds = [];
        for (const scheme of [Theme.alwaysLight, Theme.alwaysDark]) {
            Theme.scheme = scheme;
            waitForRendering(page);
            grounds.push(String(part("servers").color));
            checkGeometry(page);
        }
        Theme.scheme = Theme.followDesktop;
        compare(grounds, ["#ffffff", "#1b222a"]);
    }

    function test_asksAgainAfterALateOutcome(): void {
        openWith(servers, {});
        server.takeSent();
        server.tellLateOutcome("AddNasServer", "nas3", "0");
        compare(server.takeSent(), ["GetNasServers"], "it may have a server more");
        answerServers(servers);
        server.session.forgetLateOutcomes();
        compare(server.takeSent(), [], "nothing has happened");
        page.visible = false;
        server.tellLateOutcome("UpdateNASServer", "nas1", "0");
        server.tellLateOutcome("RemoveNASServer", "nas2", "0");
        compare(server.takeSent(), [], "nobody looks at it");
        page.visible = true;
        compare(server.takeSent(), ["GetNasServers"]);
    }
}
