import QtQuick

/// The recordings of no group, on the usage page.
PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024 * 1024
    readonly property string listing: "station.listUnassignedRecordings"
    readonly property string doors: "/mnt/disk/rec/Doors"

    name: "Unassigned"

    function place(path, folder, gigabytes, more) {
        return Object.assign({
            place: folder === "" ? path : path + "/" + folder, path: path, folder: folder, kind: "local",
            volumePath: "/mnt/disk", volumeName: "Disk 2", state: "there", recordedBytes: gigabytes * gigabyte,
            recordedFiles: 3120, recordedDays: 12, oldestDay: "2026-03-01", newestDay: "2026-03-12",
            cameras: ["Gate", "Yard"], counted: true
        }, more ?? {});
    }

    readonly property var site: [
        place("/mnt/disk/rec", "Doors", 96),
        place("/mnt/gone", "Hall", 3, { state: "gone", volumePath: "/mnt/gone", volumeName: "", counted: false }),
        place("/mnt/disk/rec", "Uncounted", 0, { recordedBytes: -1, recordedFiles: -1, recordedDays: -1, oldestDay: undefined,
                                                 newestDay: undefined, cameras: [], counted: false })
    ]
    readonly property var storage: [
        { volumePath: "/mnt/disk", volumeName: "Disk 2", kind: "local", state: "there", groups: [
            { recordingGroupID: "y", recordingGroupName: "Yard", paths: ["/mnt/disk/other"] },
            { recordingGroupID: "g", recordingGroupName: "Gate", paths: ["/mnt/disk/rec"] }] }
    ]

    function openList(places, properties): void {
        open("UsagePage", Object.assign({ startPlace: "unassigned", patience: 0 }, properties));
        compare(server.unassignedRequests(), [listing]);
        server.answerUnassigned("0", places ?? site);
        server.raise("VolumeChanged", []);
        server.answerUnassigned("0", places ?? site);
        tryVerify(() => page.settled);
        waitForRendering(page);
    }

    function row(where) {
        tryVerify(() => findChild(page, "unassigned:" + where) !== null);
        return part("unassigned:" + where);
    }

    function dialog(name) {
        const found = findChild(page, name);
        verify(found, name);
        return found;
    }

    function progress(done, gigabytes, more): void {
        server.raise("station.DeletionProgress", Object.assign({
            place: doors, done: done, total: 3120, deletedBytes: gigabytes * gigabyte, running: true
        }, more ?? {}));
    }

    /// A window for the deletion of what is in doors, with the name typed.
    function askForDeletion() {
        findChild(row(doors), "delete").clicked();
        const asked = dialog("deletionDialog");
        tryVerify(() => asked.opened);
        return asked;
    }

    function beginDeletion() {
        const asked = askForDeletion();
        findChild(asked, "confirmationInput").text = "Doors";
        findChild(asked, "accept").clicked();
        verify(asked.busy);
        compare(server.unassignedRequests(),
                ['station.deleteRecordings {"confirmation":"Doors","place":"/mnt/disk/rec/Doors"}']);
        server.answerUnassigned("0", { place: doors, recordedFiles: 3120, recordedBytes: 96 * gigabyte });
        tryVerify(() => asked.running && !asked.busy);
        compare(server.unassignedRequests(), [listing]);
        server.answerUnassigned("0", [Object.assign({}, site[0], { deletion: { running: true } })]);
        return asked;
    }

    function test_aLineBelowTheGroupsLeadsToTheList(): void {
        open("UsagePage", {});
        const line = part("unassignedSummary");
        compare(text(line, "figures"), "Asking the station…");
        server.answerUnassigned("0", site);
        compare(text(line, "figures"), "3 folders · 99.00 GB and 1 of unknown size");
        compare(line.Accessible.name, "Recordings of no group: 3 folders · 99.00 GB and 1 of unknown size");
        verify(!part("unassignedList").visible);
        line.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        verify(part("unassignedList").visible);
        verify(!part("groups").visible && !line.visible);
        compare(text(page, "subtitle"), "3 folders · 99.00 GB and 1 of unknown size");
        verify(part("unassigned").list.activeFocus);
        keyClick(Qt.Key_Escape);
        verify(!part("unassignedList").visible && part("groups").visible);
        verify(line.activeFocus, "where it came from");
    }

    function test_theLine_data() {
        return [
            { tag: "none", code: "0", places: [], words: "None" },
            { tag: "one", code: "0", places: [place("/a", "b", 1)], words: "1 folder · 1.00 GB" },
            { tag: "unknown", code: "0", places: [place("/a", "b", -1, { recordedBytes: -1 })],
              words: "1 folder · size unknown" },
            { tag: "refused", code: "DatabaseBusy", places: [],
              words: "Not known: Another program keeps the station's database locked." }
        ];
    }
    function test_theLine(data): void {
        open("UsagePage", {});
        server.answerUnassigned(data.code, data.places);
        compare(text(part("unassignedSummary"), "figures"), data.words);
    }

    function test_withoutAConnection(): void {
        server.setConnected(false);
        open("UsagePage", {});
        compare(server.unassignedRequests(), []);
        compare(text(part("unassignedSummary"), "figures"), "Not known without a connection");
        server.setConnected(true);
        compare(server.unassignedRequests(), [listing]);
    }

    function test_rowsSayWhatIsKnown(): void {
        openList();
        const known = row(doors);
        compare(text(known, "name"), "Doors");
        compare(text(known, "place"), "/mnt/disk/rec/Doors on Disk 2");
        compare(text(known, "size"), "96.00 GB · 3120 files");
        compare(text(known, "days"), "12 days, 1 Mar 2026 to 12 Mar 2026");
        compare(text(known, "cameras"), "Cameras Gate, Yard");
        verify(!findChild(known, "mark").visible && !findChild(known, "remark").visible);
        verify(findChild(known, "assign").enabled && findChild(known, "delete").enabled);
        const lost = row("/mnt/gone/Hall");
        compare(text(lost, "mark"), "Not there");
        compare(text(lost, "size"), "3.00 GB · 3120 files");
        compare(text(lost, "remark"), "As counted last");
        verify(!findChild(lost, "assign").enabled && !findChild(lost, "delete").enabled);
        const uncounted = row("/mnt/disk/rec/Uncounted");
        compare(text(uncounted, "size"), "Size unknown");
        compare(text(uncounted, "days"), "Days unknown");
        compare(text(uncounted, "mark"), "Not counted yet");
        verify(!findChild(uncounted, "delete").enabled);
        compare(known.Accessible.name,
                "Doors, /mnt/disk/rec/Doors on Disk 2, 96.00 GB, 12 days, 1 Mar 2026 to 12 Mar 2026, 3120 files, "
                + "Cameras Gate, Yard");
    }

    function test_marks_data() {
        return [
            { tag: "NAS", more: { kind: "NAS", state: "unknown", counted: false }, mark: "NAS",
              remark: "As counted last; the station changes nothing here" },
            { tag: "silent", more: { state: "notAnswering" }, mark: "Not answering", remark: "" },
            { tag: "read-only", more: { state: "readOnly" }, mark: "Read-only", remark: "" },
            { tag: "left", more: { deletion: { running: false, returnCode: "RecordingsLeft" } }, mark: "",
              remark: "Last deletion: Some recordings could not be deleted." },
            { tag: "backup", more: { folder: "", place: "/a/Doors" }, mark: "", remark: "", name: "Former backup area" }
        ];
    }
    function test_marks(data): void {
        openList([place("/a", "Doors", 1, data.more)]);
        const told = row("/a/Doors");
        compare(text(told, "mark"), data.mark);
        compare(text(told, "remark"), data.remark);
        compare(text(told, "name"), data.name ?? "Doors");
    }

    function test_noneFailedAndAgain(): void {
        openList([]);
        compare(part("unassignedPlaceholder").title, "No recordings of no group");
        keyClick(Qt.Key_F5);
        server.answerUnassigned("DatabaseBusy");
        verify(part("unassignedStrip").visible);
        compare(part("unassignedStrip").text,
                "The recordings of no group could not be listed: Another program keeps the station's database locked.");
        compare(part("unassignedPlaceholder").title, "The recordings of no group could not be listed");
        findChild(part("unassignedStrip"), "errorAction").clicked();
        server.answerUnassigned("0", site);
        tryVerify(() => !part("unassignedStrip").visible && !part("unassignedPlaceholder").visible);
    }

    function test_theyAreGivenToAGroup(): void {
        server.setStorage(storage);
        openList();
        part("unassigned").list.currentIndex = 0;
        part("unassigned").list.forceActiveFocus();
        keyClick(Qt.Key_Return);
        const asked = dialog("assignDialog");
        tryVerify(() => asked.opened);
        const choice = findChild(asked, "groupChoice");
        verify(choice.activeFocus);
        compare(asked.takers.map(taker => taker.name), ["Gate", "Yard"]);
        verify(!findChild(asked, "accept").enabled, "none is chosen yet");
        keyClick(Qt.Key_Down);
        compare(choice.displayText, "Gate");
        verify(text(asked, "promise").includes(" in /mnt/disk/rec."), text(asked, "promise"));
        findChild(asked, "accept").clicked();
        verify(asked.busy);
        compare(server.unassignedRequests(),
                ['station.assignRecordings {"place":"/mnt/disk/rec/Doors","recordingGroupID":"g"}']);
        server.answerUnassigned("RecordingsExist", { errorAction: [1, 2, 3, 4, 5].map(day => {
            return { element: "place", index: -1, value: "/mnt/disk/rec/Gate/Gate/2026-03-0" + day };
        }) });
        compare(asked.busy, false);
        compare(findChild(asked, "assignMessage").text,
                "The group has recordings of the same days already: nothing was moved.");
        compare(text(asked, "inTheWay").split("\n").length, 4);
        verify(text(asked, "inTheWay").endsWith("and 2 more"));
        server.answerUnassigned("0", site);
        findChild(asked, "accept").clicked();
        server.answerUnassigned("0", { place: doors, recordingGroupID: "g", path: "/mnt/disk/rec/Gate", movedDays: 24 });
        tryVerify(() => !asked.visible);
        server.answerUnassigned("0", site.slice(1));
        compare(part("givenStrip").text, "The recordings belong to “Gate” now, and are in /mnt/disk/rec/Gate.");
        tryVerify(() => findChild(page, "unassigned:" + doors) === null);
    }

    function test_aMoveCanBeLeft(): void {
        server.setStorage(storage);
        openList();
        findChild(row(doors), "assign").clicked();
        const asked = dialog("assignDialog");
        tryVerify(() => asked.opened);
        keyClick(Qt.Key_Down);
        findChild(asked, "accept").clicked();
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
        server.answerUnassigned("RecordingsExist", {});
        compare(server.session.lateOutcomes, ["Give recordings to a group: "
                                              + "The group has recordings of the same days already: nothing was moved."]);
        verify(!asked.visible && !asked.busy);
    }

    function test_noGroupCanTakeThem(): void {
        openList();
        findChild(row(doors), "assign").clicked();
        const asked = dialog("assignDialog");
        tryVerify(() => asked.opened);
        verify(text(asked, "promise").startsWith("No recording group has a path on Disk 2."));
        verify(!findChild(asked, "accept").enabled);
        verify(!findChild(asked, "groupChoice").visible);
        server.setStorage(storage);
        verify(findChild(asked, "groupChoice").visible, "now it is known");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
    }

    function test_theNameHasToBeTyped(): void {
        openList();
        part("unassigned").list.currentIndex = 0;
        part("unassigned").list.forceActiveFocus();
        keyClick(Qt.Key_Delete);
        const asked = dialog("deletionDialog");
        tryVerify(() => asked.opened);
        compare(text(asked, "deletionWords"),
                "96.00 GB, 12 days, 3120 files will be deleted. They cannot be brought back. Other files in the folder stay.");
        const field = findChild(asked, "confirmationInput");
        verify(field.activeFocus);
        const accept = findChild(asked, "accept");
        for (const name of ["", "doors", "Doors "]) {
            field.text = name;
            verify(!accept.enabled, name);
            keyClick(Qt.Key_Return);
        }
        compare(server.unassignedRequests(), []);
        field.text = "Doors";
        verify(accept.enabled);
        keyClick(Qt.Key_Return);
        verify(asked.busy);
        server.answerUnassigned("PlaceInUse");
        compare(text(findChild(asked, "confirmationMessage"), "words"), "A recording group or the backup area uses this folder.");
        verify(field.activeFocus && asked.asking);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
        tryVerify(() => part("unassigned").list.activeFocus);
    }

    function test_aDeletionGoesOnWithoutItsWindow(): void {
        openList();
        const asked = beginDeletion();
        compare(text(asked, "deletionWords"), "0 bytes of 96.00 GB deleted");
        progress(1200, 40);
        compare(text(asked, "deletionWords"), "40.00 GB of 96.00 GB deleted");
        compare(text(asked, "deletionFiles"), "1200 of 3120 files");
        fuzzyCompare(findChild(asked, "deletionBar").share, 40 / 96, 0.001);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
        const told = row(doors);
        compare(text(told, "progress"), "40.00 GB of 96.00 GB deleted");
        verify(findChild(told, "progressBar").visible && !findChild(told, "assign").visible);
        compare(text(told, "delete"), "Show the deletion…");
        progress(1500, 48);
        findChild(told, "delete").clicked();
        tryVerify(() => asked.opened);
        compare(text(asked, "deletionWords"), "48.00 GB of 96.00 GB deleted");
        verify(!findChild(asked, "confirmation").visible);
        progress(3120, 96, { running: false, returnCode: "0", leftFiles: 0, leftBytes: 0, leftEntries: 2, left: [] });
        compare(text(asked, "deletionWords"), "Deleted: 96.00 GB in 3120 files. 2 other files and folders stay there.");
        compare(asked.title, "Deletion ended");
        verify(!findChild(asked, "cancel").visible);
        compare(text(asked, "accept"), "Close");
        verify(!part("outcomeStrip").visible, "it stands in the window");
        findChild(asked, "accept").clicked();
        tryVerify(() => !asked.visible);
        verify(!part("outcomeStrip").visible, "it was read");
        compare(server.unassignedRequests(), [listing]);
    }

    function test_whatCameOfItStandsAboveTheList(): void {
        openList();
        const asked = beginDeletion();
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
        progress(3119, 95, { running: false, returnCode: "RecordingsLeft", leftFiles: 1, leftBytes: gigabyte, leftEntries: 2,
                             left: [{ path: doors + "/Gate/1.rec", reason: "CannotDelete" },
                                    { path: doors + "/notes", reason: "NotARecording" }] });
        const strip = part("outcomeStrip");
        verify(strip.visible && !strip.notice);
        compare(strip.text, doors + ": 1 recording (1.00 GB) could not be deleted. "
                            + "95.00 GB in 3119 files are deleted.");
        keyClick(Qt.Key_Escape);
        verify(text(part("unassignedSummary"), "figures").startsWith("1 recording (1.00 GB) could not be deleted."));
        page.goTo("unassigned");
        findChild(strip, "errorAction").clicked();
        tryVerify(() => asked.opened);
        compare(text(asked, "left"), doors + "/Gate/1.rec: The disk refuses to delete it.\n" + doors + "/notes: It is no recording.");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !asked.visible);
        verify(!strip.visible);
    }

    function test_itIsCancelled(): void {
        openList();
        const asked = beginDeletion();
        progress(1200, 40);
        const cancel = findChild(asked, "cancel");
        compare(cancel.text, "Cancel the deletion");
        cancel.clicked();
        compare(cancel.text, "Cancelling…");
        verify(!cancel.enabled);
        compare(server.unassignedRequests(), ['station.cancelDeletion {"place":"/mnt/disk/rec/Doors"}']);
        server.answerUnassigned("NoAnswer");
        verify(cancel.enabled && asked.running);
        compare(findChild(asked, "cancelMessage").text, "The station did not answer in time.");
        cancel.clicked();
        server.answerUnassigned("0");
        progress(1300, 42, { running: false, returnCode: "DeletionCancelled", leftFiles: -1, leftBytes: -1, leftEntries: -1,
                             left: [] });
        compare(text(asked, "deletionWords"), "Cancelled. 42.00 GB in 1300 files are deleted, the rest is still there.");
    }

    function test_itGoesOnOverALostConnection(): void {
        openList();
        const asked = beginDeletion();
        progress(1200, 40);
        server.setConnected(false);
        compare(text(asked, "deletionWords"), "No connection to the station: it may go on");
        verify(!findChild(asked, "cancel").enabled);
        server.setConnected(true);
        server.answerUnassigned("0", [Object.assign({}, site[0], { deletion: { running: false } })]);
        compare(text(asked, "deletionWords"), "The station ended before it was done. How much is deleted is not known.");
    }

    function test_anotherClientsDeletionLocksTheButtons(): void {
        openList();
        progress(1, 1);
        verify(!findChild(row(doors), "assign").visible);
        const other = place("/mnt/disk/rec", "Yard", 5);
        page.session.unassigned.refresh();
        server.answerUnassigned("0", [Object.assign({}, site[0], { deletion: { running: true } }), other]);
        verify(!findChild(row(other.place), "delete").enabled, "the station does one at a time");
        progress(3120, 96, { running: false, returnCode: "0", leftFiles: 0, leftBytes: 0, leftEntries: 0, left: [] });
        server.answerUnassigned("0", [other]);
        tryVerify(() => findChild(row(other.place), "delete").enabled);
    }

    function test_everyWidthFits(): void {
        openList(site.concat([
            place("/srv/a-mount-point-with-a-rather-long-path/that-goes-on-and-on", "A group with a name that goes on without an end",
                  1e6, { recordedDays: 4000, cameras: ["One camera", "Another camera", "A third camera of many"],
                         deletion: { running: false, returnCode: "PermissionDenied" } }),
            place("//nas/video", "Far", 5, { kind: "NAS", state: "unknown", counted: false }),
            place("/mnt/ro", "Fixed", 5, { state: "readOnly" })
        ]), { height: 900 });
        progress(1200, 40);
        dragThroughWidths();
    }
}
