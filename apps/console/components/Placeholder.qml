import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// Stands where rows would: why there are none, and what can be done about it.
ColumnLayout {
    id: placeholder

    property bool busy: false
    property string iconName
    property string title
    property string text
    property string actionText

    signal actionTriggered

    spacing: Theme.small

    BusyIndicator {
        visible: placeholder.busy
        running: visible
        palette.dark: Theme.accent
        Layout.alignment: Qt.AlignHCenter
        Layout.preferredWidth: 40
        Layout.preferredHeight: 40
        Accessible.ignored: true
    }
    Icon {
        visible: !placeholder.busy
        name: placeholder.iconName
        color: Theme.disabledText
        size: Theme.sized(44)
        Layout.alignment: Qt.AlignHCenter
    }
    Text {
        text: placeholder.title
        color: Theme.text
        font.pixelSize: Theme.titleSize
        font.bold: true
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    Text {
        visible: text !== ""
        text: placeholder.text
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    ActionButton {
        objectName: "placeholderAction"
        visible: placeholder.actionText !== ""
        text: placeholder.actionText
        iconName: "refresh"
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: Theme.small
        onClicked: placeholder.actionTriggered()
    }
}
