import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Says that the station took a change of a recording group, and offers to take it back as long as nobody else has
/// changed the group.
PageStrip {
    id: strip

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property bool busy: false
    property var group: null ///< as it was before the change, see RecordingGroups.read()
    property var request: null ///< that takes the change back
    property bool ownEditOutstanding: false // the station tells of each edit once, after it has answered

    /// After @p changes of @p before, see GroupEdit; null for a new group.
    function offer(before: var, changes: var): void {
        withdraw();
        request = before ? GroupEdit.reverse(before, changes) : null;
        if (request === null)
            return;
        group = before;
        ownEditOutstanding = true;
        show(qsTr("The changes of %1 are saved.").arg(before.name), true);
    }

    function withdraw(): void {
        text = "";
        group = null;
        request = null;
        busy = false;
    }

    function undo(): void {
        if (busy || group === null)
            return;
        busy = true;
        const sent = recording.updateRecordingGroup(group.id, request.addMembers, request.removeMembers, request.addPaths,
                                                    request.removePaths, request.setPaths, request.info);
        if (!sent)
            finish(session.unsentText());
    }

    /// The station answered; @p refusal says why it refused, else it is empty.
    function finish(refusal: string): void {
        const name = group.name;
        withdraw();
        if (refusal !== "")
            show(qsTr("The changes of %1 could not be undone: %2").arg(name).arg(refusal), false);
    }

    function show(words: string, isNotice: bool): void {
        notice = isNotice;
        text = ""; // it may have been closed
        text = words;
    }

    objectName: "undoStrip"
    notice: true
    actionText: group === null ? "" : busy ? qsTr("Undoing…") : qsTr("Undo")
    onActionTriggered: undo()
    onDismissed: withdraw()

    Connections {
        target: strip.session

        function onConnectedChanged(): void {
            if (strip.group !== null && !strip.busy)
                strip.withdraw(); // nobody knows what others do meanwhile
        }
        function onGroupEdited(groupId: string): void {
            if (strip.group === null || groupId !== strip.group.id || strip.busy)
                return;
            if (strip.ownEditOutstanding)
                strip.ownEditOutstanding = false;
            else
                strip.withdraw();
        }
    }
}
