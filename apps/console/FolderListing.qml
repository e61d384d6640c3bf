import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Which folder of the station is in view, and what was asked for. Replies come in the order of the requests; one of
/// another path is somebody else's.
QtObject {
    id: listing

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property bool watching: false ///< somebody sees the list
    property string folder ///< in view; empty: the volumes
    property string asked ///< what shall come into view
    property bool inView: false ///< the model lists the folder
    property string refusal ///< why refusedPath is not in view, a sentence
    property string refusedPath
    property bool climbing: false // where a folder cannot be listed, the one above is
    property int outstanding: 0
    readonly property bool loading: outstanding > 0

    /// The folder in view was listed.
    signal listed

    /// Shows @p path or, where it cannot be listed, the closest folder above it.
    function begin(path: string): void {
        inView = false;
        ask(path);
        climbing = true;
    }

    function ask(path: string): void {
        climbing = false;
        refusal = "";
        send(path);
    }

    function send(path: string): void {
        asked = path;
        ++outstanding;
        if (recording.getServerDir(path))
            return;
        --outstanding;
        stay(session.unsentText());
    }

    /// @p words say why it was refused; then @p path is empty.
    function answered(words: string, path: string): void {
        if (!loading || (words === "" && path !== asked && outstanding === 1)) {
            inView = inView && !watching; // the model has another folder now
            return;
        }
        if (--outstanding > 0)
            return; // the newest decides
        if (words === "")
            show();
        else if (climbing && asked !== "")
            send(FolderPath.above(asked));
        else
            stay(words);
    }

    function show(): void {
        climbing = false;
        folder = asked;
        inView = true;
        listed();
    }

    /// The refused reply emptied the model.
    function stay(words: string): void {
        const wasInView = inView && asked !== folder;
        climbing = false;
        inView = false;
        refusedPath = asked;
        refusal = words;
        if (wasInView && session.connected)
            send(folder);
    }

    readonly property Connections answers: Connections {
        target: listing.recording
        enabled: listing.watching || listing.loading

        function onGetServerDirResponded(path: string): void {
            listing.answered(listing.session.refusal("getServerDir"), path);
        }
    }
}
