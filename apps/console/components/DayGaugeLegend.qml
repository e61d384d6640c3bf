import QtQuick
import RecordingConsole

/// One figure of a gauge in words, behind a sample of how the gauge draws it.
Row {
    id: entry

    required property string text
    property color fill: "transparent"
    property color outline: "transparent"
    property bool asMark: false
    property alias valueName: words.objectName

    spacing: 6

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        visible: !entry.asMark || entry.fill.a > 0
        width: entry.asMark ? 3 : Theme.sized(10)
        height: entry.asMark ? Theme.sized(14) : Theme.sized(10)
        radius: entry.asMark ? 1 : 2
        color: entry.fill
        border.width: entry.asMark ? 0 : 1
        border.color: entry.outline
    }
    Text {
        id: words

        text: entry.text
        color: Theme.text
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
