import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// What the window asks of a page, and what it gives it.
FocusScope {
    /// The plug-in's object.
    required property PluginRecordingManagement recording
    /// The connection, and the words behind a refusal.
    required property ConsoleSession session
    /// The NAS paths that are used as volumes; null where nobody keeps them.
    property NasVolumes nasVolumes: null
    /// Where the page begins, if it can begin in several places; else not used.
    property string startPlace

    /// True once what the page shows has been answered for, well or badly.
    property bool settled: false
    /// Why the page could not be filled, in words; empty while it could.
    property string failure

    focus: true // of the loader that shows it

    /// Says that the page could not be filled; again where the same was said and closed. Empty words: it could.
    function tellFailure(words: string): void {
        failure = "";
        failure = words;
    }

    /// Leads the eye to @p place, for instance a recording group's id; pages that know no places do nothing.
    function goTo(place: string): void {}
}
