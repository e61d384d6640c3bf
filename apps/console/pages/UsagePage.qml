import QtQuick
import RecordingConsole

/// How long the connected station's recording groups record, against the time reserved for them; the worst first. Below
/// them, and in their place where the operator goes there, the recordings of no group. startPlace is the id of the group
/// to begin with, or unassignedPlace.
ConsolePage {
    id: page

    property string wantedGroup: startPlace ///< becomes the current one when it is listed
    property int patience: 3000 ///< ms that figures may be unknown until the page counts as settled
    property bool patient: true ///< figures that the station still counts may come
    property bool showsUnassigned: startPlace === unassignedPlace
    property bool expanded: groups.count <= mostExpanded ///< the volumes of all groups are shown but for those in exceptions
    property var exceptions: ({}) ///< true for the ids of groups that stand the other way
    readonly property string expansionKey: "expansion/usage" ///< in the settings
    readonly property int mostExpanded: 50 ///< groups whose volumes are shown to begin with

    key: "usage"
    mainList: showsUnassigned ? unassigned.list : card.list
    search: showsUnassigned ? unassigned.search : card.search
    help: qsTr("How long each recording group records, the worst first. Recorded are the days that are on disk, remaining those "
               + "that still fit at the present usage a day. Where both together are less than the reserved time, the group is "
               + "short by the difference. Recordings of no group are what removed groups and paths have left: below the groups "
               + "stands how much that is, and it leads to a list where they can be given to a group or deleted.")
    keys: [
        ConsoleKey {
            sequence: "Right"
            list: card.list
            text: qsTr("Show the volumes of the group")
            onActivated: card.expandCurrent(true)
        },
        ConsoleKey {
            sequence: "Left"
            list: card.list
            text: qsTr("Hide the volumes of the group")
            onActivated: card.expandCurrent(false)
        },
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter", "Space"]
            list: card.list
            text: qsTr("Show or hide the volumes of the group")
            onActivated: card.currentRow?.expansionAsked()
        },
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter"]
            list: unassigned.list
            text: qsTr("Give recordings of no group to a group")
            onActivated: unassigned.assign(unassigned.currentRow)
        },
        ConsoleKey {
            sequence: "Del"
            list: unassigned.list
            text: qsTr("Delete recordings of no group")
            onActivated: unassigned.remove(unassigned.currentRow)
        }
    ]
    subtitle: showsUnassigned ? unassigned.subtitle : summary()
    settled: answered && (failed || groups.unknownCount === 0 || !patient) && (!showsUnassigned || unassigned.settled)
    asking: unassigned.asking

    function ask(): bool {
        return recording.reloadStorageUsageInfo();
    }

    function showFigures(): void {
        groups.update(recording, "");
        if (card.currentIndex < 0 && card.count > 0)
            card.currentIndex = 0;
        if (wantedGroup !== "" && card.reveal(groups.rowOf(wantedGroup)))
            wantedGroup = "";
    }

    function summary(): string {
        if (groups.count === 0)
            return qsTr("How long the recording groups record");
        let words = groups.count === 1 ? qsTr("1 group") : qsTr("%1 groups").arg(groups.count);
        if (groups.lostCount > 0)
            words += " · " + qsTr("%1 without storage").arg(groups.lostCount);
        if (groups.shortCount > 0)
            words += " · " + (width < Theme.sized(480) ? qsTr("%1 short")
                                          : qsTr("%1 short of the reserved time")).arg(groups.shortCount);
        if (groups.unknownCount > 0)
            words += " · " + qsTr("%1 unknown").arg(groups.unknownCount);
        return words;
    }

    /// Makes the group called @p place the current one, now or when it is listed.
    function goTo(place: string): void {
        showsUnassigned = place === unassignedPlace;
        if (showsUnassigned) {
            takeFocus();
            return;
        }
        wantedGroup = place;
        showFigures();
    }

    function expand(groupId: string, expanded: bool): void {
        exceptions = Object.assign({}, exceptions, { [groupId]: expanded !== page.expanded });
        rememberExpansion();
    }

    function expandAll(all: bool): void {
        expanded = all;
        exceptions = {};
        rememberExpansion();
    }

    /// Groups that are gone are forgotten.
    function rememberExpansion(): void {
        const others = Object.keys(exceptions).filter(id => exceptions[id] && groups.rowOf(id) >= 0);
        settings?.setValue(expansionKey, { expanded: expanded, others: others });
    }

    function restoreExpansion(): void {
        const remembered = settings?.value(expansionKey, {}) ?? {};
        if (typeof remembered.expanded !== "boolean")
            return;
        const others = remembered.others ?? [];
        const found = {};
        for (let i = 0; i < others.length; ++i)
            found[others[i]] = true;
        expanded = remembered.expanded;
        exceptions = found;
    }

    function leaveUnassigned(): void {
        showsUnassigned = false;
        unassignedSummary.forceActiveFocus(Qt.TabFocusReason);
    }

    function refreshAll(): void {
        refresh();
        session.unassigned.refresh();
    }

    function connectionChanged(): void {
        loading = false;
        refresh();
    }

    Component.onCompleted: {
        restoreExpansion();
        showFigures();
        if (showsUnassigned)
            takeFocus();
    }

    Binding {
        target: page.session.unassigned
        property: "watched"
        value: page.visible
    }
    GroupUsageModel {
        id: groups

        storage: page.session.storage
    }
    Timer {
        id: moreToCome // the station tells what it knows at once, and the rest when it has counted

        interval: page.patience
        onTriggered: page.patient = false
    }
    Connections {
        target: page.recording

        function onVolumeInfoChanged(): void {
            if (page.session.storage.isElsewhere())
                return;
            page.showFigures();
            page.finish("");
            if (groups.unknownCount > 0)
                moreToCome.restart();
        }
    }
    Connections {
        target: page.session

        function onRefused(command: string): void {
            if (command === "reloadStorageUsageInfo")
                page.finish(page.session.refusal(command));
        }
    }

    actions: ActionButton {
        objectName: "expandAll"
        visible: groups.count > 1 && !page.showsUnassigned
        iconName: page.expanded ? "collapseAll" : "expandAll"
        hint: page.expanded ? qsTr("Hide the volumes of all groups") : qsTr("Show the volumes of all groups")
        onClicked: page.expandAll(!page.expanded)
    }

    strips: [
        PageStrip {
            objectName: "unassignedStrip"
            text: page.showsUnassigned ? unassigned.problem : ""
            actionText: page.session.connected ? qsTr("Try again") : ""
            onActionTriggered: unassigned.recordings.refresh()
        },
        PageStrip {
            objectName: "outcomeStrip"
            text: page.showsUnassigned ? unassigned.outcome : ""
            actionText: unassigned.recordings.deletion.left.length > 0 ? qsTr("Show") : ""
            notice: unassigned.recordings.deletion.outcome === RecordingsDeletion.Done
                    || unassigned.recordings.deletion.outcome === RecordingsDeletion.Cancelled
            onActionTriggered: unassigned.showDeletion()
            onDismissed: unassigned.recordings.deletion.forget()
        },
        PageStrip {
            objectName: "givenStrip"
            text: page.showsUnassigned ? unassigned.givenText : ""
            notice: true
            onDismissed: unassigned.givenText = ""
        }
    ]

    ListCard {
        id: card

        readonly property real space: page.room.height - unassignedSummary.height - Theme.large
        readonly property GroupUsageRow currentRow: list.currentItem as GroupUsageRow

        function expandCurrent(expanded: bool): void {
            if (currentRow)
                page.expand(currentRow.groupId, expanded);
        }

        objectName: "groups"
        settings: page.settings
        settingsKey: "usage"
        visible: !page.showsUnassigned
        width: page.room.width
        height: count > 0 ? Math.min(space, fullHeight) : space
        focus: true
        model: groups
        nameRole: "name"
        orders: [
            { text: qsTr("Worst first"), role: "" },
            { text: qsTr("Name"), role: "name" },
            { text: qsTr("Fewest days"), role: "recordedDays" },
            { text: qsTr("Most a day"), role: "oneDayUsage", descending: true }
        ]
        search.hint: qsTr("Search groups")
        list.Accessible.name: qsTr("Recording groups, the worst first")
        delegate: GroupUsageRow {
            width: ListView.view?.width ?? 0
            expanded: page.expanded !== (page.exceptions[groupId] ?? false)
            onExpansionAsked: page.expand(groupId, !expanded)
        }

        PagePlaceholder {
            objectName: "placeholder"
            owner: page
            visible: card.total === 0
            askingTitle: qsTr("Asking the station for its figures…")
            failedTitle: qsTr("The usage could not be shown")
            emptyTitle: qsTr("No recording groups")
            emptyText: qsTr("Usage is told for each recording group of the station.")
            awaitedText: qsTr("The figures appear as soon as it is there.")
        }
    }
    UnassignedSummary {
        id: unassignedSummary

        objectName: "unassignedSummary"
        visible: !page.showsUnassigned
        y: card.height + Theme.large
        width: page.room.width
        session: page.session
        onClicked: page.goTo(page.unassignedPlace)
    }
    UnassignedList {
        id: unassigned

        objectName: "unassignedList"
        visible: page.showsUnassigned
        anchors.fill: parent
        session: page.session
        onBackWanted: page.leaveUnassigned()
    }
}
