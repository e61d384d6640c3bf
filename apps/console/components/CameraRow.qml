import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One camera: its streams, and the recording groups that record it with what they keep.
ItemDelegate {
    id: row

    required property int index
    required property string camName
    required property int streams
    required property var groups ///< as CameraOverview has them
    required property int groupCount
    required property int recordedStreams
    required property bool unrecorded
    required property GroupUsageModel usage
    required property int usageRevision
    property bool wide: true
    property bool chosen: false
    readonly property bool current: ListView.isCurrentItem
    readonly property string streamText: recordedStreams > 0 && streams > 1
        ? qsTr("%1 of %2 streams recorded").arg(recordedStreams).arg(streams)
        : Units.counted(streams, qsTr("1 stream"), qsTr("%1 streams"))
    readonly property string recordedBy: groupCount < 0 ? qsTr("Not known which group records it")
        : unrecorded ? qsTr("No group records it") : groups.map(group => placeText(group)).join(" · ")

    /// The figures are the whole group's: the station tells none of a camera alone.
    function placeText(group: var): string {
        const figures = (row.usageRevision, row.usage.figuresOf(group.id));
        const stored = row.usage.storage?.recordedBy(group.id) ?? {};
        const days = Math.max(figures.recordedDays ?? -1, stored.recordedDays ?? -1);
        const bytes = Math.max(figures.oneDayUsage ?? -1, stored.bytesPerDay ?? -1);
        const known = [];
        if (days >= 0)
            known.push(Units.days(days));
        if (bytes >= 0)
            known.push(qsTr("%1 a day").arg(Units.bytes(bytes)));
        const cameras = Units.counted(group.cameras, qsTr("1 camera"), qsTr("%1 cameras"));
        return known.length === 0 ? group.name : qsTr("%1 (%2: %3)").arg(group.name).arg(cameras).arg(known.join(", "));
    }

    objectName: "camera:" + camName
    implicitHeight: Theme.sized(60)
    leftPadding: Theme.large
    rightPadding: Theme.large
    highlighted: current && (ListView.view?.activeFocus ?? false)
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1, %2, %3").arg(camName).arg(streamText).arg(recordedBy)
    Accessible.checkable: true
    Accessible.checked: chosen
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }

    contentItem: RowLayout {
        spacing: Theme.medium

        Rectangle {
            objectName: "choice"
            implicitWidth: 20
            implicitHeight: 20
            radius: 4
            color: row.chosen ? Theme.accent : Theme.window
            border.width: row.chosen ? 0 : 1
            border.color: Theme.controlOutline

            Icon {
                anchors.centerIn: parent
                visible: row.chosen
                name: "check"
                color: Theme.accentText
                size: 18
            }
            TapHandler {
                margin: 10
                gesturePolicy: TapHandler.ReleaseWithinBounds
                onTapped: row.toggled()
            }
        }
        Icon {
            name: "camera"
            color: row.unrecorded ? Theme.warning : Theme.accent
            size: 24
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true

            Text {
                id: nameText

                objectName: "name"
                text: row.camName
                color: Theme.text
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                id: placeLine

                objectName: "recordedBy"
                text: row.recordedBy
                color: row.unrecorded ? Theme.warning : Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        Text {
            objectName: "streams"
            visible: row.wide
            text: row.streamText
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted || row.chosen ? Theme.selected : row.down ? Theme.pressed
             : row.hovered ? Theme.hover : "transparent"
        border.width: row.highlighted ? 2 : 0
        border.color: Theme.accent

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
    }

    ConsoleToolTip {
        visible: row.hovered && (nameText.truncated || placeLine.truncated || !row.wide)
        text: [row.camName, row.streamText, ...row.groups.map(group => row.placeText(group))].join("\n")
    }
}
