import QtQuick
import QtTest
import RecordingConsole

/// What the tests of all pages share.
TestCase {
    id: test

    property var page: null

    when: windowShown
    visible: true
    width: 800
    height: 560

    function init(): void {
        failOnWarning(/.*/);
    }

    function cleanup(): void {
        if (page)
            page.destroy();
        page = null;
        wait(0);
        server.renew();
    }

    /// Makes a page on the played server.
    function open(name, properties): void {
        const component = Qt.createComponent("qrc:/qt/qml/RecordingConsole/pages/" + name + ".qml");
        compare(component.errorString(), "");
        page = component.createObject(test, Object.assign({
            recording: server.recording, session: server.session, width: test.width, height: test.height
        }, properties));
        verify(page);
    }

    function part(name) {
        const found = findChild(page, name);
        verify(found, name);
        return found;
    }

    /// With the mouse, once the page's layouts have settled.
    function click(name): void {
        tryVerify(() => !isUnsettled(page));
        mouseClick(part(name));
    }

    function text(owner, name): string {
        const found = findChild(owner, name);
        verify(found, name);
        return found.text;
    }

    /// Whether a layout or list in sight, @p item or one within it, has still to place its items.
    function isUnsettled(item): bool {
        if (!item.visible)
            return false;
        if (isPolishScheduled(item) || (item instanceof ListView && hasUnplacedRows(item)))
            return true;
        for (let i = 0; i < item.children.length; ++i) {
            if (isUnsettled(item.children[i]))
                return true;
        }
        return false;
    }

    /// A list makes the rows around its view bit by bit, and neither places nor draws them before they are complete.
    function hasUnplacedRows(list): bool {
        for (let i = 0; i < list.contentItem.children.length; ++i) {
            const row = list.contentItem.children[i];
            if (row.index !== undefined && list.itemAtIndex(row.index) !== row)
                return true;
        }
        return false;
    }

    /// No visible item may have a negative side or stand outside of @p frame, the page if none is named; texts side by
    /// side may not overlap.
    function checkGeometry(item, frame = page) {
        if (!item.visible)
            return;
        tryVerify(() => !isUnsettled(item));
        verify(item.width >= 0 && item.height >= 0, item + " has a negative side");
        const texts = [];
        collectTexts(item, texts);
        for (let i = 0; i < texts.length; ++i) {
            const a = shownPlace(texts[i], frame);
            verify(a.width >= 0 && a.height >= 0, texts[i].text);
            verify(a.x >= -0.5 && a.x + a.width <= frame.width + 0.5, texts[i].text + " leaves the page: " + a);
            for (let j = 0; j < i; ++j) {
                const b = shownPlace(texts[j], frame);
                const apart = a.x + a.width <= b.x + 0.5 || b.x + b.width <= a.x + 0.5
                    || a.y + a.height <= b.y + 0.5 || b.y + b.height <= a.y + 0.5;
                verify(apart, texts[i].text + " overlaps " + texts[j].text);
            }
        }
    }

    /// Where an item stands on the page, without what is clipped away.
    function shownPlace(item, frame) {
        let place = item.mapToItem(frame, 0, 0, item.width, item.height);
        for (let around = item.parent; around && around !== frame; around = around.parent) {
            if (!around.clip)
                continue;
            const pane = around.mapToItem(frame, 0, 0, around.width, around.height);
            const x = Math.min(Math.max(place.x, pane.x), pane.x + pane.width);
            const y = Math.min(Math.max(place.y, pane.y), pane.y + pane.height);
            place = Qt.rect(x, y, Math.max(0, Math.min(place.x + place.width, pane.x + pane.width) - x),
                            Math.max(0, Math.min(place.y + place.height, pane.y + pane.height) - y));
        }
        return place;
    }

    /// The page as a window's edge is dragged, narrower and wider again: its layouts settle at every width.
    function dragThroughWidths(): void {
        const widths = [];
        for (let width = 1020; width >= 300; width -= 60)
            widths.push(width);
        for (const width of [...widths, ...widths.slice(0, -1).reverse()]) {
            page.width = width;
            waitForRendering(page);
            checkGeometry(page);
        }
    }

    /// The page in a window that takes other sizes at once, and back, as by a double click on its title.
    function jumpBetweenWidths(): void {
        for (const width of [716, 1000, 1836, 716, 1000, 1836, 1000]) {
            Theme.scheme = Theme.scheme === Theme.alwaysLight ? Theme.alwaysDark : Theme.alwaysLight;
            page.width = width;
            page.height = width * 0.6;
            waitForRendering(page);
            checkGeometry(page);
            checkMarks(page);
        }
        Theme.scheme = Theme.followDesktop;
    }

    /// Rows of marks end where their rows do.
    function checkMarks(item): void {
        if (item.visible && item.marks !== undefined && item instanceof Row)
            fuzzyCompare(item.x + item.width, item.parent.width, 0.5, item.parent + " at " + page.width);
        for (let i = 0; i < item.children.length; ++i)
            checkMarks(item.children[i]);
    }

    function collectTexts(item, texts) {
        if (!item.visible)
            return;
        verify(item.width >= 0 && item.height >= 0, item + " has a negative side");
        if (item.text !== undefined && item.contentWidth !== undefined && item.text !== "")
            texts.push(item);
        for (let i = 0; i < item.children.length; ++i)
            collectTexts(item.children[i], texts);
    }
}
