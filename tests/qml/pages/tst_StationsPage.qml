import QtQuick
import QtTest
import RecordingConsole

/// All stations of a site, and the choice of one.
PageTest {
    id: test

    // As StationState has them.
    readonly property int connecting: 1
    readonly property int up: 2
    readonly property int down: 3
    readonly property date moment: new Date(2026, 2, 20, 14, 2)
    readonly property var stations: [
        { path: "a", name: "Airport", missing: 0, free: 2199023255552, alarms: 0 },
        { path: "b", name: "Bridge", missing: 7, short: 2, free: 1048576, alarms: 2 },
        { path: "c", name: "Court", state: down, since: moment, reason: "It was ended.", missing: 3, free: 4096, alarms: 1 },
        { path: "d", name: "Depot" },
        { path: "e", name: "Elm street", missing: 0, free: 8192, alarms: 1, errors: 1 }
    ]

    name: "StationsPage"

    function openStations(properties): void {
        server.setStations(stations);
        server.setDirectStation("a");
        open("StationsPage", properties ?? {});
        tryVerify(() => page.settled);
        tryVerify(() => !isUnsettled(page));
    }

    function names(): var {
        return Array.from({ length: part("stations").count }, (value, row) => part("stations").rows.nameOf(row));
    }

    function row(path) {
        return part("station:" + path);
    }

    function value(path, figure): string {
        return text(findChild(row(path), figure), "value");
    }

    function test_theWorstComesFirst(): void {
        openStations();
        compare(names(), ["Court", "Elm street", "Bridge", "Depot", "Airport"]);
        compare(text(row("b"), "state"), "Up");
        compare(value("b", "days"), "7 days");
        compare(value("b", "free"), "1.00 MB");
        compare(value("b", "alarms"), "2");
        compare(value("a", "days"), "none");
        compare(value("a", "alarms"), "none");
        for (const figure of ["days", "free", "alarms"])
            compare(value("d", figure), "unknown", figure);
        compare(page.subtitle, "5 stations · 1 not connected");
        verify(row("a").Accessible.name.endsWith("you work on it"));
    }

    function test_aStationThatIsDownSaysOfWhenItsFiguresAre(): void {
        openStations();
        compare(text(row("c"), "state"), "Down since " + Units.moment(moment));
        compare(value("c", "days"), "3 days");
        compare(text(findChild(row("c"), "days"), "asOf"), "as of " + Units.moment(moment));
        verify(findChild(row("c"), "days").faded);
        verify(!findChild(row("b"), "days").faded && text(findChild(row("b"), "days"), "asOf") === "");
    }

    function test_nothingJumpsWhenAStationGoesDown(): void {
        openStations();
        const list = part("stations");
        const before = names();
        list.currentIndex = 3;
        server.setStations([Object.assign({}, stations[0], { state: down, since: moment })]);
        tryCompare(row("a"), "stateRole", StationOverview.Down);
        compare(names(), before);
        compare(list.currentIndex, 3);
        compare(page.subtitle, "5 stations · 2 not connected · 1 has changed since they were sorted (F5)");
        keyClick(Qt.Key_F5);
        tryCompare(page, "subtitle", "5 stations · 2 not connected");
        tryVerify(() => names()[0] === "Airport");
        tryVerify(() => list.currentIndex === 4, 5000, "the current row is the same one");
    }

    function test_othersCanBeWorkedOn(): void {
        openStations();
        verify(!findChild(row("a"), "choose").visible && findChild(row("a"), "workedOn").visible);
        mouseClick(findChild(row("b"), "choose"));
        compare(server.takeChosenStations(), ["b"]);
        server.setDirectStation("b");
        verify(findChild(row("b"), "workedOn").visible && !findChild(row("b"), "choose").visible);
        verify(!findChild(row("a"), "workedOn").visible);
        const list = part("stations");
        list.currentIndex = 1;
        page.takeFocus();
        keyClick(Qt.Key_Return);
        compare(server.takeChosenStations(), ["e"]);
        mouseDoubleClickSequence(row("b"), 60, 20);
        compare(server.takeChosenStations(), [], "it is worked on already");
    }

    function test_whyAStationCannotBeChosenIsSaid(): void {
        openStations();
        verify(!findChild(row("c"), "choose").visible);
        part("stations").currentIndex = 0;
        page.takeFocus();
        keyClick(Qt.Key_Return);
        compare(server.takeChosenStations(), ["c"]);
        server.refuseStation("The station c is not up: It was ended.");
        compare(text(page, "errorStrip"), "The station c is not up: It was ended.");
        server.refuseStation("The station c is not up: It was ended.");
        page.choose(1);
        verify(!part("errorStrip").visible);
    }

    function test_search(): void {
        openStations();
        keyClick("f", Qt.ControlModifier);
        for (const key of "bri")
            keyClick(key);
        compare(names(), ["Bridge"]);
        keyClick(Qt.Key_Escape);
        compare(part("stations").count, 5);
    }

    function test_aPlaceIsAStation(): void {
        openStations({ startPlace: "d" });
        tryVerify(() => part("stations").rows.nameOf(part("stations").currentIndex) === "Depot");
        page.goTo("b");
        compare(part("stations").rows.nameOf(part("stations").currentIndex), "Bridge");
    }

    function test_stationsComeOneAfterTheOther_data(): var {
        return [{ tag: "the worst first", order: [2, 4, 1, 3, 0], place: "" },
                { tag: "the worst last", order: [0, 3, 1, 4, 2], place: "" },
                { tag: "in between", order: [0, 2, 3, 4, 1], place: "" },
                { tag: "and one of them is wanted", order: [1, 3, 0, 2, 4], place: "d" }];
    }

    function test_stationsComeOneAfterTheOther(data): void {
        server.setDirectStation("a");
        open("StationsPage", { startPlace: data.place });
        data.order.forEach((number, come) => {
            server.setStations([stations[number]]);
            tryCompare(part("stations"), "total", come + 1);
            tryVerify(() => !isUnsettled(page));
        });
        page.refreshAll();
        const list = part("stations").list;
        tryVerify(() => names().every((name, row) => list.itemAtIndex(row)?.nameRole === name), 5000, "a row is another's");
        compare(names(), ["Court", "Elm street", "Bridge", "Depot", "Airport"]);
        tryCompare(list, "currentIndex", data.place === "" ? names().indexOf(stations[data.order[0]].name) : 3);
    }

    function test_orders(): void {
        openStations();
        const card = part("stations");
        const sorted = Array.from({ length: card.orders.length }, (value, number) => {
            card.sortBy(number);
            return names().join(" ");
        });
        compare(sorted, ["Court Elm street Bridge Depot Airport", "Airport Bridge Court Depot Elm street",
                         "Bridge Court Airport Elm street Depot", "Court Elm street Bridge Airport Depot",
                         "Bridge Court Elm street Airport Depot"]);
    }

    function test_rowsChangeOneByOne(): void {
        openStations();
        const changes = spy.createObject(test, { target: server.session.stations, signalName: "dataChanged" });
        const resets = spy.createObject(test, { target: server.session.stations, signalName: "modelReset" });
        server.setStations([Object.assign({}, stations[1], { free: 2097152 }), stations[0]]);
        tryVerify(() => value("b", "free") === "2.00 MB");
        compare(changes.count, 1, "what has not changed is not told");
        compare(resets.count, 0);
        changes.destroy();
        resets.destroy();
    }

    function test_nobodyLooks(): void {
        openStations();
        page.visible = false;
        const changes = spy.createObject(test, { target: server.session.stations, signalName: "dataChanged" });
        server.setStations([Object.assign({}, stations[1], { missing: 0, alarms: 0 })]);
        wait(0);
        compare(changes.count, 0);
        page.visible = true;
        tryVerify(() => names()[2] === "Depot", 5000, "sorted anew when it is shown again");
        compare(value("b", "days"), "none");
        changes.destroy();
    }

    function test_manyStations(): void {
        const many = Array.from({ length: 1000 }, (value, number) => ({ path: "s" + number, missing: number % 9, alarms: 0 }));
        server.setStations(many);
        server.setDirectStation("s1");
        open("StationsPage", {});
        tryVerify(() => part("stations").count === 1000);
        compare(page.subtitle, "1000 stations");
    }

    function test_oneStationAlone(): void {
        open("StationsPage", {});
        verify(page.settled);
        verify(!part("stations").visible && part("placeholder").visible);
        compare(part("placeholder").title, "One station");
    }

    function test_everyWidth(): void {
        openStations();
        dragThroughWidths();
    }

    Component {
        id: spy

        SignalSpy {}
    }
}
