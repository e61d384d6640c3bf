import QtQuick
import RecordingConsole

/// Heads a part of a page or of a dialog.
Text {
    color: Theme.secondaryText
    font.pixelSize: Theme.captionSize
    font.weight: Font.DemiBold
    font.capitalization: Font.AllUppercase
    font.letterSpacing: 0.8
    textFormat: Text.PlainText
    elide: Text.ElideRight
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
