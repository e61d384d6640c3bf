import QtQuick
import RecordingConsole

/// What takes up a volume, to scale, as VolumeParts of its size; the words stand in VolumeLegend. Marks above the bar show how
/// far the reserves reach.
Item {
    id: bar

    required property var parts ///< as StationStorage.parts() gives them
    required property real size ///< bytes
    property string groupId ///< the recording group that the bar is drawn for; empty: none
    property real reserved: 0 ///< bytes that are reserved for groups, together
    property real ownReserve: 0 ///< bytes that are reserved for the group
    property bool lost: false
    readonly property int barHeight: 12
    readonly property bool known: size > 0

    /// Where a part begins, in bytes.
    function start(index: int): real {
        return parts.slice(0, index).reduce((sum, part) => sum + part.bytes, 0);
    }

    function place(bytes: real): real {
        return size > 0 ? Math.round(Math.min(1, bytes / size) * width) : 0;
    }

    implicitHeight: barHeight + 6
    implicitWidth: 160
    Accessible.ignored: true // the words stand beside it

    Rectangle {
        id: ground

        y: parent.height - height
        width: parent.width
        height: bar.barHeight
        radius: 3
        color: bar.known ? Theme.track : "transparent"
        clip: true

        Repeater {
            model: bar.parts.length

            Item {
                id: part

                required property int index
                readonly property var values: bar.parts[index] ?? {}
                readonly property real begin: bar.place(bar.start(index))
                readonly property bool own: bar.groupId !== "" && values.id === bar.groupId

                objectName: "part:" + (values.kind ?? "") + (values.id ?? "")
                x: begin
                width: bar.place(bar.start(index + 1)) - begin
                height: parent.height
                visible: values.kind !== "free"

                Rectangle {
                    width: Math.max(1, parent.width - 2) // the ground parts it from the next
                    height: parent.height
                    color: Theme.partColor(part.values.kind, part.index, part.own, bar.groupId !== "")
                }
                Hatching {
                    anchors.fill: parent
                    visible: part.values.kind === "root" || part.values.kind === "unknown"
                    color: Theme.track
                    opacity: 0.5
                }
            }
        }
        Rectangle { // above the parts: it also ends the free one
            anchors.fill: parent
            radius: parent.radius
            color: "transparent"
            border.color: bar.lost ? Theme.danger : Theme.controlOutline
        }
    }
    Repeater {
        model: [{ name: "reservedMark", bytes: bar.reserved }, { name: "ownMark", bytes: bar.ownReserve }]

        BarMark {
            required property var modelData

            objectName: modelData.name
            x: Math.max(0, bar.place(modelData.bytes) - width)
            width: modelData.name === "ownMark" ? 3 : 2
            height: bar.height
            visible: bar.known && modelData.bytes > 0
            color: modelData.name === "ownMark" ? Theme.text : Theme.secondaryText
        }
    }
}
