import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// One volume: its name, path and marks, and what takes it up. The two halves stand side by side where there is room. It
/// is the same picture wherever a volume is shown; below a recording group it says as well what the group has there.
ColumnLayout {
    id: figures

    required property var volume ///< with the keys of "station.listStorage"
    required property var parts ///< as StationStorage.parts() gives them
    required property real room ///< the width there is: its own comes too late to choose the layout by
    property bool wide: false
    property string groupId ///< the recording group below which it stands; empty: none
    property bool forGroup: false ///< stands, smaller, below a recording group
    property real fillable: -1 ///< bytes that the group may still fill; negative: not known

    property string path: volume.volumePath ?? "" ///< of the volume, or a path on it

    readonly property string name: volume.volumeName ?? ""
    readonly property bool isSystem: volume.volumeIsSystem ?? false
    readonly property bool isNas: volume.kind === "NAS"
    readonly property bool readOnly: volume.state === "readOnly"
    readonly property bool gone: volume.state === "gone"
    readonly property bool silent: volume.state === "notAnswering"
    readonly property bool lost: gone || silent
    readonly property real size: volume.size ?? -1 ///< bytes
    readonly property bool known: size > 0 && (volume.free ?? -1) >= 0
    readonly property var own: (volume.groups ?? []).find(group => group.recordingGroupID === groupId) ?? null
    readonly property real reserved: megabytes((volume.groups ?? []).reduce((sum, group) => sum + group.reserveSpace, 0))
    readonly property string sinceText: volume.since ? Units.moment(new Date(volume.since)) : ""
    readonly property string stateText: gone
        ? sinceText !== "" ? qsTr("Not there since %1").arg(sinceText) : qsTr("Not there")
        : silent ? sinceText !== "" ? qsTr("Not answering since %1").arg(sinceText) : qsTr("Not answering")
        : size > 0 ? qsTr("Size %1, free space unknown").arg(Units.bytes(size)) : qsTr("Size unknown")
    readonly property string freeText: known
        ? qsTr("%1 free of %2 · %3").arg(Units.bytes(volume.free)).arg(Units.bytes(size)).arg(Units.percent(volume.free / size))
        : stateText
    readonly property bool holdsRecordings: (volume.withoutGroupBytes ?? 0) > 0
        || (volume.groups ?? []).some(group => group.recordedBytes > 0)
    /// Of when the recordings are, unless that is now: a share that does not answer keeps its figures.
    readonly property string countedText: (volume.counted ?? true) || (lost && !holdsRecordings) ? ""
        : volume.countedAt ? qsTr("recordings as of %1").arg(Units.moment(new Date(volume.countedAt)))
        : qsTr("recordings not counted yet")
    readonly property string spaceText: countedText === "" ? freeText : qsTr("%1 · %2").arg(freeText).arg(countedText)
    readonly property bool marksBeside: room >= Theme.sized(420)
    readonly property bool named: name !== "" && name !== path
    readonly property bool truncated: nameText.truncated || pathText.truncated
    readonly property string fullName: named ? name + "\n" + path : path

    function megabytes(count: real): real {
        return count * 1024 * 1024;
    }

    /// What the group has there.
    function ownWords(): var {
        const words = [];
        if (!forGroup)
            return words;
        if (own !== null && groupId !== "") {
            words.push(own.recordedBytes >= 0 ? qsTr("%1 recorded").arg(Units.bytes(own.recordedBytes))
                                              : qsTr("Recorded: unknown"));
            if (own.reserveSpace > 0)
                words.push(qsTr("%1 reserved").arg(Units.bytes(megabytes(own.reserveSpace))));
        }
        if (!lost && fillable >= 0 && groupId !== "")
            words.push(fillable > 0 ? qsTr("may fill %1 more").arg(Units.bytes(fillable)) : qsTr("may fill nothing more"));
        return words;
    }

    /// Everything that stands here, as one line.
    function summary(): string {
        const words = named ? [name, path] : [path];
        for (const mark of [systemMark, nasMark, lostMark, readOnlyMark]) {
            if (mark.visible)
                words.push(mark.text);
        }
        words.push(spaceText);
        words.push(...ownWords());
        if (legend.visible)
            words.push(legend.summary());
        return words.join(", ");
    }

    /// The operator wants to see the recordings of no group.
    signal unassignedChosen

    spacing: Theme.small

    GridLayout {
        columns: figures.wide ? 3 : 2
        columnSpacing: Theme.large
        rowSpacing: Theme.medium
        Layout.fillWidth: true

        Icon {
            name: figures.isNas ? "network" : "volume"
            color: figures.lost ? Theme.danger : Theme.secondaryText
            size: Theme.sized(figures.forGroup ? 22 : 28)
            Layout.leftMargin: (Theme.sized(28) - size) / 2
            Layout.rightMargin: (Theme.sized(28) - size) / 2
            Layout.alignment: Qt.AlignVCenter
        }
        ColumnLayout {
            spacing: Theme.tiny
            Layout.fillWidth: true
            Layout.preferredWidth: 1

            GridLayout {
                columns: figures.marksBeside ? 2 : 1
                columnSpacing: Theme.small
                rowSpacing: Theme.tiny

                Text {
                    id: nameText

                    objectName: "name"
                    text: figures.named ? figures.name : figures.path !== "" ? figures.path : qsTr("Volume unknown")
                    color: figures.lost ? Theme.danger : Theme.text
                    font.pixelSize: figures.forGroup ? Theme.bodySize : Theme.titleSize
                    font.weight: figures.forGroup ? Font.Normal : Font.DemiBold
                    textFormat: Text.PlainText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                    Layout.maximumWidth: figures.marksBeside ? Math.ceil(implicitWidth) : -1
                }
                Flow {
                    id: marks

                    readonly property real naturalWidth: {
                        let sum = 0;
                        for (const mark of [systemMark, nasMark, lostMark, readOnlyMark])
                            sum += mark.visible ? mark.width + spacing : 0;
                        return Math.max(0, sum - spacing);
                    }

                    visible: figures.isSystem || figures.isNas || figures.lost || figures.readOnly
                    spacing: Theme.small
                    Layout.fillWidth: true
                    Layout.minimumWidth: figures.marksBeside ? naturalWidth : 0

                    Mark {
                        id: systemMark

                        objectName: "systemMark"
                        visible: figures.isSystem
                        iconName: "system"
                        text: qsTr("System")
                    }
                    Mark {
                        id: nasMark

                        objectName: "nasMark"
                        visible: figures.isNas
                        iconName: "network"
                        text: qsTr("NAS")
                    }
                    Mark {
                        id: lostMark

                        objectName: "lostMark"
                        visible: figures.lost
                        danger: true
                        iconName: "alert"
                        text: figures.gone ? qsTr("Not there") : qsTr("Not answering")
                    }
                    Mark {
                        id: readOnlyMark

                        objectName: "readOnlyMark"
                        visible: figures.readOnly
                        warning: true
                        iconName: "alert"
                        text: qsTr("Read-only")
                    }
                }
            }
            Text {
                id: pathText

                objectName: "path"
                visible: figures.named
                text: figures.path
                color: Theme.secondaryText
                font.pixelSize: figures.forGroup ? Theme.captionSize : Theme.bodySize
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 6
            Layout.fillWidth: true
            Layout.preferredWidth: figures.wide ? 1 : -1
            Layout.columnSpan: figures.wide ? 1 : 2

            VolumeBar {
                objectName: "bar"
                parts: figures.parts
                size: figures.size
                groupId: figures.groupId
                reserved: figures.reserved
                ownReserve: figures.megabytes(figures.own?.reserveSpace ?? 0)
                lost: figures.lost
                Layout.fillWidth: true
            }
            Text {
                objectName: "free"
                text: figures.spaceText
                color: figures.lost ? Theme.danger : Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight // to wrap would leave the height of a narrower moment
                Layout.fillWidth: true
            }
            Text {
                objectName: "own"
                visible: text !== ""
                text: figures.ownWords().join(figures.marksBeside ? " · " : "\n")
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight // to wrap would leave the height of a narrower moment
                Layout.fillWidth: true
            }
        }
    }
    VolumeLegend {
        id: legend

        visible: figures.parts.length > 0
        parts: figures.parts
        size: figures.size
        groupId: figures.groupId
        leads: !figures.forGroup
        onUnassignedChosen: figures.unassignedChosen()
        Layout.fillWidth: true
        Layout.leftMargin: figures.wide ? Theme.sized(28) + Theme.large : 0
    }
}
