import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Says at a field why it was refused, or what should be known about it.
RowLayout {
    id: message

    property string text
    property bool refusal: true ///< else a remark
    readonly property color foreground: refusal ? Theme.danger : Theme.warning

    visible: text !== ""
    spacing: Theme.small
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Icon {
        name: "alert"
        color: message.foreground
        size: Theme.sized(16)
        Layout.alignment: Qt.AlignTop
    }
    Text {
        objectName: "words"
        text: message.text
        color: message.foreground
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Accessible.ignored: true
        Layout.fillWidth: true
        Layout.alignment: Qt.AlignTop
    }
}
