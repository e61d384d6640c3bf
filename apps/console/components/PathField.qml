import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// A path on the station: typed, or a volume's taken from the list that opens below.
InputField {
    id: field

    property var volumes: [] ///< maps "path", "name", "available" (KB)

    /// The operator typed or took a path.
    signal chosen(path: string)

    rightPadding: Theme.controlHeight
    placeholderText: qsTr("/path/of/a/folder")
    onTextEdited: chosen(text)
    Keys.onDownPressed: dropDown.open()

    ActionButton {
        objectName: "volumesButton"
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        implicitHeight: Theme.controlHeight - 4
        quiet: true
        iconName: "down"
        hint: qsTr("Take a volume's path")
        focusPolicy: Qt.NoFocus
        enabled: field.enabled && field.volumes.length > 0
        onClicked: dropDown.open()
    }
    DropDown {
        id: dropDown

        objectName: "volumeList"
        y: field.height + 2
        width: field.width
        model: field.volumes
        onOpened: {
            dropDown.list.currentIndex = 0;
            dropDown.list.forceActiveFocus();
        }
        list.keyNavigationEnabled: true
        list.Accessible.name: qsTr("Volumes")
        list.Keys.onReturnPressed: (dropDown.list.currentItem as ItemDelegate)?.clicked()
        list.Keys.onEnterPressed: (dropDown.list.currentItem as ItemDelegate)?.clicked()
        delegate: ItemDelegate {
            id: entry

            required property int index
            required property var modelData

            objectName: "volume:" + modelData.path
            width: ListView.view?.width ?? 0
            implicitHeight: 36
            leftPadding: Theme.medium
            rightPadding: Theme.medium
            Accessible.name: modelData.path
            onClicked: {
                dropDown.close();
                field.chosen(modelData.path);
                field.forceActiveFocus();
            }

            contentItem: RowLayout {
                spacing: Theme.medium

                Text {
                    text: entry.modelData.path
                    color: Theme.text
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                Text {
                    text: qsTr("%1 free").arg(Units.capacity(entry.modelData.available))
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize
                    textFormat: Text.PlainText
                }
            }
            background: Rectangle {
                radius: Theme.radius
                color: entry.ListView.isCurrentItem ? Theme.selected : entry.hovered ? Theme.hover : "transparent"
            }
        }
    }
}
