import QtQuick

/// NAS paths that stay among the volumes.
NasTest {
    id: test

    readonly property var local: [{ volumePath: "/", volumeName: "System", volumeSize: 100, volumeAvailableSize: 40,
                                    volumeIsSystem: true }]

    name: "NasVolumes"

    function paths() {
        const model = server.recording.getVolumeModel();
        return Array.from({ length: model.rowCount() }, (value, row) => model.data(model.index(row, 0), 258));
    }

    function openUsing(list): void {
        openWith(servers, {});
        for (const path of list) {
            volumes.use(path, path.startsWith("//nas1") ? "{1}" : "{2}");
            answerCapacity(1000, 400);
        }
        server.takeSent();
    }

    function test_outlivesEveryVolumeReply(): void {
        openUsing(["//nas1/a", "//nas2/b"]);
        for (let i = 0; i < 3; ++i) {
            server.reply("getVolume", local, "0");
            compare(paths(), ["/"]);
            compare(sent("GetNasCapacity"), nasRequest("//nas1/a", 0));
            answerCapacity(1000, 400);
            compare(sent("GetNasCapacity"), nasRequest("//nas2/b", 1));
            answerCapacity(1000, 400);
            compare(paths(), ["/", "//nas1/a", "//nas2/b"]);
            compare(server.takeSent(), []);
        }
    }

    function test_quickVolumeRepliesListNothingTwice(): void {
        openUsing(["//nas1/a", "//nas2/b"]);
        server.reply("getVolume", local, "0");
        server.reply("getVolume", local, "0");
        answerCapacity(1000, 400);
        server.reply("getVolume", local, "0");
        while (server.outstanding("GetNasCapacity") > 0)
            answerCapacity(1000, 400);
        compare(paths().sort(), ["/", "//nas1/a", "//nas2/b"]);
    }

    function test_refusedVolumeReplyAsksForNothing(): void {
        openUsing(["//nas1/a"]);
        server.reply("getVolume", [], "NoAnswer");
        compare(server.takeSent(), []);
        server.reply("getVolume", local, "0");
        compare(server.takeSent(), ["GetNasCapacity"]);
    }

    function test_pathIsUsedOnce(): void {
        openUsing(["//nas1/a"]);
        volumes.use("//nas1/a", "{1}");
        compare(server.takeSent(), []);
    }

    function test_logonIsLookedUpEachTime(): void {
        openUsing(["//nas1/a"]);
        page.recording.updateNASServer("{1}", "nas1", "Host", "changed", "token-new");
        server.reply("UpdateNASServer", undefined, "0");
        server.takeSent();
        server.reply("getVolume", local, "0");
        const request = sent("GetNasCapacity");
        compare(request.userName, "changed");
        compare(request.password, "token-new");
    }

    function test_missingOnesAreNamedOnTheVolumesPage(): void {
        openUsing(["//nas1/a"]);
        page.destroy();
        open("VolumesPage", { nasVolumes: volumes });
        server.reply("getVolume", local, "0");
        answerCapacity(1000, 400);
        tryVerify(() => findChild(page, "volume://nas1/a") !== null);
        verify(findChild(part("volume://nas1/a"), "nasMark").visible);
        verify(!part("nasStrip").visible);

        keyClick(Qt.Key_F5);
        server.reply("getVolume", local, "0");
        server.reply("GetNasCapacity", {}, "LogonNASServerFaled");
        compare(paths(), ["/"]);
        compare(part("nasStrip").text, "//nas1/a: The NAS server refused this user name and password.");
        server.takeSent();
        click(findChild(part("nasStrip"), "errorAction"));
        compare(server.takeSent(), ["GetNasCapacity"]);
        answerCapacity(1000, 400);
        compare(paths(), ["/", "//nas1/a"]);
        verify(!part("nasStrip").visible);
    }

    function test_serverThatIsGoneIsSaid(): void {
        openUsing(["//nas1/a"]);
        answerServersAgain([servers[1]]);
        server.reply("getVolume", local, "0");
        compare(server.takeSent(), []);
        compare(volumes.missing, "//nas1/a: This NAS server is not registered any more.");
    }

    function answerServersAgain(list): void {
        page.refresh();
        answerServers(list);
        server.takeSent();
    }

    function test_forgottenWhileItIsAskedFor(): void {
        openWith(servers, {});
        volumes.use("//nas1/a", "{1}");
        volumes.forget("//nas1/a");
        server.reply("getVolume", local, "0");
        server.takeSent();
        answerCapacity(1000, 400);
        compare(paths(), ["/", "//nas1/a"]);
        compare(server.takeSent(), ["getVolume"], "the row goes with the next reply");
        server.reply("getVolume", local, "0");
        compare(paths(), ["/"]);
    }

    function test_unsentRequestIsMissing(): void {
        openUsing(["//nas1/a"]);
        server.setAccepts(false);
        server.reply("getVolume", local, "0");
        compare(volumes.missing, "//nas1/a: The request could not be sent.");
        server.setAccepts(true);
        server.reply("getVolume", local, "0");
        compare(server.takeSent().slice(-1), ["GetNasCapacity"]);
    }
}
