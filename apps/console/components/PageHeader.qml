import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Title of a page, a line about it, and its actions at the right.
RowLayout {
    id: header

    required property string title
    property string subtitle
    default property alias actions: actionRow.data

    spacing: Theme.large

    ColumnLayout {
        spacing: 2

        Text {
            text: header.title
            color: Theme.text
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 17
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.name: text
            Layout.fillWidth: true
        }
        Text {
            objectName: "subtitle"
            text: header.subtitle
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
    }
    RowLayout {
        id: actionRow

        spacing: Theme.small
        Layout.alignment: Qt.AlignTop
    }
}
