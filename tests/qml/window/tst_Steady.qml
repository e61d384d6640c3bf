import QtQuick
import RecordingConsole

/// Nothing moves under the pointer.
WindowTest {
    id: test

    name: "Steady"

    /// Where the texts and controls of the page stand, a line for each.
    function places(): var {
        const found = [];
        walk(window.currentPage, item => {
            if (item.text !== undefined && item.text !== "") {
                const place = item.mapToItem(null, 0, 0, item.width, item.height);
                found.push(`${item.text} ${place}`);
            }
        });
        return found;
    }

    function test_alarmsComeAndGo(): void {
        open({});
        server.setAlarms([]);
        server.setAlarmsKnown(true);
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            answer();
            const before = places();
            verify(before.length > 4);
            server.addAlarm(groupAlarm);
            tryVerify(() => part("openAlarms").visible);
            settle();
            compare(places(), before, window.pages[i].key + ", the first one");
            server.addAlarm(volumeAlarm);
            tryVerify(() => part("alarmCount").visible);
            settle();
            compare(places(), before, window.pages[i].key + ", another one");
            part("openAlarms").clicked();
            settle();
            compare(places(), before, window.pages[i].key + ", the list of them");
            keyClick(Qt.Key_Escape);
            server.removeAlarm(1);
            server.removeAlarm(0);
            tryVerify(() => !part("openAlarms").visible);
            settle();
            compare(places(), before, window.pages[i].key + ", none any more");
        }
    }

    function test_lateOutcomesCome(): void {
        open({});
        answer();
        const before = places();
        server.tellLateOutcome("updateRecordingGroup", "Yard", "0");
        tryVerify(() => part("lateOutcomes").visible);
        settle();
        compare(places(), before);
        const strip = part("lateOutcomes");
        verify(strip.mapToItem(null, 0, strip.height).y <= part("connection").mapToItem(null, 0, 0).y, "above the connection");
    }

    function test_anEditorGrowsDownwards(): void {
        open({ startPage: "groups", height: 700 });
        answer();
        keyClick(Qt.Key_N, Qt.ControlModifier);
        const editor = findChild(window.currentPage, "groupEditor");
        tryVerify(() => editor.opened);
        settle();
        const field = findChild(editor.contentItem, "groupNameField");
        const top = editor.y;
        const fieldTop = field.mapToItem(null, 0, 0).y;
        const height = editor.height;
        findChild(editor.contentItem, "addPath").clicked();
        settle();
        verify(editor.height > height);
        compare(editor.y, top);
        compare(field.mapToItem(null, 0, 0).y, fieldTop);
        for (let i = 0; i < 4; ++i)
            findChild(editor.contentItem, "addPath").clicked();
        settle();
        compare(editor.y, top);
        verify(editor.y + editor.height <= window.height, "its buttons stay in the window");
        keyClick(Qt.Key_Escape);
    }

    function test_aMessageGrowsDownwards(): void {
        open({ startPage: "nas" });
        answer();
        keyClick(Qt.Key_N, Qt.ControlModifier);
        const dialog = findChild(window.currentPage, "nasServerDialog");
        tryVerify(() => dialog.opened);
        settle();
        const top = dialog.y;
        keyClick(Qt.Key_Slash);
        settle();
        compare(dialog.y, top);
        keyClick(Qt.Key_Escape);
    }

    /// Without the line about the page, in whose place messages stand.
    function placesBelow(): var {
        const strips = findChild(window.currentPage, "messages");
        const found = [];
        walk(window.currentPage, item => {
            for (let around = item; around; around = around.parent) {
                if (around === strips)
                    return;
            }
            if (item.text !== undefined && item.text !== "" && item.objectName !== "subtitle")
                found.push(`${item.text} ${item.mapToItem(null, 0, 0, item.width, item.height)}`);
        });
        return found;
    }

    function test_messagesComeAndGo(): void {
        open({});
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            answer();
            const key = window.pages[i].key;
            const before = placesBelow();
            verify(before.length > 4);
            window.currentPage.tellFailure("The station could not use its database; its log says why.");
            settle();
            const strip = findChild(window.currentPage, "errorStrip");
            verify(strip.visible && !findChild(window.currentPage, "subtitle").visible, key);
            compare(strip.height, Theme.stripHeight, "a line has room");
            const room = window.currentPage.room;
            verify(strip.mapToItem(room, 0, strip.height).y <= 0, key + ": it covers nothing");
            compare(placesBelow(), before, key);
            window.currentPage.tellFailure("");
            settle();
            verify(findChild(window.currentPage, "subtitle").visible);
            compare(placesBelow(), before, key + ", gone again");
        }
    }

    /// What is too long for the line lies over the page and can be read as a whole.
    function test_aLongMessageMovesNothing(): void {
        open({ startPage: "volumes" });
        answer();
        const before = placesBelow();
        window.currentPage.tellFailure("A long way round. ".repeat(30));
        settle();
        const strip = findChild(window.currentPage, "errorStrip");
        verify(strip.height > Theme.stripHeight);
        compare(placesBelow(), before);
        findChild(strip, "errorClose").clicked();
        settle();
        verify(!strip.visible);
    }

    function test_anUndoIsOfferedInThatPlace(): void {
        open({ startPage: "groups" });
        answer();
        const before = placesBelow();
        const strip = findChild(window.currentPage, "undoStrip");
        strip.show("The changes of North gate are saved.", true);
        settle();
        verify(strip.visible);
        compare(placesBelow(), before);
    }
}
