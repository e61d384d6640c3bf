import QtQuick
import "../pages"

/// The page of the cameras on a real station.
PageTest {
    id: test

    name: "CamerasOnAStation"

    function dialog(name) {
        const found = findChild(page, name);
        tryVerify(() => found.opened);
        return found;
    }

    function recordedBy(camera): string {
        const row = findChild(page, "camera:" + camera);
        return row ? findChild(row, "recordedBy").text : "";
    }

    function test_camerasComeAndGo(): void {
        server.ask("station.addCamera", { camName: "Gate", streams: 2 });
        server.makeFolder("south");
        const added = server.ask("addRecordingGroupWithCompleteInfo", {
            recordingGroupName: "South", recordingGroupReservedTimeEnabled: true, recordingGroupReservedTime: 1440,
            pathInfoList: [{ path: server.pathOf("south"), pathType: 0, reserveSpace: 0, isRecoveryMode: false }],
            deviceInfos: [{ camName: "Gate", streamIndex: 1, enableTimeShift: false, enableSeamless: false }]
        });
        verify(added.recordingGroupID, JSON.stringify(added));
        open("CamerasPage", {});
        tryVerify(() => recordedBy("Gate").startsWith("South"));
        verify(page.settled && !page.failed);
        page.add();
        const adding = dialog("cameraAddDialog");
        for (const key of "Gate")
            keyClick(key);
        keyClick(Qt.Key_Return);
        tryCompare(findChild(adding.contentItem, "cameraMessage"), "text", "A camera of this name exists already.");
        for (const key of "Yard")
            keyClick(key);
        keyClick(Qt.Key_Return);
        tryVerify(() => !adding.visible);
        tryCompare(part("cameras"), "currentName", "Yard");
        compare(recordedBy("Yard"), "No group records it");
        server.ask("station.addCamera", { camName: "Roof", streams: 1 });
        tryCompare(part("cameras"), "count", 3, 5000, "what another client adds is seen");
        part("cameras").chooseShown();
        page.remove();
        const removal = dialog("cameraRemoveDialog");
        compare(removal.kept, ["Gate"]);
        mouseClick(findChild(removal.footer, "accept"));
        tryVerify(() => !removal.visible);
        tryCompare(part("cameras"), "count", 1);
        compare(server.ask("station.listCameras", undefined).map(camera => camera.camName), ["Gate"]);
    }
}
