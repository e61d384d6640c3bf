pragma Singleton

import QtQuick

/// Sizes in words. A station counts in kilobytes.
QtObject {
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

    /// A share of 1 in percent; only what is nothing reads 0, only what is all reads 100.
    function percent(share: real): string {
        const rounded = Math.round(share * 100);
        if (share > 0 && rounded === 0)
            return qsTr("< 1 %");
        if (share < 1 && rounded === 100)
            return qsTr("> 99 %");
        return qsTr("%1 %").arg(rounded);
    }
}
