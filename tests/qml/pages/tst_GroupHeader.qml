import QtQuick

/// The head of a recording group has its name, Edit and Remove, whenever the group comes.
GroupsTest {
    id: test

    name: "GroupHeader"

    /// Nothing of the head is cut off, and nothing of it lies over something else.
    function checkHeader(how: string): void {
        const card = part("groupDetail");
        tryVerify(() => !isUnsettled(page));
        let left = -1;
        for (const name of ["groupName", "edit", "remove"]) {
            const item = findChild(card, name);
            const place = item.mapToItem(card, 0, 0, item.width, item.height);
            verify(item.visible && place.width > 20 && place.height > 10, `${how}: ${name} ${place}`);
            verify(place.x > left && place.x + place.width <= card.width, `${how}: ${name} ${place} of ${card.width}`);
            verify(place.y >= 0 && place.y + place.height <= findChild(card, "detail").y, `${how}: ${name} ${place}`);
            left = place.x + place.width;
        }
        const edit = findChild(card, "edit");
        verify(edit.width >= edit.implicitWidth - 0.5, `${how}: Edit is ${edit.width} of ${edit.implicitWidth} wide`);
    }

    function frames(count: int): void {
        for (let i = 0; i < count; ++i) {
            page.Window.window.update();
            waitForRendering(page);
        }
    }

    function test_wheneverTheGroupComes_data(): var {
        const rows = [];
        for (const first of [0, 300, 1004]) {
            for (const before of [0, 2]) {
                for (const last of [300, 1004])
                    rows.push({ tag: `${first} to ${last}, after ${before} frames`, first: first, last: last, before: before });
            }
        }
        return rows;
    }

    function test_wheneverTheGroupComes(data): void {
        open("RecordingGroupsPage", { width: data.first, height: data.first === 0 ? 0 : test.height });
        frames(data.before);
        page.width = data.last;
        page.height = test.height;
        answer([north, cars, ramp]);
        frames(2);
        checkHeader("shown");
        for (const group of ["{cars}", "", "{ramp}"]) {
            page.select(group);
            frames(1);
        }
        checkHeader("another one");
        page.width = 980;
        frames(1);
        checkHeader("made wider");
        page.width = 310;
        frames(1);
        checkHeader("made narrow");
    }

    function test_theGroupComesWithTheWidth(): void {
        open("RecordingGroupsPage", { width: 300 });
        answer([]);
        frames(2);
        for (const width of [1004, 400, 700, 300, 1004]) {
            page.width = width;
            page.refresh();
            answer([north]);
            frames(1);
            checkHeader(`${width} wide`);
            page.refresh();
            answer([]);
            frames(1);
        }
    }

    function test_aLongNameLeavesTheButtons(): void {
        open("RecordingGroupsPage", { width: 500 });
        answer([Object.assign({}, north, { recordingGroupName: "A recording group with a name that goes on and on and on" })]);
        frames(2);
        checkHeader("long name");
    }
}
