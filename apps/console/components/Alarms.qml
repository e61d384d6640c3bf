import RecordingConsole

/// The alarms of a status monitor's model, the worst first: what the station itself calls broken, volumes, what it warns
/// of, groups; then those that nobody has acknowledged, then the oldest.
///
/// An alarm is a map with "kind" (int), "source", "groupId", "groupName", "word", "subject", "text", "remedy",
/// "acknowledgedBy" and "note" (strings), "since" and "acknowledgedAt" (dates; invalid: nobody has acknowledged it).
AlarmOrder {
    id: alarms

    property StationOverview stations: null ///< names the stations that alarms are of; null: there is one alone
    property var worst: null ///< the first alarm; null without one
    // StatusMonitor's kinds; it belongs to the client, not to the pages.
    readonly property int volumeError: 0
    readonly property int insufficientRecordingDays: 1
    readonly property int stationError: 2
    readonly property int stationWarning: 3

    /// Whether something is broken.
    function isSevere(alarm: var): bool {
        return alarm.kind === volumeError || alarm.kind === stationError;
    }

    /// What an alarm is about.
    function words(alarm: var): string {
        const what = alarm.text ? alarm.text
            : alarm.kind === volumeError ? qsTr("A volume of the station cannot be reached")
            : qsTr("%1 has too few recording days for its reserved time").arg(alarm.groupName);
        const station = stations === null ? alarm.source : (stations.count, stations.label(alarm.source)); // names follow
        return station === "" ? what : qsTr("%1: %2").arg(station).arg(what);
    }

    /// The alarm is of another station than the one that is worked on.
    function isElsewhere(alarm: var): bool {
        return stations !== null && (alarm.source ?? "") !== "" && alarm.source !== stations.direct;
    }

    function since(alarm: var): string {
        return alarm.since ? qsTr("since %1").arg(Units.moment(alarm.since)) : "";
    }

    /// Whether the station takes an acknowledgement: the alarm is its own.
    function isAcknowledgeable(alarm: var): bool {
        return (alarm.word ?? "") !== "";
    }

    function isAcknowledged(alarm: var): bool {
        return (alarm.acknowledgedBy ?? "") !== "" || (alarm.acknowledgedAt?.getTime() ?? 0) > 0;
    }

    /// Who acknowledged it, when, and with which note; empty when nobody has.
    function acknowledgement(alarm: var): string {
        if (!isAcknowledged(alarm))
            return "";
        const who = qsTr("acknowledged by %1, %2").arg(alarm.acknowledgedBy).arg(Units.moment(alarm.acknowledgedAt));
        return alarm.note ? qsTr("%1: %2").arg(who).arg(alarm.note) : who;
    }

    /// Where an alarm leads: a map with the page's "key" and the "place" on it; null where no page shows what it is about.
    function place(alarm: var): var {
        if (isElsewhere(alarm))
            return { key: "stations", place: alarm.source };
        if (alarm.word === "GroupWithoutPath")
            return { key: "groups", place: alarm.groupId };
        if (alarm.groupId !== "")
            return { key: "usage", place: alarm.groupId };
        if (alarm.word === "NasKeyUnusable")
            return { key: "nas", place: "" };
        if (/^\//.test(alarm.subject ?? "") && !/^(Database|Clock)/.test(alarm.word))
            return { key: "volumes", place: alarm.subject };
        return alarm.kind === volumeError ? { key: "volumes", place: "" } : null;
    }

    ranks: [stationError, volumeError, stationWarning, insufficientRecordingDays]
    onChanged: worst = count > 0 ? at(0) : null
}
