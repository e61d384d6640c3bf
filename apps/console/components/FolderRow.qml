import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One folder, or one volume in the list of the volumes.
ItemDelegate {
    id: row

    required property int index
    required property string nameRole
    property bool isVolume: false
    property string iconName: isVolume ? "volume" : "folder"

    signal opened

    objectName: "folder:" + nameRole
    implicitHeight: Theme.sized(42)
    leftPadding: Theme.large
    rightPadding: Theme.large
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: nameRole
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
        opened();
    }

    contentItem: RowLayout {
        spacing: Theme.medium

        Icon {
            name: row.iconName
            color: Theme.accent
            size: Theme.sized(22)
        }
        Text {
            id: nameText

            objectName: "name"
            text: row.nameRole
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        Icon {
            name: "chevron"
            color: Theme.disabledText
            size: Theme.sized(16)
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
        FocusRing { shown: row.activeFocus }
    }

    ConsoleToolTip {
        visible: row.hovered && nameText.truncated
        text: row.nameRole
    }
}
