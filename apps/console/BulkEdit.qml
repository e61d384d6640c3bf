import QtQml
import RecordingConsole

/// What one change of several recording groups comes to for each of them. Whatever the change does not name stays as it is.
///
/// A change is a map; every key may be missing: "reservedTime" (minutes, 0 where it does not apply), "reserve" (a map:
/// "text", GB, and "path", empty for every path), "addPaths" (rows of paths, see GroupEdit), "removePath" (a path),
/// "addMembers" (members) and "removeCameras" (names).
QtObject {
    /// The group as it would be; @p original is a map of RecordingGroups.read().
    function edited(original: var, change: var): var {
        return { name: original.name, reservedTime: change.reservedTime ?? original.reservedTime,
                 paths: paths(original, change), members: members(original, change) };
    }

    function paths(original: var, change: var): var {
        const reserve = change.reserve ?? null;
        const rows = GroupEdit.pathRows(original).filter(row => row.path !== (change.removePath ?? ""));
        for (const row of rows) {
            if (reserve && (reserve.path === "" || reserve.path === row.path))
                row.reserve = reserve.text;
        }
        const missing = (change.addPaths ?? []).filter(added => !original.paths.some(path => path.path === added.path));
        return rows.concat(missing);
    }

    function members(original: var, change: var): var {
        const has = original.members.map(GroupEdit.memberFrom).map(GroupEdit.memberKey);
        const left = Array.from(original.members).filter(member => !(change.removeCameras ?? []).includes(member.camName));
        const missing = (change.addMembers ?? []).map(GroupEdit.memberFrom)
            .filter(member => !has.includes(GroupEdit.memberKey(member)));
        return left.concat(missing);
    }

    /// Nothing is to be changed.
    function isNothing(change: var): bool {
        return change.reservedTime === undefined && !change.reserve && (change.addPaths ?? []).length === 0
            && (change.removePath ?? "") === "" && (change.addMembers ?? []).length === 0
            && (change.removeCameras ?? []).length === 0;
    }

    /// A map for each group that the change alters: "original", "edited", "request" (see GroupEdit.changes()).
    function plan(originals: var, change: var): var {
        return originals.map(original => {
            const edit = edited(original, change);
            return { original: original, edited: edit, request: GroupEdit.changes(original, edit) };
        }).filter(entry => !GroupEdit.isEmpty(entry.request));
    }

    /// Tells whether two readings of a group are the same.
    function textOf(group: var): string {
        return JSON.stringify([group.name, group.reservedTime,
                               group.paths.map(path => [path.path, path.reserve, path.nas, path.recovery]),
                               group.members.map(GroupEdit.memberFrom)]);
    }

    /// The paths that groups have, each once with how many have it: maps "path", "count"; the commonest first.
    function pathsOf(originals: var): var {
        const counts = new Map();
        for (const group of originals) {
            for (const path of group.paths)
                counts.set(path.path, (counts.get(path.path) ?? 0) + 1);
        }
        return Array.from(counts, ([path, count]) => ({ path: path, count: count }))
            .sort((a, b) => b.count - a.count || (a.path < b.path ? -1 : 1));
    }

    /// How many of the groups record each camera, by its name.
    function cameraCounts(originals: var): var {
        const counts = {};
        for (const group of originals) {
            for (const name of new Set(Array.from(group.members).map(member => member.camName)))
                counts[name] = (counts[name] ?? 0) + 1;
        }
        return counts;
    }
}
