import QtQml

/// The recording groups that the operator chose in the tree, by their ids: for what is done with several of them. What is
/// chosen stays chosen while a search hides it.
QtObject {
    id: choice

    property var chosen: ({}) ///< true for the ids of chosen groups
    property string anchor ///< where a range begins
    readonly property var ids: Object.keys(chosen)
    readonly property int count: ids.length

    function has(groupId: string): bool {
        return chosen[groupId] ?? false;
    }

    function toggle(groupId: string): void {
        if (groupId === "")
            return;
        const next = Object.assign({}, chosen);
        if (next[groupId])
            delete next[groupId];
        else
            next[groupId] = true;
        anchor = groupId;
        chosen = next;
    }

    /// Chooses all groups from the anchor to @p groupId as well, in the order of @p shown.
    function extendTo(groupId: string, shown: var): void {
        const to = shown.indexOf(groupId);
        if (to < 0)
            return;
        const from = shown.includes(anchor) ? shown.indexOf(anchor) : to;
        const range = shown.slice(Math.min(from, to), Math.max(from, to) + 1);
        anchor = shown[from];
        const next = Object.assign({}, chosen);
        range.forEach(id => next[id] = true);
        chosen = next;
    }

    /// Chooses all groups of @p shown as well, or, where all of them are chosen, none of them.
    function toggleAll(shown: var): void {
        const next = Object.assign({}, chosen);
        const all = shown.length > 0 && shown.every(id => next[id]);
        for (const id of shown) {
            if (all)
                delete next[id];
            else
                next[id] = true;
        }
        chosen = next;
    }

    function clear(): void {
        anchor = "";
        chosen = {};
    }

    /// Groups that are gone are chosen no longer.
    function keep(known: var): void {
        const left = {};
        ids.filter(id => known.includes(id)).forEach(id => left[id] = true);
        if (Object.keys(left).length < count)
            chosen = left;
    }
}
