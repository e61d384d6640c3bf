import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// Says what a control does, or a name in full.
ToolTip {
    id: tip

    delay: 500
    padding: Theme.small
    width: Math.min(implicitWidth, 420)
    font.pixelSize: Theme.captionSize
    contentItem: Text {
        text: tip.text
        font: tip.font
        color: Theme.text
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }
    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius
    }
}
