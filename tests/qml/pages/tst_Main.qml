import QtQuick
import QtTest
import RecordingConsole

/// The window around the pages.
TestCase {
    id: test

    property var window: null

    name: "Main"
    when: windowShown

    function init(): void {
        failOnWarning(/.*/);
    }

    function cleanup(): void {
        window.destroy();
        window = null;
        wait(0);
        Theme.scheme = Theme.followDesktop;
        server.renew();
    }

    function open(properties): void {
        const component = Qt.createComponent("qrc:/qt/qml/RecordingConsole/Main.qml");
        compare(component.errorString(), "");
        window = component.createObject(null, Object.assign({
            recording: server.recording, session: server.session, width: 1000, height: 700
        }, properties));
        verify(window);
        verify(waitForRendering(window.contentItem));
    }

    function part(name) {
        const found = findChild(window.contentItem, name);
        verify(found, name);
        return found;
    }

    function test_everyPageLoads(): void {
        open({});
        for (let i = 0; i < window.pages.length; ++i) {
            mouseClick(part("tab:" + window.pages[i].key));
            compare(window.currentIndex, i);
            verify(!window.broken, window.pages[i].source);
            verify(window.currentPage.visible);
            verify(window.title.startsWith(window.pages[i].title));
        }
        compare(server.takeSent(), ["getVolume", "getVolume", "retrieveRecordingGroupTreeModel", "reloadStorageUsageInfo", "getServerDir", "GetNasServers"]);
    }

    function test_pageKeepsItsStateWhileAnotherIsShown(): void {
        open({ startPage: "folders", startPlace: "/srv" });
        server.reply("getServerDir", { basePath: "/srv", dirFolderList: ["a"] }, "0");
        mouseClick(part("tab:volumes"));
        verify(!window.settled);
        mouseClick(part("tab:folders"));
        verify(window.settled);
        compare(window.currentPage.folder, "/srv");
        compare(server.takeSent(), ["getServerDir /srv", "getVolume"]);
    }

    function test_connectionIsSaidInWords(): void {
        open({});
        compare(part("connection").text, "Connected to the station on this machine");
        server.setConnected(false);
        compare(part("connection").text, "No connection to the station on this machine");
    }

    function test_schemeIsTakenAndSwitched(): void {
        open({ scheme: Theme.alwaysDark });
        compare(String(window.color), "#12171d");
        compare(part("scheme").text, "Dark");
        mouseClick(part("scheme"));
        compare(part("scheme").text, "As the desktop");
        mouseClick(part("scheme"));
        compare(part("scheme").text, "Light");
        compare(String(window.color), "#f3f5f8");
    }

    function test_focusComesBackFromADialog(): void {
        open({ startPage: "groups" });
        server.reply("getVolume", [], "0");
        server.reply("retrieveRecordingGroupTreeModel", [
            { recordingGroupID: "{a}", recordingGroupName: "Gate", relayPath: "st1" },
            { recordingGroupID: "{b}", recordingGroupName: "Yard", relayPath: "st1" }], "0");
        const tree = part("tree");
        tryVerify(() => tree.rows === 3);
        keyClick(Qt.Key_Down);
        compare(window.currentPage.selectedId, "{b}");
        keyClick(Qt.Key_Return);
        const editor = findChild(window.currentPage, "groupEditor");
        tryVerify(() => editor.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !editor.visible);
        verify(tree.activeFocus);
        keyClick(Qt.Key_Delete);
        tryVerify(() => findChild(window.currentPage, "removeGroupDialog").opened);
    }

    function test_keyboardReachesThePages(): void {
        open({});
        const tab = part("tab:volumes");
        tab.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => tab.activeFocus);
        keyClick(Qt.Key_Down);
        verify(part("tab:groups").activeFocus);
        keyClick(Qt.Key_Return);
        compare(window.currentIndex, 1);
    }

    readonly property var volumeAlarm: ({ sourceRole: "", kindRole: 0, groupIdRole: "", groupNameRole: "",
                                          sinceRole: new Date(2026, 0, 3, 12, 0) })
    function groupAlarm(id, name, day) {
        return { sourceRole: "", kindRole: 1, groupIdRole: id, groupNameRole: name,
                 sinceRole: new Date(2026, 0, day, 8, 30) };
    }

    function test_alarmsAreSaidOnEveryPage(): void {
        open({});
        verify(!part("alarms").visible);
        server.setAlarms([groupAlarm("g", "North gate", 2)]);
        tryVerify(() => part("alarms").visible);
        compare(part("alarmText").text, "North gate has too few recording days for its reserved time");
        verify(!part("alarmCount").visible);
        compare(part("alarms").Accessible.role, Accessible.AlertMessage);
        compare(part("alarms").Accessible.name, part("alarmText").text);
        for (let i = 0; i < window.pages.length; ++i) {
            window.currentIndex = i;
            verify(part("alarms").visible);
            const top = window.currentPage.mapToItem(window.contentItem, 0, 0).y;
            verify(top >= part("alarms").height, "the page stands below the strip");
        }
        server.removeAlarm(0);
        tryVerify(() => !part("alarms").visible);
        compare(part("alarms").height, 0);
    }

    function test_alarmsComeFromTheStatusMonitor(): void {
        open({ startPage: "usage" });
        server.addStatusMonitor();
        const entry = { recordingGroupID: "g", recordingGroupName: "North gate", recordingGroupReservedTime: 4320,
                        recordingPath: "/srv", volumeName: "Disk", volumeSize: 2048, volumeAvailableSize: 1024,
                        volumeOneDayUsage: 1024 * 1024, volumeRecordedDays: 1 };
        server.raise("VolumeChanged", [entry]);
        tryCompare(part("alarmText"), "text", "North gate has too few recording days for its reserved time");
        server.raise("VolumeChanged", [Object.assign({}, entry, { recordingGroupName: "South gate" })]);
        tryCompare(part("alarmText"), "text", "South gate has too few recording days for its reserved time");
        server.raise("VolumeChanged", [Object.assign({}, entry, { volumeSize: 0, volumeAvailableSize: 0 })]);
        tryCompare(part("alarmText"), "text", "A volume of the station cannot be reached");
        compare(part("alarmCount").text, "and 1 more alarm");
        mouseClick(part("openAlarms"));
        server.raise("VolumeChanged", [Object.assign({}, entry, { volumeRecordedDays: 2 })]);
        tryVerify(() => !part("alarms").visible);
    }

    function test_theWorstAlarmIsNamedAndTheOthersCounted(): void {
        open({});
        server.setAlarms([groupAlarm("b", "Later", 5), groupAlarm("a", "Earlier", 2)]);
        tryVerify(() => part("alarms").visible);
        compare(part("alarmText").text, "Earlier has too few recording days for its reserved time");
        compare(part("alarmCount").text, "and 1 more alarm");
        const ground = String(part("alarms").color);
        server.addAlarm(volumeAlarm);
        tryCompare(part("alarmText"), "text", "A volume of the station cannot be reached");
        compare(part("alarmCount").text, "and 2 more alarms");
        compare(part("alarms").Accessible.name, "A volume of the station cannot be reached, and 2 more alarms");
        verify(String(part("alarms").color) !== ground);
        compare(part("alarms").foreground, Theme.danger);
        server.removeAlarm(2);
        tryCompare(part("alarmCount"), "text", "and 1 more alarm");
    }

    function test_whatIsBrokenIsSaidWithItsRemedyAndNotInGreen(): void {
        open({});
        compare(part("connectionIcon").color, Theme.good);
        server.setAlarms([groupAlarm("g", "North gate", 2)]);
        tryVerify(() => part("alarms").visible);
        compare(part("connectionIcon").color, Theme.good);
        verify(!part("alarmRemedy").visible);
        server.addAlarm({ kindRole: 2, textRole: "The database is damaged.", remedyRole: "Put a backup in place.",
                          sinceRole: new Date(2026, 10, 3), sourceRole: "", groupIdRole: "", groupNameRole: "" });
        tryCompare(part("alarmText"), "text", "The database is damaged.");
        compare(part("alarmRemedy").text, "Put a backup in place.");
        compare(part("connectionIcon").color, Theme.danger);
        verify(part("connection").text.includes("trouble"));
    }

    function test_theOnlyAlarmLeadsToItsGroup(): void {
        open({});
        server.setAlarms([groupAlarm("g", "North gate", 2)]);
        tryVerify(() => part("alarms").visible);
        waitForRendering(window.contentItem);
        mouseClick(part("openAlarms"));
        compare(window.pages[window.currentIndex].key, "usage");
        compare(window.currentPage.wantedGroup, "g");
    }

    function test_anAlarmIsChosenFromTheList(): void {
        open({});
        server.setAlarms([groupAlarm("a", "Earlier", 2), volumeAlarm, groupAlarm("b", "Later", 5)]);
        tryVerify(() => part("alarms").visible);
        waitForRendering(window.contentItem);
        part("openAlarms").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        const list = findChild(window, "alarmList");
        verify(list);
        tryVerify(() => list.opened);
        const rows = list.contentItem;
        compare(rows.count, 3);
        tryVerify(() => rows.activeFocus || rows.currentItem?.activeFocus);
        tryVerify(() => rows.itemAtIndex(0) && rows.itemAtIndex(1));
        compare(rows.itemAtIndex(0).Accessible.name.split(",")[0], "A volume of the station cannot be reached");
        verify(rows.itemAtIndex(1).Accessible.name.startsWith(
                   "Earlier has too few recording days for its reserved time, since "));
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !list.visible);
        compare(window.pages[window.currentIndex].key, "usage");
        compare(window.currentPage.wantedGroup, "b");
    }

    function test_theListEndsWithTheLastAlarm(): void {
        open({});
        server.setAlarms([groupAlarm("a", "Earlier", 2), volumeAlarm]);
        tryVerify(() => part("alarms").visible);
        part("openAlarms").clicked();
        const list = findChild(window, "alarmList");
        tryVerify(() => list.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !list.visible);
        compare(window.currentIndex, 0);
        part("openAlarms").clicked();
        tryVerify(() => list.opened);
        server.removeAlarm(1);
        server.removeAlarm(0);
        tryVerify(() => !list.visible && !part("alarms").visible);
    }

    function test_countOfFilesIsSaid(): void {
        open({});
        verify(!part("counting").visible);
        server.raise("StorageScanProgress", { done: 12, total: 50, running: true });
        verify(part("counting").visible);
        compare(part("countingText").text, "Counting recorded files: 12 of 50");
        server.raise("StorageScanProgress", { done: 60, total: 50, running: true });
        compare(part("countingText").text, "Counting recorded files: 60 of 60");
        server.raise("StorageScanProgress", { done: 61, total: -1, running: true });
        compare(part("countingText").text, "Counting recorded files: 61 so far");
        server.raise("StorageScanProgress", { done: 61, total: -1, running: false });
        verify(!part("counting").visible);
        server.raise("StorageScanProgress", { done: 1, total: 5, running: true });
        server.setConnected(false);
        verify(!part("counting").visible, "its end would not be heard");
    }

    function test_stripAndCountFitANarrowWindow(): void {
        open({ width: 400, height: 600 });
        server.setAlarms([groupAlarm("a", "A recording group with a name that goes on and on without an end", 2),
                          groupAlarm("b", "Later", 5)]);
        server.raise("StorageScanProgress", { done: 25, total: 50, running: true });
        tryVerify(() => part("alarms").visible);
        waitForRendering(window.contentItem);
        compare(part("countingText").text, "Counting: 50 %");
        for (const name of ["alarmText", "alarmCount", "openAlarms", "countingText", "connection", "scheme"]) {
            const item = part(name);
            const place = item.mapToItem(window.contentItem, 0, 0, item.width, item.height);
            verify(place.width > 0 && place.x >= 0 && place.x + place.width <= 400, name + " " + place);
        }
        verify(part("connection").x + part("connection").width <= part("counting").x);
    }
}
