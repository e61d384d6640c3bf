import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// How long the connected station's recording groups record, against the time reserved for them; the worst first.
/// startPlace is the id of the group to begin with.
ConsolePage {
    id: page

    property bool loading: false ///< figures were asked for and are still to come
    property string wantedGroup: startPlace ///< becomes the current one when it is listed
    property int patience: 3000 ///< ms that figures may be unknown until the page counts as settled
    property var collapsed: ({}) ///< ids of the groups whose volumes are hidden

    function refresh(): void {
        if (loading || !session.connected)
            return;
        loading = true;
        if (!recording.reloadStorageUsageInfo())
            fail(qsTr("The request could not be sent."));
    }

    function showFigures(): void {
        groups.update(recording, "");
        if (card.currentIndex < 0 && card.count > 0)
            card.currentIndex = 0;
        const row = wantedGroup === "" ? -1 : groups.rowOf(wantedGroup);
        if (row < 0)
            return;
        wantedGroup = "";
        card.currentIndex = row;
        card.list.positionViewAtIndex(row, ListView.Contain);
    }

    function summary(): string {
        if (groups.count === 0)
            return qsTr("How long the recording groups record");
        let words = groups.count === 1 ? qsTr("1 group") : qsTr("%1 groups").arg(groups.count);
        if (groups.shortCount > 0)
            words += " · " + (width < 480 ? qsTr("%1 short")
                                          : qsTr("%1 short of the reserved time")).arg(groups.shortCount);
        if (groups.unknownCount > 0)
            words += " · " + qsTr("%1 unknown").arg(groups.unknownCount);
        return words;
    }

    function fail(words: string): void {
        loading = false;
        tellFailure(words);
        settled = true;
    }

    /// Makes the group called @p place the current one, now or when it is listed.
    function goTo(place: string): void {
        wantedGroup = place;
        showFigures();
    }

    function expand(groupId: string, expanded: bool): void {
        collapsed = Object.assign({}, collapsed, { [groupId]: !expanded });
    }

    Component.onCompleted: {
        showFigures();
        refresh();
    }

    GroupUsageModel { id: groups }
    Timer {
        id: moreToCome // the station tells what it knows at once, and the rest when it has counted

        interval: page.patience
        onTriggered: page.settled = true
    }
    Connections {
        target: page.recording

        function onVolumeInfoChanged(): void {
            page.showFigures();
            page.loading = false;
            page.failure = "";
            if (groups.unknownCount === 0)
                page.settled = true;
            else
                moreToCome.restart();
        }
    }
    Connections {
        target: page.session

        function onRefused(command: string): void {
            if (command === "reloadStorageUsageInfo")
                page.fail(page.session.refusal(command));
        }
        function onConnectedChanged(): void {
            page.loading = false;
            page.refresh();
        }
    }
    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible
        onActivated: page.refresh()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.large

        PageHeader {
            title: qsTr("Usage")
            subtitle: page.summary()
            Layout.fillWidth: true

            ActionButton {
                objectName: "refresh"
                iconName: "refresh"
                text: page.width >= 420 ? qsTr("Refresh") : ""
                hint: qsTr("Ask the station again (F5)")
                enabled: page.session.connected && !page.loading
                onClicked: page.refresh()
            }
        }
        ErrorStrip {
            objectName: "errorStrip"
            text: page.failure
            actionText: page.session.connected ? qsTr("Try again") : ""
            Layout.fillWidth: true
            onActionTriggered: page.refresh()
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListCard {
                id: card

                readonly property GroupUsageRow currentRow: list.currentItem as GroupUsageRow

                function expandCurrent(expanded: bool): void {
                    if (currentRow)
                        page.expand(currentRow.groupId, expanded);
                }

                objectName: "groups"
                width: parent.width
                height: count > 0 ? Math.min(parent.height, list.contentHeight + 2) : parent.height
                focus: true
                model: groups
                list.Accessible.name: qsTr("Recording groups, the worst first")
                list.Keys.onLeftPressed: expandCurrent(false)
                list.Keys.onRightPressed: expandCurrent(true)
                list.Keys.onReturnPressed: currentRow?.expansionAsked()
                list.Keys.onEnterPressed: currentRow?.expansionAsked()
                delegate: GroupUsageRow {
                    width: ListView.view?.width ?? 0
                    expanded: !page.collapsed[groupId]
                    onExpansionAsked: page.expand(groupId, !expanded)
                }

                Placeholder {
                    objectName: "placeholder"
                    anchors.centerIn: parent
                    width: Math.min(420, parent.width - 2 * Theme.huge)
                    visible: card.count === 0
                    busy: page.session.connected && (page.loading || !page.settled)
                    iconName: "gauge"
                    title: !page.session.connected ? qsTr("No connection to the station")
                        : busy ? qsTr("Asking the station for its figures…")
                        : page.failure !== "" ? qsTr("The usage could not be shown") : qsTr("No recording groups")
                    text: busy ? "" : !page.session.connected ? qsTr("The figures appear as soon as it is there.")
                        : page.failure !== "" ? "" : qsTr("Usage is told for each recording group of the station.")
                }
            }
        }
    }
}
