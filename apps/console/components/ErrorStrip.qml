import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Says above a page what went wrong, until it went well or somebody closes it. What is closed is still known to have
/// gone wrong: the text stays.
Rectangle {
    id: strip

    property string text
    property string actionText
    property bool closable: true
    property bool notice: false ///< nothing went wrong: something should be known
    property real padding: Theme.small ///< above and below
    property real buttonHeight: Theme.controlHeight
    property bool closed: false ///< somebody has read this text
    readonly property bool narrow: width < Theme.sized(420)

    signal actionTriggered
    signal dismissed

    implicitHeight: visible ? Math.max(content.implicitHeight, buttonHeight) + 2 * padding : 0
    visible: text !== "" && !closed
    onTextChanged: closed = false
    radius: Theme.radius
    color: notice ? Theme.selected : Theme.dangerGround
    border.color: notice ? Theme.accent : Theme.dangerOutline
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    GridLayout {
        id: content

        anchors.fill: parent
        anchors.leftMargin: Theme.medium
        anchors.rightMargin: Theme.small
        columnSpacing: Theme.medium
        rowSpacing: 0

        Icon {
            name: strip.notice ? "info" : "alert"
            color: strip.notice ? Theme.accent : Theme.danger
            size: Theme.iconSize
            Layout.row: 0
            Layout.column: 0
        }
        Text {
            text: strip.text
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.ignored: true
            Layout.row: 0
            Layout.column: 1
            Layout.fillWidth: true
        }
        ActionButton {
            objectName: "errorAction"
            visible: strip.actionText !== ""
            quiet: true
            text: strip.actionText
            implicitHeight: strip.buttonHeight
            Layout.row: strip.narrow ? 1 : 0
            Layout.column: strip.narrow ? 1 : 2
            Layout.leftMargin: strip.narrow ? -leftPadding : 0
            onClicked: strip.actionTriggered()
        }
        ActionButton {
            objectName: "errorClose"
            visible: strip.closable
            quiet: true
            iconName: "close"
            implicitHeight: strip.buttonHeight
            hint: qsTr("Close this message")
            Layout.row: 0
            Layout.column: 3
            onClicked: {
                strip.closed = true;
                strip.dismissed();
            }
        }
    }
}
