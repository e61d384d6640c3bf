import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A camera of the recording group that is edited.
Rectangle {
    id: row

    required property int index
    required property string camName
    required property int streamIndex
    required property bool enableTimeShift
    required property bool enableSeamless
    required property string message

    required property var cameras ///< of the station, as ConsoleSession has them
    required property int streamElsewhere ///< with time shift or seamless in another group; -1: none
    readonly property var names: {
        const known = cameras.map(camera => camera.camName);
        return camName === "" || known.includes(camName) ? known : known.concat([camName]);
    }
    readonly property int streamCount: Math.max(streamIndex + 1,
                                                cameras.find(camera => camera.camName === camName)?.streams ?? 1)

    required property bool wide

    /// The operator changed one of the row's values.
    signal edited(key: string, value: var)
    signal removed

    function takeFocus(): void {
        cameraBox.forceActiveFocus();
    }

    objectName: "memberRow:" + index
    implicitHeight: content.implicitHeight + 2 * Theme.medium
    radius: Theme.radius
    color: "transparent"
    border.color: message !== "" ? Theme.dangerOutline : Theme.outline

    ColumnLayout {
        id: content

        anchors.fill: parent
        anchors.margins: Theme.medium
        spacing: Theme.small

        GridLayout {
            columns: row.wide ? 5 : 3
            columnSpacing: Theme.small
            rowSpacing: Theme.small

            ChoiceBox {
                id: cameraBox

                objectName: "camera"
                model: row.names
                currentIndex: row.names.indexOf(row.camName)
                emptyText: qsTr("Choose a camera")
                mistaken: row.message !== ""
                Accessible.name: qsTr("Camera %1").arg(row.index + 1)
                Accessible.description: row.message
                Layout.fillWidth: true
                onActivated: index => {
                    row.edited("streamIndex", 0);
                    row.edited("camName", row.names[index]);
                }
            }
            ChoiceBox {
                objectName: "stream"
                model: Array.from({ length: row.streamCount }, (value, index) => qsTr("Stream %1").arg(index))
                currentIndex: row.streamIndex
                Accessible.name: qsTr("Stream of camera %1").arg(row.index + 1)
                Layout.preferredWidth: 116
                onActivated: index => row.edited("streamIndex", index)
            }
            CheckOption {
                objectName: "timeShift"
                text: qsTr("Time shift")
                checked: row.enableTimeShift
                Accessible.name: qsTr("Time shift for camera %1").arg(row.index + 1)
                Layout.row: row.wide ? 0 : 1
                Layout.column: row.wide ? 2 : 0
                Layout.leftMargin: row.wide ? Theme.small : 0
                onToggled: row.edited("enableTimeShift", checked)
            }
            CheckOption {
                objectName: "seamless"
                text: qsTr("Seamless")
                checked: row.enableSeamless
                Accessible.name: qsTr("Seamless for camera %1").arg(row.index + 1)
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
                hint: qsTr("Take this camera out of the group")
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
