pragma Singleton

import QtQuick
import com.meridon.pluginrecordingmanagement

/// What an edited recording group comes to as a request, and which field a refusal is about.
///
/// An edited group is a map: "name", "reservedTime" (minutes, 0 where it does not apply), "paths" and "members". Its rows
/// stand as the operator sees them. A path's row: "path", "kind" (a RecPathType, -1 for NAS storage left as it is),
/// "reserve" (text, GB), "recovery". A member's row is a member as the plug-in knows it.
///
/// A request comes with "sources": for each of its lists the row that every entry comes from, -1 for a row that is gone.
QtObject {
    readonly property int keptNas: -1 ///< beside the plug-in's kinds
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
        if (!/^(\/\/|\\\\|smb:)/i.test(path))
            return PluginRecordingManagement.Local;
        return kind === PluginRecordingManagement.NetDomain ? kind : PluginRecordingManagement.NetHost;
    }

    /// Of a path as RecordingGroups.read() gives it.
    function kindOf(path: var): int {
        return path.nas ? keptNas : PluginRecordingManagement.Local;
    }

    function isNas(kind: int): bool {
        return kind !== PluginRecordingManagement.Local;
    }

    /// Whether a refusal of a path is about its reserved space.
    function isAboutReserve(error: var): bool {
        return error.returnCode.startsWith("ReservedSpace");
    }

    /// 2 GB are what the plug-in reserves where nothing else is said. @p left is what may be reserved there, in bytes;
    /// negative: nobody knows.
    function newPathRow(path: string, left: real): var {
        const fits = left < 0 || left >= 2 * megabytesPerGigabyte * 1024 * 1024;
        return { path: path, kind: PluginRecordingManagement.Local, reserve: fits ? "2" : "0", recovery: false, message: "",
                 reserveWrong: false };
    }

    function pathRows(group: var): var {
        return group.paths.map(path => ({
            path: path.path, kind: kindOf(path), reserve: reserveText(path.reserve),
            recovery: path.recovery, message: "", reserveWrong: false
        }));
    }

    function memberRows(group: var): var {
        return group.members;
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

    /// Whether the station could judge it: nothing is missing, and every number is one.
    function isComplete(original: var, edited: var): bool {
        return edited.name.trim() !== "" && !isNaN(edited.reservedTime) && edited.paths.length > 0
            && edited.members.every(member => (member.camName ?? "") !== "")
            && edited.paths.every(row => row.path !== ""
                && !isNaN(reserveFrom(row.reserve, original?.paths.find(path => path.path === row.path)?.reserve)));
    }

    /// What the plug-in's method takes for it, in the order of its parameters; @p group is null for a new one.
    function parameters(group: var, request: var): var {
        return group ? [group.id, request.addMembers, request.removeMembers, request.addPaths, request.removePaths,
                        request.setPaths, request.info]
                     : [request.info, request.paths, request.members];
    }

    /// The request that takes @p changes back, which made another group of @p original; null where nobody could: the plug-in
    /// does not tell of which kind a path on NAS storage was.
    function reverse(original: var, changes: var): var {
        const before = path => original.paths.find(other => other.path === path);
        if (changes.removePaths.some(path => before(path).nas) || changes.setPaths.some(change => change.pathType !== undefined))
            return null;
        const info = {};
        if (changes.info.recordingGroupName !== undefined)
            info.recordingGroupName = original.name;
        if (changes.info.recordingGroupReservedTimeEnabled !== undefined) {
            info.recordingGroupReservedTimeEnabled = original.reservedTime > 0;
            if (original.reservedTime > 0)
                info.recordingGroupReservedTime = original.reservedTime;
        }
        const removed = changes.removeMembers.map(memberKey);
        return {
            info: info,
            addPaths: changes.removePaths.map(path => ({ path: path, pathType: PluginRecordingManagement.Local,
                                                         reserveSpace: before(path).reserve,
                                                         isRecoveryMode: before(path).recovery })),
            removePaths: changes.addPaths.map(path => path.path),
            setPaths: changes.setPaths.map(change => {
                const back = { path: change.path };
                if (change.reserveSpace !== undefined)
                    back.reserveSpace = before(change.path).reserve;
                if (change.isRecoveryMode !== undefined)
                    back.isRecoveryMode = before(change.path).recovery;
                return back;
            }),
            addMembers: original.members.map(memberFrom).filter(member => removed.includes(memberKey(member))),
            removeMembers: changes.addMembers.map(member => ({ camName: member.camName, streamIndex: member.streamIndex }))
        };
    }

    function isEmpty(changes: var): bool {
        return Object.keys(changes.info).length === 0 && Object.values(changes.sources).every(list => list.length === 0);
    }

    function kindText(kind: int): string {
        switch (kind) {
        case PluginRecordingManagement.Local:
            return qsTr("Local");
        case PluginRecordingManagement.NetHost:
            return qsTr("NAS host");
        case PluginRecordingManagement.NetDomain:
            return qsTr("NAS domain");
        default:
            return qsTr("NAS");
        }
    }

    function memberKey(member: var): string {
        return JSON.stringify([member.camName, member.streamIndex]);
    }

    /// The entries of a refusal as sentences, each once; @p session has the words.
    function errorWords(errors: var, session: var): string {
        const sentences = Array.from(errors).map(error => [error.returnCode, error.reason ?? ""].filter(Boolean)
                                                              .map(code => session.refusalText(code)).join(" "));
        return sentences.filter((sentence, index) => sentences.indexOf(sentence) === index).join(" ");
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
            if (row.kind !== kindOf(before))
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
        const left = new Map(original.members.map(memberFrom).map(member => [memberKey(member), member]));
        const remove = (member, row) => {
            result.removeMembers.push({ camName: member.camName, streamIndex: member.streamIndex });
            result.sources.updateRmCameraList.push(row);
        };
        edited.members.map(memberFrom).forEach((member, index) => {
            const before = left.get(memberKey(member));
            left.delete(memberKey(member));
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
