import QtQuick
import RecordingConsole

PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024
    readonly property int day: 24 * 60

    name: "UsagePage"

    /// One entry of the event; one-day usage of 1 GB, so that the remaining days are the available gigabytes.
    function entry(id, name, reservedDays, recordedDays, availableGigabytes, more) {
        return Object.assign({
            recordingGroupID: id, recordingGroupName: name, recordingGroupReservedTime: reservedDays * day,
            recordingPath: "/srv/" + id, volumeName: "Disk of " + name, volumeSize: 100 * gigabyte,
            volumeAvailableSize: availableGigabytes * gigabyte, volumeOneDayUsage: gigabyte * 1024,
            volumeRecordedDays: recordedDays, volumeIsSystem: false, volumeIsNAS: false
        }, more ?? {});
    }

    readonly property var site: [
        entry("a", "Sufficient", 30, 20, 12),
        entry("b", "Somewhat short", 30, 20, 8),
        entry("c", "Unknown days", 30, -1, 8),
        entry("d", "Much too short", 30, 3, 2),
        entry("backupID", "", 0, 4, 6, { volumeIsNAS: true })
    ]

    function openFilled(properties): void {
        open("UsagePage", Object.assign({ patience: 0 }, properties));
        server.raise("VolumeChanged", site);
        tryVerify(() => page.settled && findChild(page, "group:d") !== null);
        waitUntilLaidOut();
        server.takeSent();
    }

    /// Every row in view stands below the one above it.
    function waitUntilLaidOut(): void {
        waitForRendering(page);
        tryVerify(() => {
            for (let row = 1; row < list().count; ++row) {
                const above = list().itemAtIndex(row - 1);
                const item = list().itemAtIndex(row);
                if (above && item && (item.y !== above.y + above.height || item.height !== item.implicitHeight))
                    return false;
            }
            return !isPolishScheduled(list());
        });
    }

    function list() {
        return part("groups").list;
    }

    /// The ids in the order of the rows.
    function order() {
        const ids = [];
        for (let row = 0; row < list().count; ++row)
            ids.push(list().itemAtIndex(row)?.groupId ?? "");
        return ids;
    }

    function test_asksAtOnceAndShowsFigures(): void {
        open("UsagePage", { height: 1600 });
        compare(server.takeSent(), ["reloadStorageUsageInfo"]);
        verify(!page.settled);
        verify(part("placeholder").busy);
        server.raise("VolumeChanged", site);
        verify(!page.settled, "one group is still counted");
        server.raise("VolumeChanged", [site[0], site[4]]);
        verify(page.settled);
        server.raise("VolumeChanged", site);
        tryVerify(() => findChild(page, "group:backupID") !== null);
        verify(!part("placeholder").visible);
        const group = part("group:b");
        compare(text(group, "name"), "Somewhat short");
        compare(text(group, "usage"), "1 volume · 1.00 GB a day");
        compare(text(group, "recorded"), "20 days recorded");
        compare(text(group, "remaining"), "8 days remaining");
        compare(text(group, "reserved"), "30 days reserved");
        compare(text(group, "standing"), "2 days short");
        compare(text(part("group:a"), "standing"), "Sufficient");
        compare(text(page, "subtitle"), "5 groups · 2 short of the reserved time · 1 unknown");
        compare(group.Accessible.name,
                "Somewhat short, 2 days short, 20 days recorded, 8 days remaining, 30 days reserved, 1.00 GB a day, "
                + "1 volume");
    }

    function test_gaugeIsToScale(): void {
        openFilled({ height: 1600 });
        const insufficient = findChild(part("group:b"), "gauge");
        fuzzyCompare(findChild(insufficient, "recordedPart").width, insufficient.width * 20 / 30, 1);
        fuzzyCompare(findChild(insufficient, "remainingPart").width, insufficient.width * 28 / 30, 1);
        fuzzyCompare(findChild(insufficient, "mark").x + 3, insufficient.width, 1);
        verify(findChild(insufficient, "mark").visible);
        verify(findChild(insufficient, "missingPart").visible);
        fuzzyCompare(findChild(insufficient, "missingPart").width, insufficient.width * 2 / 30, 1);
        const sufficient = findChild(part("group:a"), "gauge");
        fuzzyCompare(findChild(sufficient, "remainingPart").width, sufficient.width, 1);
        fuzzyCompare(findChild(sufficient, "mark").x, sufficient.width * 30 / 32, 1);
        verify(!findChild(sufficient, "missingPart").visible);
        verify(!findChild(findChild(part("group:backupID"), "gauge"), "mark").visible);
    }

    function test_worstFirst(): void {
        openFilled({ height: 1600 });
        tryVerify(() => order().join() === "d,b,c,backupID,a", 5000, order().join());
    }

    function test_equalOnesByName(): void {
        open("UsagePage", { height: 1600 });
        server.raise("VolumeChanged", [entry("3", "Beta", 9, 1, 1), entry("2", "alpha", 9, 1, 1),
                                       entry("1", "Gamma", 9, 1, 1)]);
        tryVerify(() => order().join() === "2,3,1", 5000, order().join());
    }

    function test_unknownIsSaidAndNeverZero_data() {
        return [
            { tag: "recorded", values: { volumeRecordedDays: -1 }, words: ["Recorded: unknown", "8 days remaining"],
              usage: "1 volume · 1.00 GB a day", recorded: 0 },
            { tag: "usage", values: { volumeOneDayUsage: -1 }, words: ["20 days recorded", "Remaining: unknown"],
              usage: "1 volume · Usage a day unknown", recorded: 20 },
            { tag: "both", values: { volumeOneDayUsage: -1, volumeRecordedDays: -1 },
              words: ["Recorded: unknown", "Remaining: unknown"], usage: "1 volume · Usage a day unknown",
              recorded: 0 }
        ];
    }
    function test_unknownIsSaidAndNeverZero(row): void {
        open("UsagePage", {});
        server.raise("VolumeChanged", [entry("g", "Group", 30, 20, 8, row.values)]);
        tryVerify(() => findChild(page, "group:g") !== null);
        const group = part("group:g");
        compare([text(group, "recorded"), text(group, "remaining")], row.words);
        compare(text(group, "usage"), row.usage);
        compare(text(group, "standing"), "Unknown");
        verify(!findChild(group, "missingPart").visible);
        compare(findChild(group, "recordedPart").width > 0, row.recorded > 0);
        const texts = [];
        collectTexts(group, texts);
        verify(texts.every(item => !/(^|[^0-9])-?[01] days?\b/.test(item.text) && !item.text.includes("-1")));
    }

    function test_zeroIsAFigure(): void {
        open("UsagePage", {});
        server.raise("VolumeChanged", [entry("g", "Group", 1, 0, 0)]);
        tryVerify(() => findChild(page, "group:g") !== null);
        const group = part("group:g");
        compare(text(group, "recorded"), "0 days recorded");
        compare(text(group, "remaining"), "0 days remaining");
        compare(text(group, "reserved"), "1 day reserved");
        compare(text(group, "standing"), "1 day short");
    }

    function test_reservedTime_data() {
        return [
            { tag: "none", minutes: 0, words: "No reserved time", standing: "" },
            { tag: "below two days", minutes: 2879, words: "1 day 23 hours 59 minutes reserved", standing: "Sufficient" },
            { tag: "two days", minutes: 2880, words: "2 days reserved", standing: "1 day short" },
            { tag: "below a day", minutes: 90, words: "1 hour 30 minutes reserved", standing: "Sufficient" }
        ];
    }
    function test_reservedTime(row): void {
        open("UsagePage", {});
        server.raise("VolumeChanged", [entry("g", "Group", 0, 1, 0, { recordingGroupReservedTime: row.minutes })]);
        tryVerify(() => findChild(page, "group:g") !== null);
        compare(text(part("group:g"), "reserved"), row.words);
        compare(text(part("group:g"), "standing"), row.standing);
    }

    function test_volumesStandBelow(): void {
        open("UsagePage", { height: 900 });
        server.raise("VolumeChanged", [
            entry("g", "Group", 30, 20, 25),
            entry("g", "Group", 30, -1, 0, { recordingPath: "//nas/video", volumeName: "", volumeIsNAS: true }),
            entry("g", "Group", 30, -1, 0, { recordingPath: "/gone", volumeName: "Gone", volumeSize: 0 })
        ]);
        tryVerify(() => findChild(page, "volume:/gone") !== null);
        const group = part("group:g");
        compare(text(group, "usage"), "3 volumes · 3.00 GB a day");
        const disk = part("volume:/srv/g");
        compare(text(disk, "name"), "Disk of Group");
        compare(text(disk, "path"), "/srv/g");
        compare(text(disk, "free"), "Size 100.00 GB, free space unknown", "the group's share is no free space");
        compare(text(disk, "own"), "may fill 25.00 GB more");
        verify(!findChild(disk, "nasMark").visible);
        verify(!findChild(disk, "lostMark").visible);
        const nas = part("volume://nas/video");
        compare(text(nas, "name"), "//nas/video");
        verify(findChild(nas, "nasMark").visible);
        compare(text(nas, "own"), "may fill nothing more");
        const gone = part("volume:/gone");
        verify(findChild(gone, "lostMark").visible);
        compare(text(gone, "free"), "Not there");
        compare(gone.Accessible.name, "Gone, /gone, Not there, Not there");
    }

    function test_aVolumeIsDrawnAsTheStationTellsIt(): void {
        const GB = 1024 * gigabyte; // bytes
        server.setStorage([
            { volumePath: "/srv", volumeName: "Disk", kind: "local", state: "there", size: 100 * GB, free: 40 * GB,
              reservedForRoot: 5 * GB, otherBytes: 10 * GB,
              groups: [{ recordingGroupID: "h", recordingGroupName: "Other", paths: ["/srv/h"], recordedBytes: 30 * GB,
                         reserveSpace: 10240 },
                       { recordingGroupID: "g", recordingGroupName: "Group", paths: ["/srv/g"], recordedBytes: 15 * GB,
                         reserveSpace: 20480 }] },
            { volumePath: "/lost", volumeName: "Lost", kind: "local", state: "gone", since: "2026-01-02T03:04:05.000Z",
              size: -1, free: -1, groups: [{ recordingGroupID: "g", recordingGroupName: "Group", paths: ["/lost/g"],
                                             recordedBytes: 7 * GB, reserveSpace: 0 }] }
        ]);
        open("UsagePage", { height: 900 });
        server.raise("VolumeChanged", [entry("g", "Group", 30, 20, 25),
                                       entry("g", "Group", 30, -1, 0, { recordingPath: "/lost/g", volumeSize: 0 })]);
        tryVerify(() => findChild(page, "volume:/lost/g") !== null);
        const disk = part("volume:/srv/g");
        compare(text(disk, "name"), "Disk");
        compare(text(disk, "free"), "40.00 GB free of 100.00 GB · 40 %");
        compare(text(disk, "own"), "15.00 GB recorded · 20.00 GB reserved · may fill 25.00 GB more");
        compare(text(findChild(disk, "legend:groupg"), "words"), "Group: 15.00 GB · 15 %");
        compare(text(findChild(disk, "legend:grouph"), "words"), "Other: 30.00 GB · 30 %");
        compare(text(findChild(disk, "legend:other"), "words"), "Other files: 10.00 GB · 10 %");
        compare(text(findChild(disk, "legend:root"), "words"), "Reserved for root: 5.00 GB · 5 %");
        compare(text(findChild(disk, "legend:free"), "words"), "Free: 40.00 GB · 40 %");
        const bar = findChild(disk, "bar");
        fuzzyCompare(findChild(bar, "part:groupg").width, bar.width * 0.15, 1);
        fuzzyCompare(findChild(bar, "part:grouph").x, bar.width * 0.15, 1);
        fuzzyCompare(findChild(bar, "ownMark").x + 3, bar.width * 0.2, 1);
        fuzzyCompare(findChild(bar, "reservedMark").x + 2, bar.width * 0.3, 1);
        const lost = part("volume:/lost/g");
        verify(text(lost, "free").startsWith("Not there since "));
        compare(text(lost, "own"), "7.00 GB recorded");
        compare(text(part("group:g"), "standing"), "Sufficient", "it has a disk left");
    }

    function test_aGroupWithoutStorageStandsFirst(): void {
        open("UsagePage", { height: 900 });
        server.raise("VolumeChanged", [entry("short", "Short", 30, 1, 1),
                                       entry("lost", "Lost", 0, 5, 0, { volumeSize: 0 })]);
        tryVerify(() => order().join() === "lost,short", 5000, order().join());
        compare(text(part("group:lost"), "standing"), "No storage left");
        compare(text(page, "subtitle"), "2 groups · 1 without storage · 1 short of the reserved time");
    }

    function test_storageOfNoGroupIsShownLast(): void {
        open("UsagePage", { height: 900 });
        server.raise("VolumeChanged", [entry("", "", 0, -1, 5, { recordingPath: "/old" }),
                                       entry("g", "Group", 30, 1, 5)]);
        tryVerify(() => findChild(page, "volume:/old") !== null);
        compare(order(), ["g", ""]);
        compare(text(part("group:"), "name"), "Storage of no group");
        verify(!findChild(part("group:"), "gauge").visible);
        compare(text(page, "subtitle"), "1 group · 1 short of the reserved time");
    }

    function test_backupIsNamed(): void {
        openFilled({ height: 1600 });
        compare(text(part("group:backupID"), "name"), "Backup");
        compare(text(part("group:backupID"), "reserved"), "No reserved time");
    }

    function test_eventsReplaceFiguresAndKeepThePlace(): void {
        openFilled({ height: 300 });
        list().currentIndex = 2;
        list().positionViewAtIndex(2, ListView.Beginning);
        waitUntilLaidOut();
        list().positionViewAtIndex(2, ListView.Beginning); // rows that came into view took their heights
        const item = list().currentItem;
        compare(item.groupId, "c");
        const place = item.y - list().contentY;
        for (let round = 1; round < 30; ++round) {
            server.raise("VolumeChanged", site.map(one => Object.assign({}, one, {
                volumeRecordedDays: one.volumeRecordedDays < 0 ? -1 : one.volumeRecordedDays + round % 2
            })));
            wait(0);
            compare(list().currentItem, item);
            compare(list().currentIndex, 2);
            compare(item.y - list().contentY, place);
        }
        compare(page.failure, "");
    }

    function test_rowsFollowTheirStanding(): void {
        openFilled({ height: 1600 });
        list().currentIndex = 0;
        const item = list().currentItem;
        compare(item.groupId, "d");
        server.raise("VolumeChanged", site.map(one => one.recordingGroupID === "d"
            ? Object.assign({}, one, { volumeRecordedDays: 40 }) : one));
        tryVerify(() => order().join() === "b,c,backupID,d,a", 5000, order().join());
        compare(list().currentItem, item);
        compare(text(item, "recorded"), "40 days recorded");
        server.raise("VolumeChanged", site.filter(one => one.recordingGroupID !== "b"));
        tryVerify(() => order().join() === "d,c,backupID,a", 5000, order().join());
        server.raise("VolumeChanged", []);
        tryCompare(list(), "count", 0);
        tryVerify(() => part("placeholder").visible);
        compare(part("placeholder").title, "No recording groups");
    }

    function test_eventOfAnotherStationChangesNothing(): void {
        openFilled({ height: 1600 });
        server.raise("VolumeChanged", [entry("z", "Elsewhere", 30, 1, 1)], "other");
        compare(list().count, 5);
        compare(part("groups").list.model.rowOf("z"), -1);
    }

    function test_reconnectionAsksAgainAndShowsTheNewFigures(): void {
        openFilled({ height: 1600 });
        server.reconnect();
        compare(server.takeSent().filter(line => line === "reloadStorageUsageInfo").length, 2,
                "the plug-in's own request and the page's");
        wait(0);
        compare(list().count, 5, "the rows stay until the new figures come");
        server.raise("VolumeChanged", [entry("b", "Somewhat short", 30, 21, 8)]);
        tryVerify(() => order().join() === "b");
        compare(text(part("group:b"), "recorded"), "21 days recorded");
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
        compare(server.takeSent(), ["reloadStorageUsageInfo"]);
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), [], "the figures are still to come");
        server.reply("reloadStorageUsageInfo", null, "0");
        server.raise("VolumeChanged", site);
        keyClick(Qt.Key_F5);
        compare(server.takeSent(), ["reloadStorageUsageInfo"]);
    }

    function test_refusalShowsTheStrip(): void {
        openFilled({});
        page.refresh();
        server.takeSent();
        server.reply("reloadStorageUsageInfo", null, "NoAnswer");
        compare(part("errorStrip").text, "The station did not answer in time.");
        compare(list().count, 5, "what is known stays in view");
        click("errorAction");
        compare(server.takeSent(), ["reloadStorageUsageInfo"]);
        server.raise("VolumeChanged", site);
        verify(!part("errorStrip").visible);
    }

    function test_refusalOfTheFirstRequestIsSaid(): void {
        open("UsagePage", {});
        server.reply("reloadStorageUsageInfo", null, "UnknownCommand");
        verify(page.settled);
        compare(part("placeholder").title, "The usage could not be shown");
        compare(part("errorStrip").text, "The station does not know this command.");
    }

    function test_unsentRequestShowsTheStrip(): void {
        server.setAccepts(false);
        open("UsagePage", {});
        verify(page.settled);
        compare(part("errorStrip").text, "The request could not be sent.");
    }

    function test_waitsForTheConnection(): void {
        server.setConnected(false);
        open("UsagePage", {});
        compare(server.takeSent(), []);
        compare(part("placeholder").title, "No connection to the station");
        server.setConnected(true);
        compare(server.takeSent(), ["reloadStorageUsageInfo"]);
    }

    function test_figuresOfBeforeAreShownAtOnce(): void {
        server.raise("VolumeChanged", site);
        open("UsagePage", { startPlace: "c" });
        compare(list().count, 5);
        compare(list().currentItem.groupId, "c");
    }

    function test_goToAGroup(): void {
        openFilled({ height: 300 });
        page.goTo("a");
        compare(list().currentItem.groupId, "a");
        const item = list().currentItem;
        verify(item.y < list().contentY + list().height && item.y + item.height > list().contentY, "in view");
        page.goTo("later");
        compare(list().currentItem.groupId, "a");
        server.raise("VolumeChanged", site.concat([entry("later", "Later", 30, 1, 1)]));
        tryVerify(() => list().currentItem.groupId === "later");
        list().currentIndex = 0;
        server.raise("VolumeChanged", site);
        compare(list().currentIndex, 0, "once is enough");
    }

    function test_keyboard(): void {
        openFilled({ height: 1600 });
        list().currentIndex = 0;
        list().forceActiveFocus();
        keyClick(Qt.Key_Down);
        const group = list().currentItem;
        compare(group.groupId, "b");
        verify(findChild(group, "volume:/srv/b"));
        for (const key of [Qt.Key_Left, Qt.Key_Space]) {
            keyClick(key);
            tryVerify(() => findChild(group, "volume:/srv/b") === null);
            compare(group.Accessible.description, "Volumes hidden");
            keyClick(Qt.Key_Right);
            tryVerify(() => findChild(group, "volume:/srv/b") !== null);
            keyClick(Qt.Key_Right);
            verify(findChild(group, "volume:/srv/b"), "it is expanded already");
        }
        keyClick(Qt.Key_Return);
        tryVerify(() => findChild(group, "volume:/srv/b") === null);
        server.raise("VolumeChanged", site);
        verify(!group.expanded, "an event changes nothing about it");
        keyClick(Qt.Key_End);
        compare(list().currentIndex, 4);
    }

    function test_mouse(): void {
        openFilled({ height: 1600 });
        const group = part("group:b");
        mouseClick(findChild(group, "expander"));
        tryVerify(() => !group.expanded);
        mouseClick(group, group.width / 2, 8);
        compare(list().currentItem, group);
        verify(list().activeFocus);
    }

    function test_sizesFit_data() {
        return [{ tag: "1280", width: 1020 }, { tag: "800", width: 692 }, { tag: "400", width: 308 }];
    }
    function test_sizesFit(row): void {
        openWithExtremes({ width: row.width, height: 3000 });
        checkGeometry(page);
    }

    function test_everyWidthFits(): void {
        openWithExtremes({ height: 712 });
        dragThroughWidths();
    }

    function openWithExtremes(properties): void {
        open("UsagePage", properties);
        server.raise("VolumeChanged", site.concat([
            entry("long", "A recording group with a name that goes on and on without an end", 400, 2147483647, 99999999,
                  { recordingPath: "/srv/a-mount-point-with-a-rather-long-path/that-goes-on", volumeIsNAS: true,
                    volumeIsSystem: true, volumeSize: 1e15 }),
            entry("", "", 0, -1, 5),
            entry("nothing", "Nothing known", 30, -1, -1, { volumeOneDayUsage: -1, volumeSize: -1 })
        ]));
        tryVerify(() => list().count === 8);
        waitUntilLaidOut();
    }

    function test_themesDiffer(): void {
        openFilled({});
        const grounds = [];
        for (const scheme of [Theme.alwaysLight, Theme.alwaysDark]) {
            Theme.scheme = scheme;
            waitUntilLaidOut();
            grounds.push(String(part("groups").color));
            checkGeometry(page);
        }
        Theme.scheme = Theme.followDesktop;
        compare(grounds, ["#ffffff", "#1b222a"]);
    }

    Component {
        id: memory

        ConsoleSettings {}
    }

    function test_orderAndExpansionAreRemembered(): void {
        const settings = memory.createObject(test) as ConsoleSettings;
        const again = () => {
            page.destroy();
            wait(0);
            openFilled({ settings: settings, height: 1600 });
        };
        openFilled({ settings: settings, height: 1600 });
        verify(part("group:a").expanded, "a few groups show their volumes");
        page.expand("a", false);
        part("groups").sortBy(1);
        again();
        compare(part("groups").order, 1);
        verify(!part("group:a").expanded);
        verify(part("group:b").expanded);
        page.expandAll(false);
        page.expand("d", true);
        again();
        verify(!part("group:a").expanded && !part("group:b").expanded);
        verify(part("group:d").expanded);
        compare(settings.value("expansion/usage", {}).others, ["d"]);
        settings.setValue("expansion/usage", { expanded: "yes" });
        again();
        verify(part("group:a").expanded, "nonsense is not used");
        page.destroy();
        page = null;
        settings.destroy();
    }
}
