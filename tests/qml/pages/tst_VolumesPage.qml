import QtQuick
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
        compare(text(row, "used"), "60.00 GB used");
        compare(text(row, "free"), "40.00 GB free of 100.00 GB");
        compare(text(row, "percent"), "60 %");
        fuzzyCompare(findChild(row, "bar").share, 0.6, 0.0001);
        verify(findChild(row, "systemMark").visible);
        verify(!findChild(row, "nasMark").visible);
        verify(!findChild(row, "lowMark").visible);
        verify(!part("errorStrip").visible);
        verify(!part("placeholder").visible);
        const full = part("volume:" + volumes[1].volumePath);
        verify(findChild(full, "lowMark").visible);
        compare(text(full, "percent"), "> 99 %");
        compare(text(page, "subtitle"), "2 volumes · 52.50 GB free of 4.10 TB");
    }

    function test_nasPathIsMarked(): void {
        openFilled({});
        server.reply("addNASPathsToVolume", [{ diskName: "//nas/video", diskTotal: 2 * gigabyte, diskUsed: gigabyte }],
                     "0");
        tryVerify(() => findChild(page, "volume://nas/video") !== null);
        const row = part("volume://nas/video");
        verify(findChild(row, "nasMark").visible);
        compare(text(row, "used"), "1.00 GB used");
        tryVerify(() => text(page, "subtitle") === "3 volumes · 53.50 GB free of 4.10 TB");
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
        mouseClick(part("errorAction"));
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
}
