import QtQuick

/// Several recording groups chosen in the tree and changed at once.
GroupsTest {
    id: test

    name: "BulkEdit"

    readonly property var bulk: findChild(page, "bulkEditor")

    Connections {
        id: windowGuard

        property int closings: 0

        enabled: false
        target: test.Window.window

        function onClosing(close: var): void {
            close.accepted = false; // the tests go on
            ++closings;
        }
    }

    function choice() {
        return part("groups").choice;
    }

    /// Opens the dialog for all three groups, in the order Car park, North gate, Ramp of the tree.
    function openBulk(): void {
        openFilled({});
        keyClick(Qt.Key_A, Qt.ControlModifier);
        keyClick(Qt.Key_Return);
        tryVerify(() => bulk.opened);
        bulk.forecastMoment = 0;
        dropCalls();
        compare(server.takeRequests(), []);
    }

    function dropCalls(): void {
        while (server.stationCalls().length > 0)
            server.answerStation({ returnCode: "0", errors: [], groups: [], volumes: [] });
    }

    function button(name) {
        const found = findChild(bulk.footer, name);
        verify(found, name);
        return found;
    }

    function setTime(days): void {
        press(field(bulk, "changesTime"));
        if (!field(bulk, "timeApplies").checked)
            press(field(bulk, "timeApplies"));
        choose(field(bulk, "timeUnit"), 2);
        enter(field(bulk, "timeAmount"), String(days));
    }

    /// To the summary.
    function review(): void {
        press(button("accept"));
        compare(bulk.step, "summary", field(bulk, "bulkStrip").text);
    }

    /// Has what the summary shows sent; the station's groups are as they were.
    function send(groups = [north, cars, ramp]): void {
        press(button("accept"));
        compare(server.takeRequests(), ["getVolume ", askTree], "the groups are asked for before they are changed");
        answer(groups);
    }

    function row(name) {
        const list = field(bulk, "bulkList");
        for (let i = 0; i < list.count; ++i) {
            if (list.model.get(i).name === name)
                return list.model.get(i);
        }
        return null;
    }

    function states(): var {
        const list = field(bulk, "bulkList");
        return Array.from({ length: list.count }, (value, i) => list.model.get(i).name + " " + list.model.get(i).state);
    }

    function test_choosing(): void {
        openFilled({});
        const bar = part("choiceBar");
        verify(!bar.visible);
        const rowPlace = part("group:Car park").mapToItem(page, 0, 0).y;
        keyClick(Qt.Key_Space);
        compare(choice().ids, ["{north}"]);
        verify(bar.visible);
        compare(text(bar, "choiceCount"), "1 chosen");
        compare(part("group:Car park").mapToItem(page, 0, 0).y, rowPlace, "no row moves");
        keyClick(Qt.Key_Space);
        compare(choice().ids, []);
        keyClick(Qt.Key_Home);
        keyClick(Qt.Key_Down);
        compare(page.selectedId, "{cars}");
        keyClick(Qt.Key_Down, Qt.ShiftModifier);
        compare(choice().ids, ["{cars}", "{north}"]);
        compare(page.selectedId, "{north}");
        keyClick(Qt.Key_Down, Qt.ShiftModifier);
        compare(choice().count, 3);
        keyClick(Qt.Key_Escape);
        compare(choice().count, 0);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(choice().count, 3);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(choice().count, 0);
    }

    function test_choosingWithTheMouse(): void {
        openFilled({});
        mouseClick(findChild(part("group:Car park"), "choice"));
        compare(choice().ids, ["{cars}"]);
        mouseClick(part("group:Ramp"), 100, 20, Qt.LeftButton, Qt.ControlModifier);
        compare(choice().ids, ["{cars}", "{ramp}"]);
        mouseClick(part("group:Ramp"), 100, 20, Qt.LeftButton, Qt.ControlModifier);
        compare(choice().ids, ["{cars}"]);
        mouseClick(part("group:North gate"), 100, 20);
        compare(choice().ids, ["{cars}"], "a click alone selects");
        compare(page.selectedId, "{north}");
        choice().clear();
        choice().toggle("{cars}");
        mouseClick(part("group:Ramp"), 100, 20, Qt.LeftButton, Qt.ShiftModifier);
        compare(choice().count, 3, "all up to there");
        mouseClick(part("chooseNone"));
        compare(choice().count, 0);
    }

    function test_choosingWhatIsFound(): void {
        openFilled({});
        part("groups").rows.text = "a";
        tryCompare(part("groups").rows, "count", 3);
        part("groups").rows.text = "car";
        tryCompare(part("groups").rows, "count", 1);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(choice().ids, ["{cars}"]);
        part("groups").rows.clear();
        tryCompare(part("groups").rows, "count", 3);
        compare(choice().ids, ["{cars}"], "what is chosen stays chosen");
        page.refresh();
        answer([north, ramp]);
        compare(choice().ids, [], "a group that is gone is chosen no longer");
    }

    function test_reservedTimeOfAll(): void {
        openBulk();
        setTime(30);
        review();
        tryVerify(() => server.stationCalls().length === 1);
        const asked = server.stationCalls()[0];
        compare(asked.command, "updateRecordingGroup");
        compare(asked.data.map(edit => edit.recordingGroupID).sort(), ["{cars}", "{ramp}"],
                "the forecast is of all of them at once");
        compare(field(bulk, "bulkSummary").text, "2 groups will change; 1 is so already.");
        compare(row("Car park").change, "Reserved time: 1 day 12 hours 30 minutes → 30 days");
        compare(row("Ramp").change, "Reserved time: does not apply → 30 days");
        compare(row("North gate"), null, "it is so already");
        server.answerStation({ returnCode: "0", errors: [], volumes: [], groups: [
            { recordingGroupID: "{cars}",
              now: { recordingGroupName: "Car park", recordingGroupReservedTime: 2190, recordedDays: 4, remainingDays: 6,
                     bytesPerDay: 1024 },
              then: { recordingGroupName: "Car park", recordingGroupReservedTime: 43200, recordedDays: 4, remainingDays: 6,
                      bytesPerDay: 1024 } }] });
        const panel = field(bulk, "forecast");
        verify(panel.warned);
        compare(field(bulk, "forecastLine:0").text.split(".")[0], "Car park keeps 10 days, as now, 20 days short");
        send();
        const first = request();
        compare(first.command, "updateRecordingGroup");
        compare(Object.keys(first.data).filter(key => first.data[key].length > 0 || Object.keys(first.data[key]).length > 0).sort(),
                ["recordingGroupID", "updateSetRecordingGroup"], "nothing else of the group is touched");
        compare(first.data.updateSetRecordingGroup, { recordingGroupReservedTimeEnabled: true, recordingGroupReservedTime: 43200 });
        compare(server.outstanding("updateRecordingGroup"), 1, "one at a time");
        verify(bulk.busy);
        compare(bulk.step, "sending");
        server.reply("updateRecordingGroup", [], "0");
        const second = request();
        compare([first.data.recordingGroupID, second.data.recordingGroupID].sort(), ["{cars}", "{ramp}"]);
        server.reply("updateRecordingGroup", [], "0");
        compare(bulk.step, "outcomes");
        compare(states().sort(), ["Car park done", "Ramp done"]);
        compare(field(bulk, "bulkSummary").text, "2 groups are changed.");
        verify(!button("accept").enabled, "nothing is to be tried again");
        compare(server.takeRequests(), ["getVolume ", askTree], "the page shows what became of it");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !bulk.visible);
    }

    function test_pathsReservesAndCameras(): void {
        openBulk();
        press(field(bulk, "changesReserve"));
        enter(field(bulk, "bulkReserve"), "7");
        const settings = field(bulk, "bulkSettings");
        compare(settings.paths.map(path => path.path),
                ["//nas/video", "/rec/ramp", "/srv/video/cars", "/srv/video/north"]);
        choose(field(bulk, "reservePath"), 3);
        press(field(bulk, "addPath"));
        enter(field(field(bulk, "pathRow:0"), "path"), "/srv/more");
        enter(field(field(bulk, "pathRow:0"), "reserve"), "3");
        choose(field(bulk, "removedPath"), 1);
        pick(bulk, ["Yard"]);
        press(field(bulk, "removeCamera"));
        const picker = findChild(settings, "removePicker");
        tryVerify(() => picker.opened);
        verify(!picker.canChoose("Roof"), "no group records it");
        picker.toggle("Gate");
        picker.accept();
        compare(field(bulk, "removedCameras").text, "Gate");
        dropCalls();
        review();
        dropCalls();
        compare(row("North gate").change.split("\n"), [
            "Added: Path /srv/more, 3.00 GB reserved", "Removed: Path //nas/video", "Removed: Camera Gate, stream 0",
            "Added: Camera Yard, stream 0"]);
        compare(row("Car park").change.split("\n"), [
            "Added: Path /srv/more, 3.00 GB reserved", "/srv/video/cars, reserved space: nothing → 7.00 GB",
            "Added: Camera Yard, stream 0"]);
        send();
        const sent = {};
        for (let i = 0; i < 3; ++i) {
            const data = request().data;
            sent[data.recordingGroupID] = data;
            server.reply("updateRecordingGroup", [], "0");
        }
        compare(sent["{north}"].updateAddPathList,
                [{ isRecoveryMode: false, path: "/srv/more", pathType: 0, reserveSpace: 3072 }]);
        compare(sent["{north}"].updateRmPathList, ["//nas/video"]);
        compare(sent["{north}"].updateRmCameraList, [{ camName: "Gate", streamIndex: 0 }]);
        compare(sent["{north}"].updateAddCameraList,
                [{ camName: "Yard", enableSeamless: false, enableTimeShift: false, streamIndex: 0 }]);
        compare(sent["{north}"].updateSetPathList, []);
        compare(sent["{cars}"].updateSetPathList, [{ path: "/srv/video/cars", reserveSpace: 7168 }]);
        compare(sent["{ramp}"].updateSetPathList, []);
        compare(sent["{ramp}"].updateSetRecordingGroup, {});
    }

    function test_whatIsWrongIsSaidBeforeTheSummary(): void {
        openBulk();
        press(button("accept"));
        compare(bulk.step, "settings");
        verify(field(bulk, "bulkStrip").text.startsWith("Nothing is to be changed"));
        press(field(bulk, "changesReserve"));
        enter(field(bulk, "bulkReserve"), "x");
        press(button("accept"));
        compare(field(bulk, "bulkReserveMessage").text, "Enter the reserve in whole gigabytes.");
        verify(field(bulk, "bulkReserve").activeFocus);
        compare(bulk.step, "settings");
        press(field(bulk, "changesReserve"));
        press(field(bulk, "addPath"));
        enter(field(field(bulk, "pathRow:0"), "path"), "/rec/ramp");
        choose(field(bulk, "removedPath"), 2);
        press(button("accept"));
        compare(field(bulk, "removedMessage").text, "This path is to be added as well.");
        keyClick(Qt.Key_Escape);
        tryVerify(() => findChild(page, "discardDialog") !== null);
        verify(bulk.visible, "Esc asks, for something was entered");
        dropCalls();
    }

    function test_refusedUnknownAndTriedAgain(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        compare(field(bulk, "bulkSummary").text, "3 groups will change.");
        send();
        const order = field(bulk, "bulkList").model;
        const names = [0, 1, 2].map(i => order.get(i).name);
        server.reply("updateRecordingGroup", [{ element: "updateSetPathList", index: 0, value: "/x", returnCode: "PathNotWritable",
                                                reason: "VolumeFull" }], "PathNotWritable");
        server.reply("updateRecordingGroup", [], "0");
        server.reply("updateRecordingGroup", [], "NoAnswer");
        compare(bulk.step, "outcomes");
        compare(states(), [names[0] + " refused", names[2] + " unknown", names[1] + " done"], "what failed stands first");
        compare(row(names[0]).reason, "The station cannot write into this folder. This volume is full.");
        verify(row(names[2]).reason.includes("may take effect all the same"), row(names[2]).reason);
        compare(field(bulk, "bulkSummary").text, "1 changed · 1 refused · 1 unknown");
        compare(button("accept").text, "Try 2 again");
        server.takeRequests();
        const changed = group => Object.assign({}, group, { recordingGroupReservedTime: 9 * 1440 });
        const byName = { "North gate": north, "Car park": cars, "Ramp": ramp };
        answer([byName[names[0]], changed(byName[names[1]]), changed(byName[names[2]])]);
        compare(row(names[2]).state, "done", "it did take effect: the group is as wanted");
        compare(button("accept").text, "Try 1 again");
        press(button("accept"));
        compare(bulk.step, "summary");
        dropCalls();
        compare(states(), [names[0] + " waiting"]);
        send([byName[names[0]], changed(byName[names[1]]), changed(byName[names[2]])]);
        compare(request().data.recordingGroupID, byName[names[0]].recordingGroupID);
        server.reply("updateRecordingGroup", [], "0");
        compare(states(), [names[0] + " done"]);
    }

    function test_cancelFinishesWhatWasSent(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        server.reply("updateRecordingGroup", [], "0");
        compare(server.takeRequests().length, 2);
        compare(field(bulk, "bulkSummary").text, "1 of 3 answered");
        compare(button("cancel").text, "Cancel");
        press(button("cancel"));
        verify(bulk.busy && bulk.visible, "what was sent is waited for");
        compare(button("cancel").text, "Leave");
        server.reply("updateRecordingGroup", [], "0");
        compare(server.outstanding("updateRecordingGroup"), 0, "nothing more is sent");
        compare(bulk.step, "outcomes");
        compare(states().map(state => state.split(" ").pop()), ["unsent", "done", "done"]);
        compare(button("accept").text, "Try 1 again");
    }

    function test_closingTheWindowWhileSendingAsks(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        server.reply("updateRecordingGroup", [], "0");
        const asking = findChild(bulk, "stopSendingDialog") ?? findChild(page, "stopSendingDialog");
        windowGuard.enabled = true;
        test.Window.window.close();
        tryVerify(() => asking.opened);
        verify(asking.explanation.startsWith("1 of 3 groups are answered."), asking.explanation);
        waitForItemPolished(asking.footer);
        mouseClick(findChild(asking.footer, "cancel"));
        tryVerify(() => !asking.visible);
        verify(bulk.busy && button("cancel").text === "Cancel", "it goes on");

        test.Window.window.close();
        tryVerify(() => asking.opened);
        server.reply("updateRecordingGroup", [], "0");
        waitForItemPolished(asking.footer);
        mouseClick(findChild(asking.footer, "accept"));
        compare(windowGuard.closings, 3, "it is closed without another question");
        compare(button("cancel").text, "Leave", "nothing more is sent");
        windowGuard.enabled = false;
        server.reply("updateRecordingGroup", [], "0");
        compare(bulk.step, "outcomes");
    }

    function test_theQuestionEndsWithTheSending(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        const asking = findChild(bulk, "stopSendingDialog") ?? findChild(page, "stopSendingDialog");
        windowGuard.enabled = true;
        test.Window.window.close();
        tryVerify(() => asking.opened);
        windowGuard.enabled = false;
        for (let i = 0; i < 3; ++i)
            server.reply("updateRecordingGroup", [], "0");
        tryVerify(() => !asking.visible);
        compare(bulk.step, "outcomes");
    }

    function test_leftWhileTheStationIsSlow(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        keyClick(Qt.Key_Escape);
        verify(bulk.visible);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !bulk.visible);
        server.takeRequests();
        server.reply("updateRecordingGroup", [], "0");
        compare(server.session.lateOutcomes.length, 1);
        verify(server.session.lateOutcomes[0].startsWith("The change of 3 recording groups: 2 of 3 groups were not changed"),
               server.session.lateOutcomes[0]);
        compare(server.takeRequests(), ["getVolume ", askTree], "the page is brought up to date");
    }

    function test_lostConnectionLeavesTheRestUnsent(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        server.takeRequests();
        server.setConnected(false);
        server.reply("updateRecordingGroup", [], "StationLost");
        compare(bulk.step, "outcomes");
        compare(states().map(state => state.split(" ").pop()), ["unknown", "unsent", "unsent"]);
        compare(server.takeRequests(), []);
        server.setConnected(true);
    }

    function test_notSentByThePlugIn(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        press(button("accept"));
        server.setAccepts(false);
        server.setPluginFact("PluginRecordingManagement::updateRecordingGroup, no framework");
        answer([north, cars, ramp]);
        compare(states().map(state => state.split(" ").pop()), ["unsent", "unsent", "unsent"]);
        verify(row("Ramp").reason !== "");
        server.setAccepts(true);
    }

    function test_whatOthersChangedIsNotOverwritten(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        press(button("accept"));
        server.takeRequests();
        const other = Object.assign({}, cars, { recordingGroupReservedTime: 9 * 1440, recordingGroupName: "Cars" });
        answer([north, other, ramp]);
        compare(bulk.step, "summary", "nothing was sent");
        verify(!bulk.busy);
        compare(server.takeRequests(), []);
        compare(field(bulk, "bulkNotice").text, "Changed by somebody else meanwhile: Cars. The list shows what your change comes "
            + "to now. Nothing was sent.");
        compare(states(), ["North gate waiting", "Ramp waiting"], "that one is as wanted now");
        dropCalls();
        send([north, other, ramp]);
        compare(request().data.recordingGroupID, "{north}");
        const edit = { recordingGroupID: "{ramp}", recordingGroupName: "Ramp", returnCode: "0", client: "recordingctl" };
        server.raise("station.ActivityAdded", edit);
        compare(server.takeRequests(), [], "the page waits with its refresh");
        server.reply("updateRecordingGroup", [], "0");
        compare(states(), ["Ramp changed", "North gate done"]);
        verify(row("Ramp").reason.includes("Nothing was sent"));
        compare(server.takeRequests(), ["getVolume ", askTree]);
    }

    function test_groupsThatAreGone(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        press(button("accept"));
        server.takeRequests();
        answer([north, cars]);
        compare(field(bulk, "bulkNotice").text, "Removed by somebody else: Ramp. The list shows what your change comes to now. "
            + "Nothing was sent.");
        compare(states(), ["Car park waiting", "North gate waiting"]);
        dropCalls();
    }

    function test_checkThatFailsSendsNothing(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        press(button("accept"));
        server.reply("getVolume", volumes, "0");
        server.reply("retrieveRecordingGroupTreeModel", [], "NoAnswer");
        compare(bulk.step, "summary");
        verify(!bulk.busy);
        compare(field(bulk, "bulkStrip").text, "Nothing was sent: The station did not answer in time.");
        compare(server.outstanding("updateRecordingGroup"), 0);
    }

    function test_refusalsAreForecast(): void {
        openBulk();
        setTime(9);
        review();
        tryVerify(() => server.stationCalls().length === 1);
        server.answerStation({ returnCode: "PathNotWritable", groups: [], errors: [
            { element: "updateAddPathList", index: 1, value: "/srv/x", returnCode: "PathNotWritable" }],
            volumes: [{ volumePath: "/srv/video", volumeName: "Recordings", size: 4096 * 1024 * 1024 * 1024,
                        now: { reserveSpace: 1024 }, then: { reserveSpace: 3072 } }] });
        const name = field(bulk, "bulkList").model.get(1).name;
        compare(field(bulk, "forecastLine:0").text,
                "The station would refuse " + name + ": The station cannot write into this folder.");
        tryVerify(() => findChild(bulk.contentItem, "forecastLine:1") !== null);
        compare(field(bulk, "forecastLine:1").text, "Recordings: all groups reserve 3.00 GB instead of 1.00 GB, of 4.00 TB.");
        verify(button("accept").enabled, "a forecast keeps nobody from sending");
    }

    function test_twoHundredGroups(): void {
        open("RecordingGroupsPage", { width: 800 });
        const many = Array.from({ length: 200 }, (value, i) => Object.assign({}, cars, {
            recordingGroupID: "{" + i + "}", recordingGroupName: "Group " + i, recordingGroupPathList: ["/srv/video"] }));
        answer(many);
        tryVerify(() => page.settled);
        part("groups").tree.forceActiveFocus();
        server.takeRequests();
        keyClick(Qt.Key_A, Qt.ControlModifier);
        compare(choice().count, 200);
        keyClick(Qt.Key_Return);
        tryVerify(() => bulk.opened);
        dropCalls();
        setTime(9);
        review();
        dropCalls();
        const list = field(bulk, "bulkList");
        compare(list.count, 200);
        waitForRendering(page);
        tryVerify(() => list.contentItem.children.length < 60, 5000, "only what is seen is built");
        press(button("accept"));
        server.takeRequests();
        answer(many);
        for (let i = 0; i < 200; ++i)
            server.reply("updateRecordingGroup", [], i === 7 ? "RecordingGroupNotFound" : "0");
        compare(server.takeRequests().filter(line => line.startsWith("updateRecordingGroup")).length, 200);
        compare(bulk.step, "outcomes");
        compare(states()[0], "Group 7 refused");
        compare(field(bulk, "bulkSummary").text, "199 changed · 1 refused");
    }

    function test_otherEditsWait(): void {
        openBulk();
        setTime(9);
        review();
        dropCalls();
        send();
        keyClick(Qt.Key_Escape);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !bulk.visible);
        verify(!part("edit").enabled && !part("newGroup").enabled, "the answer under way is for the groups sent before");
        keyClick(Qt.Key_Return);
        tryVerify(() => bulk.opened);
        compare(bulk.step, "sending");
        server.reply("updateRecordingGroup", [], "0");
        compare(bulk.step, "outcomes");
    }
}
