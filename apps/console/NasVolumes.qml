import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Keeps the NAS paths that the operator uses as volumes in the volume model while the console runs.
///
/// Every reply to getVolume rebuilds that model from the station's own disks. The rows of NAS paths go with it, so each
/// path is asked for again after such a reply; a path whose server does not answer is missing then, and says why.
QtObject {
    id: volumes

    required property PluginRecordingManagement recording
    required property ConsoleSession session

    // States of a path.
    readonly property int notUsed: 0
    readonly property int asked: 1
    readonly property int listed: 2
    readonly property int refused: 3

    /// Maps with "path", "serverId", "state" and "refusal" (a sentence), in the order of their use.
    property var entries: []
    /// What is missing in the volume model and why, a line for each path; empty when nothing is.
    readonly property string missing: entries.filter(entry => entry.state === refused)
        .map(entry => qsTr("%1: %2").arg(entry.path).arg(entry.refusal)).join("\n")

    readonly property NasCapacity capacity: NasCapacity {
        recording: volumes.recording
        session: volumes.session
        onAnswered: (request, refusal) => {
            if (request.asVolume)
                volumes.answered(request, refusal);
        }
    }

    function entry(path: string): var {
        return entries.find(candidate => candidate.path === path) ?? null;
    }

    /// Makes @p path a volume, or tries it again.
    function use(path: string, serverId: string): void {
        const known = entry(path);
        if (known === null)
            entries = entries.concat([{ path: path, serverId: serverId, state: notUsed, refusal: "" }]);
        else if (known.state === asked || known.state === listed)
            return;
        else
            change(path, { serverId: serverId });
        ask(path);
    }

    /// Takes a path out of the volumes again.
    function forget(path: string): void {
        drop(candidate => candidate.path === path);
    }

    /// Takes every path of a server that is gone out of the volumes.
    function forgetServer(serverId: string): void {
        drop(candidate => candidate.serverId === serverId);
    }

    function retry(): void {
        for (const candidate of entries.filter(candidate => candidate.state === refused))
            ask(candidate.path);
    }

    function drop(unwanted: var): void {
        const count = entries.length;
        entries = entries.filter(candidate => !unwanted(candidate));
        if (entries.length < count)
            recording.getVolume(); // the reply takes their rows away
    }

    function ask(path: string): void {
        change(path, { state: asked, refusal: "" });
        capacity.ask(path, entry(path).serverId, true);
    }

    function change(path: string, values: var): void {
        entries = entries.map(candidate => candidate.path === path ? Object.assign({}, candidate, values) : candidate);
    }

    function answered(request: var, refusal: string): void {
        if (entry(request.path) !== null)
            change(request.path, { state: refusal === "" ? listed : refused, refusal: refusal });
        else if (refusal === "")
            recording.getVolume(); // forgotten while it was asked for, and listed all the same
    }

    readonly property Connections stationChoice: Connections {
        target: volumes.session

        function onStationLeft(): void {
            volumes.entries = []; // they were paths of that station
        }
    }

    readonly property Connections volumeReplies: Connections {
        target: volumes.recording

        function onGetVolumeResponded(success: bool): void {
            if (!success)
                return;
            // What is asked for already comes into the new list.
            for (const candidate of volumes.entries.filter(candidate => candidate.state !== volumes.asked))
                volumes.ask(candidate.path);
        }
    }
}
