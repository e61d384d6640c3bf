import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The two buttons below a dialog. While what was accepted is under way they say for how long, and it can be left.
RowLayout {
    id: buttons

    property bool busy: false
    property bool acceptable: true
    property bool cancellable: true
    property string text ///< of the button that accepts
    property string busyText ///< and while what was accepted is under way
    property string cancelText: qsTr("Cancel") ///< of the other one
    property string leaveText: qsTr("Leave") ///< and while what was accepted is under way
    property string leaveHint: qsTr("Close this. The station goes on, and what comes of it is shown.") ///< of that
    property int tick: 1000 ///< milliseconds that count as a second
    property int waited: 0 ///< seconds since it is under way
    readonly property int patience: 3 ///< seconds until the wait is told of
    property alias cancelButton: cancel
    property alias acceptButton: accept

    signal accepted
    signal rejected

    spacing: Theme.small
    onBusyChanged: waited = 0

    Timer {
        interval: buttons.tick
        repeat: true
        running: buttons.busy
        onTriggered: ++buttons.waited
    }
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
    Text {
        objectName: "waited"
        text: buttons.busy && buttons.waited >= buttons.patience ? qsTr("%1 s so far").arg(buttons.waited) : ""
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.large
    }
    ActionButton {
        id: cancel

        objectName: "cancel"
        text: buttons.busy ? buttons.leaveText : buttons.cancelText
        enabled: buttons.cancellable
        hint: buttons.busy ? buttons.leaveHint : text
        Layout.bottomMargin: Theme.large
        onClicked: buttons.rejected()
    }
    ActionButton {
        id: accept

        objectName: "accept"
        primary: true
        text: buttons.busy ? buttons.busyText : buttons.text
        enabled: !buttons.busy && buttons.acceptable
        Layout.bottomMargin: Theme.large
        Layout.rightMargin: Theme.huge
        onClicked: buttons.accepted()
    }
}
