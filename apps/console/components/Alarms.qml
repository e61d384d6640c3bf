import RecordingConsole

/// The alarms of a status monitor's model, the worst first: what the station itself calls broken, volumes, what it warns
/// of, groups; then the oldest.
ModelReader {
    id: alarms

    /// Maps with "kind" (int), "source", "groupId", "groupName", "text" and "remedy" (strings) and "since" (a date).
    property var sorted: []
    // StatusMonitor's kinds; it belongs to the client, not to the pages.
    readonly property int volumeError: 0
    readonly property int insufficientRecordingDays: 1
    readonly property int stationError: 2
    readonly property int stationWarning: 3
    readonly property var ranks: [stationError, volumeError, stationWarning, insufficientRecordingDays]

    /// Whether something is broken.
    function isSevere(alarm: var): bool {
        return alarm.kind === volumeError || alarm.kind === stationError;
    }

    /// What an alarm is about.
    function words(alarm: var): string {
        const what = alarm.text ? alarm.text
            : alarm.kind === volumeError ? qsTr("A volume of the station cannot be reached")
            : qsTr("%1 has too few recording days for its reserved time").arg(alarm.groupName);
        return alarm.source === "" ? what : qsTr("%1: %2").arg(alarm.source).arg(what);
    }

    function since(alarm: var): string {
        return qsTr("since %1").arg(Units.moment(alarm.since));
    }

    function list(): var {
        return read({ kind: "kindRole", source: "sourceRole", groupId: "groupIdRole", groupName: "groupNameRole",
                      since: "sinceRole", text: "textRole", remedy: "remedyRole" });
    }

    onChanged: sorted = list().sort((a, b) => ranks.indexOf(a.kind) - ranks.indexOf(b.kind) || a.since - b.since)
}
