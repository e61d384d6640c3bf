import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// A line to type into.
TextField {
    id: field

    property bool mistaken: false ///< what stands in it was refused

    implicitHeight: Theme.controlHeight
    color: enabled ? Theme.text : Theme.disabledText
    placeholderTextColor: Theme.disabledText
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentText
    selectByMouse: true
    font.pixelSize: Theme.bodySize
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    Accessible.name: placeholderText
    onActiveFocusChanged: {
        if (activeFocus && (focusReason === Qt.TabFocusReason || focusReason === Qt.BacktabFocusReason))
            selectAll();
    }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.window
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.accent
                    : field.mistaken ? Theme.danger : field.enabled ? Theme.controlOutline : Theme.outline
    }
}
