import QtQuick
import QtTest
import RecordingConsole

PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024
    readonly property var volumes: [
        { volumePath: "/", volumeName: "System", volumeSize: 100 * gigabyte, volumeAvailableSize: 40 * gigabyte,
          volumeIsSystem: true },
        { volumePath: "/srv/a-mount-point-with-a-rather-long-path/that-goes-on", volumeName: "Recordings of the north gate",
          volumeSize: 4096 * gigabyte, volumeAvailableSize: 12.5 * gigabyte, volumeIsSystem: false }
    ]

    name: "VolumesPage"

    function openFilled(properties): void {
        open("VolumesPage", properties);
        server.reply("getVolume", volumes, "0");
        tryVerify(() => findChild(page, "volume:/") !== null);
        server.takeSent();
    }

    function test_asksAtOnceAndShowsRows(): void {
        open("VolumesPage", {});
        compare(server.takeSent(), ["getVolume"]);
        verify(!page.settled);
        verify(part("placeholder").busy);
        server.reply("getVolume", volumes, "0");
        verify(page.settled);
        tryVerify(() => findChild(page, "volume:/") !== null);
        const row = part("volume:/");
        compare(text(row, "name"), "System");
        compare(text(row, "path"), "/");
        compare(text(row, "free"), "40.00 GB free of 100.00 GB · 40 %");
        compare(text(findChild(row, "legend:unknown"), "words"), "Taken, not counted yet: 60.00 GB · 60 %");
        verify(findChild(row, "systemMark").visible);
        verify(!findChild(row, "nasMark").visible);
        verify(!part("errorStrip").visible);
        verify(!part("placeholder").visible);
        const full = part("volume:" + volumes[1].volumePath);
        compare(text(full, "free"), "12.50 GB free of 4.00 TB · < 1 %");
        compare(text(page, "subtitle"), "2 volumes · 52.50 GB free of 4.10 TB");
    }

    function test_nasPathIsMarked(): void {
        openFilled({});
        server.reply("addNASPathsToVolume", [{ diskName: "//nas/video", diskTotal: 2 * gigabyte, diskUsed: gigabyte }],
                     "0");
        tryVerify(() => findChild(page, "volume://nas/video") !== null);
        const row = part("volume://nas/video");
        verify(findChild(row, "nasMark").visible);
        compare(text(row, "free"), "1.00 GB free of 2.00 GB · 50 %");
        tryVerify(() => text(page, "subtitle") === "3 volumes · 53.50 GB free of 4.10 TB");
    }

    function test_aLostVolumeStaysAndIsNamed(): void {
        const GB = 1024 * gigabyte; // bytes
        const groups = [{ recordingGroupID: "a", recordingGroupName: "North", paths: ["/mnt/disk/rec"],
                          recordedBytes: 5 * GB, reserveSpace: 0 }];
        const told = state => [
            { volumePath: "/", volumeName: "System", volumeIsSystem: true, kind: "local", state: "there",
              size: 100 * GB, free: 40 * GB, reservedForRoot: 5 * GB, otherBytes: 54 * GB, withoutGroupBytes: GB, groups: [] },
            { volumePath: "/mnt/disk", volumeName: "Disk", kind: "local", state: state, groups: groups,
              size: state === "there" ? 10 * GB : -1, free: state === "there" ? 5 * GB : -1,
              since: state === "there" ? undefined : "2026-01-02T03:04:05.000Z" }
        ];
        server.setStorage(told("there"));
        open("VolumesPage", { startPlace: "/mnt/disk/rec" });
        const disk = { volumePath: "/mnt/disk", volumeName: "Disk", volumeSize: 10 * gigabyte,
                       volumeAvailableSize: 5 * gigabyte, volumeIsSystem: false };
        server.reply("getVolume", [volumes[0], disk], "0");
        tryVerify(() => findChild(page, "volume:/mnt/disk") !== null);
        compare(text(part("volume:/"), "free"), "40.00 GB free of 100.00 GB · 40 %");
        compare(text(findChild(part("volume:/"), "legend:withoutGroup"), "words"), "Recordings of no group: 1.00 GB · 1 %");
        compare(part("volumes").currentIndex, 1, "where the page was to begin");
        server.setStorage(told("gone"));
        server.raise("VolumeChanged");
        server.reply("getVolume", [volumes[0]], "0");
        tryVerify(() => findChild(part("volume:/mnt/disk"), "lostMark").visible);
        tryVerify(() => part("volumes").list.itemAtIndex(0) === part("volume:/mnt/disk"), 5000, "above those that are there");
        compare(part("volumes").currentIndex, 0, "it is the same row");
        verify(text(part("volume:/mnt/disk"), "free").startsWith("Not there since "));
        tryCompare(part("subtitle"), "text", "2 volumes · 1 lost · 40.00 GB free of 100.00 GB");
        waitForRendering(page);
        checkGeometry(page);
        page.destroy();
        wait(0);
        open("VolumesPage", { width: 1000 });
        server.reply("getVolume", [volumes[0]], "0");
        tryVerify(() => findChild(page, "volume:/mnt/disk") !== null);
        waitForRendering(page);
        verify(part("volume:/mnt/disk").height < 120, "no taller than its words");
        server.setStorage([told("gone")[0]]);
        tryVerify(() => findChild(page, "volume:/mnt/disk") === null, 5000, "no group names it any more");
    }

    function test_figuresOfAnEarlierTimeAreTold(): void {
        const told = values => [Object.assign({ volumePath: "/", volumeName: "System", kind: "local", state: "there",
            size: 100 * 1024 * gigabyte, free: 40 * 1024 * gigabyte, unknownBytes: 60 * 1024 * gigabyte, groups: [] }, values)];
        openFilled({});
        server.setStorage(told({ counted: true, countedAt: "2026-01-02T03:04:05.000Z" }));
        tryCompare(findChild(part("volume:/"), "free"), "text", "40.00 GB free of 100.00 GB · 40 %");
        server.setStorage(told({ counted: false }));
        tryCompare(findChild(part("volume:/"), "free"), "text", "40.00 GB free of 100.00 GB · 40 % · recordings not counted yet");
        const then = new Date("2026-01-02T03:04:05.000Z");
        server.setStorage(told({ counted: false, countedAt: "2026-01-02T03:04:05.000Z" }));
        tryCompare(findChild(part("volume:/"), "free"), "text", "40.00 GB free of 100.00 GB · 40 % · recordings as of " + Units.moment(then));
        verify(part("volume:/").Accessible.name.includes("recordings as of"));
    }

    SignalSpy {
        id: placeWanted

        signalName: "placeWanted"
    }

    function test_aVolumeLeadsToItsRecordingsOfNoGroup(): void {
        const GB = 1024 * gigabyte; // bytes
        server.setStorage([
            { volumePath: "/", kind: "local", state: "there", size: 100 * GB, free: 40 * GB, withoutGroupBytes: 60 * GB, groups: [] },
            { volumePath: volumes[1].volumePath, kind: "local", state: "there", size: 100 * GB, free: 100 * GB, groups: [] }
        ]);
        openFilled({});
        placeWanted.target = page;
        placeWanted.clear();
        part("volumes").list.forceActiveFocus();
        part("volumes").currentIndex = 1;
        keyClick(Qt.Key_Return);
        compare(placeWanted.count, 0, "there are none on it");
        part("volumes").currentIndex = 0;
        keyClick(Qt.Key_Return);
        compare(placeWanted.count, 1);
        compare(Array.from(placeWanted.signalArguments[0]), ["usage", "unassigned"]);
        const entry = findChild(part("volume:/"), "legend:withoutGroup");
        tryVerify(() => !isUnsettled(page));
        mouseClick(findChild(entry, "words"));
        compare(placeWanted.count, 2);
        mouseClick(findChild(findChild(part("volume:/"), "legend:free"), "words"));
        compare(placeWanted.count, 2);
        placeWanted.target = null;
    }

    function test_foldersOfOneShareCountOnce(): void {
        openFilled({});
        for (const folder of ["a", "b"]) {
            server.reply("addNASPathsToVolume", [{ diskName: "//nas/video/" + folder, diskTotal: 2 * gigabyte,
                                                   diskUsed: gigabyte }], "0");
        }
        tryVerify(() => text(page, "subtitle") === "4 volumes · 53.50 GB free of 4.10 TB");
    }

    function test_figuresThatDoNotComeAreSaid(): void {
        openFilled({});
        server.failStorage("NoAnswer");
        compare(part("storageStrip").text, "What the volumes hold is not known: The station did not answer in time.");
        compare(text(part("volume:/"), "free"), "40.00 GB free of 100.00 GB · 40 %", "as the plug-in has them");
        server.setStorage([]);
        verify(!part("storageStrip").visible);
    }

    function test_refreshSendsOneRequest_data() {
        return [{ tag: "button", key: 0 }, { tag: "F5", key: Qt.Key_F5 }];
    }
    function test_refreshSendsOneRequest(row): void {
        openFilled({});
        if (row.key)
            keyClick(row.key);
        else
            mouseClick(part("refresh"));
        compare(server.takeSent(), ["getVolume"]);
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), [], "the reply is still to come");
    }

    function test_changeAsksAgain(): void {
        openFilled({});
        server.raise("VolumeChanged");
        compare(server.takeSent().filter(line => line === "getVolume"), ["getVolume"]);
    }

    function test_refusalShowsTheStrip_data() {
        return [
            { tag: "NoAnswer", words: "The station did not answer in time." },
            { tag: "Code77", words: "The station refused: Code77" }
        ];
    }
    function test_refusalShowsTheStrip(row): void {
        openFilled({});
        page.refresh();
        server.reply("getVolume", [], row.tag);
        compare(part("errorStrip").visible, true);
        compare(part("errorStrip").text, row.words);
        compare(part("placeholder").title, "The volumes could not be listed");
        server.takeSent();
        click("errorAction");
        compare(server.takeSent(), ["getVolume"]);
        server.reply("getVolume", volumes, "0");
        verify(!part("errorStrip").visible);
    }

    function test_unsentRequestShowsTheStrip(): void {
        server.setAccepts(false);
        open("VolumesPage", {});
        verify(page.settled);
        compare(part("errorStrip").text, "The request could not be sent.");
    }

    function test_unsentRequestTellsThePluginsReason_data(): var {
        return [
            { tag: "known", fact: "host is empty", words: "The host is missing." },
            { tag: "another", fact: "Pathinfo's structure is error",
              words: "The request was not sent: Pathinfo's structure is error." },
            { tag: "not taken", fact: "Send command failed", words: "The request could not be sent." },
            { tag: "none", fact: "", words: "The request could not be sent." },
        ];
    }
    function test_unsentRequestTellsThePluginsReason(data: var): void {
        server.setAccepts(false);
        server.setPluginFact(data.fact);
        open("VolumesPage", {});
        compare(part("errorStrip").text, data.words);
    }

    function test_emptyListSaysSo(): void {
        open("VolumesPage", {});
        server.reply("getVolume", [], "0");
        verify(part("placeholder").visible);
        compare(part("placeholder").title, "No volumes to show");
        verify(!part("errorStrip").visible);
    }

    function test_waitsForTheConnection(): void {
        server.setConnected(false);
        open("VolumesPage", {});
        compare(server.takeSent(), []);
        compare(part("placeholder").title, "No connection to the station");
        server.setConnected(true);
        compare(server.takeSent(), ["getVolume"]);
    }

    function test_sizesFit_data() {
        return [{ tag: "wide", width: 1000, height: 700 }, { tag: "middle", width: 740, height: 540 },
                { tag: "narrow", width: 380, height: 560 }];
    }
    function test_sizesFit(row): void {
        openFilled({ width: row.width, height: row.height });
        waitForRendering(page);
        checkGeometry(page);
        const list = part("list");
        tryVerify(() => list.height >= list.contentHeight, 5000, "every row is in view where there is room");
    }

    function test_everyWidthFits(): void {
        openFilled({ height: 700 });
        dragThroughWidths();
    }

    function test_themesDiffer(): void {
        openFilled({});
        const grounds = [];
        for (const scheme of [Theme.alwaysLight, Theme.alwaysDark]) {
            Theme.scheme = scheme;
            waitForRendering(page);
            grounds.push(String(part("volumes").color));
            checkGeometry(page);
        }
        Theme.scheme = Theme.followDesktop;
        compare(grounds, ["#ffffff", "#1b222a"]);
    }

    function test_aFailureThatWasClosedIsNoEmptyList(): void {
        open("VolumesPage");
        server.reply("getVolume", [], "InternalError");
        verify(part("errorStrip").visible);
        const title = part("placeholder").title;
        mouseClick(part("errorClose"));
        verify(!part("errorStrip").visible);
        compare(part("placeholder").title, title);
        page.refresh();
        server.reply("getVolume", [], "InternalError");
        verify(part("errorStrip").visible, "the same failure, once more");
    }

    function test_aLostVolumeTellsOfNoRecordingsItHasNot_data(): var {
        return [{ tag: "no recordings", recorded: 0, words: "" }, { tag: "not known", recorded: -1, words: "" },
                { tag: "recordings", recorded: 5, words: " · recordings as of " }];
    }

    function test_aLostVolumeTellsOfNoRecordingsItHasNot(row): void {
        const then = "2026-01-02T03:04:05.000Z";
        openFilled({});
        server.setStorage([{ volumePath: "/mnt/disk", volumeName: "Spare disk", kind: "local", state: "gone", size: -1, free: -1,
                             counted: false, countedAt: then, since: then,
                             groups: [{ recordingGroupID: "{a}", paths: ["/mnt/disk/a"], recordedBytes: row.recorded, reserveSpace: 0 }] }]);
        tryVerify(() => findChild(page, "volume:/mnt/disk") !== null);
        const moment = Units.moment(new Date(then));
        tryCompare(findChild(part("volume:/mnt/disk"), "free"), "text",
                   "Not there since " + moment + (row.words === "" ? "" : row.words + moment));
    }

    Component {
        id: memory

        ConsoleSettings {}
    }

    function test_theOrderIsRemembered(): void {
        const settings = memory.createObject(test) as ConsoleSettings;
        openFilled({ settings: settings });
        compare(part("volumes").order, 0);
        part("volumes").sortBy(3);
        page.destroy();
        wait(0);
        openFilled({ settings: settings });
        compare(part("volumes").order, 3);
        compare(part("volumes").rows.orderBy, "size");
        verify(part("volumes").rows.descending);
        settings.setValue("order/volumes", "+nothing");
        page.destroy();
        wait(0);
        openFilled({ settings: settings });
        compare(part("volumes").order, 0, "an order that there is no longer");
        page.destroy();
        page = null;
        settings.destroy();
    }
}
