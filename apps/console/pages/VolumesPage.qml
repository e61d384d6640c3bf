import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The volumes of the connected station and how full they are.
ConsolePage {
    id: page

    property bool loading: false
    property bool askAgain: false // something changed while a reply was under way
    property real totalSize: 0
    property real freeSize: 0

    function refresh(): void {
        if (loading) {
            askAgain = true;
            return;
        }
        if (!session.connected)
            return;
        askAgain = false;
        loading = true;
        if (!recording.getVolume())
            finish(qsTr("The request could not be sent."));
    }

    function finish(words: string): void {
        loading = false;
        tellFailure(words);
        sumUp();
        settled = true;
        if (askAgain)
            refresh();
    }

    function sumUp(): void {
        totalSize = rows.size();
        freeSize = rows.available();
    }

    function summary(): string {
        if (card.count === 0)
            return qsTr("Where this station can record");
        const space = qsTr("%1 free of %2").arg(Units.capacity(freeSize)).arg(Units.capacity(totalSize));
        return width < 420 ? space
            : qsTr("%1 · %2").arg(Units.counted(card.count, qsTr("1 volume"), qsTr("%1 volumes"))).arg(space);
    }

    Component.onCompleted: refresh()

    Connections {
        target: page.recording

        function onGetVolumeResponded(success: bool): void {
            page.finish(success ? "" : page.session.refusal("getVolume"));
        }
        function onVolumeInfoChanged(): void {
            page.refresh();
        }
    }
    Connections {
        target: page.session

        function onConnectedChanged(): void {
            page.refresh();
        }
    }
    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible
        onActivated: page.refresh()
    }
    VolumeList {
        id: rows

        model: page.recording.getVolumeModel()
        onChanged: page.sumUp() // a NAS path comes without a reply to getVolume
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.large

        PageHeader {
            title: qsTr("Volumes")
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
        ErrorStrip {
            objectName: "nasStrip"
            text: page.nasVolumes?.missing ?? ""
            actionText: page.session.connected ? qsTr("Try again") : ""
            closable: false
            Layout.fillWidth: true
            onActionTriggered: page.nasVolumes.retry()
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListCard {
                id: card

                objectName: "volumes"
                width: parent.width
                height: count > 0 ? Math.min(parent.height, list.contentHeight + 2) : parent.height
                focus: true
                model: page.recording.getVolumeModel()
                list.Accessible.name: qsTr("Volumes")
                delegate: VolumeRow {
                    width: ListView.view?.width ?? 0
                }

                Placeholder {
                    objectName: "placeholder"
                    anchors.centerIn: parent
                    width: Math.min(420, parent.width - 2 * Theme.huge)
                    visible: card.count === 0
                    busy: page.session.connected && (page.loading || !page.settled)
                    iconName: "volume"
                    title: !page.session.connected ? qsTr("No connection to the station")
                        : busy ? qsTr("Asking the station for its volumes…")
                        : page.failure !== "" ? qsTr("The volumes could not be listed") : qsTr("No volumes to show")
                    text: busy ? "" : !page.session.connected ? qsTr("The volumes appear as soon as it is there.")
                        : page.failure !== "" ? "" : qsTr("The station has no mounted volume that it could record to.")
                }
            }
        }
    }
}
