pragma Singleton

import QtQuick

/// What an edited recording group comes to as a request, and which field a refusal is about.
///
/// An edited group is a map: "name", "reservedTime" (minutes, 0 where it does not apply), "paths" and "members". Its rows
/// stand as the operator sees them. A path's row: "path", "kind" (a RecPathType, -1 for NAS storage left as it is),
/// "reserve" (text, GB), "recovery". A member's row is a member as the plug-in knows it.
///
/// A request comes with "sources": for each of its lists the row that every entry comes from, -1 for a row that is gone.
QtObject {
    readonly property int local: 0
    readonly property int netHost: 1
    readonly property int netDomain: 2
    readonly property int keptNas: -1
    readonly property int megabytesPerGigabyte: 1024

    readonly property var pathLists: ["pathInfoList", "updateAddPathList", "updateSetPathList", "updateRmPathList"]
    readonly property var memberLists: ["deviceInfos", "updateAddCameraList", "updateRmCameraList"]

    function reserveText(megabytes: real): string {
        return String(Number((megabytes / megabytesPerGigabyte).toFixed(3)));
    }

    /// @p original is what the text was made from, if anything: a reserve that nobody touched is sent as it was.
    function reserveFrom(text: string, original: var): real {
        if (original !== undefined && text === reserveText(original))
            return original;
        return /^[0-9]{1,9}$/.test(text) ? Number(text) * megabytesPerGigabyte : NaN;
    }

    /// The kind of what became @p path, when it was of @p kind; a path of @p keptNasPaths is left as it is.
    function kindFor(path: string, kind: int, keptNasPaths: var): int {
        if (keptNasPaths.includes(path))
            return keptNas;
        return !/^(\/\/|\\\\|smb:)/i.test(path) ? local : kind === netDomain ? netDomain : netHost;
    }

    /// Whether a refusal of a path is about its reserved space.
    function isAboutReserve(error: var): bool {
        return error.returnCode.startsWith("ReservedSpace");
    }

    /// 2 GB are what the plug-in reserves where nothing else is said.
    function emptyPathRow(path: string): var {
        return { path: path, kind: local, reserve: "2", recovery: false, message: "", reserveWrong: false };
    }

    function pathRows(group: var): var {
        return group.paths.map(path => ({
            path: path.path, kind: path.nas ? keptNas : local, reserve: reserveText(path.reserve),
            recovery: path.recovery, message: "", reserveWrong: false
        }));
    }

    function memberRows(group: var): var {
        return group.members.map(member => Object.assign(memberFrom(member), { message: "" }));
    }

    /// For addRecordingGroupWithCompleteInfo().
    function newGroup(edited: var): var {
        return {
            info: {
                recordingGroupName: edited.name,
                recordingGroupReservedTimeEnabled: edited.reservedTime > 0,
                recordingGroupReservedTime: edited.reservedTime
            },
            paths: edited.paths.map(row => pathFrom(row, undefined)),
            members: edited.members.map(memberFrom),
            sources: { pathInfoList: edited.paths.map((row, index) => index),
                       deviceInfos: edited.members.map((row, index) => index) }
        };
    }

    /// For updateRecordingGroup(): only what differs from @p original, a map of RecordingGroups.read().
    function changes(original: var, edited: var): var {
        const result = { info: {}, addPaths: [], removePaths: [], setPaths: [], addMembers: [], removeMembers: [],
                         sources: { updateAddPathList: [], updateRmPathList: [], updateSetPathList: [],
                                    updateAddCameraList: [], updateRmCameraList: [] } };
        if (edited.name !== original.name)
            result.info.recordingGroupName = edited.name;
        if (edited.reservedTime !== original.reservedTime) {
            result.info.recordingGroupReservedTimeEnabled = edited.reservedTime > 0;
            if (edited.reservedTime > 0)
                result.info.recordingGroupReservedTime = edited.reservedTime;
        }
        comparePaths(original, edited, result);
        compareMembers(original, edited, result);
        return result;
    }

    function isEmpty(changes: var): bool {
        return Object.keys(changes.info).length === 0 && Object.values(changes.sources).every(list => list.length === 0);
    }

    /// Sorts the entries of a refusal to the fields they are about: "name", "time" and "other" are lists of entries,
    /// "paths" and "members" such lists by row.
    function place(errors: var, sources: var): var {
        const places = { name: [], time: [], other: [], paths: {}, members: {} };
        for (const error of errors) {
            const row = sources[error.element]?.[error.index] ?? -1;
            const rows = pathLists.includes(error.element) ? places.paths
                : memberLists.includes(error.element) ? places.members : null;
            if (error.element === "recordingGroupName")
                places.name.push(error);
            else if (error.element === "recordingGroupReservedTime")
                places.time.push(error);
            else if (rows && row >= 0)
                rows[row] = (rows[row] ?? []).concat([error]);
            else
                places.other.push(error);
        }
        return places;
    }

    function comparePaths(original: var, edited: var, result: var): void {
        const left = new Map(original.paths.map(path => [path.path, path]));
        edited.paths.forEach((row, index) => {
            const before = left.get(row.path);
            left.delete(row.path);
            if (!before) {
                result.addPaths.push(pathFrom(row, undefined));
                result.sources.updateAddPathList.push(index);
                return;
            }
            const change = { path: row.path };
            const reserve = reserveFrom(row.reserve, before.reserve);
            if (row.kind !== (before.nas ? keptNas : local))
                change.pathType = row.kind;
            if (reserve !== before.reserve)
                change.reserveSpace = reserve;
            if (row.recovery !== before.recovery)
                change.isRecoveryMode = row.recovery;
            if (Object.keys(change).length > 1) {
                result.setPaths.push(change);
                result.sources.updateSetPathList.push(index);
            }
        });
        for (const path of left.keys()) {
            result.removePaths.push(path);
            result.sources.updateRmPathList.push(-1);
        }
    }

    function compareMembers(original: var, edited: var, result: var): void {
        const key = member => JSON.stringify([member.camName, member.streamIndex]);
        const left = new Map(original.members.map(memberFrom).map(member => [key(member), member]));
        const remove = (member, row) => {
            result.removeMembers.push({ camName: member.camName, streamIndex: member.streamIndex });
            result.sources.updateRmCameraList.push(row);
        };
        edited.members.map(memberFrom).forEach((member, index) => {
            const before = left.get(key(member));
            left.delete(key(member));
            if (before && before.enableTimeShift === member.enableTimeShift
                && before.enableSeamless === member.enableSeamless)
                return;
            if (before)
                remove(before, index);
            result.addMembers.push(member);
            result.sources.updateAddCameraList.push(index);
        });
        left.forEach(member => remove(member, -1));
    }

    function pathFrom(row: var, original: var): var {
        return { path: row.path, pathType: row.kind, reserveSpace: reserveFrom(row.reserve, original),
                 isRecoveryMode: row.recovery };
    }

    function memberFrom(member: var): var {
        return { camName: member.camName ?? "", streamIndex: member.streamIndex ?? 0,
                 enableTimeShift: member.enableTimeShift ?? false, enableSeamless: member.enableSeamless ?? false };
    }
}
