pragma Singleton

import QtQuick

/// Sizes and times in words. A station counts in kilobytes and minutes.
QtObject {
    readonly property var times: [
        { minutes: 1440, one: qsTr("1 day"), many: qsTr("%1 days") },
        { minutes: 60, one: qsTr("1 hour"), many: qsTr("%1 hours") },
        { minutes: 1, one: qsTr("1 minute"), many: qsTr("%1 minutes") }
    ]

    /// 1536 reads "1.50 MB": steps of 1024, two decimals, TB at most, as the plug-in writes sizes.
    function capacity(kilobytes: real): string {
        const units = [qsTr("%1 KB"), qsTr("%1 MB"), qsTr("%1 GB"), qsTr("%1 TB")];
        let value = kilobytes;
        let unit = 0;
        while (value >= 1024 && unit < units.length - 1) {
            value /= 1024;
            ++unit;
        }
        return units[unit].arg(value.toFixed(2));
    }

    /// Likewise of bytes.
    function bytes(count: real): string {
        return count < 1024 ? counted(count, qsTr("1 byte"), qsTr("%1 bytes")) : capacity(count / 1024);
    }

    /// Likewise, as estimates are told: 1536000 bytes read "1.46 MB", 440234147840 read "410 GB".
    function estimate(count: real): string {
        const units = [qsTr("%1 KB"), qsTr("%1 MB"), qsTr("%1 GB"), qsTr("%1 TB")];
        let value = count / 1024;
        let unit = 0;
        while (value >= 999.5 && unit < units.length - 1) {
            value /= 1024;
            ++unit;
        }
        return units[unit].arg(value.toFixed(value < 9.995 ? 2 : value < 99.95 ? 1 : 0));
    }

    /// A share of 1 in percent; only what is nothing reads 0, only what is all reads 100.
    function percent(share: real): string {
        const rounded = Math.round(share * 100);
        if (share > 0 && rounded === 0)
            return qsTr("< 1 %");
        if (share < 1 && rounded === 100)
            return qsTr("> 99 %");
        return qsTr("%1 %").arg(rounded);
    }

    /// A number of whole days.
    function days(count: real): string {
        return counted(count, times[0].one, times[0].many);
    }

    /// The words for one, or those for any other number with the number in them.
    function counted(count: real, one: string, many: string): string {
        return count === 1 ? one : many.arg(count);
    }

    /// 2190 reads "1 day 12 hours 30 minutes".
    function duration(minutes: real): string {
        const words = [];
        let rest = minutes;
        for (const unit of times) {
            const count = Math.floor(rest / unit.minutes);
            rest -= count * unit.minutes;
            if (count > 0)
                words.push(counted(count, unit.one, unit.many));
        }
        return words.length > 0 ? words.join(" ") : counted(0, times[2].one, times[2].many);
    }

    /// A moment of today with its time alone, any other with its date as well.
    function moment(when: date): string {
        const time = when.toLocaleTimeString(Qt.locale(), Locale.ShortFormat);
        return when.toDateString() === new Date().toDateString() ? time
            : qsTr("%1 %2").arg(when.toLocaleDateString(Qt.locale(), Locale.ShortFormat)).arg(time);
    }
}
