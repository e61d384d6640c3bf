import QtQuick
import RecordingConsole
import "Contrast.js" as Contrast

/// Where the keyboard's focus is, and that it can be seen.
WindowTest {
    id: test

    name: "Focus"

    readonly property var keys: Array.from(ConsolePages.list).map(page => page.key)

    function everyPage(): var {
        return keys.map((key, index) => ({ tag: key, index: index }));
    }

    /// The focus is in the list of the current page.
    function checkList(how: string): void {
        const page = window.currentPage;
        verify(page.mainList, "the page names its list");
        tryVerify(() => window.activeFocusItem === page.mainList || window.activeFocusItem === page.mainList.currentItem, 1000,
                  `${page.title}, ${how}: ${window.activeFocusItem}`);
    }

    function showPage(index: int): void {
        keyClick(String(index + 1), Qt.ControlModifier);
        compare(window.currentIndex, index);
    }

    function test_start_data(): var {
        return everyPage();
    }

    function test_start(data): void {
        open({ startPage: data.tag });
        checkList("at the start");
        answer();
        checkList("with its rows");
    }

    function test_numberKey_data(): var {
        return everyPage();
    }

    function test_numberKey(data): void {
        open({ startPage: keys[(data.index + 1) % keys.length] });
        showPage(data.index);
        checkList("by its number");
        answer();
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Tab);
        showPage((data.index + 2) % keys.length);
        showPage(data.index);
        checkList("again, after something else had the focus");
        keyClick(Qt.Key_Tab);
        keyClick(Qt.Key_Tab);
        showPage(data.index);
        checkList("while it is shown");
    }

    function test_clickInTheRail_data(): var {
        return everyPage();
    }

    function test_clickInTheRail(data): void {
        open({ startPage: keys[(data.index + 1) % keys.length] });
        mouseClick(part("tab:" + data.tag));
        checkList("by a click");
        answer();
        mouseClick(part("tab:" + data.tag));
        checkList("by a click on its own tab");
        part("tab:" + data.tag).forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        checkList("by the rail's keys");
    }

    function test_alarmsLink(): void {
        open({ startPage: "folders" });
        answer();
        server.setAlarms([groupAlarm]);
        tryVerify(() => part("openAlarms").visible);
        mouseClick(part("openAlarms"));
        compare(window.pages[window.currentIndex].key, "usage");
        checkList("by its alarm");
        server.setAlarms([groupAlarm, volumeAlarm]);
        tryVerify(() => part("alarmCount").visible);
        part("openAlarms").clicked();
        tryVerify(() => findChild(window, "alarmList").opened);
        keyClick(Qt.Key_Return);
        compare(window.pages[window.currentIndex].key, "volumes");
        checkList("by its alarm in the list");
    }

    function test_backFromADialog_data(): var {
        return everyPage();
    }

    function test_backFromADialog(data): void {
        open({ startPage: data.tag });
        answer();
        for (const key of [Qt.Key_N, Qt.Key_F2, Qt.Key_Return, Qt.Key_Delete, Qt.Key_F1]) {
            keyClick(key, key === Qt.Key_N ? Qt.ControlModifier : Qt.NoModifier);
            if (!overlay.visible)
                continue;
            keyClick(Qt.Key_Escape);
            tryVerify(() => !overlay.visible);
            checkList("after key " + key);
        }
        for (const name of ["newGroup", "newFolder", "addServer"]) {
            const button = findChild(window.currentPage, name);
            if (!button || !button.enabled)
                continue;
            mouseClick(button);
            tryVerify(() => overlay.visible);
            keyClick(Qt.Key_Escape);
            checkList("after the dialog of " + name);
        }
    }

    function test_backFromTheAcknowledgement(): void {
        open({ startPage: "usage" });
        answer();
        server.setAlarms([volumeAlarm]);
        tryVerify(() => part("openAlarms").visible);
        part("openAlarms").clicked();
        tryVerify(() => findChild(window, "alarmList").opened);
        keyClick(Qt.Key_A);
        tryVerify(() => findChild(window, "acknowledgeDialog").opened);
        keyClick(Qt.Key_Escape);
        checkList("after the acknowledgement");
    }

    function test_aDialogKeepsThePage(): void {
        open({ startPage: "groups" });
        answer();
        keyClick(Qt.Key_N, Qt.ControlModifier);
        tryVerify(() => findChild(window.currentPage, "groupEditor").opened);
        keyClick("1", Qt.ControlModifier);
        compare(window.pages[window.currentIndex].key, "groups");
    }

    /// The item that has the focus and a picture with it, for each stop of the Tab key, the first one once.
    function stops(): var {
        const found = [];
        for (let i = 0; i < 60; ++i) {
            settle(2);
            const item = window.activeFocusItem;
            if (found.length > 0 && item === found[0].item)
                break;
            verify(item.width > 0 && item.height > 0, item);
            const stop = { item: item, place: shownPlace(item), picture: grabImage(root()), rings: rings() };
            nowhere.forceActiveFocus();
            settle(1);
            stop.without = grabImage(root());
            found.push(stop);
            item.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Tab);
        }
        verify(found.length > 1 && found.length < 60, found.length + " stops");
        return found;
    }

    /// What panes cut off from focus rings in view, a line for each.
    function rings(): var {
        const cut = [];
        walk(shownRoot(), item => {
            if (item.objectName !== "focusRing")
                return;
            const shown = shownPlace(item);
            if (shown.width < item.width - 0.5 || shown.height < item.height - 0.5)
                cut.push(`${item.parent.parent}: ${item.width}x${item.height}, in view ${shown.width}x${shown.height}`);
        });
        return cut;
    }

    /// Whether two pictures differ enough to be told apart within @p reach pixels of a point on an edge.
    function differs(one, other, x, y, dx, dy): bool {
        for (let depth = -2; depth < 5; ++depth) {
            const px = Math.round(x + dx * depth);
            const py = Math.round(y + dy * depth);
            if (px < 0 || py < 0 || px >= one.width || py >= one.height)
                continue;
            if (Contrast.ratio(one.pixel(px, py), other.pixel(px, py)) >= 3)
                return true;
        }
        return false;
    }

    /// How much of the edge of @p place has a ring in one picture that the other one lacks, of 1.
    function ringed(one, other, place): real {
        let hits = 0;
        let all = 0;
        const probe = (x, y, dx, dy) => {
            ++all;
            hits += differs(one, other, x, y, dx, dy) ? 1 : 0;
        };
        for (let x = place.x + 4; x < place.x + place.width - 4; x += 5) {
            probe(x, place.y, 0, 1);
            probe(x, place.y + place.height - 1, 0, -1);
        }
        for (let y = place.y + 4; y < place.y + place.height - 4; y += 5) {
            probe(place.x, y, 1, 0);
            probe(place.x + place.width - 1, y, -1, 0);
        }
        return hits / all;
    }

    function checkStops(where: string): void {
        const found = stops();
        const unseen = found.map(stop => {
            const share = ringed(stop.picture, stop.without, stop.place);
            return share >= 0.9 ? "" : `${where}: ${stop.item} ${stop.item.objectName} ${stop.item.text ?? ""}, ${share.toFixed(2)}`;
        });
        compare(unseen.filter(Boolean), []);
        compare(found.reduce((cut, stop) => cut.concat(stop.rings), []), []);
    }

    function test_focusIsSeen_data(): var {
        const rows = [];
        for (const page of everyPage()) {
            rows.push({ tag: page.tag + ", light", key: page.tag, scheme: Theme.alwaysLight });
            rows.push({ tag: page.tag + ", dark", key: page.tag, scheme: Theme.alwaysDark });
        }
        return rows;
    }

    function test_focusIsSeen(data): void {
        open({ startPage: data.key, startScheme: data.scheme });
        server.setAlarms([groupAlarm, volumeAlarm]);
        answer();
        checkStops(data.tag);
    }

    function test_focusIsSeenForSeveralGroups_data(): var {
        return [{ tag: "light", scheme: Theme.alwaysLight }, { tag: "dark", scheme: Theme.alwaysDark }];
    }

    function test_focusIsSeenForSeveralGroups(data): void {
        open({ startPage: "groups", startScheme: data.scheme, height: 560 });
        answer();
        server.setCameras([{ camName: "Gate", streams: 2 }, { camName: "Yard", streams: 3 }]);
        keyClick(Qt.Key_A, Qt.ControlModifier);
        checkStops("chosen");
        window.focusPage();
        openBulk();
        checkStops("settings");
        press(findChild(bulk().contentItem, "changesReserve"));
        press(findChild(bulk().contentItem, "addPath"));
        checkStops("settings that are filled in");
        press(findChild(bulk().contentItem, "removeRow"));
        press(findChild(bulk().contentItem, "changesReserve"));
        openSummary();
        checkStops("summary");
        press(findChild(bulk().footer, "accept"));
        answerMore();
        server.reply("updateRecordingGroup", [], "RecordingGroupNotFound");
        server.reply("updateRecordingGroup", [], "NoAnswer");
        compare(bulk().step, "outcomes");
        answerMore();
        checkStops("outcomes");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !overlay.visible);
        checkList("after the change of several groups");
    }

    function test_focusIsSeenInRecordHere(): void {
        open({ startPage: "folders", startScheme: Theme.alwaysLight, height: 560 });
        answer();
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_G, Qt.ControlModifier);
        answerMore();
        tryVerify(() => overlay.visible);
        checkStops("record here");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !overlay.visible);
        checkList("after the choice of a group");
    }

    function test_focusIsSeenInDialogs_data(): var {
        return [{ tag: "groups", key: Qt.Key_N, modifier: Qt.ControlModifier },
                { tag: "groups, editing", page: "groups", key: Qt.Key_Return, modifier: Qt.NoModifier },
                { tag: "groups, removing", page: "groups", key: Qt.Key_Delete, modifier: Qt.NoModifier },
                { tag: "nas", key: Qt.Key_N, modifier: Qt.ControlModifier }];
    }

    function test_focusIsSeenInDialogs(data): void {
        open({ startPage: data.page ?? data.tag, startScheme: Theme.alwaysLight, height: 560 });
        answer();
        server.setCameras([{ camName: "Gate", streams: 2 }, { camName: "Yard", streams: 3 }]);
        keyClick(data.key, data.modifier);
        tryVerify(() => overlay.visible);
        checkStops(data.tag);
        keyClick(Qt.Key_Escape);
    }
}
