import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The two buttons below a dialog.
RowLayout {
    id: buttons

    property bool busy: false
    property bool acceptable: true
    property bool cancellable: !busy
    property string text ///< of the button that accepts
    property string busyText ///< and while what was accepted is under way
    property alias cancelText: cancel.text
    property alias cancelButton: cancel

    signal accepted
    signal rejected

    spacing: Theme.small

    BusyIndicator {
        visible: buttons.busy
        running: visible
        palette.dark: Theme.accent
        Accessible.ignored: true
        Layout.preferredWidth: 28
        Layout.preferredHeight: 28
        Layout.leftMargin: Theme.huge
        Layout.bottomMargin: Theme.large
    }
    Item { Layout.fillWidth: true }
    ActionButton {
        id: cancel

        objectName: "cancel"
        text: qsTr("Cancel")
        enabled: buttons.cancellable
        Layout.bottomMargin: Theme.large
        onClicked: buttons.rejected()
    }
    ActionButton {
        objectName: "accept"
        primary: true
        text: buttons.busy ? buttons.busyText : buttons.text
        enabled: !buttons.busy && buttons.acceptable
        Layout.bottomMargin: Theme.large
        Layout.rightMargin: Theme.huge
        onClicked: buttons.accepted()
    }
}
