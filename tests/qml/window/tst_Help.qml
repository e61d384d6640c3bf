import QtQuick
import RecordingConsole

/// What F1 shows.
WindowTest {
    id: test

    name: "Help"

    function dialog() {
        return findChild(window, "helpDialog");
    }

    function rows(table): var {
        const found = [];
        walk(findChild(dialog().contentItem, table), item => {
            if (item.objectName === "keys")
                found.push(item.text + ": " + findChild(item.parent, "words").text);
        });
        return found;
    }

    function showPage(index: int): void {
        keyClick(String(index + 1), Qt.ControlModifier);
        compare(window.currentIndex, index);
    }

    function test_everyPageHasHelp(): void {
        open({});
        const seen = [];
        for (let i = 0; i < window.pages.length; ++i) {
            showPage(i);
            const help = window.currentPage.help;
            verify(help.length > 60 && help.endsWith("."), window.pages[i].key);
            verify(!seen.includes(help));
            seen.push(help);
            keyClick(Qt.Key_F1);
            tryVerify(() => dialog().opened);
            compare(dialog().title, "Help: " + window.pages[i].title);
            compare(findChild(dialog().contentItem, "help").text, help);
            const keys = rows("pageKeys");
            compare(keys.length, window.currentPage.allKeys().length);
            verify(keys.includes("F5: Ask the station again"));
            verify(keys.includes("Ctrl+F: Search the list"), window.pages[i].key);
            verify(keys.includes("Esc: In the search: show all rows again, and go back to the list"));
            verify(!keys.some(line => line.startsWith("Return")), "it is called Enter on the keyboard");
            verify(keys.every(line => /^\S.*: \S/.test(line)), keys.join());
            keyClick(Qt.Key_Escape);
            tryVerify(() => !dialog().visible);
        }
    }

    function test_keysOfTheWindow(): void {
        open({});
        keyClick(Qt.Key_F1);
        tryVerify(() => dialog().opened);
        const lines = rows("windowKeys");
        for (const line of ["F1: Show this help", "Ctrl+2: Go to the page “Recording groups”", "F8: Show the alarms",
                            "Ctrl++: Make text larger", "Ctrl+-: Make text smaller", "Ctrl+0: Make text as large as usual",
                            "A: In the list of alarms: acknowledge the alarm, or take that back"])
            verify(lines.includes(line), line + " in " + lines.join(" | "));
    }

    /// What the help says of a key is what the key does.
    function test_keysDoWhatIsSaid_data(): var {
        return [
            { tag: "groups", key: Qt.Key_Return, text: "Change the recording group, or all chosen ones", dialog: "groupEditor" },
            { tag: "groups", key: Qt.Key_Enter, text: "Change the recording group, or all chosen ones", dialog: "groupEditor" },
            { tag: "groups", key: Qt.Key_Delete, text: "Remove the recording group", dialog: "removeGroupDialog" },
            { tag: "groups", key: Qt.Key_N, control: true, text: "Add a recording group", dialog: "groupEditor" },
            { tag: "nas", key: Qt.Key_F2, text: "Change the server", dialog: "nasServerDialog" },
            { tag: "nas", key: Qt.Key_Delete, text: "Remove the server", dialog: "nasRemoveDialog" },
            { tag: "nas", key: Qt.Key_N, control: true, text: "Add a NAS server", dialog: "nasServerDialog" }
        ];
    }

    function test_keysDoWhatIsSaid(data): void {
        open({ startPage: data.tag });
        answer();
        verify(window.currentPage.allKeys().some(key => key.text === data.text));
        keyClick(data.key, data.control ? Qt.ControlModifier : Qt.NoModifier);
        tryVerify(() => findChild(window.currentPage, data.dialog)?.opened);
        keyClick(Qt.Key_F1);
        verify(!dialog().visible, "not over another dialog");
        keyClick(Qt.Key_Escape);
    }

    function test_aKeyOfTheListCountsThereAlone(): void {
        open({ startPage: "groups" });
        answer();
        part("refresh").forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Delete);
        verify(!findChild(window.currentPage, "removeGroupDialog").visible);
    }

    function test_aKeyCountsOnItsPageAlone(): void {
        open({ startPage: "groups" });
        answer();
        const editor = findChild(window.currentPage, "groupEditor");
        showPage(0);
        keyClick(Qt.Key_N, Qt.ControlModifier);
        verify(!editor.visible);
    }

    function test_alarmsByTheirKey(): void {
        open({});
        keyClick(Qt.Key_F8);
        verify(!findChild(window, "alarmList").visible, "there are none");
        server.setAlarms([groupAlarm, volumeAlarm]);
        tryVerify(() => part("openAlarms").visible);
        keyClick(Qt.Key_F8);
        tryVerify(() => findChild(window, "alarmList").opened);
    }

    function test_longHelpCanBeRead(): void {
        open({ width: 500, height: 360, startTextSize: 200 });
        keyClick(Qt.Key_F1);
        tryVerify(() => dialog().opened);
        settle();
        const content = findChild(dialog().contentItem, "helpContent") ?? dialog().contentItem;
        verify(content.contentHeight > content.height);
        verify(content.contentY === 0);
        keyClick(Qt.Key_Down);
        verify(content.contentY > 0);
        const place = part("closeHelp");
        verify(place.mapToItem(null, 0, place.height).y <= window.height);
    }

    function test_theSearchByItsKeys_data(): var {
        return Array.from(ConsolePages.list).map((page, index) => ({ tag: page.key, index: index }));
    }

    function test_theSearchByItsKeys(data): void {
        open({ startPage: data.tag });
        answer();
        keyClick("f", Qt.ControlModifier);
        const focused = () => window.activeFocusItem?.objectName;
        tryVerify(() => focused() === "searchField", 5000, focused());
        keyClick(Qt.Key_Escape);
        tryVerify(() => focused() !== "searchField");
        compare(window.activeFocusItem, (window.currentPage.mainList as ListView)?.currentItem ?? window.currentPage.mainList);
    }
}
