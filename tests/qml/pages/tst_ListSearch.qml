import QtQuick

/// Search, order and letters in the lists of the pages.
PageTest {
    id: test

    name: "ListSearch"

    readonly property int count: 60

    /// Group n misses n days of its reserved time.
    function figures(more) {
        return Array.from({ length: count }, (value, index) => ({
            recordingGroupID: "{g" + (index + 1) + "}", recordingGroupName: "Hall " + (index + 1),
            recordingGroupReservedTime: 100 * 24 * 60, recordingPath: "/srv/" + index, volumeName: "Disk",
            volumeSize: 1000, volumeAvailableSize: 0, volumeOneDayUsage: 1024 * (index + 1),
            volumeRecordedDays: 99 - index + (more[index + 1] ?? 0), volumeIsSystem: false, volumeIsNAS: false
        }));
    }

    function openUsage(): void {
        open("UsagePage", { height: 500 });
        server.raise("VolumeChanged", figures({}));
        tryCompare(part("groups"), "count", count);
        part("list").forceActiveFocus();
    }

    function type(words): void {
        for (const key of words)
            keyClick(key);
    }

    function names() {
        return part("groups").rows.names();
    }

    function current(): string {
        return part("list").currentItem?.groupId ?? "";
    }

    function test_manyGroupsBeginCollapsed(): void {
        openUsage();
        verify(!part("list").currentItem.expanded);
        keyClick(Qt.Key_Right);
        verify(part("list").currentItem.expanded, "one of them");
        mouseClick(part("expandAll"));
        tryVerify(() => part("list").itemAtIndex(1)?.expanded ?? false);
        verify(part("list").currentItem.expanded);
        part("list").forceActiveFocus();
        keyClick(Qt.Key_Left);
        verify(!part("list").currentItem.expanded);
        mouseClick(part("expandAll"));
        tryVerify(() => !(part("list").itemAtIndex(1)?.expanded ?? true));
        verify(!part("list").currentItem.expanded);
    }

    function test_searchAndBack(): void {
        openUsage();
        compare(current(), "{g60}", "the worst first");
        keyClick("f", Qt.ControlModifier);
        verify(part("searchField").activeFocus);
        type("hall 4");
        compare(text(page, "searchCount"), "15 of 60");
        compare(names()[0], "Hall 54", "still the worst first");
        keyClick(Qt.Key_Down);
        verify(part("list").activeFocus);
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Down);
        tryVerify(() => current() === "{g49}");
        server.raise("VolumeChanged", figures({ 49: 20 }));
        tryVerify(() => current() === "{g49}", 5000, "the current group stays so when it moves");
        keyClick(Qt.Key_Escape);
        tryCompare(part("groups"), "count", count);
        tryVerify(() => current() === "{g49}");
        verify(part("list").activeFocus);
    }

    function test_nothingFound(): void {
        openUsage();
        keyClick("f", Qt.ControlModifier);
        type("xyz");
        compare(part("groups").count, 0);
        verify(part("nothingFound").visible && !part("placeholder").visible);
        compare(part("nothingFound").text, "None of 60 contains “xyz”. Esc shows all of them.");
        server.raise("VolumeChanged", figures({ 1: -1 }));
        compare(part("groups").count, 0, "figures that come do not end the search");
        page.goTo("{g7}");
        tryVerify(() => current() === "{g7}", 5000, "what somebody is led to is never hidden");
        compare(part("searchField").text, "");
        compare(part("groups").count, count);
    }

    function test_order(): void {
        openUsage();
        part("groups").sortBy(1);
        compare(names().slice(0, 3), ["Hall 1", "Hall 2", "Hall 3"]);
        compare(names()[9], "Hall 10");
        tryVerify(() => current() === "{g60}", 5000, "the current group stays so");
        part("groups").sortBy(3);
        compare(names()[0], "Hall 60", "the most a day first");
        part("groups").sortBy(0);
        tryVerify(() => current() === "{g60}");
        compare(part("list").currentIndex, 0);
    }

    function test_lettersLeadOn(): void {
        openUsage();
        part("groups").sortBy(1);
        keyClick(Qt.Key_Home);
        type("hall3");
        tryVerify(() => current() === "{g3}");
        type("0");
        tryVerify(() => current() === "{g30}");
        compare(part("searchField").text, "", "the search is not meant");
    }

    function test_folders(): void {
        open("FoldersPage", { startPlace: "/srv" });
        const list = (path, folders) => server.reply("getServerDir", { basePath: path, dirFolderList: folders }, "0");
        list("/srv", Array.from({ length: 12 }, (value, index) => "day " + (index + 1)));
        tryCompare(part("folders"), "count", 12);
        compare(part("folders").rows.names()[1], "day 2", "not day 10");
        part("list").forceActiveFocus();
        keyClick("f", Qt.ControlModifier);
        type("12");
        compare(part("folders").count, 1);
        compare(text(page, "subtitle"), "12 folders");
        keyClick(Qt.Key_Return);
        tryVerify(() => part("list").activeFocus && part("list").currentItem?.nameRole === "day 12");
        keyClick(Qt.Key_F5);
        list("/srv", Array.from({ length: 13 }, (value, index) => "day " + (index + 1)));
        compare(part("folders").count, 1, "the search outlives a refresh of the same folder");
        keyClick(Qt.Key_Return);
        list("/srv/day 12", ["a", "b"]);
        tryCompare(part("folders"), "count", 2, 5000, "and not another folder");
    }

    function test_volumes(): void {
        open("VolumesPage", {});
        const gigabyte = 1024 * 1024;
        server.reply("getVolume", Array.from({ length: 12 }, (value, index) => ({
            volumePath: "/srv/" + index, volumeName: "Disk " + index, volumeSize: (20 - index) * gigabyte,
            volumeAvailableSize: (index * 7 % 12) * gigabyte, volumeIsSystem: false })), "0");
        tryCompare(part("volumes"), "count", 12);
        part("list").forceActiveFocus();
        keyClick("f", Qt.ControlModifier);
        type("srv/11");
        compare(part("volumes").count, 1);
        verify(page.subtitle.startsWith("12 volumes"));
        page.goTo("/srv/4/deep");
        tryVerify(() => part("list").currentItem?.path === "/srv/4");
        compare(part("volumes").count, 12);
        part("volumes").sortBy(2);
        compare(volumeNames()[0], "Disk 0", "the least free first");
        part("volumes").sortBy(3);
        compare(volumeNames()[11], "Disk 11", "the largest first");
    }

    function volumeNames() {
        return part("volumes").rows.names();
    }
}
