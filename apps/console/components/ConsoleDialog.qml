import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import RecordingConsole

/// The frame of the console's dialogs. While a request is under way it cannot be closed.
Dialog {
    id: dialog

    property bool busy: false

    parent: T.Overlay.overlay
    modal: true
    focus: true
    anchors.centerIn: parent
    padding: Theme.huge
    topPadding: Theme.small
    closePolicy: busy ? Popup.NoAutoClose : Popup.CloseOnEscape
    enter: null
    exit: null

    header: Text {
        text: dialog.title
        color: Theme.text
        font.pixelSize: 18
        font.weight: Font.DemiBold
        textFormat: Text.PlainText
        elide: Text.ElideRight
        padding: Theme.huge
        bottomPadding: Theme.small
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius + 2
    }
    T.Overlay.modal: Rectangle { color: Theme.scrim }
}
