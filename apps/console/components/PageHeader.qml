import QtQuick
import RecordingConsole

/// Title of a page, its actions at the right, and below them a room for one line: about the page, or for a message in its
/// place, so that nothing moves when one comes. No layout: one may keep the places of an old width when width and contents
/// change together.
Item {
    id: header

    required property string title
    property string subtitle
    readonly property real lineTop: titleHeight + Theme.tiny
    readonly property real titleHeight: Math.max(Theme.controlHeight, actionRow.implicitHeight)
    property alias messages: messageColumn.data ///< PageStrips
    default property alias actions: actionRow.data

    implicitHeight: lineTop + Theme.stripHeight

    Text {
        anchors.left: parent.left
        anchors.right: actionRow.left
        anchors.rightMargin: Theme.large
        height: header.titleHeight
        verticalAlignment: Text.AlignVCenter
        text: header.title
        color: Theme.text
        font.pixelSize: Theme.headlineSize
        font.weight: Font.DemiBold
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Theme.sized(17)
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        objectName: "subtitle"
        visible: messageColumn.height === 0
        y: header.lineTop
        width: parent.width
        text: header.subtitle
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        elide: Text.ElideRight
    }
    Row {
        id: actionRow

        anchors.right: parent.right
        spacing: Theme.small
    }
    Column {
        id: messageColumn

        objectName: "messages"
        y: header.lineTop
        width: parent.width
        spacing: Theme.tiny
    }
}
