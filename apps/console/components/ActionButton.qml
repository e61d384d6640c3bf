import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// A button with a drawing, a text, or both. Without a text the accessible name and the tool tip say what it does.
Button {
    id: button

    property string iconName
    property string hint: text
    property bool primary: false
    property bool quiet: false
    property color foreground: !enabled ? Theme.disabledText : primary ? Theme.accentText : Theme.text

    implicitHeight: Theme.controlHeight
    implicitWidth: Math.max(implicitHeight, contentItem.implicitWidth + leftPadding + rightPadding)
    leftPadding: text === "" ? Theme.small : iconName === "" ? Theme.large : Theme.medium
    rightPadding: text === "" ? Theme.small : Theme.large
    topPadding: 0
    bottomPadding: 0
    font.pixelSize: Theme.bodySize
    hoverEnabled: true
    Accessible.name: text !== "" ? text : hint
    Accessible.description: hint

    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    // No layout: it would tell its width too late to the one that the button stands in.
    contentItem: Item {
        readonly property real textX: icon.visible ? icon.width + (label.visible ? Theme.small : 0) : 0

        implicitWidth: textX + (label.visible ? Math.ceil(label.implicitWidth) : 0)
        implicitHeight: Math.max(icon.height, label.implicitHeight)

        Icon {
            id: icon

            visible: button.iconName !== ""
            x: label.visible ? 0 : (parent.width - width) / 2
            anchors.verticalCenter: parent.verticalCenter
            name: button.iconName
            color: button.foreground
            size: Theme.iconSize
        }
        Text {
            id: label

            visible: button.text !== ""
            x: parent.textX
            width: Math.max(0, parent.width - x)
            height: parent.height
            text: button.text
            font: button.font
            color: button.foreground
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.primary ? (!button.enabled ? Theme.pressed
                                 : button.down || button.hovered ? Theme.accentHover : Theme.accent)
             : button.down ? Theme.pressed
             : button.hovered && button.enabled ? Theme.hover
             : button.quiet ? "transparent" : Theme.surface
        border.width: button.quiet || button.primary ? 0 : 1
        border.color: button.enabled ? Theme.controlOutline : Theme.outline

        FocusRing {
            shown: button.activeFocus && button.focusReason !== Qt.MouseFocusReason
            filled: button.primary
        }
    }

    ConsoleToolTip {
        visible: button.hovered && button.hint !== "" && button.hint !== button.text
        text: button.hint
    }
}
