import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// A path on the station: typed, or one taken from the list that opens below.
InputField {
    id: field

    property var folders: [] ///< maps "path", "free" (bytes), "isSystem"
    property bool typing: false ///< the operator has begun another path and not left the field

    /// The operator typed or took a path.
    signal chosen(path: string)

    function take(path: string): void {
        dropDown.close();
        typing = false;
        forceActiveFocus();
        chosen(path); // the list may change with it
    }

    rightPadding: Theme.controlHeight
    placeholderText: qsTr("/path/of/a/folder")
    onTextEdited: {
        typing = true;
        chosen(text);
    }
    onEditingFinished: typing = false
    Keys.onDownPressed: {
        if (folders.length > 0)
            dropDown.open();
    }

    ActionButton {
        objectName: "foldersButton"
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        implicitHeight: Theme.controlHeight - 4
        quiet: true
        iconName: "down"
        hint: field.folders.length > 0 ? qsTr("Take a folder that the station can record to")
                                       : qsTr("The station has no folder to propose")
        focusPolicy: Qt.NoFocus
        enabled: field.enabled && field.folders.length > 0
        onClicked: dropDown.open()
    }
    DropDown {
        id: dropDown

        objectName: "folderList"
        y: field.height + 2
        width: field.width
        model: field.folders
        onOpened: {
            dropDown.list.currentIndex = 0;
            dropDown.list.forceActiveFocus();
        }
        list.keyNavigationEnabled: true
        list.Accessible.name: qsTr("Folders")
        list.Keys.onReturnPressed: (dropDown.list.currentItem as ItemDelegate)?.clicked()
        list.Keys.onEnterPressed: (dropDown.list.currentItem as ItemDelegate)?.clicked()
        delegate: ItemDelegate {
            id: entry

            required property int index
            required property var modelData
            readonly property string freeText: qsTr("%1 free").arg(Units.bytes(modelData.free))
            readonly property string words: modelData.isSystem ? qsTr("%1 · system volume").arg(freeText) : freeText

            objectName: "folder:" + modelData.path
            width: ListView.view?.width ?? 0
            implicitHeight: Theme.controlHeight
            leftPadding: Theme.medium
            rightPadding: Theme.medium
            Accessible.name: modelData.path + ", " + words
            onClicked: field.take(modelData.path)

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
                    text: entry.words
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
