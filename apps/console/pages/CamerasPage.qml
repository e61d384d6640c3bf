import QtQuick
import RecordingConsole

/// The station's cameras: their streams, and which recording groups record them. startPlace is the name of a camera.
ConsolePage {
    id: page

    property string wantedCamera: startPlace ///< becomes the current one when it is listed
    property string notice
    readonly property bool editable: session.connected && !session.cameraList.busy

    key: "cameras"
    mainList: card.list
    search: card.search
    help: qsTr("The cameras that the station can record, and the recording groups that do. The days and the bytes a day beside a group "
               + "are those of all its cameras. A camera can be removed when no group records it; its recordings stay.")
    keys: [
        ConsoleKey {
            sequence: "Space"
            list: card.list
            text: qsTr("Choose the camera, or choose it no longer")
            onActivated: card.toggle(card.currentName)
        },
        ConsoleKey {
            sequence: StandardKey.SelectAll
            list: card.list
            text: qsTr("Choose all cameras in view, or none of them")
            onActivated: card.chooseShown()
        },
        ConsoleKey {
            sequence: "Del"
            list: card.list
            allowed: page.editable
            text: qsTr("Remove the chosen cameras")
            onActivated: page.remove()
        },
        ConsoleKey {
            sequence: StandardKey.New
            allowed: page.editable
            text: qsTr("Add a camera")
            onActivated: page.add()
        }
    ]
    subtitle: summary()
    asking: adding.visible || removal.visible

    function ask(): bool {
        overview.refresh();
        return true;
    }

    function takeAnswer(): void {
        if (loading && !overview.loading)
            finish(overview.failure);
        card.forget(Array.from(session.cameras).map(camera => camera.camName));
        if (card.currentIndex < 0 && card.count > 0)
            card.currentIndex = 0;
        showWanted();
    }

    function goTo(place: string): void {
        wantedCamera = place;
        showWanted();
    }

    function showWanted(): void {
        if (wantedCamera !== "" && card.reveal(overview.rowOf(wantedCamera)))
            wantedCamera = "";
    }

    function summary(): string {
        if (overview.count === 0)
            return qsTr("What this station can record");
        const cameras = Units.counted(overview.count, qsTr("1 camera"), qsTr("%1 cameras"));
        return !overview.known ? cameras
            : overview.unrecordedCount === 0 ? qsTr("%1 · all of them recorded").arg(cameras)
            : qsTr("%1 · %2 not recorded").arg(cameras).arg(overview.unrecordedCount);
    }

    function add(): void {
        if (editable)
            adding.ask();
    }

    function showDialog(name: string): var {
        if (name === "add")
            add();
        return adding;
    }

    function remove(): void {
        if (editable && card.chosenNames.length > 0)
            removal.ask(card.chosenNames, overview.recorded(card.chosenNames));
    }

    onVisibleChanged: {
        if (visible && answered)
            takeAnswer();
    }

    CameraOverview {
        id: overview

        session: page.session
        recording: page.recording
        active: page.visible
        onChanged: page.takeAnswer()
    }
    GroupUsageModel {
        id: usage

        property int revision: 0

        function follow(): void {
            if (!page.visible)
                return;
            update(page.recording, "");
            ++revision;
        }

        storage: page.session.storage
        Component.onCompleted: follow()
    }
    Connections {
        target: page

        function onVisibleChanged(): void {
            usage.follow();
        }
    }
    Connections {
        target: page.recording

        function onVolumeInfoChanged(): void {
            if (!page.session.storage.isElsewhere())
                usage.follow();
        }
    }
    Connections {
        target: page.session.storage

        function onChanged(): void {
            ++usage.revision;
        }
    }
    Connections {
        target: page.session

        function onGroupsEdited(): void {
            if (page.visible)
                page.refresh();
        }
    }
    actions: [
        ActionButton {
            objectName: "removeCameras"
            iconName: "remove"
            text: page.roomy ? qsTr("Remove") : ""
            hint: qsTr("Remove the chosen cameras (Del)")
            enabled: page.editable && card.chosenNames.length > 0
            onClicked: page.remove()
        },
        ActionButton {
            objectName: "addCamera"
            primary: true
            iconName: "add"
            text: page.width >= Theme.sized(480) ? qsTr("Add camera") : ""
            hint: qsTr("Add a camera (Ctrl+N)")
            enabled: page.editable
            onClicked: page.add()
        }
    ]
    strips: [
        PageStrip {
            objectName: "notice"
            notice: true
            text: page.notice
            onDismissed: page.notice = ""
        },
        DraftStrip { dialog: adding }
    ]

    CameraList {
        id: card

        objectName: "cameras"
        settings: page.settings
        settingsKey: "cameras"
        width: parent.width
        height: total > 0 ? Math.min(parent.height, fullHeight) : parent.height
        focus: true
        model: overview
        usage: usage
        usageRevision: usage.revision
        wide: page.roomy

        PagePlaceholder {
            objectName: "placeholder"
            owner: page
            visible: card.total === 0
            askingTitle: qsTr("Asking the station for its cameras…")
            failedTitle: qsTr("The cameras could not be listed")
            emptyTitle: qsTr("No cameras yet")
            emptyText: qsTr("“Add camera” makes a camera known to the station. A recording group then records it.")
            awaitedText: qsTr("The cameras appear as soon as it is there.")
        }
    }

    CameraAddDialog {
        id: adding

        session: page.session
        cameras: page.session.cameraList
        onAdded: name => {
            page.notice = "";
            page.goTo(name);
        }
    }
    CameraRemoveDialog {
        id: removal

        session: page.session
        cameras: page.session.cameraList
        onRemoved: count => {
            page.notice = Units.counted(count, qsTr("1 camera was removed. Its recordings stay on the disk."),
                                        qsTr("%1 cameras were removed. Their recordings stay on the disk."));
            card.chooseNone();
        }
    }
}
