import QtQuick
import RecordingConsole

/// What the tests of NAS servers share: two servers, and how the played station answers about them.
PageTest {
    id: test

    readonly property real gigabyte: 1024 * 1024
    readonly property var servers: [
        { id: "{1}", host: "nas1", logonDomain: "Host", userName: "camera", password: "token-1" },
        { id: "{2}", host: "nas2", logonDomain: "OFFICE", userName: "recorder", password: "token-2" }
    ]
    property NasVolumes volumes: null

    function openWith(list, properties): void {
        volumes = volumesComponent.createObject(test, { recording: server.recording, session: server.session });
        open("NasPage", Object.assign({ nasVolumes: volumes }, properties));
        if (list === null)
            return;
        answerServers(list);
        server.takeSent();
        waitForRendering(page);
        page.forceActiveFocus();
    }

    function cleanup(): void {
        if (page)
            page.destroy();
        page = null;
        volumes?.destroy();
        volumes = null;
        wait(0);
        server.renew();
    }

    function answerServers(list): void {
        server.reply("GetNasServers", list, "0");
    }

    function listing(path, folders) {
        return { basePath: path, dirFolderList: [".", "..", ...folders] };
    }

    function answerFolders(path, folders): void {
        server.reply("GetNasDir", listing(path, folders), "0");
    }

    function answerCapacity(total, used): void {
        server.reply("GetNasCapacity", { total: total, used: used }, "0");
    }

    /// The only request sent since the last look.
    function sent(command) {
        const requests = server.takeRequestMaps();
        compare(requests.map(request => request.command), [command]);
        return requests[0].data;
    }

    function nasRequest(path, which) {
        const logon = servers[which];
        return { basePath: path, logonDomain: logon.logonDomain, userName: logon.userName, password: logon.password,
                 relayPath: "" };
    }

    /// A click on what stands there once everything has its place.
    function click(item): void {
        page.Window.window.update();
        verify(waitForRendering(page));
        mouseClick(item);
    }

    function clickPart(name): void {
        page.Window.window.update();
        verify(waitForRendering(page));
        mouseClick(part(name));
    }

    function shown(): bool {
        return part("nasFolders").list.opacity > 0;
    }

    function openShares(id, shares): void {
        click(findChild(part("nas:" + id), "host"));
        const listed = servers.find(candidate => candidate.id === id);
        answerFolders("//" + listed.host, shares);
        server.takeSent();
    }

    function type(words): void {
        for (const key of words)
            keyClick(key);
    }

    Component {
        id: volumesComponent

        NasVolumes {}
    }
}
