import QtQuick

/// What the editor of recording groups says before anything is sent: forecast, figures of the paths, and differences.
GroupsTest {
    id: test

    readonly property real bytes: 1024 * gigabyte // of a GB

    name: "GroupPlanning"

    function storage() {
        return [
            { volumePath: "/srv/video", volumeName: "Recordings", volumeIsSystem: false, kind: "local", state: "there",
              size: 4096 * bytes, free: 1024 * bytes, reservedForRoot: 0, groups: [
                { recordingGroupID: "{north}", recordingGroupName: "North gate", paths: ["/srv/video/north"],
                  recordedBytes: 200 * bytes, recordedDays: 12, bytesPerDay: 10 * bytes, reserveSpace: 102400, counted: true },
                { recordingGroupID: "{cars}", recordingGroupName: "Car park", paths: ["/srv/video/cars"],
                  recordedBytes: 100 * bytes, recordedDays: 12, bytesPerDay: 10 * bytes, reserveSpace: 3900 * 1024,
                  counted: true }] },
            { volumePath: "/", volumeName: "System", volumeIsSystem: true, kind: "local", state: "there",
              size: 100 * bytes, free: 2000 * bytes, reservedForRoot: 0, groups: [] }
        ];
    }

    function figures(name, reservedDays, days, bytesPerDay) {
        return { recordingGroupName: name, recordingGroupReservedTime: reservedDays * 1440, recordedDays: 1,
                 remainingDays: days - 1, bytesPerDay: bytesPerDay };
    }

    function openEditor(button) {
        server.setStorage(storage());
        mouseClick(part(button));
        const editor = opened("groupEditor");
        editor.forecastMoment = 0;
        return editor;
    }

    /// Answers what was asked about folders: those at @p refused are not taken.
    function answerProposals(refused): void {
        server.answerStation({ returnCode: "0", errors: refused.map(place => ({ element: "pathInfoList", index: place,
                                                                                returnCode: "PathNotWritable" })) });
    }

    function forecastLine(editor, row) {
        tryVerify(() => findChild(editor.contentItem, "forecastLine:" + row) !== null);
        return findChild(editor.contentItem, "forecastLine:" + row);
    }

    function test_forecastWhileItIsEdited(): void {
        openFilled({});
        const editor = openEditor("edit");
        answerProposals([]);
        const panel = field(editor, "forecast");
        verify(!panel.visible, "nothing was changed");
        enter(field(field(editor, "pathRow:0"), "reserve"), "50");
        tryVerify(() => server.stationCalls().length === 1);
        verify(panel.visible);
        compare(forecastLine(editor, 0).text, "Asking the station what this will do…");
        const asked = server.stationCalls()[0];
        compare(asked.command, "updateRecordingGroup");
        compare(asked.data.recordingGroupID, "{north}");
        server.answerStation({ returnCode: "0", errors: [], groups: [
            { recordingGroupID: "{north}", now: figures("North gate", 30, 28, 10 * bytes),
              then: figures("North gate", 30, 2, 10 * bytes) },
            { recordingGroupID: "{cars}", now: figures("Car park", 14, 12, 10 * bytes),
              then: figures("Car park", 14, 31, 10 * bytes) }] });
        // Between the typed digits the station was asked, too.
        while (server.stationCalls().length > 0)
            server.answerStation({ returnCode: "0", errors: [], groups: [
                { recordingGroupID: "{north}", now: figures("North gate", 30, 28, 10 * bytes),
                  then: figures("North gate", 30, 2, 10 * bytes) },
                { recordingGroupID: "{cars}", now: figures("Car park", 14, 12, 10 * bytes),
                  then: figures("Car park", 14, 31, 10 * bytes) }] });
        tryVerify(() => panel.warned);
        compare(forecastLine(editor, 0).text, "North gate keeps 2 days instead of 28, 28 days short. "
            + "30 days need 300 GB, 280 GB are missing.");
        compare(forecastLine(editor, 1).text, "Car park keeps 31 days instead of 12.");
        checkGeometry(editor.contentItem, editor.contentItem);
        verify(findChild(editor.footer, "accept").enabled, "a forecast keeps nobody from saving");
        press(findChild(editor.footer, "accept"));
        compare(request().data.updateSetPathList, [{ path: "/srv/video/north", reserveSpace: 51200 }]);
    }

    function test_forecastIsUnknown(): void {
        openFilled({});
        const editor = openEditor("edit");
        answerProposals([]);
        press(field(editor, "timeApplies"));
        tryVerify(() => server.stationCalls().length === 1);
        server.answerStation(undefined, "NoAnswer");
        const panel = field(editor, "forecast");
        verify(panel.warned);
        compare(forecastLine(editor, 0).text, "What this will do is not known: The station did not answer in time.");
        press(findChild(editor.footer, "accept"));
        compare(request().command, "updateRecordingGroup", "it is sent all the same");
    }

    function test_refusalIsForecast(): void {
        openFilled({});
        const editor = openEditor("edit");
        answerProposals([]);
        press(field(editor, "timeApplies"));
        tryVerify(() => server.stationCalls().length === 1);
        server.answerStation({ returnCode: "PathNotWritable", errors: [
            { element: "updateAddPathList", index: 0, value: "/srv/x", returnCode: "PathNotWritable", reason: "VolumeFull" }] });
        verify(field(editor, "forecast").warned);
        compare(forecastLine(editor, 0).text,
                "The station would refuse this. The station cannot write into this folder. This volume is full.");
        verify(findChild(editor.footer, "accept").enabled);
    }

    function test_incompleteIsNotAsked(): void {
        openFilled({});
        const editor = openEditor("newGroup");
        answerProposals([]);
        enter(field(field(editor, "pathRow:0"), "reserve"), "x");
        enter(field(editor, "groupNameField"), "East");
        wait(0);
        compare(server.stationCalls(), []);
        compare(forecastLine(editor, 0).text, "Shown as soon as nothing is missing.");
        enter(field(field(editor, "pathRow:0"), "reserve"), "1");
        tryVerify(() => server.stationCalls().length === 1);
        compare(server.stationCalls()[0].command, "addRecordingGroupWithCompleteInfo");
        server.answerStation({ returnCode: "0", errors: [], groups: [
            { recordingGroupID: "", then: { recordingGroupName: "East", recordingGroupReservedTime: 0, recordedDays: -1,
                                            remainingDays: -1, bytesPerDay: -1 } }] });
        compare(forecastLine(editor, 0).text, "East: how long it keeps recordings is known once it has recorded for a day.");
    }

    function test_nasPathIsAskedAboutWhenItIsEntered(): void {
        openFilled({});
        const editor = openEditor("edit");
        answerProposals([]);
        enter(field(field(editor, "pathRow:0"), "path"), "//nas/new");
        compare(forecastLine(editor, 0).text, "Shown as soon as you leave the field: a NAS server has to be asked.");
        while (server.stationCalls().length > 0)
            server.answerStation({}); // for what looked like a folder of the station
        wait(0);
        compare(server.stationCalls(), []);
        keyClick(Qt.Key_Tab);
        tryVerify(() => server.stationCalls().length === 1);
        compare(server.stationCalls()[0].data.updateAddPathList[0].path, "//nas/new");
        server.answerStation({});
        enter(field(field(editor, "pathRow:1"), "reserve"), "7");
        wait(0);
        compare(server.stationCalls(), [], "more space there would be asked for, too");
        keyClick(Qt.Key_Tab);
        tryVerify(() => server.stationCalls().length === 1);
    }

    function test_proposalIsTheEmptiestThatIsTaken(): void {
        openFilled({});
        const editor = openEditor("newGroup");
        compare(field(field(editor, "pathRow:0"), "path").text, "");
        const candidates = server.stationCalls()[0].data.pathInfoList.map(entry => entry.path);
        compare(candidates, ["/srv/video", "/srv/video/north", "/srv/video/cars", "/"]);
        answerProposals([0]);
        const path = field(field(editor, "pathRow:0"), "path");
        compare(path.text, "/srv/video/north", "the station would not write into the volume itself");
        verify(!editor.dirty, "a proposal is no change");
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:1") !== null);
        compare(field(field(editor, "pathRow:1"), "path").text, "/srv/video/cars");
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:2") !== null);
        compare(field(field(editor, "pathRow:2"), "path").text, "", "the system's volume is never proposed by itself");
    }

    function test_typedPathIsNotReplaced(): void {
        openFilled({});
        const editor = openEditor("newGroup");
        enter(field(field(editor, "pathRow:0"), "path"), "/x");
        answerProposals([]);
        compare(field(field(editor, "pathRow:0"), "path").text, "/x");
    }

    function test_figuresOfThePath(): void {
        openFilled({});
        const editor = openEditor("edit");
        const row = field(editor, "pathRow:0");
        const room = field(row, "room");
        compare(field(room, "volume").text, "On Recordings (/srv/video) ·");
        compare(field(room, "free").text, "1.00 TB free of 4.00 TB ·");
        compare(field(room, "byOthers").text, "other groups reserve 3.81 TB ·");
        compare(field(room, "left").text, "196.00 GB left to reserve ·");
        compare(field(room, "own").text, "this group has recorded 200.00 GB, 10.00 GB a day");
        enter(field(row, "reserve"), "197");
        compare(field(room, "left").text, "only 196.00 GB left to reserve ·");
        verify(room.exceeded);
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:2") !== null);
        const added = field(editor, "pathRow:2");
        verify(!field(added, "room").visible, "there is no path yet");
        enter(field(added, "path"), "/srv/video/more");
        compare(field(field(added, "room"), "left").text, "only 0 bytes left to reserve ·", "the other row takes all");
        enter(field(row, "reserve"), "190");
        compare(field(field(added, "room"), "left").text, "6.00 GB left to reserve ·");
        enter(field(added, "path"), "/var");
        verify(findChild(field(added, "room"), "system"), "the system's volume is pointed out");
        server.setStorage([]);
        compare(findChild(field(row, "room"), "left"), null, "unknown is not 0");
    }

    function test_refusedReserveCarriesItsNumbers(): void {
        openFilled({});
        const editor = openEditor("edit");
        enter(field(field(editor, "pathRow:0"), "reserve"), "197");
        press(findChild(editor.footer, "accept"));
        request();
        server.reply("updateRecordingGroup", [{ element: "updateSetPathList", index: 0, value: "/srv/video/north",
                                                returnCode: "ReservedSpaceExceedsVolume" }], "ReservedSpaceExceedsVolume");
        compare(field(field(editor, "pathRow:0"), "rowMessage").text,
                "All reserves on this volume together would be more than it holds. "
                + "196.00 GB are left to reserve; other groups reserve 3.81 TB of 4.00 TB.");
    }

    function test_differencesBeforeItIsSent(): void {
        openFilled({});
        const editor = openEditor("edit");
        answerProposals([]);
        enter(field(editor, "groupNameField"), "North");
        press(field(editor, "timeApplies"));
        enter(field(field(editor, "pathRow:0"), "reserve"), "50");
        press(field(field(editor, "pathRow:1"), "recovery"));
        press(field(editor, "addPath"));
        tryVerify(() => findChild(editor.contentItem, "pathRow:2") !== null);
        enter(field(field(editor, "pathRow:2"), "path"), "/srv/x");
        press(field(memberRow(editor, 0), "seamless"));
        press(field(memberRow(editor, 1), "removeRow"));
        const opener = field(editor, "differences");
        compare(opener.text, "7 changes");
        const list = field(editor, "differenceList");
        verify(!list.visible);
        press(opener);
        verify(list.visible);
        compare(editor.differences, [
            { sign: "", text: "Name: North gate → North" },
            { sign: "", text: "Reserved time: 30 days → does not apply" },
            { sign: "+", text: "Path /srv/x, 2.00 GB reserved" },
            { sign: "", text: "/srv/video/north, reserved space: 100.00 GB → 50.00 GB" },
            { sign: "", text: "//nas/video, recovery: on → off" },
            { sign: "", text: "Camera Gate, stream 0, seamless: off → on" },
            { sign: "-", text: "Camera Yard, stream 1" }]);
        compare(findChild(list, "difference:0").text, "Name: North gate → North");
        compare(findChild(list, "difference:2").text, "Added: Path /srv/x, 2.00 GB reserved");
        press(field(editor, "timeApplies"));
        compare(opener.text, "6 changes", "what is as it was is no difference");
    }

    function test_everyKeyOfATimeCounts(): void {
        openFilled({});
        const editor = openEditor("edit");
        enter(field(editor, "timeAmount"), "45");
        compare(editor.differences, [{ sign: "", text: "Reserved time: 30 days → 45 days" }]);
        keyClick(Qt.Key_Backspace);
        compare(editor.differences, [{ sign: "", text: "Reserved time: 30 days → 4 days" }]);
        keyClick(Qt.Key_Backspace);
        compare(editor.differences, [{ sign: "", text: "Reserved time: 30 days → no valid time" }]);
    }

    function test_leavingAsks(): void {
        openFilled({});
        const editor = openEditor("edit");
        const discarding = findChild(editor, "discardDialog") ?? findChild(page, "discardDialog");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !editor.visible);
        mouseClick(part("edit"));
        opened("groupEditor");
        enter(field(editor, "groupNameField"), "North");
        keyClick(Qt.Key_Escape);
        tryVerify(() => discarding.opened);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !discarding.visible);
        verify(editor.visible);
        compare(field(editor, "groupNameField").text, "North");
        mouseClick(findChild(editor.footer, "cancel"));
        tryVerify(() => discarding.opened);
        mouseClick(findChild(discarding.footer, "accept"));
        tryVerify(() => !discarding.visible);
        verify(!editor.visible);
        compare(server.takeRequests(), []);
    }

    function test_closingTheWindowAsks(): void {
        openFilled({});
        const editor = openEditor("edit");
        const discarding = findChild(editor, "discardDialog") ?? findChild(page, "discardDialog");
        enter(field(editor, "groupNameField"), "North");
        test.Window.window.close();
        tryVerify(() => discarding.opened);
        verify(test.Window.window.visible);
        waitForItemPolished(discarding.footer);
        mouseClick(findChild(discarding.footer, "cancel"));
        tryVerify(() => !discarding.visible);
        verify(editor.visible);
    }

    function test_settingsAreExplained(): void {
        openFilled({});
        const editor = openEditor("edit");
        verify(field(editor, "timeCaption").text.includes("not a limit"));
        const row = field(editor, "pathRow:0");
        mouseMove(field(row, "recovery"), 5, 5);
        const tips = ["recovery", "kind", "reserve"].map(name => field(row, name).Accessible.description);
        verify(tips[0].includes("cut off"), tips);
        verify(tips[1].includes("volume"), tips);
        verify(tips[2].includes("Set aside"), tips);
    }

    function save(editor): void {
        press(findChild(editor.footer, "accept"));
        server.takeRequests();
        server.reply("updateRecordingGroup", [], "0");
        tryVerify(() => !editor.visible);
        server.takeRequests();
    }

    function activity(groupId): void {
        server.raise("station.ActivityAdded", { recordingGroupID: groupId, returnCode: "0" });
    }

    function test_appliedChangeIsUndone(): void {
        openFilled({});
        const editor = openEditor("edit");
        enter(field(editor, "groupNameField"), "North");
        press(field(editor, "timeApplies"));
        enter(field(field(editor, "pathRow:0"), "path"), "/srv/n");
        press(field(field(editor, "pathRow:1"), "recovery"));
        press(field(memberRow(editor, 0), "seamless"));
        press(field(memberRow(editor, 1), "removeRow"));
        save(editor);
        const strip = part("undoStrip");
        verify(strip.visible);
        compare(strip.text, "The changes of North gate are saved.");
        activity("{north}");
        activity("{cars}");
        verify(strip.visible, "its own activity, and another group's");
        server.takeRequests();
        press(findChild(strip, "errorAction"));
        const sent = server.takeRequestMaps().filter(sent => sent.command === "updateRecordingGroup");
        compare(sent.length, 1);
        compare(JSON.parse(JSON.stringify(sent[0].data)), {
            recordingGroupID: "{north}",
            updateRmCameraList: [{ camName: "Gate", streamIndex: 0 }],
            updateAddCameraList: [
                { camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: false },
                { camName: "Yard", streamIndex: 1, enableTimeShift: false, enableSeamless: true }],
            updateRmPathList: ["/srv/n"],
            updateAddPathList: [{ path: "/srv/video/north", pathType: 0, reserveSpace: 102400, isRecoveryMode: false }],
            updateSetPathList: [{ path: "//nas/video", isRecoveryMode: true }],
            updateSetRecordingGroup: { recordingGroupName: "North gate", recordingGroupReservedTimeEnabled: true,
                                       recordingGroupReservedTime: 43200 }
        });
        server.reply("updateRecordingGroup", [], "0");
        verify(!strip.visible);
    }

    function test_undoGoesWhenAnotherTouchesTheGroup(): void {
        openFilled({});
        const editor = openEditor("edit");
        press(field(editor, "timeApplies"));
        save(editor);
        const strip = part("undoStrip");
        activity("{north}");
        verify(strip.visible);
        activity("{north}");
        verify(!strip.visible);
    }

    function test_undoGoesWithTheConnection(): void {
        openFilled({});
        const editor = openEditor("edit");
        press(field(editor, "timeApplies"));
        save(editor);
        server.setConnected(false);
        verify(!part("undoStrip").visible, "nobody knows what others do meanwhile");
    }

    function test_refusedUndoIsSaid(): void {
        openFilled({});
        const editor = openEditor("edit");
        press(field(editor, "timeApplies"));
        save(editor);
        const strip = part("undoStrip");
        press(findChild(strip, "errorAction"));
        server.reply("updateRecordingGroup", [], "RecordingGroupNotFound");
        verify(strip.visible && !strip.notice);
        compare(strip.text, "The changes of North gate could not be undone: There is no such recording group any more.");
        verify(!findChild(strip, "errorAction").visible);
    }

    function test_whatNobodyCouldUndoIsNotOffered(): void {
        openFilled({});
        const editor = openEditor("edit");
        press(field(field(editor, "pathRow:1"), "removeRow"));
        save(editor);
        verify(!part("undoStrip").visible, "nobody knows of which kind the NAS path was");
    }
}
