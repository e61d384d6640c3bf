import QtQuick
import RecordingConsole

/// The station's cameras, of which several can be chosen; without a choice the current one is meant.
ListCard {
    id: card

    required property GroupUsageModel usage
    property int usageRevision: 0 ///< counts the changes of the groups' figures
    property bool wide: true
    property var chosen: ({}) ///< true for the names of chosen cameras
    readonly property int chosenCount: Object.keys(chosen).length
    readonly property string currentName: (rows.count, rows.orderBy, rows.nameOf(list.currentIndex))
    readonly property var chosenNames: chosenCount > 0 ? Object.keys(chosen) : currentName !== "" ? [currentName] : []

    function toggle(name: string): void {
        if (name === "")
            return;
        const next = Object.assign({}, chosen);
        if (next[name])
            delete next[name];
        else
            next[name] = true;
        chosen = next;
    }

    function chooseShown(): void {
        const names = Array.from(rows.names());
        const all = names.every(name => chosen[name]);
        const next = Object.assign({}, chosen);
        for (const name of names) {
            if (all)
                delete next[name];
            else
                next[name] = true;
        }
        chosen = next;
    }

    function chooseNone(): void {
        chosen = {};
    }

    /// Cameras that are gone are chosen no longer.
    function forget(known: var): void {
        const names = Object.keys(chosen);
        const left = {};
        names.filter(name => known.includes(name)).forEach(name => left[name] = true);
        if (Object.keys(left).length < names.length)
            chosen = left;
    }

    nameRole: "camName"
    searchRoles: ["groupNames"]
    search.hint: qsTr("Search by camera or group")
    orders: [
        { text: qsTr("Name"), role: "camName" },
        { text: qsTr("Fewest groups"), role: "groupCount" },
        { text: qsTr("Most streams"), role: "streams", descending: true }
    ]
    list.reuseItems: true
    list.Accessible.name: qsTr("Cameras")
    delegate: CameraRow {
        width: ListView.view?.width ?? 0
        wide: card.wide
        chosen: card.chosen[camName] ?? false
        usage: card.usage
        usageRevision: card.usageRevision
        onToggled: card.toggle(camName)
    }
}
