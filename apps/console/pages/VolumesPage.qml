import QtQuick
import RecordingConsole

/// The volumes of the connected station and how full they are.
ConsolePage {
    id: page

    property string wantedVolume: startPlace ///< a path on the volume that becomes the current one when it is listed

    key: "volumes"
    mainList: card.list
    search: card.search
    help: qsTr("The volumes that this station can record to, and what takes up each of them. A volume is a mounted disk or a "
               + "folder of a NAS server; a lost one stays in the list as long as a recording group names it. Marks above a bar "
               + "show how far the reserved space of the recording groups reaches. “Record here” "
               + "gives the chosen volume to a recording group.")
    keys: [
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: card.list
            text: qsTr("Show the recordings of no group")
            onActivated: page.showUnassigned()
        },
        ConsoleKey {
            sequence: "Ctrl+G"
            allowed: recordHere.enabled
            text: qsTr("Record to this volume")
            onActivated: page.record()
        }
    ]
    subtitle: summary()

    function ask(): bool {
        storageStrip.closed = false; // who asks again wants to know again
        nasStrip.closed = false;
        session.storage.refresh();
        return recording.getVolume();
    }

    function goTo(place: string): void {
        wantedVolume = place;
        showWanted();
    }

    function showWanted(): void {
        if (wantedVolume !== "" && card.reveal(overview.rowOf(wantedVolume)))
            wantedVolume = "";
    }

    function summary(): string {
        if (overview.count === 0)
            return qsTr("Where this station can record");
        const space = qsTr("%1 free of %2").arg(Units.bytes(overview.free)).arg(Units.bytes(overview.size));
        if (width < Theme.sized(420))
            return space;
        const volumes = Units.counted(overview.count, qsTr("1 volume"), qsTr("%1 volumes"));
        return overview.lostCount === 0 ? qsTr("%1 · %2").arg(volumes).arg(space)
            : qsTr("%1 · %2 lost · %3").arg(volumes).arg(overview.lostCount).arg(space);
    }

    Connections {
        target: page.recording

        function onGetVolumeResponded(success: bool): void {
            page.finish(success ? "" : page.session.refusal("getVolume"));
        }
        function onVolumeInfoChanged(): void {
            if (!page.session.storage.isElsewhere())
                page.refresh();
        }
    }
    VolumeOverview {
        id: overview

        model: page.recording.getVolumeModel()
        storage: page.session.storage
        onChanged: page.showWanted()
    }

    /// Leads to the choice of a recording group that is to record to the current volume.
    function record(): void {
        if (recordHere.enabled)
            placeWanted("groups", recordingPlace((card.list.currentItem as VolumeRow).path));
    }

    /// Of the current volume, where it has some.
    function showUnassigned(): void {
        if ((card.list.currentItem as VolumeRow)?.holdsUnassigned)
            placeWanted("usage", unassignedPlace);
    }

    actions: ActionButton {
        id: recordHere

        readonly property VolumeRow row: card.list.currentItem as VolumeRow

        objectName: "recordHere"
        iconName: "group"
        text: page.roomy ? qsTr("Record here") : ""
        hint: row === null ? qsTr("Choose a volume first") : qsTr("Record to %1 (Ctrl+G)").arg(row.path)
        enabled: page.session.connected && row !== null && !row.lost
        onClicked: page.record()
    }
    strips: [
        PageStrip {
            id: storageStrip

            objectName: "storageStrip"
            text: page.session.storage.failure === "" ? ""
                : qsTr("What the volumes hold is not known: %1").arg(page.session.storage.failure)
            actionText: page.session.connected ? qsTr("Try again") : ""
            onActionTriggered: page.session.storage.refresh()
        },
        PageStrip {
            id: nasStrip

            objectName: "nasStrip"
            text: page.nasVolumes?.missing ?? ""
            actionText: page.session.connected ? qsTr("Try again") : ""
            onActionTriggered: page.nasVolumes.retry()
        }
    ]

    ListCard {
        id: card

        objectName: "volumes"
        settings: page.settings
        settingsKey: "volumes"
        width: parent.width
        height: count > 0 ? Math.min(parent.height, fullHeight) : parent.height
        focus: true
        model: overview
        nameRole: "name"
        searchRoles: ["path"]
        orders: [
            { text: qsTr("Lost ones first"), role: "" },
            { text: qsTr("Name"), role: "name" },
            { text: qsTr("Least free"), role: "free" },
            { text: qsTr("Largest"), role: "size", descending: true }
        ]
        search.hint: qsTr("Search volumes")
        list.Accessible.name: page.title
        delegate: VolumeRow {
            width: ListView.view?.width ?? 0
            onUnassignedChosen: page.placeWanted("usage", page.unassignedPlace)
        }

        PagePlaceholder {
            objectName: "placeholder"
            owner: page
            visible: card.total === 0
            askingTitle: qsTr("Asking the station for its volumes…")
            failedTitle: qsTr("The volumes could not be listed")
            emptyTitle: qsTr("No volumes to show")
            emptyText: qsTr("The station has no mounted volume that it could record to.")
            awaitedText: qsTr("The volumes appear as soon as it is there.")
        }
    }
}
