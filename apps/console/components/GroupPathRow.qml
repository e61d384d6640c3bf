import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A path of a recording group: what is reserved there, and the volume it lies on.
ColumnLayout {
    id: row

    required property int index
    required property var modelData ///< a path of RecordingGroups.read()
    readonly property bool known: modelData.size > 0
    readonly property real usedShare: known ? Math.max(0, Math.min(1, 1 - modelData.available / modelData.size)) : 0
    readonly property string volumeText: !known ? qsTr("Volume unknown")
        : modelData.volumeName !== "" ? qsTr("%1: %2 free of %3").arg(modelData.volumeName)
                                            .arg(Units.capacity(modelData.available)).arg(Units.capacity(modelData.size))
        : qsTr("%1 free of %2").arg(Units.capacity(modelData.available)).arg(Units.capacity(modelData.size))
    required property bool wide
    readonly property string reserveText: modelData.reserve > 0
        ? qsTr("%1 reserved").arg(Units.capacity(modelData.reserve * 1024)) : qsTr("Nothing reserved")
    readonly property var marks: (modelData.recovery ? [{ text: qsTr("Recovery"), iconName: "refresh" }] : []).concat(
        modelData.nas ? [{ text: qsTr("NAS"), iconName: "network" }] : [{ text: qsTr("Local"), iconName: "volume" }])

    objectName: "path:" + modelData.path
    spacing: Theme.tiny
    Accessible.role: Accessible.ListItem
    Accessible.name: [modelData.path].concat(marks.map(mark => mark.text), [reserveText, volumeText]).join(", ")

    Rectangle {
        visible: row.index > 0
        implicitHeight: 1
        color: Theme.outline
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.small
    }
    RowLayout {
        spacing: Theme.medium

        Icon {
            name: row.modelData.nas ? "network" : "folder"
            color: Theme.accent
            size: 22
        }
        Text {
            id: pathText

            objectName: "path"
            text: row.modelData.path
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true

            HoverHandler { id: pathHover }
            ConsoleToolTip {
                visible: pathHover.hovered && pathText.truncated
                text: pathText.text
            }
        }
        MarkRow {
            visible: row.wide
            marks: row.marks
        }
    }
    GridLayout {
        columns: row.wide ? 2 : 1
        columnSpacing: Theme.large
        rowSpacing: Theme.tiny
        Layout.leftMargin: 22 + Theme.medium
        Layout.fillWidth: true

        Text {
            objectName: "reserve"
            text: row.wide ? row.reserveText
                           : row.reserveText + row.marks.map(mark => " · " + mark.text).join("")
            color: Theme.text
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            Layout.fillWidth: true
        }
        Text {
            objectName: "volume"
            text: row.volumeText
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            horizontalAlignment: row.wide ? Text.AlignRight : Text.AlignLeft
            Layout.fillWidth: true
        }
    }
    CapacityBar {
        visible: row.known
        implicitHeight: 6
        share: row.usedShare
        low: row.known && row.modelData.available < row.modelData.size / 10
        Layout.leftMargin: 22 + Theme.medium
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.small
    }
}
