import QtQuick
import QtTest
import RecordingConsole

/// The window around the pages.
TestCase {
    id: test

    property var window: null

    name: "Main"
    when: windowShown

    function init(): void {
        failOnWarning(/.*/);
    }

    function cleanup(): void {
        window.destroy();
        window = null;
        wait(0);
        Theme.scheme = Theme.followDesktop;
        server.renew();
    }

    function open(properties): void {
        const component = Qt.createComponent("qrc:/qt/qml/RecordingConsole/Main.qml");
        compare(component.errorString(), "");
        window = component.createObject(null, Object.assign({
            recording: server.recording, session: server.session, width: 1000, height: 700
        }, properties));
        verify(window);
        verify(waitForRendering(window.contentItem));
    }

    function part(name) {
        const found = findChild(window.contentItem, name);
        verify(found, name);
        return found;
    }

    function test_everyPageLoads(): void {
        open({});
        for (let i = 0; i < window.pages.length; ++i) {
            mouseClick(part("tab:" + window.pages[i].key));
            compare(window.currentIndex, i);
            verify(!window.broken, window.pages[i].source);
            verify(window.currentPage.visible);
            verify(window.title.startsWith(window.pages[i].title));
        }
        compare(server.takeSent(), ["getVolume", "getServerDir", "GetNasServers"]);
    }

    function test_pageKeepsItsStateWhileAnotherIsShown(): void {
        open({ startPage: "folders", startPlace: "/srv" });
        server.reply("getServerDir", { basePath: "/srv", dirFolderList: ["a"] }, "0");
        mouseClick(part("tab:volumes"));
        verify(!window.settled);
        mouseClick(part("tab:folders"));
        verify(window.settled);
        compare(window.currentPage.folder, "/srv");
        compare(server.takeSent(), ["getServerDir /srv", "getVolume"]);
    }

    function test_connectionIsSaidInWords(): void {
        open({});
        compare(part("connection").text, "Connected to the station on this machine");
        server.setConnected(false);
        compare(part("connection").text, "No connection to the station on this machine");
    }

    function test_schemeIsTakenAndSwitched(): void {
        open({ scheme: Theme.alwaysDark });
        compare(String(window.color), "#12171d");
        compare(part("scheme").text, "Dark");
        mouseClick(part("scheme"));
        compare(part("scheme").text, "As the desktop");
        mouseClick(part("scheme"));
        compare(part("scheme").text, "Light");
        compare(String(window.color), "#f3f5f8");
    }

    function test_keyboardReachesThePages(): void {
        open({});
        const tab = part("tab:volumes");
        tab.forceActiveFocus(Qt.TabFocusReason);
        tryVerify(() => tab.activeFocus);
        keyClick(Qt.Key_Down);
        verify(part("tab:folders").activeFocus);
        keyClick(Qt.Key_Return);
        compare(window.currentIndex, 1);
    }
}
