import QtQml
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Reads the plug-in's recording groups: the tree and what is known of each group. A group is read as one map, so that
/// it stays whole while the station is asked again.
QtObject {
    id: groups

    required property PluginRecordingManagement recording
    readonly property var tree: recording.getRecordingGroupTreeModel()
    required property StationStorage storage
    property var volumes: [] ///< as VolumeList gives them

    function station(): var {
        return tree.index(0, 0);
    }

    function count(): int {
        return tree.rowCount(station());
    }

    /// Where a group stands in the tree; an invalid index where there is none of this id.
    function indexOf(groupId: string): var {
        const row = groupId === "" ? -1 : ModelLookup.rowOf(tree, "recordingGroupIDRole", groupId, station());
        return row < 0 ? tree.index(-1, -1) : tree.index(row, 0, station());
    }

    /// The id of the group in a row below the station; empty where there is none.
    function idAt(row: int): string {
        return row < 0 || row >= count() ? "" : ModelLookup.value(tree.index(row, 0, station()), "recordingGroupIDRole") ?? "";
    }

    /// All that is known of a group; null when there is none of this id.
    function read(groupId: string): var {
        const index = indexOf(groupId);
        return index.valid ? readAt(index, groupId) : null;
    }

    /// Those of @p groupIds that there are, in that order.
    function readAll(groupIds: var): var {
        const rows = new Map(ids().map((id, row) => [id, row]));
        return groupIds.filter(id => rows.has(id)).map(id => readAt(tree.index(rows.get(id), 0, station()), id));
    }

    /// The ids of all groups.
    function ids(): var {
        const parent = station();
        return Array.from({ length: count() },
                          (value, row) => ModelLookup.value(tree.index(row, 0, parent), "recordingGroupIDRole") ?? "");
    }

    function readAt(index: var, groupId: string): var {
        const relayPath = ModelLookup.value(index, "relayPathRole") ?? "";
        return {
            id: groupId,
            name: ModelLookup.value(index, "nameRole") ?? "",
            relayPath: relayPath,
            reservedTime: recording.getRecordingGroupReservedTime(groupId, relayPath),
            paths: paths(groupId, relayPath),
            members: recording.getRecordingGroupMemberList(groupId, relayPath)
        };
    }

    function paths(groupId: string, relayPath: string): var {
        const reserves = recording.getRecordingGroupReservedSpaceList(groupId, relayPath);
        const nas = recording.getRecordingGroupNasPathList(groupId, relayPath);
        const recovery = recording.getRecordingGroupRecoveryPathList(groupId, relayPath);
        return recording.getRecordingGroupPathList(groupId, relayPath).map((path, row) => {
            return {
                path: path,
                reserve: Number(reserves[row] ?? 0),
                nas: nas.includes(path),
                recovery: recovery.includes(path)
            };
        });
    }

    /// The volume that a path lies on, with the keys of "station.listStorage": as the station tells it, else as far as
    /// the plug-in knows it. Empty where nobody knows.
    function volumeOf(path: string, onNas: bool): var {
        const told = storage.holding(path, onNas);
        if (Object.keys(told).length > 0)
            return told;
        const listed = listedVolumeOf(path, onNas);
        if (listed === null)
            return { kind: onNas ? "NAS" : "local", state: "unknown", size: -1, free: -1 };
        const known = listed.size > 0 && listed.available >= 0;
        return {
            volumePath: listed.path, volumeName: listed.name, kind: onNas ? "NAS" : "local",
            state: known ? "there" : "unknown", size: known ? listed.size * 1024 : -1, free: known ? listed.available * 1024 : -1,
            unknownBytes: known ? Math.max(0, listed.size - listed.available) * 1024 : 0
        };
    }

    /// The volume of the plug-in that holds a path; null where none does. The root holds no share, although each begins
    /// with it.
    function listedVolumeOf(path: string, onNas: bool): var {
        const key = onNas ? NasPath.key(path) : path;
        let holder = null;
        let longest = -1;
        for (const volume of volumes.filter(candidate => candidate.isNas === onNas)) {
            const place = onNas ? NasPath.key(volume.path) : volume.path;
            if ((key === place || key.startsWith(place.endsWith("/") ? place : place + "/")) && place.length > longest) {
                holder = volume;
                longest = place.length;
            }
        }
        return holder;
    }
}
