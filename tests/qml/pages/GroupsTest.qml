import QtQuick

/// What the tests of recording groups share: a station with three groups, and hands on fields and buttons.
PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024
    readonly property var volumes: [
        { volumePath: "/srv/video", volumeName: "Recordings", volumeSize: 4096 * gigabyte,
          volumeAvailableSize: 1024 * gigabyte, volumeIsSystem: false },
        { volumePath: "/", volumeName: "System", volumeSize: 100 * gigabyte, volumeAvailableSize: 40 * gigabyte,
          volumeIsSystem: true }
    ]
    readonly property var north: ({
        recordingGroupID: "{north}", recordingGroupName: "North gate", relayPath: "st1",
        recordingGroupPathList: ["/srv/video/north", "//nas/video"], reserveSpace: [102400, 1000],
        recordingGroupNASPathList: ["//nas/video"], recordingGroupRecoveryPathList: ["//nas/video"],
        recordingGroupReservedTime: 43200,
        recordingGroupMemberList: [
            { camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: false },
            { camName: "Yard", streamIndex: 1, enableTimeShift: false, enableSeamless: true }]
    })
    readonly property var cars: ({
        recordingGroupID: "{cars}", recordingGroupName: "Car park", relayPath: "st1",
        recordingGroupPathList: ["/srv/video/cars"], reserveSpace: [0], recordingGroupNASPathList: [],
        recordingGroupRecoveryPathList: [], recordingGroupReservedTime: 2190, recordingGroupMemberList: []
    })
    readonly property var ramp: ({
        recordingGroupID: "{ramp}", recordingGroupName: "Ramp", relayPath: "st1", recordingGroupPathList: ["/rec/ramp"],
        reserveSpace: [2048], recordingGroupNASPathList: [], recordingGroupRecoveryPathList: [],
        recordingGroupReservedTime: 0, recordingGroupMemberList: []
    })
    readonly property var cameras: [{ camName: "Gate", streams: 2 }, { camName: "Roof", streams: 1 },
                                    { camName: "Yard", streams: 3 }]
    readonly property string askTree: 'retrieveRecordingGroupTreeModel {"relayPath":"st1"}'

    function answer(groups): void {
        server.reply("getVolume", volumes, "0");
        server.reply("retrieveRecordingGroupTreeModel", groups, "0");
        server.setCameras(cameras);
    }

    function openFilled(properties): void {
        open("RecordingGroupsPage", properties);
        answer([north, cars, ramp]);
        tryVerify(() => findChild(page, "group:Ramp") !== null);
        server.takeRequests();
        page.select("{north}");
        part("groups").tree.forceActiveFocus();
    }

    /// Adds cameras through the editor's picker; their rows are there then.
    function pick(editor, names): void {
        press(field(editor, "addCamera"));
        const picker = field(editor, "cameraPicker");
        tryVerify(() => picker.opened);
        const list = field(picker, "cameraChoices");
        for (const name of names) {
            enter(field(picker, "searchField"), name);
            keyClick(Qt.Key_Down);
            verify(list.activeFocus);
            list.currentIndex = Array.from({ length: list.count }, (value, row) => row)
                .find(row => list.model.nameOf(row) === name);
            keyClick(Qt.Key_Space);
        }
        keyClick(Qt.Key_Return);
        tryVerify(() => !picker.visible);
    }

    function memberRow(editor, row) {
        const list = field(editor, "members");
        tryVerify(() => list.itemAtIndex(row) !== null);
        return list.itemAtIndex(row);
    }

    function opened(name) {
        const dialog = findChild(page, name);
        tryVerify(() => dialog.opened);
        return dialog;
    }

    function field(owner, name) {
        const found = findChild(owner.contentItem ?? owner, name);
        verify(found, name);
        return found;
    }

    /// Brings a field into view and types over what stands in it.
    function enter(item, words): void {
        item.forceActiveFocus();
        item.selectAll();
        keyClick(Qt.Key_Delete);
        for (const key of words)
            keyClick(key);
    }

    function press(item): void {
        item.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
    }

    function choose(box, row): void {
        box.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryVerify(() => box.popup.opened);
        keyClick(Qt.Key_Home);
        for (let i = 0; i < row; ++i)
            keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Return);
        tryVerify(() => !box.popup.visible);
        compare(box.currentIndex, row);
    }

    function request() {
        const requests = server.takeRequests();
        compare(requests.length, 1, requests);
        const space = requests[0].indexOf(" ");
        return { command: requests[0].substring(0, space), data: JSON.parse(requests[0].substring(space + 1)) };
    }
}
