import QtQuick
import RecordingConsole

/// What the window remembers from one start to the next, and how large its text is.
WindowTest {
    id: test

    property ConsoleSettings settings: null

    name: "Remembered"

    function start(properties): void {
        close();
        open(Object.assign({ settings: settings }, properties));
    }

    function leave(): void {
        window.close();
        close();
    }

    Component {
        id: memory

        ConsoleSettings {}
    }

    function initTestCase(): void {
        settings = memory.createObject(test);
    }

    function init(): void {
        failOnWarning(/.*/);
        settings.destroy();
        settings = memory.createObject(test);
    }

    function test_pageThemeAndTextSizeComeBack(): void {
        start({});
        compare(window.currentIndex, 0);
        compare(Theme.scheme, Theme.followDesktop);
        keyClick("5", Qt.ControlModifier);
        mouseClick(part("scheme"));
        mouseClick(part("scheme"));
        keyClick(Qt.Key_Plus, Qt.ControlModifier);
        keyClick(Qt.Key_Plus, Qt.ControlModifier);
        leave();
        Theme.scheme = Theme.followDesktop;
        Theme.textSize = 100;
        start({});
        compare(window.pages[window.currentIndex].key, "folders");
        compare(Theme.scheme, Theme.alwaysDark);
        compare(Theme.textSize, 125);
    }

    function test_whatIsStatedWinsAndIsNotRemembered(): void {
        settings.setValue("window/page", "usage");
        settings.setValue("window/theme", "dark");
        settings.setValue("window/textSize", 150);
        settings.setValue("window/place", { x: 10, y: 20, width: 900, height: 500 });
        start({ startPage: "nas", startScheme: Theme.alwaysLight, startTextSize: 110, startSize: Qt.size(640, 480) });
        compare(window.pages[window.currentIndex].key, "nas");
        compare(Theme.scheme, Theme.alwaysLight);
        compare(Theme.textSize, 110);
        compare(window.width, 640);
        compare(window.height, 480);
        leave();
        compare(settings.value("window/page", ""), "usage");
        compare(settings.value("window/theme", ""), "dark");
        compare(settings.value("window/textSize", 0), 150);
    }

    function test_nonsenseIsNotUsed(): void {
        settings.setValue("window/page", "nowhere");
        settings.setValue("window/theme", "pink");
        settings.setValue("window/textSize", 900);
        settings.setValue("window/place", { x: "left", width: 1e9 });
        start({});
        compare(window.currentIndex, 0);
        compare(Theme.scheme, Theme.followDesktop);
        compare(Theme.textSize, 100);
        compare(window.width, 1000);
    }

    function test_placeComesBack(): void {
        start({ width: 720, height: 540 });
        window.x = 30;
        window.y = 40;
        tryVerify(() => window.x === 30 && window.y === 40);
        leave();
        start({ width: 1000, height: 700 });
        compare(Qt.rect(window.x, window.y, window.width, window.height), Qt.rect(30, 40, 720, 540));
    }

    function test_placeOnAScreen_data(): var {
        return [
            { tag: "on the first", place: { x: 100, y: 50, width: 800, height: 600 }, shown: true },
            { tag: "on the second", place: { x: 2000, y: 50, width: 800, height: 600 }, shown: true },
            { tag: "on both", place: { x: 1800, y: 50, width: 800, height: 600 }, shown: true },
            { tag: "right of all", place: { x: 3190, y: 50, width: 800, height: 600 }, shown: false },
            { tag: "left of all", place: { x: -790, y: 50, width: 800, height: 600 }, shown: false },
            { tag: "its title above", place: { x: 100, y: -300, width: 800, height: 600 }, shown: false },
            { tag: "below", place: { x: 100, y: 1070, width: 800, height: 600 }, shown: false }
        ];
    }

    function test_placeOnAScreen(data): void {
        start({});
        const memory = findChild(window.contentItem, "memory");
        memory.screens = [{ virtualX: 0, virtualY: 0, width: 1920, height: 1080 },
                          { virtualX: 1920, virtualY: 0, width: 1280, height: 1024 }];
        compare(memory.screenOf(data.place) !== null, data.shown);
    }

    function test_aPlaceThatIsGoneIsNotUsed(): void {
        settings.setValue("window/place", { x: 50000, y: 50, width: 100000, height: 500 });
        start({});
        verify(window.x < 50000);
        compare(window.height, 500);
        const screens = Qt.application.screens;
        compare(window.width, screens[0].width, "no wider than the screen");
    }

    function test_textSizeByKeys(): void {
        start({});
        const size = part("connection").font.pixelSize;
        keyClick(Qt.Key_Plus, Qt.ControlModifier);
        compare(Theme.textSize, 110);
        keyClick(Qt.Key_Equal, Qt.ControlModifier);
        compare(Theme.textSize, 125);
        verify(part("connection").font.pixelSize > size);
        compare(part("textSize").text, "Text 125 %");
        keyClick(Qt.Key_Minus, Qt.ControlModifier);
        compare(Theme.textSize, 110);
        keyClick(Qt.Key_0, Qt.ControlModifier);
        compare(Theme.textSize, 100);
        verify(!part("textSize").visible);
    }

    function test_largeTextFits_data(): var {
        return [{ tag: "200 % on 1280x800", size: 200, width: 1280, height: 800 },
                { tag: "150 % on 800x600", size: 150, width: 800, height: 600 }];
    }

    /// No text leaves the window, no two lie over each other, and nothing of a page's head is cut off.
    function test_largeTextFits(data): void {
        start({ width: data.width, height: data.height, startTextSize: data.size });
        server.setAlarms([groupAlarm, volumeAlarm]);
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            answer();
            tryVerify(() => isPolished(root()));
            checkTexts(window.pages[i].key);
            const list = window.currentPage.mainList;
            verify(list.height >= 2 * Theme.controlHeight, `${window.pages[i].key}: the list is ${list.height} high`);
        }
    }

    function test_everyButtonHasRoomForItsText_data(): var {
        return [{ tag: "at the start", startTextSize: 200, width: 1280 }, { tag: "by the keys", startTextSize: 100, width: 1280 },
                { tag: "narrow", startTextSize: 150, width: 700 }, ...Array.from(ConsolePages.list).map(page => ({
                    tag: "first " + page.key, startTextSize: 200, width: 1280, startPage: page.key }))];
    }

    function test_everyButtonHasRoomForItsText(data): void {
        start({ width: data.width, height: 800, startTextSize: data.startTextSize, startPage: data.startPage ?? "" });
        server.setAlarms([groupAlarm, volumeAlarm]);
        checkButtons("asked");
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            answer();
            checkButtons(window.pages[i].key);
        }
        if (data.startPage)
            return;
        for (let step = 0; step < 2; ++step) {
            keyClick(Qt.Key_Plus, Qt.ControlModifier);
            for (let i = 0; i < window.pages.length; ++i) {
                keyClick(String(i + 1), Qt.ControlModifier);
                checkButtons(`${window.pages[i].key} at ${Theme.textSize} %`);
            }
        }
        keyClick(Qt.Key_0, Qt.ControlModifier);
        for (let i = 0; i < window.pages.length; ++i) {
            keyClick(String(i + 1), Qt.ControlModifier);
            checkButtons(window.pages[i].key + ", small again");
        }
    }

    /// Qt's layouts may give an item the size that it had.
    function checkButtons(where: string): void {
        settle();
        tryVerify(() => isPolished(root()));
        const cut = [];
        walk(root(), item => {
            if (item.hint !== undefined && item.iconName !== undefined
                    && (item.width < item.implicitWidth - 0.5 || item.height < item.implicitHeight - 0.5
                        || item.height > item.implicitHeight + 0.5))
                cut.push(`${item.objectName} ${item.text}: ${item.width}x${item.height}, needs ${item.implicitWidth}x${item.implicitHeight}`);
        });
        compare(cut, [], where);
    }

    function isPolished(item): bool {
        if (!item.visible)
            return true;
        if (isPolishScheduled(item))
            return false;
        for (let i = 0; i < item.children.length; ++i) {
            if (!isPolished(item.children[i]))
                return false;
        }
        return true;
    }

    function checkTexts(where: string): void {
        const texts = [];
        walk(root(), item => {
            if (item.text === undefined || item.contentWidth === undefined || item.text === "")
                return;
            const place = shownPlace(item);
            if (place.width < 1 || place.height < 1)
                return;
            verify(place.x >= -0.5 && place.x + place.width <= window.width + 0.5, `${where}: ${item.text} ${place}`);
            for (const other of texts) {
                const apart = place.x + place.width <= other.place.x + 0.5 || other.place.x + other.place.width <= place.x + 0.5
                    || place.y + place.height <= other.place.y + 0.5 || other.place.y + other.place.height <= place.y + 0.5;
                verify(apart, `${where}: ${item.text} overlaps ${other.text}`);
            }
            texts.push({ text: item.text, place: place });
        });
        verify(texts.length > 5);
    }
}
