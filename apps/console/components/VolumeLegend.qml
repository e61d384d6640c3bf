import QtQuick
import RecordingConsole

/// The parts of a volume in words: absolute first, then the share of its size.
Flow {
    id: legend

    required property var parts ///< as StationStorage.parts() gives them
    required property real size ///< bytes
    property string groupId ///< as VolumeBar's
    readonly property real excess: parts.reduce((sum, part) => sum + part.told - part.bytes, 0)
    readonly property string excessText: excess < 1 ? ""
        : qsTr("The recordings take %1 less than their sizes come to").arg(Units.bytes(excess))

    function words(part: var): string {
        switch (part.kind) {
        case "group":
            return part.name !== "" ? part.name : part.id;
        case "moreGroups":
            return Units.counted(part.count, qsTr("1 more group"), qsTr("%1 more groups"));
        case "backup":
            return qsTr("Backup");
        case "withoutGroup":
            return qsTr("Recordings of no group");
        case "other":
            return qsTr("Other files");
        case "unknown":
            return qsTr("Taken, not counted yet");
        case "root":
            return qsTr("Reserved for root");
        default:
            return qsTr("Free");
        }
    }

    function line(part: var): string {
        return qsTr("%1: %2 · %3").arg(words(part)).arg(Units.bytes(part.told)).arg(Units.percent(part.bytes / size));
    }

    /// Everything, for those who listen.
    function summary(): string {
        return parts.map(part => line(part)).concat(excessText === "" ? [] : [excessText]).join(", ");
    }

    property bool leads: false ///< the recordings of no group can be chosen

    signal unassignedChosen

    spacing: Theme.medium

    Repeater {
        model: legend.parts.length

        Row {
            id: entry

            required property int index
            readonly property var values: legend.parts[index] ?? {}
            readonly property bool leads: legend.leads && values.kind === "withoutGroup"
            readonly property bool own: legend.groupId !== "" && values.id === legend.groupId

            objectName: "legend:" + (values.kind ?? "") + (values.id ?? "")
            spacing: 6
            visible: values.kind !== undefined

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: Theme.sized(10)
                height: Theme.sized(10)
                radius: 2
                color: entry.values.kind === "free" ? Theme.track
                    : Theme.partColor(entry.values.kind ?? "", entry.index, entry.own, legend.groupId !== "")
                border.width: entry.values.kind === "free" ? 1 : 0
                border.color: Theme.controlOutline
            }
            Text {
                objectName: "words"
                width: Math.min(implicitWidth, legend.width - Theme.sized(10) - 6)
                text: entry.values.kind !== undefined ? legend.line(entry.values) : ""
                color: entry.leads ? Theme.accent : entry.own ? Theme.text : Theme.secondaryText
                font.pixelSize: Theme.captionSize
                font.weight: entry.own ? Font.DemiBold : Font.Normal
                font.underline: entry.leads && pointer.hovered
                textFormat: Text.PlainText
                elide: Text.ElideMiddle

                HoverHandler {
                    id: pointer

                    enabled: entry.leads
                    cursorShape: Qt.PointingHandCursor
                }
                TapHandler {
                    enabled: entry.leads
                    onTapped: legend.unassignedChosen()
                }
            }
        }
    }
    Text {
        objectName: "excess"
        width: Math.min(implicitWidth, legend.width)
        visible: text !== ""
        text: legend.excessText
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        elide: Text.ElideRight
    }
}
