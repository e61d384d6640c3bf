import QtQml
import RecordingConsole

/// The volumes of the plug-in's model as plain values: maps "path", "name", "size" and "available" (KB), and "isNas".
Instantiator {
    id: source

    /// The model has other volumes than before, or more of them.
    signal changed

    function list(): var {
        const volumes = [];
        for (let row = 0; row < count; ++row) {
            const volume = objectAt(row) as VolumeSize;
            if (volume) // not made yet while the model grows
                volumes.push({ path: volume.rootPathRole, name: volume.nameRole, size: volume.sizeRole,
                               available: volume.availableSizeRole, isNas: volume.isNASRole });
        }
        return volumes;
    }

    readonly property Timer later: Timer { // a change of the model is over by then
        interval: 0
        onTriggered: source.changed()
    }

    delegate: VolumeSize {}
    onObjectAdded: later.restart()
    onObjectRemoved: later.restart()
}
