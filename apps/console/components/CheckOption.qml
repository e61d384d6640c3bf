import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// A yes or no with its words beside it.
CheckBox {
    id: option

    implicitHeight: Theme.controlHeight
    leftPadding: 0
    rightPadding: Theme.small
    spacing: Theme.small
    font.pixelSize: Theme.bodySize
    Accessible.name: text

    indicator: Rectangle {
        x: Theme.tiny // room for the ring
        y: (option.height - height) / 2
        implicitWidth: Theme.iconSize
        implicitHeight: Theme.iconSize
        radius: 4
        color: !option.checked ? Theme.window : option.enabled ? Theme.accent : Theme.disabledText
        border.width: option.checked ? 0 : 1
        border.color: option.enabled ? Theme.controlOutline : Theme.outline

        Icon {
            anchors.centerIn: parent
            visible: option.checked
            name: "check"
            color: Theme.accentText
            size: Theme.iconSize - 2
        }
    }
    background: Item {
        FocusRing { shown: option.activeFocus && option.focusReason !== Qt.MouseFocusReason }
    }
    contentItem: Text {
        leftPadding: Theme.tiny + option.indicator.width + option.spacing
        text: option.text
        font: option.font
        color: option.enabled ? Theme.text : Theme.disabledText
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
}
