import QtQuick
import RecordingConsole
import "Contrast.js" as Contrast

/// Every text in the window against the ground that is really painted below it.
WindowTest {
    id: test

    name: "Contrast"

    function isText(item): bool {
        return item.text !== undefined && item.color !== undefined && item.contentWidth !== undefined && item.text !== "";
    }

    function opacityOf(item): real {
        let opacity = 1;
        for (let around = item; around; around = around.parent)
            opacity *= around.opacity;
        return opacity;
    }

    /// The colours that take up a tenth or more of @p place in a picture; the commonest one alone where @p one is true.
    function groundsIn(picture, place, one) {
        const counts = {};
        const columns = 24;
        const rows = 8;
        for (let i = 0; i < columns; ++i) {
            for (let j = 0; j < rows; ++j) {
                const colour = picture.pixel(Math.floor(place.x + (i + 0.5) * place.width / columns),
                                             Math.floor(place.y + (j + 0.5) * place.height / rows));
                counts[colour] = (counts[colour] ?? 0) + 1;
            }
        }
        const colours = Object.keys(counts).sort((a, b) => counts[b] - counts[a]);
        return (one ? colours.slice(0, 1) : colours.filter(colour => counts[colour] * 10 >= columns * rows))
            .map(colour => Qt.color(colour));
    }

    /// Where the letters are in a text's item.
    function inked(item) {
        const left = item.leftPadding ?? 0;
        const top = item.topPadding ?? 0;
        const room = item.height - top - (item.bottomPadding ?? 0);
        const height = Math.min(room, item.contentHeight);
        return Qt.rect(left, item.verticalAlignment === Text.AlignVCenter ? top + (room - height) / 2 : top,
                       item.width - left - (item.rightPadding ?? 0), height);
    }

    /// What is hard to read, a line for each. @p seen counts the texts.
    function poorTexts(seen): var {
        const texts = [];
        walk(shownRoot(), item => {
            const place = isText(item) ? shownPlace(item, inked(item)) : Qt.rect(0, 0, 0, 0);
            if (isText(item) && place.width >= 2 && place.height >= 2)
                texts.push({ item: item, place: place, opacity: opacityOf(item), typed: item.cursorPosition !== undefined });
        });
        seen.count = texts.length;
        const fixed = texts.filter(text => !text.typed);
        const opacities = fixed.map(text => text.item.opacity);
        fixed.forEach(text => text.item.opacity = 0); // what is left is the ground
        const picture = grabImage(root());
        fixed.forEach((text, index) => text.item.opacity = opacities[index]);
        const poor = [];
        for (const text of texts) {
            for (const ground of groundsIn(picture, text.place, text.typed)) {
                const ratio = Contrast.ratio(Contrast.over(text.item.color, ground, text.opacity), ground);
                if (!(ratio >= 4.5))
                    poor.push(`"${text.item.text}" ${text.item.color} on ${ground}: ${ratio.toFixed(2)}`);
            }
        }
        return poor;
    }

    function checkTexts(where: string, least: int): void {
        settle();
        const seen = {};
        compare(poorTexts(seen), [], where);
        verify(seen.count >= least, `${where}: ${seen.count} texts`);
    }

    function test_everyTextIsReadable_data(): var {
        return [{ tag: "light", scheme: Theme.alwaysLight }, { tag: "dark", scheme: Theme.alwaysDark }];
    }

    function test_everyTextIsReadable(data): void {
        open({ startScheme: data.scheme });
        server.setAlarms([groupAlarm, volumeAlarm]);
        for (let i = 0; i < window.pages.length; ++i) {
            const key = window.pages[i].key;
            keyClick(String(i + 1), Qt.ControlModifier);
            compare(window.currentIndex, i);
            checkTexts(key + ", asked", 8);
            answer();
            checkTexts(key + ", answered", 8);
            keyClick(Qt.Key_Down);
            checkTexts(key + ", next row", 8);
            server.setConnected(false);
            checkTexts(key + ", disconnected", 8);
            server.setConnected(true);
            answer();
        }
    }

    function test_everyDialogIsReadable_data(): var {
        return test_everyTextIsReadable_data();
    }

    function test_everyDialogIsReadable(data): void {
        open({ startScheme: data.scheme });
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            answer();
            for (const key of [Qt.Key_N, Qt.Key_F2, Qt.Key_Return, Qt.Key_Delete, Qt.Key_F1]) {
                keyClick(key, key === Qt.Key_N ? Qt.ControlModifier : Qt.NoModifier);
                checkTexts(window.pages[i].key + ", after key " + key, 4);
                keyClick(Qt.Key_Escape);
            }
        }
        server.setAlarms([groupAlarm, volumeAlarm]);
        tryVerify(() => part("openAlarms").visible);
        part("openAlarms").clicked();
        checkTexts("alarms", 4);
        keyClick(Qt.Key_A);
        checkTexts("acknowledgement", 4);
    }

    function test_severalGroupsAreReadable_data(): var {
        return test_everyTextIsReadable_data();
    }

    function test_severalGroupsAreReadable(data): void {
        open({ startPage: "groups", startScheme: data.scheme });
        answer();
        keyClick(Qt.Key_A, Qt.ControlModifier);
        checkTexts("groups, chosen", 8);
        openBulk();
        checkTexts("what is to be changed", 8);
        openSummary();
        checkTexts("summary", 6);
        press(findChild(bulk().footer, "accept"));
        answerMore();
        compare(bulk().step, "sending");
        checkTexts("sending", 5);
        server.reply("updateRecordingGroup", [], "RecordingGroupNotFound");
        server.reply("updateRecordingGroup", [], "NoAnswer");
        compare(bulk().step, "outcomes");
        checkTexts("outcomes", 6);
        answerMore();
        press(findChild(bulk().footer, "cancel"));
        tryVerify(() => !overlay.visible);
    }

    function test_recordHereIsReadable_data(): var {
        return test_everyTextIsReadable_data();
    }

    function test_recordHereIsReadable(data): void {
        open({ startPage: "volumes", startScheme: data.scheme });
        answer();
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_G, Qt.ControlModifier);
        compare(window.pages[window.currentIndex].key, "groups");
        answerMore();
        tryVerify(() => overlay.visible);
        checkTexts("record here", 4);
        keyClick(Qt.Key_Return);
        tryVerify(() => findChild(window.currentPage, "groupEditor").opened);
        keyClick(Qt.Key_Escape);
    }

    function test_aPoorTextIsFound(): void {
        open({ startScheme: Theme.alwaysLight });
        const text = faintText.createObject(window.contentItem);
        settle();
        compare(poorTexts({}).length, 1);
        text.opacity = 1;
        compare(poorTexts({}).length, 0);
        text.destroy();
    }

    Component {
        id: faintText

        Text {
            x: 400
            y: 300
            z: 10
            text: "faint"
            color: Theme.text
            opacity: 0.4
            font.pixelSize: 20

            Rectangle {
                z: -1
                anchors.fill: parent
                color: Theme.surface
            }
        }
    }
}
