import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
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

    contentItem: RowLayout {
        spacing: Theme.small

        Icon {
            visible: button.iconName !== ""
            name: button.iconName
            color: button.foreground
            size: Theme.iconSize
            Layout.alignment: Qt.AlignCenter
        }
        Text {
            visible: button.text !== ""
            text: button.text
            font: button.font
            color: button.foreground
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: button.primary ? (!button.enabled ? Theme.track
                                 : button.down || button.hovered ? Theme.accentHover : Theme.accent)
             : button.down ? Theme.pressed
             : button.hovered && button.enabled ? Theme.hover
             : button.quiet ? "transparent" : Theme.surface
        border.width: button.quiet || button.primary ? 0 : 1
        border.color: button.enabled ? Theme.controlOutline : Theme.outline

        FocusRing { shown: button.visualFocus }
    }

    ConsoleToolTip {
        visible: button.hovered && button.hint !== "" && button.hint !== button.text
        text: button.hint
    }
}
