import QtQuick
import RecordingConsole
import "../pages"

/// The page of the NAS servers on a real station, against a real SMB server.
PageTest {
    id: test

    // Numbers of the volume roles, for data().
    readonly property int rootPathNumber: 258
    readonly property int isNasNumber: 263

    property NasVolumes volumes: null
    property var dialog: null

    name: "NasOnAStation"

    function initTestCase(): void {
        compare(server.startNas(), "");
    }

    function openDialog(): void {
        volumes = volumesComponent.createObject(test, { recording: server.recording, session: server.session });
        open("NasPage", { nasVolumes: volumes });
        tryVerify(() => page.settled);
        mouseClick(part("addServer"));
        dialog = findChild(page, "nasServerDialog");
        tryVerify(() => dialog.opened);
    }

    function cleanup(): void {
        page.destroy();
        page = null;
        volumes.destroy();
        volumes = null;
        wait(0);
        server.renew();
    }

    function piece(name) {
        const found = findChild(dialog.contentItem, name) ?? findChild(dialog.footer, name);
        verify(found, name);
        return found;
    }

    function enter(name, words): void {
        const input = piece(name);
        input.forceActiveFocus();
        input.selectAll();
        keyClick(Qt.Key_Delete);
        for (const key of words)
            keyClick(key);
    }

    function enterServer(password): void {
        enter("hostInput", server.nasHost);
        enter("userInput", server.nasUser);
        enter("passwordInput", password);
        keyClick(Qt.Key_Return);
    }

    function addServer(): void {
        openDialog();
        enterServer(server.nasPassword);
        tryVerify(() => !dialog.visible, 20000);
    }

    function servers() {
        return server.ask("GetNasServers", "");
    }

    function clickOn(name): void {
        tryVerify(() => findChild(page, name)?.visible ?? false, 20000, name);
        waitForRendering(page);
        mouseClick(part(name));
    }

    function test_aServerIsAddedAndBrowsed(): void {
        addServer();
        compare(servers().map(entry => [entry.host, entry.userName]), [[server.nasHost, server.nasUser]]);
        tryCompare(part("servers"), "count", 1);
        compare(server.recording.getNASServerModel().rowCount(), 1);
        clickOn("folder:video");
        clickOn("folder:north");
        const path = "//" + server.nasHost + "/video/north";
        const capacity = part("capacity");
        tryVerify(() => capacity.path === path && !capacity.asking, 20000);
        verify(text(capacity, "figures").includes(" free of "));
        clickOn("useAsVolume");
        tryVerify(() => part("volumeMark").visible, 20000);
        const rows = server.recording.getVolumeModel();
        const last = rows.index(rows.rowCount() - 1, 0);
        compare(rows.data(last, rootPathNumber), path);
        compare(rows.data(last, isNasNumber), true);
    }

    function test_aWrongPasswordStandsAtItsField(): void {
        openDialog();
        enterServer("wrong");
        tryVerify(() => !dialog.busy, 20000);
        verify(dialog.visible);
        compare(piece("passwordMessage").text, "The NAS server refused this user name and password.");
        compare(piece("hostInput").text, server.nasHost);
        compare(servers(), []);
        enter("passwordInput", server.nasPassword);
        keyClick(Qt.Key_Return);
        tryVerify(() => !dialog.visible, 20000);
        compare(servers().length, 1);
    }

    function test_theSameServerTwiceIsSaid(): void {
        addServer();
        tryCompare(part("servers"), "count", 1);
        mouseClick(part("addServer"));
        tryVerify(() => dialog.opened);
        enterServer(server.nasPassword);
        tryVerify(() => !dialog.busy, 20000);
        compare(piece("hostMessage").text, "This user of the host is registered already.");
    }

    function test_aSilentServerCanBeLeft(): void {
        openDialog();
        enter("hostInput", server.silentHost);
        keyClick(Qt.Key_Return);
        verify(dialog.busy);
        compare(server.ask("station.describe") !== undefined, true, "and the station answers others");
        verify(dialog.busy);
        mouseClick(piece("cancel"));
        tryVerify(() => !dialog.visible);
        verify(part("notice").visible);
        compare(servers(), []);
    }

    function test_aServerIsRemoved(): void {
        addServer();
        tryCompare(part("servers"), "count", 1);
        clickOn("remove");
        const removal = findChild(page, "nasRemoveDialog");
        tryVerify(() => removal.opened);
        mouseClick(findChild(removal.footer, "accept"));
        tryVerify(() => !removal.visible);
        tryCompare(part("servers"), "count", 0);
        compare(servers(), []);
    }

    Component {
        id: volumesComponent

        NasVolumes {}
    }
}
