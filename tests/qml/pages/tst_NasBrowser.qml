import QtQuick

/// Shares, folders and capacities of NAS servers, and folders that are used as volumes.
NasTest {
    id: test

    name: "NasBrowser"

    function openVideo(folders): void {
        openWith(servers, {});
        openShares("{1}", ["audio", "video"]);
        clickPart("folder:video");
        answerFolders("//nas1/video", folders);
        server.takeSent();
    }

    function openMeasured(folders): void {
        openVideo(folders);
        answerCapacity(1000, 400);
    }

    function test_opensSharesAndFolders(): void {
        openWith(servers, {});
        click(findChild(part("nas:{2}"), "host"));
        compare(sent("GetNasDir"), nasRequest("//nas2", 1));
        verify(part("browserPlaceholder").busy);
        compare(part("browserPlaceholder").title, "Asking nas2 for its shares…");
        answerFolders("//nas2", ["audio", "video"]);
        compare(part("nasFolders").count, 2, "without . and ..");
        verify(!part("capacity").visible, "a server has no capacity");
        compare(server.takeSent(), []);
        clickPart("folder:video");
        compare(sent("GetNasDir"), nasRequest("//nas2/video", 1));
        verify(part("loadingMark").visible);
        compare(part("nasFolders").count, 2, "what was there stays until the reply");
        answerFolders("//nas2/video", ["north"]);
        verify(!part("loadingMark").visible);
        compare(sent("GetNasCapacity"), nasRequest("//nas2/video", 1));
        clickPart("folder:north");
        answerFolders("//nas2/video/north", []);
        compare(part("browserPlaceholder").title, "No folders in here");
        clickPart("crumb://nas2");
        server.takeRequestMaps();
        answerFolders("//nas2", ["audio", "video"]);
        verify(!part("capacity").visible);
    }

    function test_keysGoUpAndDown(): void {
        openVideo(["north", "south"]);
        keyClick(Qt.Key_End);
        keyClick(Qt.Key_Return);
        compare(server.takeSent(), ["GetNasDir"]);
        answerFolders("//nas1/video/south", []);
        server.takeSent();
        keyClick(Qt.Key_Backspace);
        compare(sent("GetNasDir").basePath, "//nas1/video");
        answerFolders("//nas1/video", ["north", "south"]);
        compare(part("nasFolders").currentIndex, 1, "the folder that was left is the current one");
        server.takeSent();
        keyClick(Qt.Key_Up, Qt.AltModifier);
        compare(sent("GetNasDir").basePath, "//nas1");
        answerFolders("//nas1", ["audio", "video"]);
        verify(!part("up").enabled, "the servers stand beside it");
        keyClick(Qt.Key_Backspace);
        compare(server.takeSent(), []);
    }

    function test_refreshStaysWhereItIs(): void {
        const names = Array.from({ length: 300 }, (value, index) => "cam" + index);
        openVideo(names);
        keyClick(Qt.Key_End);
        const position = part("nasFolders").list.contentY;
        verify(position > 0);
        keyClick(Qt.Key_F5);
        answerServers(servers);
        answerFolders("//nas1/video", names);
        compare(part("nasFolders").currentIndex, 299);
        compare(part("nasFolders").list.contentY, position);
    }

    function test_lateReplyDoesNotTakeTheView(): void {
        openMeasured(["north", "south"]);
        clickPart("folder:north");
        clickPart("folder:south");
        compare(server.takeSent(), ["GetNasDir", "GetNasDir"]);
        server.replyToNewest("GetNasDir", listing("//nas1/video/south", ["of-south"]), "0");
        compare(part("browser").listing.folder, "//nas1/video/south");
        compare(server.takeSent(), ["GetNasCapacity"]);
        answerFolders("//nas1/video/north", ["of-north"]);
        compare(part("browser").listing.folder, "//nas1/video/south");
        verify(!shown(), "the model lists another folder now");
        compare(sent("GetNasDir").basePath, "//nas1/video/south", "so the one in view is asked for again");
        answerFolders("//nas1/video/south", ["of-south"]);
        verify(shown());
        verify(findChild(page, "folder:of-south") !== null);
        compare(server.outstanding("GetNasDir"), 0);
    }

    function test_earlierReplyIsNotShown(): void {
        openVideo(["north", "south"]);
        clickPart("folder:north");
        clickPart("folder:south");
        answerFolders("//nas1/video/north", ["of-north"]);
        compare(part("browser").listing.folder, "//nas1/video");
        verify(!shown());
        answerFolders("//nas1/video/south", ["of-south"]);
        compare(part("browser").listing.folder, "//nas1/video/south");
        verify(shown());
    }

    function test_refusalOfTwoIsTheOneThatWasNotAnswered(): void {
        openMeasured(["north", "south"]);
        clickPart("folder:north");
        clickPart("folder:south");
        server.takeSent();
        server.replyToNewest("GetNasDir", {}, "GetNasDirFailed");
        verify(!part("browserStrip").visible, "the refusal may be of either");
        answerFolders("//nas1/video/north", ["of-north"]);
        compare(part("browserStrip").text, "//nas1/video/south: There is no such folder on the NAS server, or this user may not see it.");
        compare(sent("GetNasDir").basePath, "//nas1/video", "the model lists another folder");
    }

    function test_twoUsersOfOneHostAreKeptApart(): void {
        const twins = [servers[0], Object.assign({}, servers[0], { id: "{3}", userName: "other", password: "token-3" })];
        openWith(twins, {});
        click(findChild(part("nas:{1}"), "host"));
        click(findChild(part("nas:{3}"), "host"));
        compare(server.takeSent(), ["GetNasDir", "GetNasDir"]);
        server.replyToNewest("GetNasDir", listing("//nas1", ["of-other"]), "0");
        answerFolders("//nas1", ["of-camera"]);
        verify(!shown(), "nobody knows whose shares these are");
        compare(sent("GetNasDir").userName, "other");
        answerFolders("//nas1", ["of-other"]);
        verify(shown());
    }

    function test_refusalKeepsTheFolderAndCanBeTriedAgain_data() {
        return [
            { tag: "GetNasDirFailed", words: "There is no such folder on the NAS server, or this user may not see it." },
            { tag: "LogonNASServerFaled", words: "The NAS server refused this user name and password." },
            { tag: "NoAnswer", words: "The station did not answer in time." }
        ];
    }
    function test_refusalKeepsTheFolderAndCanBeTriedAgain(row): void {
        openMeasured(["north"]);
        clickPart("folder:north");
        server.takeSent();
        server.reply("GetNasDir", {}, row.tag);
        compare(part("browserStrip").text, "//nas1/video/north: " + row.words);
        verify(shown());
        compare(part("nasFolders").count, 1);
        compare(server.takeSent(), []);
        click(findChild(part("browserStrip"), "errorAction"));
        compare(sent("GetNasDir").basePath, "//nas1/video/north");
        verify(!part("browserStrip").visible);
        answerFolders("//nas1/video/north", []);
        compare(part("browser").listing.folder, "//nas1/video/north");
    }

    function test_refusedServerIsSaid(): void {
        openWith(servers, {});
        click(findChild(part("nas:{1}"), "host"));
        server.takeSent();
        server.reply("GetNasDir", {}, "GetNasDirFailed");
        compare(part("browserPlaceholder").title, "Nothing could be listed");
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), ["GetNasServers", "GetNasDir"]);
    }

    function test_unsentRequestIsSaid(): void {
        openWith(servers, {});
        server.setAccepts(false);
        click(findChild(part("nas:{1}"), "host"));
        compare(part("browserStrip").text, "//nas1: The request could not be sent.");
        verify(!part("browserPlaceholder").busy);
    }

    function test_anotherSpellingOfThePathIsTheSamePath(): void {
        openWith(servers, {});
        click(findChild(part("nas:{1}"), "host"));
        server.takeSent();
        answerFolders("\\\\NAS1\\", ["video"]);
        verify(shown());
        compare(server.takeSent(), []);
    }

    function test_unknownPathIsNotShownAndNotAskedForForever(): void {
        openVideo(["north"]);
        for (let i = 0; i < 3 && server.takeSent().length >= 0; ++i) {
            keyClick(Qt.Key_F5);
            answerServers(servers);
            server.takeSent();
            answerFolders("//elsewhere", ["x"]);
            verify(!shown());
            if (server.outstanding("GetNasDir") > 0)
                answerFolders("//elsewhere", ["x"]);
            compare(server.outstanding("GetNasDir"), 0);
        }
        verify(part("browserStrip").text.endsWith("The station listed another folder."), part("browserStrip").text);
    }

    function test_capacityIsShown(): void {
        openVideo(["north"]);
        compare(text(part("capacity"), "figures"), "Asking for the capacity…");
        answerCapacity(1000 * gigabyte, 400 * gigabyte);
        const words = "600.00 GB free of 1000.00 GB · 60 %";
        compare(text(part("capacity"), "figures"), words);
        compare(findChild(part("capacity"), "bar").parts.map(part => part.kind + " " + part.bytes / gigabyte / 1024),
                ["unknown 400", "free 600"]);
        clickPart("folder:north");
        answerFolders("//nas1/video/north", []);
        compare(text(part("capacity"), "figures"), words, "the same share");
        server.takeSent();
        server.reply("GetNasCapacity", {}, "GetNasCapacityFailed");
        compare(text(part("capacity"), "figures"), "The NAS server does not tell how much this folder holds.");
        clickPart("capacityAgain");
        compare(sent("GetNasCapacity"), nasRequest("//nas1/video/north", 0));
        answerCapacity(5e12, 4.9e12);
        compare(text(part("capacity"), "figures"), "93.13 TB free of 4656.61 TB · 2 %", "more than 32 bits");
    }

    function test_aShareIsShownAsTheStationTellsIt(): void {
        openVideo([]);
        server.setStorage([{ volumePath: "//nas1/video", volumeName: "//nas1/video", kind: "NAS", state: "there",
                             size: 1000, free: 250, groups: [{ recordingGroupID: "a", recordingGroupName: "North",
                             paths: ["//nas1/video/rec"], recordedBytes: 700 }], otherBytes: 50 }]);
        compare(text(part("capacity"), "figures"), "250 bytes free of 1000 bytes · 25 %");
        compare(findChild(part("capacity"), "bar").parts.map(part => part.kind + " " + part.bytes),
                ["group 700", "other 50", "free 250"]);
    }

    function test_capacitiesAreAskedForOneAfterTheOther(): void {
        openVideo(["north"]);
        clickPart("folder:north");
        answerFolders("//nas1/video/north", ["deep"]);
        clickPart("folder:deep");
        answerFolders("//nas1/video/north/deep", []);
        compare(server.takeSent(), ["GetNasDir", "GetNasDir"], "the first capacity is not there yet");
        answerCapacity(100, 10);
        compare(text(part("capacity"), "figures"), "Asking for the capacity…", "that was the folder above");
        compare(sent("GetNasCapacity").basePath, "//nas1/video/north/deep", "the one between is of no use any more");
        answerCapacity(100, 50);
        verify(text(part("capacity"), "figures").endsWith("· 50 %"));
    }

    function test_useAsVolume(): void {
        openVideo(["north"]);
        answerCapacity(1000, 400);
        clickPart("useAsVolume");
        compare(sent("GetNasCapacity"), nasRequest("//nas1/video", 0));
        verify(!part("useAsVolume").enabled);
        compare(part("useAsVolume").text, "Adding…");
        answerCapacity(1000, 400);
        const model = page.recording.getVolumeModel();
        compare(model.rowCount(), 1);
        compare(model.data(model.index(0, 0), 258), "//nas1/video");
        compare(model.data(model.index(0, 0), 263), true);
        verify(part("volumeMark").visible);
        verify(!part("useAsVolume").visible);
        clickPart("stopUsing");
        compare(server.takeSent(), ["getVolume"]);
        server.reply("getVolume", [], "0");
        compare(model.rowCount(), 0);
        verify(part("useAsVolume").visible);
    }

    function test_refusedVolumeIsSaid(): void {
        openVideo([]);
        answerCapacity(1000, 400);
        clickPart("useAsVolume");
        server.reply("GetNasCapacity", {}, "GetNasCapacityFailed");
        compare(part("volumeRefusal").text, "Not among the volumes: The NAS server does not tell how much this folder holds.");
        verify(text(part("capacity"), "figures").endsWith("· 60 %"), "what is known stays in view");
        server.takeSent();
        clickPart("useAsVolume");
        compare(sent("GetNasCapacity").basePath, "//nas1/video");
    }
}
