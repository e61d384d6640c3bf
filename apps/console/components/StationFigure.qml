import QtQuick
import RecordingConsole

/// A figure of a station, flush right, and below it the time that it is of where that is not now.
Item {
    id: figure

    required property string text
    property string caption
    property color color: Theme.text
    property bool faded: false ///< it is not of now

    // The figure stays where it is when the time comes below it.
    Text {
        id: value

        objectName: "value"
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        text: figure.text
        color: figure.faded ? Theme.disabledText : figure.color
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideRight
    }
    Text {
        objectName: "asOf"
        anchors.top: value.bottom
        width: parent.width
        visible: text !== ""
        text: figure.caption
        color: Theme.disabledText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideLeft
    }
}
