import QtQml
import RecordingConsole

/// The volumes of the plug-in's model as plain values.
Instantiator {
    function list(): var {
        return Array.from({ length: count }, (value, row) => {
            const volume = objectAt(row) as VolumeSize;
            return { path: volume.rootPathRole, name: volume.nameRole, size: volume.sizeRole,
                     available: volume.availableSizeRole };
        });
    }

    delegate: VolumeSize {}
}
