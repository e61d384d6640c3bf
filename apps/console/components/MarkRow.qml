import QtQuick
import RecordingConsole

/// Marks side by side.
Row {
    id: row

    required property var marks ///< maps "text" and "iconName"

    spacing: Theme.small

    Repeater {
        model: row.marks

        Mark {
            required property var modelData

            objectName: "mark:" + modelData.text
            iconName: modelData.iconName
            text: modelData.text
        }
    }
}
