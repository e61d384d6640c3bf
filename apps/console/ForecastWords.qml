import QtQuick
import RecordingConsole

/// What a forecast says of recording groups, as sentences. A group is a map of GroupForecast::groups.
QtObject {
    readonly property int longestName: 40

    /// A line for each group that is worth telling of: "text", and "kind": "short" (it will fall short of its reserved
    /// time), "unknown" or "fine".
    function lines(groups: var): var {
        return groups.filter(group => group.edited || group.missingThen > 0 || group.daysThen !== group.daysNow)
                     .map(group => ({
            text: [daysText(group), group.edited ? needText(group) : ""].filter(Boolean).join(" "),
            kind: group.missingThen > 0 ? "short" : group.daysThen < 0 ? "unknown" : "fine"
        }));
    }

    /// A line for each volume of GroupForecast::volumes whose reserved space changes, in the same form.
    function volumeLines(volumes: var): var {
        return Array.from(volumes).filter(volume => volume.reservedNow !== volume.reservedThen).map(volume => {
            const reserved = qsTr("%1: all groups reserve %2 instead of %3").arg(volume.volumeName || volume.volumePath)
                .arg(Units.bytes(volume.reservedThen)).arg(Units.bytes(volume.reservedNow));
            return { text: volume.size < 0 ? qsTr("%1.").arg(reserved)
                                           : qsTr("%1, of %2.").arg(reserved).arg(Units.bytes(volume.size)), kind: "fine" };
        });
    }

    function daysText(group: var): string {
        const name = shortened(group.name);
        if (group.daysThen < 0)
            return group.isNew ? qsTr("%1: how long it keeps recordings is known once it has recorded for a day.").arg(name)
                : group.daysNow < 0 ? qsTr("%1: how long it keeps recordings is not known.").arg(name)
                : qsTr("%1: how long it will keep recordings is not known; now it keeps %2.").arg(name)
                      .arg(Units.days(group.daysNow));
        const keeps = group.daysNow < 0 ? qsTr("%1 keeps %2").arg(name).arg(Units.days(group.daysThen))
            : group.daysNow === group.daysThen ? qsTr("%1 keeps %2, as now").arg(name).arg(Units.days(group.daysThen))
            : qsTr("%1 keeps %2 instead of %3").arg(name).arg(Units.days(group.daysThen)).arg(group.daysNow);
        const lacking = Units.days(group.missingThen);
        return group.missingThen <= 0 ? qsTr("%1.").arg(keeps)
            : group.edited && group.bytesPerDay >= 0 ? qsTr("%1, %2 short.").arg(keeps).arg(lacking)
            : qsTr("%1, %2 short of its reserved %3.").arg(keeps).arg(lacking).arg(Units.days(group.reservedDays));
    }

    /// What the reserved time takes.
    function needText(group: var): string {
        if (group.reservedDays === 0 || group.daysThen < 0)
            return "";
        const days = Units.days(group.reservedDays);
        if (group.bytesPerDay < 0)
            return qsTr("What %1 need is not known: nobody knows yet what it records in a day.").arg(days);
        const need = Units.estimate(group.reservedDays * group.bytesPerDay);
        return group.missingThen > 0
            ? qsTr("%1 need %2, %3 are missing.").arg(days).arg(need).arg(Units.estimate(group.missingThen * group.bytesPerDay))
            : qsTr("%1 need %2.").arg(days).arg(need);
    }

    function shortened(name: string): string {
        return name.length > longestName ? name.substring(0, longestName - 1) + "…" : name;
    }
}
