import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One NAS server: host, who logs on, and what can be done with it.
ItemDelegate {
    id: row

    required property int index
    required property string idRole
    required property string nameRole
    required property string logonDomainRole
    required property string userNameRole
    property bool shown: false ///< its shares stand in the browser
    property bool editable: true

    readonly property bool current: ListView.isCurrentItem
    readonly property string account: logonDomainRole === "" || logonDomainRole === NasServers.ownDomain
        ? userNameRole : qsTr("%1 in %2").arg(userNameRole).arg(logonDomainRole)

    signal opened
    signal editWanted
    signal removeWanted

    objectName: "nas:" + idRole
    implicitHeight: Theme.sized(60)
    leftPadding: Theme.large
    rightPadding: Theme.small
    highlighted: current && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1, as %2").arg(nameRole).arg(account)
    Accessible.selected: shown
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
        opened();
    }

    contentItem: RowLayout {
        spacing: Theme.medium

        Icon {
            name: "network"
            color: row.shown ? Theme.accent : Theme.secondaryText
            size: Theme.sized(24)
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true

            Text {
                id: hostText

                objectName: "host"
                text: row.nameRole
                color: Theme.text
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                id: accountText

                objectName: "account"
                text: row.account
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        RowLayout {
            spacing: 0

            ActionButton {
                objectName: "edit"
                quiet: true
                implicitHeight: Theme.sized(32)
                iconName: "edit"
                hint: qsTr("Change %1 (F2)").arg(row.nameRole)
                enabled: row.editable
                activeFocusOnTab: row.current || activeFocus
                onClicked: row.editWanted()
            }
            ActionButton {
                objectName: "remove"
                quiet: true
                implicitHeight: Theme.sized(32)
                iconName: "remove"
                hint: qsTr("Remove %1 (Del)").arg(row.nameRole)
                enabled: row.editable
                activeFocusOnTab: row.current || activeFocus
                onClicked: row.removeWanted()
            }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted || row.shown ? Theme.selected : row.down ? Theme.pressed
             : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
        Rectangle {
            visible: row.shown
            anchors.verticalCenter: parent.verticalCenter
            width: 3
            height: parent.height - 2 * Theme.medium
            radius: 2
            color: Theme.accent
        }
        FocusRing { shown: row.activeFocus }
    }

    ConsoleToolTip {
        visible: row.hovered && (hostText.truncated || accountText.truncated)
        text: row.nameRole + "\n" + row.account
    }
}
