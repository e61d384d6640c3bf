import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Asks for capacities of NAS paths, one after the other: their answers do not say which path they are about.
///
/// A request is a map with "path", "serverId" and "asVolume" (bool: the path becomes a row of the volume model, too).
/// The log-on is looked up when the request is sent and kept nowhere.
QtObject {
    id: capacity

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property var current: null
    property var waiting: []

    /// In KB. @p refusal is empty when the NAS server told them.
    signal answered(request: var, refusal: string, total: real, used: real)

    /// Of the requests for figures alone the newest one is sent; those that still wait are dropped.
    function ask(path: string, serverId: string, asVolume: bool): void {
        const others = asVolume ? waiting : waiting.filter(request => request.asVolume);
        waiting = others.concat([{ path: path, serverId: serverId, asVolume: asVolume }]);
        sendNext();
    }

    function sendNext(): void {
        if (current !== null || waiting.length === 0)
            return;
        current = waiting[0];
        waiting = waiting.slice(1);
        const logon = NasServers.logon(recording.getNASServerModel(), current.serverId);
        if (logon === null)
            finish(qsTr("This NAS server is not registered any more."), 0, 0);
        else if (!send(current, logon))
            finish(session.unsentText(), 0, 0);
    }

    function send(request: var, logon: var): bool {
        return request.asVolume
            ? recording.addNASPathToVolume(request.path, logon.logonDomain, logon.userName, logon.password)
            : recording.getNASServerCapacity(request.path, logon.logonDomain, logon.userName, logon.password);
    }

    function finish(refusal: string, total: real, used: real): void {
        const request = current;
        current = null;
        answered(request, refusal, total, used);
        sendNext();
    }

    readonly property Connections answers: Connections {
        target: capacity.recording

        function onGetNASServerCapacityResponded(result: int, total: real, used: real): void {
            if (capacity.current !== null)
                capacity.finish(NasServers.refusal(capacity.session, "GetNasCapacity", result), total, used);
        }
    }
}
