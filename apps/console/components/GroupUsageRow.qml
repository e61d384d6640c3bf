import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One recording group: its days against its reserved time and, while it is expanded, its volumes below.
ItemDelegate {
    id: row

    required property int index
    required property string groupId
    required property string name
    required property int standing ///< a GroupUsageModel.State
    required property bool isBackup
    required property int recordedDays
    required property int remainingDays
    required property real missingDays
    required property real oneDayUsage ///< bytes
    required property int reservedTime ///< minutes
    required property var volumes
    required property bool expanded

    readonly property bool unassigned: standing === GroupUsageModel.Unassigned
    readonly property bool insufficient: standing === GroupUsageModel.Short
    readonly property bool lost: standing === GroupUsageModel.Lost
    readonly property string title: unassigned ? qsTr("Storage of no group") : name !== "" ? name : groupId
    readonly property string volumeText: volumes.length === 1 ? qsTr("1 volume")
                                                              : qsTr("%1 volumes").arg(volumes.length)
    readonly property string usageText: oneDayUsage >= 0 ? qsTr("%1 a day").arg(Units.capacity(oneDayUsage / 1024))
                                                         : qsTr("Usage a day unknown")
    readonly property string recordedText: recordedDays >= 0 ? qsTr("%1 recorded").arg(Units.days(recordedDays))
                                                             : qsTr("Recorded: unknown")
    readonly property string remainingText: remainingDays >= 0 ? qsTr("%1 remaining").arg(Units.days(remainingDays))
                                                               : qsTr("Remaining: unknown")
    readonly property string reservedText: reservedTime > 0 ? qsTr("%1 reserved").arg(Units.duration(reservedTime))
        : reservedTime === 0 ? qsTr("No reserved time") : qsTr("Reserved: unknown")
    readonly property bool wide: width >= Theme.sized(760)
    readonly property bool markBeside: width >= Theme.sized(480)
    readonly property int indent: Theme.sized(16) + Theme.small ///< of the volumes: their icons stand below the group's

    signal expansionAsked

    function summary(): string {
        if (unassigned)
            return title + ", " + volumeText;
        const named = mark.text === "" ? title : title + ", " + mark.text;
        return named + ", " + recordedText + ", " + remainingText + ", " + reservedText + ", " + usageText + ", "
            + volumeText;
    }

    objectName: "group:" + groupId
    leftPadding: Theme.medium
    rightPadding: Theme.huge
    topPadding: Theme.large
    bottomPadding: Theme.large
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: summary()
    Accessible.description: expanded ? qsTr("Volumes shown") : qsTr("Volumes hidden")
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }
    onDoubleClicked: expansionAsked()

    contentItem: ColumnLayout {
        spacing: Theme.large

        GridLayout {
            columns: row.wide ? 3 : 2
            columnSpacing: Theme.large
            rowSpacing: Theme.medium
            Layout.fillWidth: true

            RowLayout {
                spacing: Theme.small
                Layout.alignment: Qt.AlignVCenter

                AbstractButton {
                    id: expander

                    objectName: "expander"
                    implicitWidth: Theme.sized(16)
                    implicitHeight: Theme.sized(28)
                    focusPolicy: Qt.NoFocus
                    text: row.expanded ? qsTr("Hide the volumes of %1").arg(row.title)
                                       : qsTr("Show the volumes of %1").arg(row.title)
                    Accessible.name: text
                    onClicked: row.expansionAsked()

                    contentItem: Item {
                        Icon {
                            anchors.centerIn: parent
                            name: "chevron"
                            color: expander.hovered ? Theme.text : Theme.secondaryText
                            size: Theme.sized(16)
                            rotation: row.expanded ? 90 : 0
                        }
                    }
                    ConsoleToolTip {
                        visible: expander.hovered
                        text: row.expanded ? qsTr("Hide the volumes (Left)") : qsTr("Show the volumes (Right)")
                    }
                }
                Icon {
                    name: row.isBackup ? "backup" : row.unassigned ? "volume" : "group"
                    color: Theme.accent
                    size: Theme.sized(28)
                }
            }
            ColumnLayout {
                spacing: Theme.tiny
                Layout.fillWidth: true
                Layout.preferredWidth: 1

                GridLayout {
                    columns: row.markBeside ? 3 : 1
                    columnSpacing: Theme.small
                    rowSpacing: Theme.tiny

                    Text {
                        id: nameText

                        objectName: "name"
                        text: row.title
                        color: Theme.text
                        font.pixelSize: Theme.titleSize
                        font.weight: Font.DemiBold
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                        Layout.maximumWidth: row.markBeside ? Math.ceil(implicitWidth) : -1
                    }
                    Mark {
                        id: mark

                        objectName: "standing"
                        visible: text !== ""
                        warning: row.insufficient
                        danger: row.lost
                        iconName: row.insufficient || row.lost ? "alert"
                            : row.standing === GroupUsageModel.Unknown ? "unknown" : "check"
                        text: row.lost ? qsTr("No storage left") : row.insufficient ? qsTr("%1 short").arg(Units.days(row.missingDays))
                            : row.standing === GroupUsageModel.Unknown ? qsTr("Unknown")
                            : row.standing === GroupUsageModel.Sufficient && row.reservedTime > 0 ? qsTr("Sufficient")
                            : ""
                    }
                    Item {
                        visible: row.markBeside
                        Layout.fillWidth: true
                    }
                }
                Text {
                    objectName: "usage"
                    text: row.unassigned ? row.volumeText : qsTr("%1 · %2").arg(row.volumeText).arg(row.usageText)
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
            }
            ColumnLayout {
                spacing: 6
                Layout.fillWidth: true
                Layout.preferredWidth: row.wide ? 1 : -1
                Layout.columnSpan: row.wide ? 1 : 2

                DayGauge {
                    objectName: "gauge"
                    visible: !row.unassigned
                    recordedDays: row.recordedDays
                    remainingDays: row.remainingDays
                    reservedDays: Math.max(0, row.reservedTime) / (24 * 60)
                    insufficient: row.insufficient
                    Layout.fillWidth: true
                }
                Text {
                    visible: row.unassigned
                    text: qsTr("It holds recordings of no group")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
                Flow {
                    visible: !row.unassigned
                    spacing: row.wide ? Theme.medium : Theme.small
                    Layout.fillWidth: true

                    DayGaugeLegend {
                        valueName: "recorded"
                        text: row.recordedText
                        fill: row.recordedDays >= 0 ? Theme.accent : "transparent"
                        outline: row.recordedDays >= 0 ? Theme.accent : Theme.controlOutline
                    }
                    DayGaugeLegend {
                        valueName: "remaining"
                        text: row.remainingText
                        fill: row.remainingDays >= 0 ? Theme.remaining : "transparent"
                        outline: row.remainingDays >= 0 ? Theme.accent : Theme.controlOutline
                    }
                    DayGaugeLegend {
                        valueName: "reserved"
                        text: row.reservedText
                        asMark: true
                        fill: row.reservedTime > 0 ? Theme.text : "transparent"
                    }
                }
            }
        }
        Repeater {
            model: row.expanded ? row.volumes.length : 0

            VolumeFigures {
                id: volume

                required property int index
                readonly property var values: row.volumes[index] ?? {}

                objectName: "volume:" + path
                volume: values.volume ?? {}
                parts: values.parts ?? []
                path: values.path ?? ""
                fillable: values.fillable ?? -1
                groupId: row.groupId
                room: row.availableWidth - row.indent
                wide: row.wide
                forGroup: true
                Layout.fillWidth: true
                Layout.leftMargin: row.indent
                Accessible.role: Accessible.ListItem
                Accessible.name: volume.summary()
            }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
        FocusRing { shown: row.activeFocus }
    }

    ConsoleToolTip {
        visible: row.hovered && nameText.truncated
        text: row.title
    }
}
