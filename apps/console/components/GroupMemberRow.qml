import QtQuick
import RecordingConsole

/// A camera that a recording group records.
Item {
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
    implicitHeight: Math.max(drawing.height, words.implicitHeight)
    Accessible.role: Accessible.ListItem
    Accessible.name: camera.text + ", " + streamText + marks.map(mark => ", " + mark.text).join("")

    Icon {
        id: drawing

        anchors.verticalCenter: parent.verticalCenter
        name: "camera"
        color: Theme.accent
        size: Theme.sized(22)
    }
    Column {
        id: words

        anchors.left: drawing.right
        anchors.leftMargin: Theme.medium
        anchors.right: markRow.visible ? markRow.left : parent.right
        anchors.rightMargin: markRow.visible ? Theme.medium : 0
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        Text {
            id: camera

            objectName: "camera"
            width: parent.width
            text: row.modelData.camName ?? ""
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
        }
        Text {
            objectName: "stream"
            width: parent.width
            text: row.wide ? row.streamText : row.streamText + row.marks.map(mark => " · " + mark.text).join("")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            elide: Text.ElideRight
        }
    }
    MarkRow {
        id: markRow

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: row.wide
        marks: row.marks
    }
}
