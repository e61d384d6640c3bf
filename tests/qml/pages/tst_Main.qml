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
        compare(server.takeSent(), ["getVolume", "getVolume", "retrieveRecordingGroupTreeModel",
                                    "retrieveRecordingGroupTreeModel", "reloadStorageUsageInfo", "getServerDir", "GetNasServers"]);
    }

    Alarms { id: alarms }
    function test_anAlarmLeadsToAPageThatIsThere_data() {
        return [
            { tag: "group", alarm: { groupId: "{a}", kind: alarms.insufficientRecordingDays } },
            { tag: "group without path", alarm: { groupId: "{a}", word: "GroupWithoutPath", kind: alarms.stationError } },
            { tag: "key", alarm: { groupId: "", word: "NasKeyUnusable", kind: alarms.stationError } },
            { tag: "volume", alarm: { groupId: "", word: "VolumeGone", subject: "/srv", kind: alarms.stationError } },
            { tag: "some volume", alarm: { groupId: "", word: "", kind: alarms.volumeError } }
        ];
    }
    function test_anAlarmLeadsToAPageThatIsThere(row): void {
        open({});
        verify(window.pages.some(page => page.key === alarms.place(row.alarm).key));
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
        open({ startScheme: Theme.alwaysDark });
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
        compare(part("alarmText").text, "Asking the station for its alarms…");
        server.setAlarmsKnown(true);
        compare(part("alarmText").text, "No alarms");
        server.setAlarmsKnown(false);
        server.setConnected(false);
        compare(part("alarmText").text, "No connection: alarms are not known");
        server.setConnected(true);
        server.setAlarmsKnown(true);
        verify(!part("openAlarms").visible);
        const height = part("alarms").height;
        const top = window.currentPage.mapToItem(window.contentItem, 0, 0).y;
        server.setAlarms([groupAlarm("g", "North gate", 2)]);
        tryVerify(() => part("openAlarms").visible);
        compare(part("alarmText").text, "North gate has too few recording days for its reserved time");
        verify(!part("alarmCount").visible);
        compare(part("alarms").Accessible.role, Accessible.AlertMessage);
        compare(part("alarms").Accessible.name, part("alarmText").text);
        for (let i = 0; i < window.pages.length; ++i) {
            window.currentIndex = i;
            verify(part("alarms").visible);
            compare(window.currentPage.mapToItem(window.contentItem, 0, 0).y, top, "no page moves when an alarm comes");
            verify(top >= part("alarms").height);
        }
        server.addAlarm(volumeAlarm);
        tryVerify(() => part("alarmCount").visible);
        compare(part("alarms").height, height);
        server.removeAlarm(1);
        server.removeAlarm(0);
        tryCompare(part("alarmText"), "text", "No alarms");
        compare(part("alarms").height, height);
        compare(window.currentPage.mapToItem(window.contentItem, 0, 0).y, top);
    }

    function test_aPageLeadsToAPlaceOnAnother(): void {
        open({ startPage: "volumes" });
        window.currentPage.placeWanted("usage", "unassigned");
        compare(window.pages[window.currentIndex].key, "usage");
        verify(window.currentPage.showsUnassigned);
        window.goTo("usage", "a group");
        verify(!window.currentPage.showsUnassigned);
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
        tryVerify(() => !part("openAlarms").visible);
    }

    function test_theWorstAlarmIsNamedAndTheOthersCounted(): void {
        open({});
        server.setAlarms([groupAlarm("b", "Later", 5), groupAlarm("a", "Earlier", 2)]);
        tryVerify(() => part("openAlarms").visible);
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
        tryVerify(() => part("openAlarms").visible);
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
        tryVerify(() => part("openAlarms").visible);
        waitForRendering(window.contentItem);
        mouseClick(part("openAlarms"));
        compare(window.pages[window.currentIndex].key, "usage");
        compare(window.currentPage.wantedGroup, "g");
    }

    function test_anAlarmIsChosenFromTheList(): void {
        open({});
        server.setAlarms([groupAlarm("a", "Earlier", 2), volumeAlarm, groupAlarm("b", "Later", 5)]);
        tryVerify(() => part("openAlarms").visible);
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

    function test_anAlarmLeadsToItsVolume(): void {
        open({});
        server.setAlarms([{ sourceRole: "", kindRole: 0, groupIdRole: "", groupNameRole: "", wordRole: "VolumeGone",
                            subjectRole: "/mnt/disk", textRole: "The volume Disk is not there.", remedyRole: "Connect it.",
                            sinceRole: new Date(2026, 0, 3, 12, 0) }]);
        tryVerify(() => part("openAlarms").visible);
        window.currentIndex = 2;
        part("openAlarms").clicked();
        const list = findChild(window, "alarmList");
        tryVerify(() => list.opened);
        keyClick(Qt.Key_Return);
        compare(window.pages[window.currentIndex].key, "volumes");
        compare(window.currentPage.wantedVolume, "/mnt/disk");
    }

    function test_anAlarmOfNoPageStaysInTheList(): void {
        open({});
        server.setAlarms([{ sourceRole: "", kindRole: 2, groupIdRole: "", groupNameRole: "", wordRole: "DatabaseDamaged",
                            subjectRole: "/var/lib/station.db", textRole: "The database is damaged.", remedyRole: "",
                            sinceRole: new Date(2026, 0, 3, 12, 0) }]);
        tryVerify(() => part("openAlarms").visible);
        part("openAlarms").clicked();
        const list = findChild(window, "alarmList");
        tryVerify(() => list.opened);
        keyClick(Qt.Key_Return);
        verify(list.opened);
        compare(window.currentIndex, 0);
    }

    function test_anAlarmIsAcknowledged(): void {
        const alarm = { sourceRole: "", kindRole: 0, groupIdRole: "", groupNameRole: "", wordRole: "VolumeGone",
                        subjectRole: "/mnt/disk", textRole: "The volume Disk is not there.", remedyRole: "Connect it.",
                        sinceRole: new Date(2026, 0, 3, 12, 0) };
        open({});
        server.setAlarms([alarm]);
        tryVerify(() => part("openAlarms").visible);
        part("openAlarms").clicked();
        const list = findChild(window, "alarmList");
        tryVerify(() => list.opened);
        keyClick(Qt.Key_A);
        const dialog = findChild(window, "acknowledgeDialog");
        tryVerify(() => dialog.opened && !list.visible);
        findChild(dialog.contentItem, "noteField").text = "Spare disk ordered";
        dialog.submit();
        compare(server.takeAcknowledgements(), ['station.acknowledgeAlarm {"kind":"VolumeGone","note":"Spare disk ordered",'
                                                + '"subject":"/mnt/disk"}']);
        server.answerAcknowledgement("AlarmNotFound");
        verify(dialog.opened);
        verify(findChild(dialog.contentItem, "noteMessage").text !== "");
        dialog.submit();
        server.answerAcknowledgement("0");
        tryVerify(() => !dialog.visible);
        server.takeAcknowledgements();

        server.setAlarms([Object.assign({}, alarm, { acknowledgedAtRole: new Date(2026, 0, 3, 13, 0), acknowledgedByRole: "ann",
                                                     noteRole: "Spare disk ordered" })]);
        part("openAlarms").clicked();
        const shown = () => list.contentItem.itemAtIndex(0)?.acknowledgement ?? "";
        tryVerify(() => list.opened && shown().startsWith("acknowledged by ann, "));
        verify(shown().endsWith(": Spare disk ordered"));
        verify(part("alarms").visible, "it is still an alarm");
        findChild(list.contentItem.itemAtIndex(0), "acknowledge").clicked();
        compare(server.takeAcknowledgements(), ['station.withdrawAcknowledgement {"kind":"VolumeGone","subject":"/mnt/disk"}']);
    }

    /// A note that was refused after its dialog was left stands there again.
    function test_aNoteIsOfferedAgain(): void {
        const alarm = { sourceRole: "", kindRole: 0, groupIdRole: "", groupNameRole: "", wordRole: "VolumeGone",
                        subjectRole: "/mnt/disk", textRole: "The volume Disk is not there.", remedyRole: "Connect it.",
                        sinceRole: new Date(2026, 0, 3, 12, 0) };
        open({});
        server.setAlarms([alarm]);
        const acknowledge = () => {
            tryVerify(() => part("openAlarms").visible);
            part("openAlarms").clicked();
            tryVerify(() => findChild(window, "alarmList").opened);
            keyClick(Qt.Key_A);
            tryVerify(() => findChild(window, "acknowledgeDialog").opened);
        };
        acknowledge();
        const dialog = findChild(window, "acknowledgeDialog");
        const note = findChild(dialog.contentItem, "noteField");
        note.text = "Spare disk ordered";
        dialog.submit();
        server.takeAcknowledgements();
        dialog.close();
        server.answerAcknowledgement("DatabaseFull");
        verify(!dialog.visible);
        acknowledge();
        compare(note.text, "Spare disk ordered");
        verify(!dialog.busy);
        dialog.close();
        acknowledge();
        compare(note.text, "", "once");
        dialog.close();
    }

    function test_theListEndsWithTheLastAlarm(): void {
        open({});
        server.setAlarms([groupAlarm("a", "Earlier", 2), volumeAlarm]);
        tryVerify(() => part("openAlarms").visible);
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
        tryVerify(() => !list.visible && !part("openAlarms").visible);
    }

    function test_lateOutcomesAreSaid_data(): var {
        return [
            { tag: "done", command: "updateRecordingGroup", code: "0",
              words: "The edit of the recording group Yard that timed out at 14:02 was done." },
            { tag: "refused", command: "addRecordingGroup", code: "PathNotWritable", failure: true,
              words: "The edit of the recording group Yard that timed out at 14:02 was refused: " +
                     "The station cannot write into this folder." },
            { tag: "in part", command: "removeRecordingGroup", code: "RecordingGroupNotFound", inPart: true, failure: true,
              words: "The edit of the recording group Yard that timed out at 14:02 was done in part: " +
                     "There is no such recording group any more." },
            { tag: "lost", command: "AddNasServer", code: "StationLost", failure: true,
              words: "What came of the edit of the NAS server Yard that timed out at 14:02 is not known: " +
                     "The station was lost before it answered. The change may take effect all the same." },
            { tag: "never sent", command: "createDirectory", code: "LinkDown", failure: true,
              words: "The edit of the folder Yard that timed out at 14:02 was refused: " +
                     "There is no connection to the station." },
            { tag: "sample site", command: "station.createSampleSite", code: "0",
              words: "The edit of the sample site that timed out at 14:02 was done." }
        ];
    }

    function test_lateOutcomesAreSaid(data): void {
        open({});
        const strip = part("lateOutcomes");
        verify(!strip.visible);
        const top = window.currentPage.mapToItem(window.contentItem, 0, 0).y;
        server.tellLateOutcome(data.command, "Yard", data.code, data.inPart ?? false);
        tryVerify(() => strip.visible);
        compare(strip.text, data.words);
        compare(strip.notice, !data.failure);
        for (let i = 0; i < window.pages.length; ++i) {
            window.currentIndex = i;
            verify(strip.visible);
            compare(window.currentPage.mapToItem(window.contentItem, 0, 0).y, top, "the page does not move");
        }
    }

    function test_lateOutcomesStayUntilTheyAreRead(): void {
        open({});
        const strip = part("lateOutcomes");
        server.tellLateOutcome("addRecordingGroup", "%1 & <b>", "PathNotWritable");
        for (let i = 0; i < 5; ++i)
            server.tellLateOutcome("addRecordingGroup", "G" + i, "0");
        tryVerify(() => strip.visible);
        const lines = strip.text.split("\n");
        compare(lines.length, 5);
        compare(lines[0], "2 earlier outcomes are not shown.");
        verify(lines[1].includes("G1") && lines[4].includes("G4"));
        verify(!strip.notice, "one of them was refused");
        waitForRendering(window.contentItem);
        mouseClick(findChild(strip, "errorClose"));
        tryVerify(() => !strip.visible);
        compare(server.session.lateOutcomes.length, 0);
        server.tellLateOutcome("addRecordingGroup", "%1 & <b>", "0");
        tryVerify(() => strip.visible && strip.notice);
        verify(strip.text.includes("group %1 & <b> that"));
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
        tryVerify(() => part("openAlarms").visible);
        waitForRendering(window.contentItem);
        compare(part("countingText").text, "Counting: 50 %");
        for (const name of ["alarmText", "alarmCount", "openAlarms", "countingText", "connection", "scheme"]) {
            const item = part(name);
            const place = item.mapToItem(window.contentItem, 0, 0, item.width, item.height);
            verify(place.width > 0 && place.x >= 0 && place.x + place.width <= 400, name + " " + place);
        }
        verify(part("connection").x + part("connection").width <= part("counting").x);
    }

    readonly property var site: [
        { path: "a", name: "Airport", missing: 0, alarms: 0 },
        { path: "b", name: "Bridge", missing: 7, alarms: 1 }
    ]

    function test_oneStationHasNoPageOfStations(): void {
        open({});
        verify(!part("stationHeader").visible && part("stationHeader").height === 0);
        verify(!window.pages.some(page => page.key === "stations"));
        compare(findChild(window.contentItem, "tab:stations"), null);
        compare(part("connection").text, "Connected to the station on this machine");
    }

    function test_theStationIsAlwaysInView(): void {
        open({});
        server.setStations(site);
        server.setDirectStation("a");
        for (const page of window.pages) {
            window.goTo(page.key, "");
            verify(part("workedOn").visible);
            compare(part("workedOn").text, "Airport");
            verify(window.title.endsWith("– Airport – Recording console"), window.title);
        }
        compare(part("connection").text, "Connected to Airport");
        server.setStations([{ path: "b", name: "Bridge", state: 3 }]);
        tryCompare(part("otherStations"), "text", "1 of 2 stations not connected");
        compare(part("connection").text, "Connected to Airport; 1 of 2 stations not connected");
    }

    function test_anotherStationTakesThePlace(): void {
        server.setStations(site);
        server.setDirectStation("a");
        open({ startPage: "volumes" });
        server.reply("getVolume", [], "0");
        const volumes = window.currentPage;
        part("openStations").clicked();
        compare(window.currentPage.key, "stations");
        const stations = window.currentPage;
        server.takeSent();
        server.changeStation("b");
        compare(part("workedOn").text, "Bridge");
        compare(window.currentPage, stations, "the window stays where it is");
        mouseClick(part("tab:volumes"));
        verify(window.currentPage.key === "volumes" && window.currentPage !== volumes);
        verify(!window.currentPage.answered);
        verify(server.takeSent().includes("getVolume"));
        verify(window.currentPage.foreign && window.currentPage.room.opacity === 0, "nothing of the one before stands for the other");
        server.reply("getVolume", [], "DatabaseFailed");
        verify(window.currentPage.foreign, "nor after a refusal");
        window.currentPage.refresh();
        server.reply("getVolume", [], "0");
        verify(!window.currentPage.foreign && window.currentPage.room.opacity === 1);
    }

    function test_alarmsAreNamedByTheirStations(): void {
        server.setStations(site);
        server.setDirectStation("a");
        open({});
        server.setAlarms([
            { sourceRole: "b", kindRole: 2, groupIdRole: "", wordRole: "DatabaseFull", subjectRole: "/srv",
              textRole: "The disk is full.", sinceRole: new Date() }]);
        tryCompare(part("alarmText"), "text", "Bridge: The disk is full.");
        keyClick(Qt.Key_F8);
        compare(window.currentPage.key, "stations");
        tryVerify(() => findChild(window.currentPage, "stations").currentIndex >= 0);
        server.setAlarms([]);
    }

    function test_noAlarmsOfStationsThatTellNone(): void {
        server.setStations(site.concat([{ path: "c", name: "Court", state: 3 }]));
        server.setDirectStation("a");
        server.setAlarms([]);
        open({});
        server.setAlarmsKnown(true);
        tryCompare(part("alarmText"), "text", "No alarms told; nothing from 1 of 3 stations at the moment");
    }

    function test_figuresOfOtherStationsAskForNothing(): void {
        server.setStations(site);
        server.setDirectStation("a");
        open({ startPage: "volumes" });
        server.reply("getVolume", [], "0");
        server.takeSent();
        server.raise("VolumeChanged", [], "b");
        compare(server.takeSent(), []);
        server.raise("VolumeChanged", [], "");
        compare(server.takeSent(), ["getVolume"]);
    }
}
