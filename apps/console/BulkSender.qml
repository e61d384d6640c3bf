import QtQuick
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Sends the edits of several recording groups one after another, each when the one before it has been answered, and keeps
/// what came of each. A group that somebody else changes meanwhile is not sent.
QtObject {
    id: sender

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property var entries: [] ///< as BulkEdit.plan() makes them
    property bool busy: false
    property bool stopping: false ///< what was sent is waited for, and nothing more is sent
    property int current: -1 ///< the row that is under way
    property int answered: 0 ///< rows that came to an end
    property int failedCount: 0 ///< that can be tried again
    property var counts: ({}) ///< how many rows are in each state

    /// A row for each entry, in the same order: "groupId", "name", "change" (what is changed, a line for each), "state"
    /// (one of the words below) and "reason" (a sentence).
    readonly property ListModel rows: ListModel {}

    readonly property string waiting: "waiting"
    readonly property string sending: "sending"
    readonly property string done: "done"
    readonly property string refused: "refused"
    readonly property string unsent: "unsent"
    readonly property string unknown: "unknown" ///< no answer came: it may have taken effect
    readonly property string changed: "changed" ///< somebody else changed the group, and nothing was sent

    signal finished

    readonly property GroupDifferences differences: GroupDifferences {}

    /// @p plan as BulkEdit.plan() makes it
    function show(plan: var): void {
        entries = plan;
        current = -1;
        answered = 0;
        rows.clear();
        for (const entry of plan) {
            const list = differences.list(entry.original, entry.edited, entry.request);
            rows.append({ groupId: entry.original.id, name: entry.original.name, change: list.map(lineOf).join("\n"),
                          state: waiting, reason: "" });
        }
        count();
    }

    function lineOf(difference: var): string {
        return difference.sign === "+" ? qsTr("Added: %1").arg(difference.text)
            : difference.sign === "-" ? qsTr("Removed: %1").arg(difference.text) : difference.text;
    }

    function start(): void {
        busy = true;
        stopping = false;
        sendNext();
    }

    /// What was sent goes on; nothing more is sent.
    function stop(): void {
        stopping = true;
    }

    function sendNext(): void {
        while (++current < rows.count) {
            if (rows.get(current).state !== waiting)
                continue;
            if (stopping || !session.connected) {
                settle(unsent, stopping ? qsTr("Cancelled before it was sent.")
                                        : qsTr("The connection to the station was lost before it was sent."));
                continue;
            }
            const entry = entries[current];
            const parameters = GroupEdit.parameters(entry.original, entry.request);
            rows.setProperty(current, "state", sending);
            if (recording.updateRecordingGroup(...parameters))
                return;
            settle(unsent, session.unsentText());
        }
        count();
        current = -1;
        busy = false;
        stopping = false;
        finished();
    }

    /// The station answered what is under way.
    function take(success: bool, errors: var): void {
        const command = "updateRecordingGroup";
        if (success)
            settle(done, "");
        else if (session.isOutcomeOpen(command))
            settle(unknown, session.refusal(command));
        else
            settle(refused, errors.length > 0 ? GroupEdit.errorWords(errors, session) : session.refusal(command));
        sendNext();
    }

    function settle(state: string, reason: string): void {
        rows.setProperty(current, "state", state);
        rows.setProperty(current, "reason", reason);
        ++answered;
    }

    /// Somebody changed the group: an edit of ours that is still to come would go by what it was.
    function noteEdited(groupId: string): void {
        if (!busy)
            return;
        for (let row = current + 1; row < rows.count; ++row) {
            if (rows.get(row).groupId !== groupId || rows.get(row).state !== waiting)
                continue;
            rows.setProperty(row, "state", changed);
            rows.setProperty(row, "reason", qsTr("Somebody else changed this group meanwhile. Nothing was sent."));
            ++answered;
        }
    }

    /// The groups were read again: what has no answer is known to be done where a group is as it was to become.
    /// @p read gives a group by its id, null where it is gone.
    function compareUnknown(read: var): void {
        for (let row = 0; row < rows.count; ++row) {
            if (rows.get(row).state !== unknown)
                continue;
            const group = read(rows.get(row).groupId);
            if (group === null || !GroupEdit.isEmpty(GroupEdit.changes(group, entries[row].edited)))
                continue;
            rows.setProperty(row, "state", done);
            rows.setProperty(row, "reason", qsTr("No answer came, but the group is as wanted."));
        }
        count();
    }

    /// What came of it can be tried again.
    function isFailed(state: string): bool {
        return state !== done && state !== waiting && state !== sending;
    }

    function count(): void {
        const states = Array.from({ length: rows.count }, (value, row) => rows.get(row).state);
        const found = {};
        states.forEach(state => found[state] = (found[state] ?? 0) + 1);
        counts = found;
        failedCount = states.filter(state => isFailed(state)).length;
    }

    /// The ids of groups that did not become what was wanted, as far as is known.
    function failedIds(): var {
        return Array.from({ length: rows.count }, (value, row) => rows.get(row))
            .filter(row => isFailed(row.state)).map(row => row.groupId);
    }

    /// What went wrong stands first, each part in the order of sending.
    function raiseFailed(): void {
        let place = 0;
        const order = Array.from({ length: rows.count }, (value, row) => row);
        const isRaised = row => rows.get(row).state !== done;
        const next = order.filter(isRaised).map(row => entries[row]).concat(
            order.filter(row => !isRaised(row)).map(row => entries[row]));
        for (let row = 0; row < rows.count; ++row) {
            if (isRaised(row))
                rows.move(row, place++, 1);
        }
        entries = next;
    }

    /// What came of all of them, in a sentence; empty where all went well.
    function failureText(): string {
        if (failedCount === 0)
            return "";
        const names = Array.from({ length: rows.count }, (value, row) => rows.get(row))
            .filter(row => row.state !== done).map(row => row.name);
        const most = 3;
        const named = names.slice(0, most).join(", ") + (names.length > most ? qsTr(" and %1 more").arg(names.length - most) : "");
        return qsTr("%1 of %2 groups were not changed, as far as is known: %3.").arg(failedCount).arg(rows.count).arg(named);
    }
}
