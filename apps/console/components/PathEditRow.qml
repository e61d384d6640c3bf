import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// A path of the recording group that is edited; see GroupEdit for the keys of its row.
Rectangle {
    id: row

    required property int index
    required property string path
    required property int kind
    required property string reserve
    required property bool recovery
    required property string message
    required property bool reserveWrong ///< the message is about the reserved space, not about the path

    required property var folders ///< that the path could be, see PathField
    required property var room ///< what there is on the path's volume, see PathRoom
    readonly property bool typing: pathField.typing || reserveField.typing ///< the operator has not left the field yet
    required property bool keptNas ///< the group has this path already, on NAS storage
    readonly property var kinds: (keptNas ? [GroupEdit.keptNas] : []).concat([
        PluginRecordingManagement.Local, PluginRecordingManagement.NetHost, PluginRecordingManagement.NetDomain
    ]).map(kind => ({ kind: kind, text: GroupEdit.kindText(kind) }))

    /// The operator changed one of the row's values.
    signal edited(key: string, value: var)
    signal removed
    signal accepted
    signal browseWanted

    /// To the field that the message is about.
    function takeFocus(): void {
        (message !== "" && reserveWrong ? reserveField : pathField).forceActiveFocus();
    }

    objectName: "pathRow:" + index
    implicitHeight: content.implicitHeight + 2 * Theme.medium
    radius: Theme.radius
    color: "transparent"
    border.color: message !== "" ? Theme.dangerOutline : Theme.outline

    ColumnLayout {
        id: content

        anchors.fill: parent
        anchors.margins: Theme.medium
        spacing: Theme.small

        RowLayout {
            spacing: Theme.small

            PathField {
                id: pathField

                objectName: "path"
                text: row.path
                folders: row.folders
                mistaken: row.message !== "" && !row.reserveWrong
                Accessible.name: qsTr("Path %1").arg(row.index + 1)
                Accessible.description: row.message
                Layout.fillWidth: true
                onChosen: path => row.edited("path", path)
                onAccepted: row.accepted()
            }
            ActionButton {
                objectName: "browse"
                quiet: true
                iconName: "folder"
                hint: qsTr("Browse for a folder")
                onClicked: row.browseWanted()
            }
            ActionButton {
                objectName: "removeRow"
                quiet: true
                iconName: "close"
                hint: qsTr("Take this path out of the group")
                onClicked: row.removed()
            }
        }
        Flow {
            spacing: Theme.medium
            Layout.fillWidth: true

            Row {
                spacing: Theme.small

                FieldLabel { text: qsTr("Reserved") }
                InputField {
                    id: reserveField

                    property bool typing: false

                    objectName: "reserve"
                    mistaken: row.message !== "" && row.reserveWrong
                    Accessible.description: mistaken ? row.message : SettingWords.reservedSpace
                    width: Theme.sized(84)
                    horizontalAlignment: TextInput.AlignRight
                    inputMethodHints: Qt.ImhDigitsOnly
                    text: row.reserve
                    Accessible.name: qsTr("Reserved space of path %1 in gigabytes").arg(row.index + 1)
                    onTextEdited: {
                        typing = true;
                        row.edited("reserve", text);
                    }
                    onEditingFinished: typing = false
                    onAccepted: row.accepted()

                    ConsoleToolTip {
                        visible: reserveField.hovered
                        text: SettingWords.reservedSpace
                    }
                }
                FieldLabel { text: qsTr("GB") }
            }
            Row {
                spacing: Theme.small

                FieldLabel { text: qsTr("Kind") }
                ChoiceBox {
                    id: kindBox

                    objectName: "kind"
                    width: Theme.sized(132)
                    model: row.kinds
                    textRole: "text"
                    currentIndex: row.kinds.findIndex(entry => entry.kind === row.kind)
                    Accessible.name: qsTr("Kind of path %1").arg(row.index + 1)
                    Accessible.description: SettingWords.pathKind(row.kind)
                    onActivated: index => row.edited("kind", row.kinds[index].kind)

                    ConsoleToolTip {
                        visible: (kindBox.hovered || kindBox.visualFocus) && !kindBox.popup.visible
                        text: SettingWords.pathKind(row.kind)
                    }
                }
            }
            CheckOption {
                id: recoveryOption

                objectName: "recovery"
                text: qsTr("Recovery")
                checked: row.recovery
                Accessible.name: qsTr("Path %1 is a recovery path").arg(row.index + 1)
                Accessible.description: SettingWords.recovery
                onToggled: row.edited("recovery", checked)

                ConsoleToolTip {
                    visible: recoveryOption.hovered || recoveryOption.visualFocus
                    text: SettingWords.recovery
                }
            }
        }
        PathRoom {
            objectName: "room"
            room: row.room
            Layout.fillWidth: true
        }
        FieldMessage {
            objectName: "rowMessage"
            text: row.message
            Layout.fillWidth: true
        }
    }
}
