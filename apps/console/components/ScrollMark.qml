import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The scroll bar of what does not fit; not there while all fits.
ScrollBar {
    required property Flickable flickable

    policy: flickable.contentHeight > flickable.height + 0.5 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    contentItem: Rectangle {
        implicitWidth: 6
        radius: 3
        color: Theme.controlOutline
    }
}
