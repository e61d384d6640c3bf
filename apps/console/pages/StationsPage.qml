import QtQuick
import RecordingConsole

/// All stations of the site, and the choice of the one that the other pages are about. startPlace is the relay path of a
/// station. Rows stay where they were sorted to until the operator has them sorted again, or comes back to the page.
ConsolePage {
    id: page

    readonly property StationOverview stations: session.stations
    property bool waited: false ///< for the first station to come
    property string wantedStation: startPlace ///< becomes the current one when it is listed

    key: "stations"
    mainList: card.list
    search: card.search
    help: qsTr("All stations of the site. The days are those that the worst recording group of a station is short of its "
               + "reserved time. Of a station that is not connected the figures are those that it told last, and the time says "
               + "of when they are. “Work on it” makes the other pages show that station; the line at the top of the window "
               + "always says which one that is.")
    keys: [
        ConsoleKey {
            sequence: "Return"
            sequences: ["Enter", "Space"]
            list: card.list
            text: qsTr("Work on the station")
            onActivated: page.choose(card.currentIndex)
        }
    ]
    subtitle: summary()
    succeeded: true // what it shows, nobody is asked for
    settled: !stations.site || (card.total === stations.count && (stations.notUp < stations.count || waited))

    function ask(): bool {
        stations.settle();
        finish("");
        return true;
    }

    /// The station that is worked on need not be there.
    function refreshAll(): void {
        stations.settle();
    }

    function connectionChanged(): void {}

    function goTo(place: string): void {
        wantedStation = place;
        showWanted();
    }

    function showWanted(): void {
        if (wantedStation !== "" && card.reveal(stations.rowOf(wantedStation)))
            wantedStation = "";
        else if (card.currentIndex < 0 && card.count > 0)
            card.currentIndex = 0;
    }

    function summary(): string {
        if (!stations.site)
            return qsTr("This console is connected to one station");
        let text = Units.counted(stations.count, qsTr("1 station"), qsTr("%1 stations"));
        if (stations.notUp > 0)
            text = qsTr("%1 · %2 not connected").arg(text).arg(stations.notUp);
        if (stations.unsettled === 1)
            return qsTr("%1 · 1 has changed since they were sorted (F5)").arg(text);
        return stations.unsettled === 0 ? text
            : qsTr("%1 · %2 have changed since they were sorted (F5)").arg(text).arg(stations.unsettled);
    }

    function choose(row: int): void {
        const path = stations.relayPathAt(card.rows.sourceRow(row));
        if (path === "" || path === stations.direct)
            return;
        tellFailure("");
        stations.choose(path);
    }

    /// Rows are brought up to date while they are in view.
    function look(): void {
        if (stations)
            stations.active = visible;
    }

    onVisibleChanged: look()
    Component.onCompleted: look()
    Component.onDestruction: {
        if (stations)
            stations.active = false;
    }

    Connections {
        target: page.stations

        function onFailureChanged(): void {
            page.tellFailure(page.stations.failure);
        }
    }

    Timer {
        interval: 5000
        running: true
        onTriggered: page.waited = true
    }

    StationList {
        id: card

        objectName: "stations"
        visible: page.stations.site
        width: parent.width
        height: total > 0 ? Math.min(parent.height, wholeHeight) : parent.height
        focus: true
        model: page.stations
        onTotalChanged: page.showWanted()
        onChosen: row => page.choose(row)
    }
    Placeholder {
        objectName: "placeholder"
        anchors.centerIn: parent
        width: Math.min(Theme.sized(420), parent.width - 2 * Theme.huge)
        visible: !page.stations.site
        iconName: page.info.iconName
        title: qsTr("One station")
        text: qsTr("There is one station at this end of the connection, and all pages are about it. A site of many is reached "
                   + "over its broker: recording-console --connect mqtts://BROKER/STATION")
    }
}
