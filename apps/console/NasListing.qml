import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Which folder of a NAS server is in view, and what was asked for. Servers answer late and in any order, and the
/// plug-in's model holds the reply that came last: a reply is told apart by its path. A refusal names no path, so what
/// it is about is known only when everything else has been answered.
QtObject {
    id: listing

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property bool watching: true ///< somebody sees the list
    property string serverId
    property string folder ///< in view; empty: none yet
    property string asked ///< what shall come into view
    property bool loading: false ///< asked is not answered yet
    property string refusal ///< why refusedPath is not in view, a sentence
    property string refusedPath
    /// The model lists the folder in view.
    readonly property bool inView: folder !== "" && modelKey === NasPath.key(folder)

    property string modelKey // of the path that the model lists
    property var underWay: [] // keys of the paths whose reply is to come
    property int refusals: 0 // replies without a path
    property string lastWords // of a refusal
    property bool doubtful: false // a reply under way may be another user's view of the same path
    property bool restoring: false

    /// The folder in view was listed.
    signal listed

    /// Shows the shares of another server.
    function begin(id: string, host: string): void {
        const path = NasPath.root(host);
        const key = NasPath.key(path);
        if (id !== serverId)
            doubtful = underWay.some(open => open === key || open.startsWith(key + "/"));
        serverId = id;
        folder = "";
        ask(path);
    }

    function end(): void {
        serverId = "";
        folder = "";
        asked = "";
        refusal = "";
        loading = false;
    }

    function ask(path: string): void {
        refusal = "";
        send(path);
    }

    function send(path: string): void {
        const logon = NasServers.logon(recording.getNASServerModel(), serverId);
        asked = path;
        loading = true;
        underWay = underWay.concat([NasPath.key(path)]);
        if (logon !== null && recording.getNASServerDir(path, logon.logonDomain, logon.userName, logon.password))
            return;
        underWay = underWay.slice(0, -1);
        stay(logon === null ? qsTr("This NAS server is not registered any more.")
                            : session.unsentText());
    }

    function answered(words: string, path: string): void {
        if (words === "") {
            modelKey = NasPath.key(path);
            const place = underWay.indexOf(modelKey);
            if (place >= 0 || underWay.length === 1)
                underWay = underWay.filter((key, index) => index !== Math.max(0, place));
            if (loading && !doubtful && modelKey === NasPath.key(asked))
                show();
        } else {
            ++refusals;
            lastWords = words;
        }
        if (underWay.length <= refusals)
            allAnswered();
        restore();
    }

    function show(): void {
        loading = false;
        restoring = false;
        folder = asked;
        listed();
    }

    /// What is still under way was refused.
    function allAnswered(): void {
        const refused = underWay.includes(NasPath.key(asked));
        const again = doubtful;
        underWay = [];
        refusals = 0;
        doubtful = false;
        if (!loading)
            return;
        if (again)
            ask(asked);
        else
            stay(refused ? lastWords : qsTr("The station listed another folder."));
    }

    function stay(words: string): void {
        loading = false;
        refusedPath = asked;
        refusal = words;
        asked = folder;
    }

    /// Asks again for what is in view when another path's reply took its place in the model.
    function restore(): void {
        if (!watching || loading || restoring || folder === "" || inView)
            return;
        restoring = true;
        send(folder);
    }

    onWatchingChanged: {
        restoring = false;
        restore();
    }

    readonly property Connections answers: Connections {
        target: listing.recording

        function onGetNASServerDirResponded(result: int, path: string): void {
            listing.answered(NasServers.refusal(listing.session, "GetNasDir", result), path);
        }
    }
}
