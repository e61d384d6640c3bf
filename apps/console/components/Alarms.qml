import QtQml
import RecordingConsole

/// The alarms of a status monitor's model, the worst first: volume errors before groups, then the oldest.
Instantiator {
    id: alarms

    /// Maps with "kind" (int), "groupId", "words" and "since" (strings).
    property var sorted: []
    readonly property int volumeError: 0 // StatusMonitor's kinds; it belongs to the client, not to the pages

    function words(source: string, kind: int, groupName: string): string {
        const what = kind === volumeError ? qsTr("A volume of the station cannot be reached")
            : qsTr("%1 has too few recording days for its reserved time").arg(groupName);
        return source === "" ? what : qsTr("%1: %2").arg(source).arg(what);
    }

    function sort(): void {
        let found = [];
        for (let i = 0; i < count; ++i) {
            const alarm = objectAt(i) as Alarm;
            if (alarm)
                found.push(alarm);
        }
        found.sort((a, b) => a.kindRole - b.kindRole || a.sinceRole.getTime() - b.sinceRole.getTime());
        sorted = found.map(alarm => ({
            kind: alarm.kindRole,
            groupId: alarm.groupIdRole,
            words: words(alarm.sourceRole, alarm.kindRole, alarm.groupNameRole),
            since: qsTr("since %1").arg(Units.moment(alarm.sinceRole))
        }));
    }

    readonly property Timer later: Timer { // a change of the model is over by then
        interval: 0
        onTriggered: alarms.sort()
    }

    delegate: Alarm {
        onGroupNameRoleChanged: alarms.later.restart()
    }
    onObjectAdded: later.restart()
    onObjectRemoved: later.restart()
}
