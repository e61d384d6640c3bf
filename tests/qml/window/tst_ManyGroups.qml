import QtQuick

/// Two thousand recording groups: a page makes the rows that are seen, and every group can be reached.
WindowTest {
    id: test

    readonly property int many: 2000
    readonly property var manyGroups: Array.from({ length: many }, (value, index) => ({
        recordingGroupID: "{g" + index + "}", recordingGroupName: "Hall " + index, relayPath: "st1",
        recordingGroupPathList: ["/srv/video/" + index], reserveSpace: [0], recordingGroupNASPathList: [],
        recordingGroupRecoveryPathList: [], recordingGroupReservedTime: 10 * day,
        recordingGroupMemberList: [{ camName: "Camera " + index, streamIndex: 0, enableTimeShift: false, enableSeamless: false }]
    }))
    readonly property var manyFigures: Array.from({ length: many }, (value, index) => ({
        recordingGroupID: "{g" + index + "}", recordingGroupName: "Hall " + index, recordingGroupReservedTime: 10 * day,
        recordingPath: "/srv/video", volumeName: "Recordings", volumeSize: 4096 * gigabyte, volumeAvailableSize: 8 * gigabyte,
        volumeOneDayUsage: 1024, volumeRecordedDays: index % 20, volumeIsSystem: false, volumeIsNAS: false
    }))
    readonly property var manyStored: [Object.assign({}, storage[0], {
        groups: Array.from({ length: many }, (value, index) => ({
            recordingGroupID: "{g" + index + "}", recordingGroupName: "Hall " + index, paths: ["/srv/video/" + index],
            recordedBytes: bytes, recordedDays: index % 20, bytesPerDay: bytes / 20, reserveSpace: 0 }))
    })]

    name: "ManyGroups"

    function answerMany(): void {
        server.setStorage(manyStored);
        for (let round = 0; round < 4; ++round) {
            for (const command in answers) {
                while (server.outstanding(command) > 0)
                    server.reply(command, command === "retrieveRecordingGroupTreeModel" ? manyGroups : answers[command], "0");
            }
            wait(0);
        }
        server.setCameras(manyGroups.map(group => ({ camName: group.recordingGroupMemberList[0].camName, streams: 1 })));
        server.raise("VolumeChanged", manyFigures);
        settle();
    }

    /// Items of the view that stand for rows, seen or kept.
    function rowsMade(view): int {
        return Array.from(view.contentItem.children).filter(item => item.implicitHeight > 0).length;
    }

    function test_pagesMakeWhatIsSeen_data(): var {
        return [{ tag: "groups", rows: many + 1 }, { tag: "cameras", rows: many }, { tag: "usage", rows: many }];
    }

    function test_pagesMakeWhatIsSeen(data): void {
        open({ startPage: data.tag, width: 1280, height: 800 });
        answerMany();
        const list = window.currentPage.mainList;
        tryVerify(() => (list.count ?? list.rows) === data.rows);
        tryVerify(() => rowsMade(list) > 5);
        verify(rowsMade(list) < 100, rowsMade(list) + " rows");
        keyClick(Qt.Key_End);
        settle();
        verify(rowsMade(list) < 150, rowsMade(list) + " rows");
        if (data.tag === "groups") {
            compare(window.currentPage.selectedId, "{g" + (many - 1) + "}");
            tryVerify(() => findChild(window.currentPage, "path:/srv/video/" + (many - 1)) !== null);
            const figures = findChild(findChild(window.currentPage, "path:/srv/video/" + (many - 1)), "volume");
            verify(figures.parts.length <= 12, "a bar of 2000 groups has few parts: " + figures.parts.length);
        } else {
            compare(list.currentIndex, data.rows - 1);
        }
        keyClick("f", Qt.ControlModifier);
        for (const key of "1999")
            keyClick(key);
        tryVerify(() => (list.count ?? list.rows) < 10, 5000, "found among all of them");
    }
}
