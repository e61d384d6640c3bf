import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A camera that a recording group records.
RowLayout {
    id: row

    required property int index
    required property var modelData ///< a member as the plug-in knows it

    required property bool wide
    readonly property string streamText: qsTr("Stream %1").arg(modelData.streamIndex ?? 0)
    readonly property var marks: [
        { shown: modelData.enableTimeShift ?? false, text: qsTr("Time shift"), iconName: "clock" },
        { shown: modelData.enableSeamless ?? false, text: qsTr("Seamless"), iconName: "connected" }
    ].filter(mark => mark.shown)

    objectName: "member:" + modelData.camName + ":" + (modelData.streamIndex ?? 0)
    spacing: Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: camera.text + ", " + streamText + marks.map(mark => ", " + mark.text).join("")

    Icon {
        name: "camera"
        color: Theme.accent
        size: 22
    }
    ColumnLayout {
        spacing: 2
        Layout.fillWidth: true

        Text {
            id: camera

            objectName: "camera"
            text: row.modelData.camName ?? ""
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        Text {
            objectName: "stream"
            text: row.wide ? row.streamText : row.streamText + row.marks.map(mark => " · " + mark.text).join("")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            Layout.fillWidth: true
        }
    }
    MarkRow {
        visible: row.wide
        marks: row.marks
    }
}
