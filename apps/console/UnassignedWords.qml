import QtQml
import RecordingConsole

/// What is to be said of the recordings of no group as a whole, and of their deletion.
QtObject {
    id: words

    required property ConsoleSession session
    readonly property UnassignedRecordingsModel recordings: session.unassigned
    readonly property RecordingsDeletion deletion: recordings.deletion

    /// How much they are, as listed last: "2 folders · 96.00 GB"; empty while that was never known.
    readonly property string figures: !recordings.known ? ""
        : recordings.count === 0 ? qsTr("None")
        : qsTr("%1 · %2").arg(Units.counted(recordings.count, qsTr("1 folder"), qsTr("%1 folders"))).arg(sizes)
    readonly property string sizes: recordings.unknownCount === 0 ? Units.bytes(recordings.recordedBytes)
        : recordings.unknownCount === recordings.count ? qsTr("size unknown")
        : qsTr("%1 and %2 of unknown size").arg(Units.bytes(recordings.recordedBytes)).arg(recordings.unknownCount)

    /// How far it is, of 1; negative: nobody knows.
    readonly property real share: deletion.bytes > 0 ? Math.max(0, deletion.deletedBytes) / deletion.bytes
        : deletion.files > 0 ? Math.max(0, deletion.deletedFiles) / deletion.files : -1
    readonly property string progress: !session.connected ? qsTr("No connection to the station: it may go on")
        : deletion.deletedBytes < 0 ? qsTr("Deleting…")
        : deletion.bytes < 0 ? qsTr("%1 deleted").arg(Units.bytes(deletion.deletedBytes))
        : qsTr("%1 of %2 deleted").arg(Units.bytes(deletion.deletedBytes)).arg(Units.bytes(deletion.bytes))
    readonly property string fileProgress: !session.connected || deletion.deletedFiles < 0 ? ""
        : deletion.files < 0 ? Units.counted(deletion.deletedFiles, qsTr("1 file"), qsTr("%1 files"))
        : qsTr("%1 of %2 files").arg(deletion.deletedFiles).arg(deletion.files)

    /// What it came to; empty while it runs.
    readonly property string outcome: {
        switch (deletion.outcome) {
        case RecordingsDeletion.Done:
            return qsTr("Deleted: %1.").arg(sum()) + others(deletion.leftEntries);
        case RecordingsDeletion.Incomplete:
            return left() + " " + deletedSoFar(false);
        case RecordingsDeletion.Cancelled:
            return qsTr("Cancelled.") + " " + deletedSoFar(true);
        case RecordingsDeletion.Unheard:
            return qsTr("The connection was lost before the deletion ended. Its folder is no longer among these.");
        case RecordingsDeletion.Failed:
            return session.refusalText(deletion.returnCode) + " " + deletedSoFar(true);
        default:
            return "";
        }
    }

    function sum(): string {
        return deletion.deletedBytes < 0 ? qsTr("an unknown number of files")
            : qsTr("%1 in %2").arg(Units.bytes(deletion.deletedBytes))
                              .arg(Units.counted(deletion.deletedFiles, qsTr("1 file"), qsTr("%1 files")));
    }

    function deletedSoFar(isRestThere: bool): string {
        return deletion.deletedBytes < 0 ? qsTr("How much is deleted is not known.")
            : deletion.deletedFiles === 0 ? qsTr("Nothing is deleted.")
            : isRestThere ? qsTr("%1 are deleted, the rest is still there.").arg(sum()) : qsTr("%1 are deleted.").arg(sum());
    }

    function left(): string {
        return deletion.leftFiles < 0 ? qsTr("Some recordings could not be deleted.")
            : qsTr("%1 (%2) could not be deleted.")
                .arg(Units.counted(deletion.leftFiles, qsTr("1 recording"), qsTr("%1 recordings")))
                .arg(Units.bytes(deletion.leftBytes));
    }

    function others(entries: real): string {
        return entries <= 0 ? "" : " " + Units.counted(entries, qsTr("1 other file or folder stays there."),
                                                        qsTr("%1 other files and folders stay there."));
    }
}
