import QtQuick
import RecordingConsole

/// Keys, and what each of them does.
Column {
    id: table

    required property string title
    required property var keys ///< ConsoleKeys
    required property real room ///< its own width comes too late to wrap by
    readonly property real keyWidth: Math.min(Theme.sized(150), room * 0.4)

    spacing: Theme.small

    SectionTitle {
        width: table.room
        text: table.title
    }
    Repeater {
        model: table.keys

        Item {
            id: row

            required property var modelData

            width: table.room
            height: Math.max(keyText.height, words.height)
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTr("%1: %2").arg(keyText.text).arg(words.text)

            Text {
                id: keyText

                objectName: "keys"
                width: table.keyWidth
                text: row.modelData.label
                color: Theme.text
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            Text {
                id: words

                objectName: "words"
                x: table.keyWidth + Theme.medium
                width: table.room - x
                text: row.modelData.text
                color: Theme.text
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
}
