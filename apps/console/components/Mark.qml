import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A short word about a row, with a drawing.
Rectangle {
    id: mark

    required property string iconName
    required property string text
    property bool warning: false
    property bool danger: false
    readonly property color foreground: danger ? Theme.danger : warning ? Theme.warning : Theme.secondaryText

    implicitWidth: content.implicitWidth + 2 * Theme.small
    implicitHeight: Theme.sized(22)
    radius: height / 2
    color: danger ? Theme.dangerGround : warning ? Theme.warningGround : "transparent"
    border.color: danger || warning ? foreground : Theme.outline
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    RowLayout {
        id: content

        anchors.centerIn: parent
        spacing: Theme.tiny

        Icon {
            name: mark.iconName
            color: mark.foreground
            size: Theme.sized(14)
        }
        Text {
            text: mark.text
            color: mark.foreground
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            Accessible.ignored: true
        }
    }
}
