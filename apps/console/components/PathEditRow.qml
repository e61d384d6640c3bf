import QtQuick
import QtQuick.Layouts
import RecordingConsole

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

    required property var volumes
    required property bool keptNas ///< the group has this path already, on NAS storage
    readonly property var kinds: (keptNas ? [{ kind: GroupEdit.keptNas, text: qsTr("NAS") }] : []).concat([
        { kind: GroupEdit.local, text: qsTr("Local") }, { kind: GroupEdit.netHost, text: qsTr("NAS host") },
        { kind: GroupEdit.netDomain, text: qsTr("NAS domain") }
    ])

    /// The operator changed one of the row's values.
    signal edited(key: string, value: var)
    signal removed
    signal accepted

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
                volumes: row.volumes
                mistaken: row.message !== "" && !row.reserveWrong
                Accessible.name: qsTr("Path %1").arg(row.index + 1)
                Accessible.description: row.message
                Layout.fillWidth: true
                onChosen: path => row.edited("path", path)
                onAccepted: row.accepted()
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

                    objectName: "reserve"
                    mistaken: row.message !== "" && row.reserveWrong
                    Accessible.description: mistaken ? row.message : ""
                    width: 84
                    horizontalAlignment: TextInput.AlignRight
                    inputMethodHints: Qt.ImhDigitsOnly
                    text: row.reserve
                    Accessible.name: qsTr("Reserved space of path %1 in gigabytes").arg(row.index + 1)
                    onTextEdited: row.edited("reserve", text)
                    onAccepted: row.accepted()
                }
                FieldLabel { text: qsTr("GB") }
            }
            Row {
                spacing: Theme.small

                FieldLabel { text: qsTr("Kind") }
                ChoiceBox {
                    objectName: "kind"
                    width: 132
                    model: row.kinds
                    textRole: "text"
                    currentIndex: row.kinds.findIndex(entry => entry.kind === row.kind)
                    Accessible.name: qsTr("Kind of path %1").arg(row.index + 1)
                    onActivated: index => row.edited("kind", row.kinds[index].kind)
                }
            }
            CheckOption {
                objectName: "recovery"
                text: qsTr("Recovery")
                checked: row.recovery
                Accessible.name: qsTr("Path %1 is a recovery path").arg(row.index + 1)
                onToggled: row.edited("recovery", checked)
            }
        }
        FieldMessage {
            objectName: "rowMessage"
            text: row.message
            Layout.fillWidth: true
        }
    }
}
