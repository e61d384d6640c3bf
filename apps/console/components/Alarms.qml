import RecordingConsole

/// The alarms of a status monitor's model, the worst first: volume errors before groups, then the oldest.
ModelReader {
    id: alarms

    /// Maps with "kind" (int), "source", "groupId" and "groupName" (strings) and "since" (a date).
    property var sorted: []
    readonly property int volumeError: 0 // StatusMonitor's kinds; it belongs to the client, not to the pages

    /// What an alarm is about.
    function words(alarm: var): string {
        const what = alarm.kind === volumeError ? qsTr("A volume of the station cannot be reached")
            : qsTr("%1 has too few recording days for its reserved time").arg(alarm.groupName);
        return alarm.source === "" ? what : qsTr("%1: %2").arg(alarm.source).arg(what);
    }

    function since(alarm: var): string {
        return qsTr("since %1").arg(Units.moment(alarm.since));
    }

    function list(): var {
        return read({ kind: "kindRole", source: "sourceRole", groupId: "groupIdRole", groupName: "groupNameRole",
                      since: "sinceRole" });
    }

    onChanged: sorted = list().sort((a, b) => a.kind - b.kind || a.since - b.since)
}
