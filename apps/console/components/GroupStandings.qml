import QtQuick
import RecordingConsole

/// How the recording groups stand to their reserved time, for lists that mark those in trouble: as the plug-in's figures
/// tell it and, before the first of them came, as far as the station's volumes do.
Item {
    id: standings

    required property RecordingGroups groups
    property bool watching: true ///< somebody looks: the figures are followed
    property int revision: 0 ///< counts the changes

    function figures(groupId: string): var {
        return usage.figuresOf(groupId);
    }

    /// Maps with "lost" (bool) and "missingDays" (real, 0 where nothing is missing).
    function of(groupId: string): var {
        const known = figures(groupId);
        const standing = known.standing ?? -1;
        return { lost: standing < 0 ? groups.storage.hasLost(groupId) : standing === GroupUsageModel.Lost,
                 missingDays: standing === GroupUsageModel.Short ? known.missingDays : 0 };
    }

    function follow(): void {
        if (!watching)
            return;
        usage.update(groups.recording, "");
        ++revision;
    }

    onWatchingChanged: follow()
    Component.onCompleted: follow()

    GroupUsageModel {
        id: usage

        storage: standings.groups.storage
    }
    Connections {
        target: standings.groups.recording

        function onVolumeInfoChanged(): void {
            if (!standings.groups.storage.isElsewhere())
                standings.follow();
        }
    }
    Connections {
        target: standings.groups.storage

        function onChanged(): void {
            ++standings.revision;
        }
    }
}
