import QtQuick
import QtQuick.Templates as T
import QtTest
import RecordingConsole

/// What the tests of the whole window share: the window on the played server, and a station that answers every page.
TestCase {
    id: test

    readonly property real gigabyte: 1024 * 1024 // in KB
    readonly property real bytes: 1024 * 1024 * 1024
    readonly property int day: 24 * 60
    property var window: null
    property Item overlay: null ///< of the window: what lies over the page
    property Item nowhere: null ///< an item that may have the focus, and does not show it

    readonly property var groups: [
        { recordingGroupID: "{north}", recordingGroupName: "North gate", relayPath: "st1",
          recordingGroupPathList: ["/srv/video/north", "//nas/video"], reserveSpace: [102400, 1000],
          recordingGroupNASPathList: ["//nas/video"], recordingGroupRecoveryPathList: ["//nas/video"],
          recordingGroupReservedTime: 43200, recordingGroupMemberList: [
              { camName: "Gate", streamIndex: 0, enableTimeShift: true, enableSeamless: false },
              { camName: "Yard", streamIndex: 1, enableTimeShift: false, enableSeamless: true }] },
        { recordingGroupID: "{cars}", recordingGroupName: "Car park", relayPath: "st1",
          recordingGroupPathList: ["/srv/video/cars"], reserveSpace: [0], recordingGroupNASPathList: [],
          recordingGroupRecoveryPathList: [], recordingGroupReservedTime: 2190, recordingGroupMemberList: [] }
    ]
    /// What the station answers, by command.
    readonly property var answers: ({
        getVolume: [
            { volumePath: "/srv/video", volumeName: "Recordings", volumeSize: 4096 * gigabyte,
              volumeAvailableSize: 1024 * gigabyte, volumeIsSystem: false },
            { volumePath: "/", volumeName: "System", volumeSize: 100 * gigabyte, volumeAvailableSize: 40 * gigabyte,
              volumeIsSystem: true }],
        retrieveRecordingGroupTreeModel: groups,
        reloadStorageUsageInfo: {},
        getServerDir: { basePath: "", dirFolderList: ["/srv/video", "/"] },
        GetNasServers: [
            { id: "{1}", host: "nas1", logonDomain: "Host", userName: "camera", password: "token-1" },
            { id: "{2}", host: "nas2", logonDomain: "OFFICE", userName: "recorder", password: "token-2" }]
    })
    readonly property var storage: [
        { volumePath: "/srv/video", volumeName: "Recordings", kind: "local", state: "there", size: 4096 * bytes,
          free: 1024 * bytes, otherBytes: 200 * bytes, withoutGroupBytes: 100 * bytes, reservedForRoot: 60 * bytes,
          groups: [
              { recordingGroupID: "{north}", recordingGroupName: "North gate", paths: ["/srv/video/north"],
                recordedBytes: 1500 * bytes, reserveSpace: 102400 },
              { recordingGroupID: "{cars}", recordingGroupName: "Car park", paths: ["/srv/video/cars"],
                recordedBytes: 1212 * bytes, reserveSpace: 0 }] },
        { volumePath: "/mnt/gone", volumeName: "Spare disk", kind: "local", state: "gone", size: -1, free: -1,
          since: "2026-01-02T03:04:05.000Z",
          groups: [{ recordingGroupID: "{cars}", recordingGroupName: "Car park", paths: ["/mnt/gone/cars"],
                     recordedBytes: -1, reserveSpace: 0 }] }
    ]
    readonly property var usage: Array.from(["{north}", "{cars}"]).map((id, index) => ({
        recordingGroupID: id, recordingGroupName: groups[index].recordingGroupName,
        recordingGroupReservedTime: groups[index].recordingGroupReservedTime, recordingPath: "/srv/video",
        volumeName: "Recordings", volumeSize: 4096 * gigabyte, volumeAvailableSize: 8 * gigabyte,
        volumeOneDayUsage: gigabyte * 1024, volumeRecordedDays: index === 0 ? 20 : -1, volumeIsSystem: false,
        volumeIsNAS: false
    }))
    /// The console works on the first one.
    readonly property var stations: [
        { path: "a", name: "Airport", state: 2, free: 1024 * gigabyte, missing: 0, alarms: 1 },
        { path: "b", name: "Bridge", state: 3, reason: "Connection refused", since: new Date(2026, 0, 2, 8, 30) }
    ]
    readonly property var groupAlarm: ({ sourceRole: "", kindRole: 1, groupIdRole: "{north}", groupNameRole: "North gate",
                                         sinceRole: new Date(2026, 0, 2, 8, 30) })
    readonly property var volumeAlarm: ({
        sourceRole: "", kindRole: 0, groupIdRole: "", groupNameRole: "", wordRole: "VolumeGone", subjectRole: "/mnt/gone",
        textRole: "The volume Spare disk is not there.", remedyRole: "Connect it.", sinceRole: new Date(2026, 0, 3, 12, 0)
    })

    when: windowShown
    visible: true
    width: 100
    height: 100

    function init(): void {
        failOnWarning(/.*/);
    }

    function cleanup(): void {
        close();
        Theme.scheme = Theme.followDesktop;
        Theme.textSize = 100;
        server.renew();
    }

    function close(): void {
        if (window)
            window.destroy();
        window = null;
        overlay = null;
        wait(0);
    }

    /// Makes the window and waits until it has the keyboard.
    function open(properties): void {
        const component = Qt.createComponent("qrc:/qt/qml/RecordingConsole/Main.qml");
        compare(component.errorString(), "");
        server.setStations(stations);
        server.setDirectStation("a");
        window = component.createObject(null, Object.assign({
            recording: server.recording, session: server.session, width: 1000, height: 700
        }, properties));
        verify(window);
        nowhere = nowhereOf.createObject(window.contentItem);
        overlay = nowhere.overlay;
        window.requestActivate();
        tryVerify(() => window.active);
        verify(waitForRendering(window.contentItem));
    }

    Component {
        id: nowhereOf

        Item {
            readonly property Item overlay: T.Overlay.overlay
        }
    }

    /// The station answers what the pages have asked.
    function answer(): void {
        server.setStorage(storage);
        for (let round = 0; round < 4; ++round) {
            for (const command in answers) {
                while (server.outstanding(command) > 0)
                    server.reply(command, answers[command], "0");
            }
            wait(0);
        }
        server.raise("VolumeChanged", usage);
        answerMore();
        settle();
    }

    /// What an event makes the pages ask.
    function answerMore(): void {
        for (const command in answers) {
            while (server.outstanding(command) > 0)
                server.reply(command, answers[command], "0");
        }
    }

    /// So many frames later everything has its place.
    function settle(frames = 3): void {
        for (let i = 0; i < frames; ++i) {
            window.update();
            waitForRendering(window.contentItem);
        }
    }

    function bulk() {
        return findChild(window.currentPage, "bulkEditor");
    }

    function press(item): void {
        item.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
    }

    /// The dialog that changes the chosen groups.
    function openBulk(): void {
        keyClick(Qt.Key_Return);
        tryVerify(() => bulk().opened);
        bulk().forecastMoment = 0;
        answerStation();
    }

    /// Its summary, of another reserved time for all groups, with a forecast.
    function openSummary(): void {
        press(findChild(bulk().contentItem, "changesTime"));
        const amount = findChild(bulk().contentItem, "timeAmount");
        if (!amount.enabled)
            press(findChild(bulk().contentItem, "timeApplies"));
        amount.text = "77";
        answerStation();
        press(findChild(bulk().footer, "accept"));
        compare(bulk().step, "summary");
        tryVerify(() => server.stationCalls().length > 0);
        server.answerStation({ returnCode: "PathNotWritable", volumes: [],
            errors: [{ element: "x", index: 1, value: "", returnCode: "PathNotWritable" }],
            groups: [{ recordingGroupID: "{north}",
                now: { recordingGroupName: "North gate", recordingGroupReservedTime: 1440, recordedDays: 1, remainingDays: 1,
                       bytesPerDay: 1024 },
                then: { recordingGroupName: "North gate", recordingGroupReservedTime: 110880, recordedDays: 1,
                        remainingDays: 1, bytesPerDay: 1024 } }] });
        settle();
    }

    function answerStation(): void {
        while (server.stationCalls().length > 0)
            server.answerStation({ returnCode: "0", errors: [], groups: [], volumes: [] });
    }

    function part(name) {
        const found = findChild(window.contentItem, name);
        verify(found, name);
        return found;
    }

    /// All that the window shows, dialogs included.
    function root() {
        return window.contentItem.parent;
    }

    /// What can be read: the dialog or the list that lies over the page, else everything.
    function shownRoot() {
        return overlay.visible ? overlay : root();
    }

    /// Calls @p visit for each visible item below @p item and for @p item itself.
    function walk(item, visit): void {
        if (!item.visible)
            return;
        visit(item);
        for (let i = 0; i < item.children.length; ++i)
            walk(item.children[i], visit);
    }

    /// What is left in the window of a rectangle on an item, all of it if none is named, where panes around cut it off.
    function shownPlace(item, part = Qt.rect(0, 0, item.width, item.height)) {
        let place = item.mapToItem(null, part.x, part.y, part.width, part.height);
        for (let around = item.parent; around; around = around.parent) {
            if (!around.clip && around.parent)
                continue;
            const pane = around.mapToItem(null, 0, 0, around.width, around.height);
            const x = Math.max(place.x, pane.x);
            const y = Math.max(place.y, pane.y);
            place = Qt.rect(x, y, Math.max(0, Math.min(place.x + place.width, pane.x + pane.width) - x),
                            Math.max(0, Math.min(place.y + place.height, pane.y + pane.height) - y));
        }
        return place;
    }
}
