import QtQml
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Reads the plug-in's recording groups: the tree and what is known of each group. A group is read as one map, so that
/// it stays whole while the station is asked again.
QtObject {
    id: groups

    required property PluginRecordingManagement recording
    readonly property var tree: recording.getRecordingGroupTreeModel()
    property var volumes: [] ///< as VolumeList gives them

    // Numbers of the tree's roles, for match() and data().
    readonly property int nameNumber: 259
    readonly property int relayPathNumber: 260
    readonly property int groupIdNumber: 263

    function station(): var {
        return tree.index(0, 0);
    }

    function count(): int {
        return tree.rowCount(station());
    }

    /// Where a group stands in the tree; an invalid index where there is none of this id.
    function indexOf(groupId: string): var {
        const found = groupId === "" || count() === 0 ? [] : tree.match(tree.index(0, 0, station()), groupIdNumber, groupId,
                                                                      1, Qt.MatchExactly | Qt.MatchCaseSensitive);
        return found.length > 0 ? found[0] : tree.index(-1, -1);
    }

    /// The id of the group in a row below the station; empty where there is none.
    function idAt(row: int): string {
        return row < 0 || row >= count() ? "" : tree.data(tree.index(row, 0, station()), groupIdNumber) ?? "";
    }

    /// All that is known of a group; null when there is none of this id.
    function read(groupId: string): var {
        const index = indexOf(groupId);
        if (!index.valid)
            return null;
        const relayPath = tree.data(index, relayPathNumber) ?? "";
        return {
            id: groupId,
            name: tree.data(index, nameNumber) ?? "",
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
            const onNas = nas.includes(path);
            const volume = volumeOf(path, onNas);
            return {
                path: path,
                reserve: Number(reserves[row] ?? 0),
                nas: onNas,
                recovery: recovery.includes(path),
                volumeName: volume?.name ?? "",
                size: volume?.size ?? 0,
                available: volume?.available ?? 0
            };
        });
    }

    /// The volume that holds a path; null where none does. The root holds no share, although each begins with it.
    function volumeOf(path: string, onNas: bool): var {
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
