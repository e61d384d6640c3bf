import QtQuick
import RecordingConsole

/// What there is on the volume of an edited path: free space, what other recording groups reserve, what is left to
/// reserve, and what the group has recorded there.
Flow {
    id: figures

    /// Null: there is no path. Else a map: "volume" (with the keys of "station.listStorage"), in bytes and negative where
    /// nobody knows "byOthers", "left", "recorded", "bytesPerDay" and "wanted", and "own" (bool): the group has a path there.
    required property var room
    readonly property var volume: room?.volume ?? {}
    readonly property bool exceeded: room !== null && room.left >= 0 && room.wanted > room.left
    readonly property var entries: room === null ? [] : there() ? placeWords().concat(spaceWords(), ownWords())
                                                                : placeWords().concat(stateWords(), ownWords())

    function there(): bool {
        return (volume.state === "there" || volume.state === "readOnly") && volume.size > 0;
    }

    function placeWords(): var {
        const path = volume.volumePath ?? "";
        const name = volume.volumeName ?? "";
        const words = [{ key: "volume", warning: false,
            text: path === "" ? qsTr("Volume unknown") : name !== "" && name !== path ? qsTr("On %1 (%2)").arg(name).arg(path) : qsTr("On %1").arg(path) }];
        if (volume.volumeIsSystem)
            words.push({ key: "system", warning: true, text: qsTr("the station's system volume") });
        if (volume.state === "readOnly")
            words.push({ key: "readOnly", warning: true, text: qsTr("cannot be written to") });
        return words;
    }

    function stateWords(): var {
        return [{ key: "state", warning: volume.state !== "unknown",
                  text: volume.state === "gone" ? qsTr("not there, free space unknown")
                      : volume.state === "notAnswering" ? qsTr("not answering, free space unknown")
                      : qsTr("free space unknown") }];
    }

    function spaceWords(): var {
        const words = [{ key: "free", warning: false,
            text: volume.free >= 0 ? qsTr("%1 free of %2").arg(Units.bytes(volume.free)).arg(Units.bytes(volume.size))
                                   : qsTr("free space unknown") }];
        words.push({ key: "byOthers", warning: false,
            text: room.byOthers < 0 ? qsTr("reserves of other groups unknown")
                : room.byOthers === 0 ? qsTr("no other group reserves space here")
                : qsTr("other groups reserve %1").arg(Units.bytes(room.byOthers)) });
        if (room.left >= 0)
            words.push({ key: "left", warning: exceeded,
                text: exceeded ? qsTr("only %1 left to reserve").arg(Units.bytes(room.left))
                               : qsTr("%1 left to reserve").arg(Units.bytes(room.left)) });
        return words;
    }

    function ownWords(): var {
        if (!room.own)
            return [];
        const recorded = room.recorded < 0 ? qsTr("this group's recordings not counted")
                                           : qsTr("this group has recorded %1").arg(Units.bytes(room.recorded));
        return [{ key: "own", warning: false,
                  text: room.bytesPerDay < 0 ? recorded
                      : qsTr("%1, %2 a day").arg(recorded).arg(Units.bytes(room.bytesPerDay)) }];
    }

    visible: entries.length > 0
    spacing: Theme.tiny
    Accessible.role: Accessible.StaticText
    Accessible.name: entries.map(entry => entry.text).join(", ")

    Repeater {
        model: figures.entries
        delegate: Text {
            required property int index
            required property var modelData

            objectName: modelData.key
            text: index < figures.entries.length - 1 ? modelData.text + " ·" : modelData.text
            width: Math.min(Math.ceil(implicitWidth), figures.width)
            color: modelData.warning ? Theme.warning : Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.weight: modelData.warning ? Font.DemiBold : Font.Normal
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }
    }
}
