import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A stream of a camera in the recording group that is edited.
Rectangle {
    id: row

    required property int index
    required property string camName
    required property int streamIndex
    required property int streamCount
    required property bool enableTimeShift
    required property bool enableSeamless
    required property string message

    required property int streamElsewhere ///< with time shift or seamless in another group; -1: none
    required property bool wide

    /// The operator changed one of the row's values.
    signal edited(role: string, value: var)
    signal removed

    function takeFocus(): void {
        streamBox.forceActiveFocus();
    }

    objectName: "memberRow:" + index
    implicitHeight: content.implicitHeight + 2 * Theme.medium
    height: implicitHeight
    radius: Theme.radius
    color: "transparent"
    border.color: message !== "" ? Theme.dangerOutline : Theme.outline

    ColumnLayout {
        id: content

        x: Theme.medium
        y: Theme.medium
        width: parent.width - 2 * Theme.medium
        spacing: Theme.small

        GridLayout {
            columns: row.wide ? 5 : 3
            columnSpacing: Theme.small
            rowSpacing: Theme.small

            RowLayout {
                spacing: Theme.small
                Layout.fillWidth: true

                Icon {
                    name: "camera"
                    color: Theme.secondaryText
                    size: Theme.iconSize
                }
                Text {
                    id: nameText

                    objectName: "camera"
                    text: row.camName
                    color: Theme.text
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    Layout.fillWidth: true

                    HoverHandler { id: nameHover }
                    ConsoleToolTip {
                        visible: nameHover.hovered && nameText.truncated
                        text: row.camName
                    }
                }
            }
            ChoiceBox {
                id: streamBox

                objectName: "stream"
                model: Array.from({ length: row.streamCount }, (value, index) => qsTr("Stream %1").arg(index))
                currentIndex: row.streamIndex
                mistaken: row.message !== ""
                Accessible.name: qsTr("Stream of %1").arg(row.camName)
                Accessible.description: row.message
                Layout.preferredWidth: Theme.sized(116)
                onActivated: index => row.edited("streamIndex", index)
            }
            CheckOption {
                objectName: "timeShift"
                text: qsTr("Time shift")
                checked: row.enableTimeShift
                Accessible.name: qsTr("Time shift for %1").arg(row.camName)
                Layout.row: row.wide ? 0 : 1
                Layout.column: row.wide ? 2 : 0
                Layout.leftMargin: row.wide ? Theme.small : 0
                onToggled: row.edited("enableTimeShift", checked)
            }
            CheckOption {
                objectName: "seamless"
                text: qsTr("Seamless")
                checked: row.enableSeamless
                Accessible.name: qsTr("Seamless for %1").arg(row.camName)
                Layout.row: row.wide ? 0 : 1
                Layout.column: row.wide ? 3 : 1
                Layout.columnSpan: row.wide ? 1 : 2
                Layout.leftMargin: row.wide ? Theme.small : 0
                onToggled: row.edited("enableSeamless", checked)
            }
            ActionButton {
                objectName: "removeRow"
                quiet: true
                iconName: "close"
                hint: qsTr("Take %1 out of the group").arg(row.camName)
                Layout.row: 0
                Layout.column: row.wide ? 4 : 2
                onClicked: row.removed()
            }
        }
        FieldMessage {
            objectName: "elsewhere"
            refusal: false
            text: row.streamElsewhere < 0 ? ""
                : qsTr("Another group records stream %1 of this camera with time shift or seamless already.")
                      .arg(row.streamElsewhere)
            Layout.fillWidth: true
        }
        FieldMessage {
            objectName: "rowMessage"
            text: row.message
            Layout.fillWidth: true
        }
    }
}
