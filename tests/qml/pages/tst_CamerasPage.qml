import QtQuick

GroupsTest {
    id: test

    name: "CamerasPage"

    function openCameras(properties): void {
        open("CamerasPage", properties);
        server.reply("retrieveRecordingGroupTreeModel", [north, cars], "0");
        server.setCameras(cameras);
        tryVerify(() => findChild(page, "camera:Roof") !== null);
        server.takeRequests();
        part("list").forceActiveFocus();
    }

    function names() {
        return part("cameras").rows.names();
    }

    function test_asksForCamerasAndGroups(): void {
        const asked = server.camerasAsked;
        open("CamerasPage", {});
        compare(server.takeRequests(), [askTree]);
        compare(server.camerasAsked, asked + 1);
        verify(part("placeholder").busy && !page.settled);
        server.setCameras(cameras);
        verify(!page.settled, "the groups are still to come");
        tryVerify(() => findChild(page, "camera:Gate") !== null);
        compare(text(part("camera:Gate"), "recordedBy"), "Not known which group records it");
        compare(page.subtitle, "3 cameras");
        server.reply("retrieveRecordingGroupTreeModel", [north, cars], "0");
        verify(page.settled && !page.failed);
        compare(page.subtitle, "3 cameras · 1 not recorded");
        compare(text(part("camera:Gate"), "recordedBy"), "North gate");
        compare(text(part("camera:Gate"), "streams"), "1 of 2 streams recorded");
        compare(text(part("camera:Roof"), "recordedBy"), "No group records it");
        compare(text(part("camera:Roof"), "streams"), "1 stream");
    }

    function test_figuresAreTheGroups(): void {
        openCameras({});
        const stored = (path, bytes, days) => ({ volumePath: path, kind: "local", state: "there", groups: [
            { recordingGroupID: "{north}", paths: [path], bytesPerDay: bytes, recordedDays: days }] });
        server.setStorage([stored("/a", 1024 * 1024 * 1024, 7)]);
        tryVerify(() => text(part("camera:Gate"), "recordedBy") === "North gate (2 cameras: 7 days, 1.00 GB a day)");
        server.setStorage([stored("/a", 1024 * 1024 * 1024, 7), stored("/b", 3 * 1024 * 1024 * 1024, 9)]);
        tryVerify(() => text(part("camera:Gate"), "recordedBy") === "North gate (2 cameras: 4.00 GB a day)", 5000,
                  "the days on two volumes overlap");
        server.setStorage([stored("/a", 1024 * 1024 * 1024, 7), stored("/b", -1, 9)]);
        tryVerify(() => text(part("camera:Gate"), "recordedBy") === "North gate", 5000, "half of a sum is not told");
        server.raise("VolumeChanged", [
            { recordingGroupID: "{north}", recordingGroupName: "North gate", recordingGroupReservedTime: 0,
              recordingPath: "/srv/video/north", volumeName: "Recordings", volumeSize: 1000, volumeAvailableSize: 0,
              volumeOneDayUsage: 96 * 1024 * 1024 * 1024, volumeRecordedDays: 18, volumeIsSystem: false, volumeIsNAS: false }]);
        tryVerify(() => text(part("camera:Gate"), "recordedBy") === "North gate (2 cameras: 18 days, 96.00 GB a day)");
        server.raise("VolumeChanged", [
            { recordingGroupID: "{north}", recordingGroupName: "North gate", recordingGroupReservedTime: 0,
              recordingPath: "/srv/video/north", volumeName: "Recordings", volumeSize: 1000, volumeAvailableSize: 0,
              volumeOneDayUsage: -1, volumeRecordedDays: -1, volumeIsSystem: false, volumeIsNAS: false }]);
        tryVerify(() => text(part("camera:Gate"), "recordedBy") === "North gate", 5000, "what is unknown is not shown as 0");
    }

    function test_refusalsAreSaidAndTriedAgain(): void {
        open("CamerasPage", {});
        server.setCameras(cameras);
        server.reply("retrieveRecordingGroupTreeModel", [], "DatabaseFailed");
        verify(page.settled && page.failed);
        compare(text(page, "errorStrip"), "The station could not use its database; its log says why.");
        tryVerify(() => findChild(page, "camera:Roof") !== null);
        compare(text(part("camera:Roof"), "recordedBy"), "Not known which group records it");
        const asked = server.camerasAsked;
        server.takeRequests();
        tryVerify(() => !isUnsettled(page));
        mouseClick(part("errorAction"));
        compare(server.takeRequests(), [askTree]);
        compare(server.camerasAsked, asked + 1);
        server.failCameras("NoAnswer");
        server.reply("retrieveRecordingGroupTreeModel", [], "0");
        compare(text(page, "errorStrip"), "The station did not answer in time.");
        compare(names(), ["Gate", "Roof", "Yard"], "what was listed stays");
        keyClick(Qt.Key_F5);
        server.setCameras(cameras);
        server.reply("retrieveRecordingGroupTreeModel", [], "0");
        verify(!page.failed && !part("errorStrip").visible);
    }

    function test_waitsForTheConnection(): void {
        server.setConnected(false);
        open("CamerasPage", {});
        compare(server.takeRequests(), []);
        compare(part("placeholder").title, "No connection to the station");
        verify(!part("addCamera").enabled && !part("removeCameras").enabled);
        server.setConnected(true);
        compare(server.takeRequests(), [askTree]);
        server.reply("retrieveRecordingGroupTreeModel", [], "0");
        server.setCameras([]);
        compare(part("placeholder").title, "No cameras yet");
    }

    function test_addsACamera(): void {
        openCameras({});
        keyClick("n", Qt.ControlModifier);
        const dialog = opened("cameraAddDialog");
        keyClick(Qt.Key_Return);
        compare(server.takeCameraEdits(), []);
        compare(field(dialog, "cameraMessage").text, "Enter a name.");
        for (const key of "Gate")
            keyClick(key);
        choose(field(dialog, "cameraStreams"), 1);
        field(dialog, "cameraName").forceActiveFocus();
        keyClick(Qt.Key_Return);
        compare(server.takeCameraEdits(), ["station.addCamera Gate"]);
        keyClick(Qt.Key_Return);
        compare(server.takeCameraEdits(), [], "one request is under way");
        server.answerCameraEdit("CameraExists");
        compare(field(dialog, "cameraMessage").text, "A camera of this name exists already.");
        verify(dialog.visible && field(dialog, "cameraName").activeFocus);
        for (const key of "Cellar")
            keyClick(key);
        keyClick(Qt.Key_Return);
        compare(server.takeCameraEdits(), ["station.addCamera Cellar"]);
        server.setCameras(cameras); // asked for after the refusal
        server.answerCameraEdit("0");
        tryVerify(() => !dialog.visible);
        server.setCameras([{ camName: "Cellar", streams: 2 }].concat(cameras));
        tryVerify(() => part("cameras").currentName === "Cellar", 5000, "the new camera is the current one");
    }

    function test_removesWhatIsChosen(): void {
        openCameras({});
        keyClick(Qt.Key_Space);
        compare(part("cameras").chosenNames, ["Gate"]);
        keyClick("a", Qt.ControlModifier);
        compare(part("cameras").chosenCount, 3);
        keyClick(Qt.Key_Delete);
        const dialog = opened("cameraRemoveDialog");
        compare(dialog.names, ["Roof"]);
        compare(field(dialog, "keptCameras").text, "2 more were chosen and stay: recording groups record them.");
        keyClick(Qt.Key_Return);
        tryVerify(() => !dialog.visible);
        compare(server.takeCameraEdits(), [], "Cancel has the focus at first");
        mouseClick(part("removeCameras"));
        opened("cameraRemoveDialog");
        mouseClick(findChild(dialog.footer, "accept"));
        compare(server.takeCameraEdits(), ["station.removeCamera Roof"]);
        server.answerCameraEdit("0");
        tryVerify(() => !dialog.visible);
        compare(page.notice, "1 camera was removed. Its recordings stay on the disk.");
        server.setCameras([cameras[0], cameras[2]]);
        compare(names(), ["Gate", "Yard"]);
        compare(part("cameras").chosenCount, 0);
    }

    function test_theRestOfARemovalCanBeLeft(): void {
        openCameras({});
        const spare = Array.from({ length: 12 }, (value, index) => ({ camName: "Spare " + (index + 1), streams: 1 }));
        server.setCameras(spare);
        tryCompare(part("cameras"), "count", 12);
        part("list").forceActiveFocus();
        keyClick("a", Qt.ControlModifier);
        keyClick(Qt.Key_Delete);
        const dialog = opened("cameraRemoveDialog");
        compare(field(dialog, "question").text, "Remove “Spare 1”, “Spare 2” and 10 more?");
        mouseClick(findChild(dialog.footer, "accept"));
        server.answerCameraEdit("0");
        compare(field(dialog, "question").text, "1 of 12 are removed.");
        server.answerCameraEdit("CameraInUse");
        compare(server.takeCameraEdits(), ["station.removeCamera Spare 1", "station.removeCamera Spare 2",
                                           "station.removeCamera Spare 3"]);
        mouseClick(findChild(dialog.footer, "cancel"));
        verify(dialog.visible, "the one under way is answered first");
        server.answerCameraEdit("0");
        compare(server.takeCameraEdits(), []);
        verify(!dialog.busy && dialog.visible);
        compare(field(dialog, "removeStrip").text, "Spare 2: A recording group records this camera.");
        compare(page.notice, "2 cameras were removed. Their recordings stay on the disk.");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
    }

    function test_searchAndOrder(): void {
        openCameras({});
        verify(!part("searchField").visible, "a short list needs none");
        keyClick("f", Qt.ControlModifier);
        verify(part("searchField").activeFocus);
        for (const key of "north")
            keyClick(key);
        compare(names(), ["Gate", "Yard"], "by the group that records it");
        compare(text(page, "searchCount"), "2 of 3");
        page.goTo("Roof");
        compare(part("cameras").currentName, "Roof", "what somebody is led to is never hidden");
        compare(part("searchField").text, "");
        keyClick(Qt.Key_Escape);
        verify(part("list").activeFocus);
        verify(!part("searchField").visible);
        keyClick("y");
        compare(part("cameras").currentName, "Yard");
        part("cameras").sortBy(1);
        compare(names(), ["Roof", "Gate", "Yard"], "the fewest groups first");
        compare(part("cameras").currentName, "Yard", "the current camera stays the same");
        part("cameras").sortBy(2);
        compare(names(), ["Yard", "Gate", "Roof"], "the most streams first");
    }

    function test_followsEdits(): void {
        openCameras({});
        const edit = { recordingGroupID: "{north}", recordingGroupName: "North gate", returnCode: "0",
                       command: "updateRecordingGroup" };
        server.raise("station.ActivityAdded", edit);
        compare(server.takeRequests(), [askTree]);
        server.reply("retrieveRecordingGroupTreeModel", [cars], "0");
        server.setCameras(cameras);
        compare(page.subtitle, "3 cameras · 3 not recorded");
    }

    function test_sizesFit_data() {
        return [{ tag: "wide", width: 1004 }, { tag: "middle", width: 692 }, { tag: "narrow", width: 308 }];
    }
    function test_sizesFit(row): void {
        openCameras({ width: row.width });
        keyClick("f", Qt.ControlModifier);
        waitForRendering(page);
        checkGeometry(page);
    }

    function test_widthsMayJump(): void {
        openCameras({});
        jumpBetweenWidths();
    }

    function test_rowsAreMadeForWhatIsSeen(): void {
        openCameras({});
        server.setCameras(Array.from({ length: 1000 }, (value, index) => ({ camName: "Camera " + index, streams: 1 })));
        tryCompare(part("cameras"), "count", 1000);
        tryVerify(() => part("list").itemAtIndex(6) !== null);
        let made = 0;
        for (const child of Array.from(part("list").contentItem.children))
            made += child.camName === undefined ? 0 : 1;
        verify(made > 0 && made <= 30, made + " rows");
        compare(names()[10], "Camera 10", "in natural order");
    }

    function test_whatWasLeftAndRefusedIsOfferedAgain(): void {
        openCameras({});
        keyClick("n", Qt.ControlModifier);
        const dialog = opened("cameraAddDialog");
        for (const key of "Gate")
            keyClick(key);
        choose(field(dialog, "cameraStreams"), 2);
        field(dialog, "cameraName").forceActiveFocus();
        keyClick(Qt.Key_Return);
        compare(server.takeCameraEdits(), ["station.addCamera Gate"]);
        keyClick(Qt.Key_Escape);
        tryVerify(() => !dialog.visible);
        server.answerCameraEdit("CameraExists");
        tryVerify(() => part("draftStrip").visible);
        compare(part("draftStrip").text, "Add camera “Gate”: A camera of this name exists already. What you entered is kept.");
        press(findChild(part("draftStrip"), "errorAction"));
        opened("cameraAddDialog");
        compare(field(dialog, "cameraName").text, "Gate");
        compare(field(dialog, "cameraStreams").currentIndex, 2);
        compare(field(dialog, "cameraMessage").text, "A camera of this name exists already.");
    }
}
