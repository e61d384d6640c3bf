import QtQuick
import RecordingConsole

/// Stands beside a field and says what it holds.
Text {
    height: Theme.controlHeight
    color: enabled ? Theme.secondaryText : Theme.disabledText
    font.pixelSize: Theme.bodySize
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
