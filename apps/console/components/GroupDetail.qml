import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The selected recording group: its name and actions, and below them, scrolling, all that it consists of.
Rectangle {
    id: card

    property var group: null ///< as RecordingGroups.read() gives it
    property bool editable: true
    required property bool wide ///< there is room for a row's marks beside it

    signal editWanted
    signal removeWanted

    onGroupChanged: flickable.returnToBounds()
    radius: Theme.radius
    color: Theme.surface
    border.color: flickable.activeFocus ? Theme.accent : Theme.outline

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 1
        spacing: 0
        visible: card.group !== null

        RowLayout {
            spacing: Theme.small
            Layout.margins: Theme.medium
            Layout.leftMargin: Theme.large

            Text {
                objectName: "groupName"
                text: card.group?.name ?? ""
                color: Theme.text
                font.pixelSize: 18
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
                Accessible.name: text
                Layout.fillWidth: true
            }
            ActionButton {
                objectName: "edit"
                iconName: "edit"
                text: card.wide ? qsTr("Edit") : ""
                hint: qsTr("Change this recording group (Enter)")
                enabled: card.editable
                onClicked: card.editWanted()
            }
            ActionButton {
                objectName: "remove"
                iconName: "remove"
                text: card.wide ? qsTr("Remove") : ""
                hint: qsTr("Remove this recording group (Del)")
                enabled: card.editable
                onClicked: card.removeWanted()
            }
        }
        Rectangle {
            implicitHeight: 1
            color: Theme.outline
            Layout.fillWidth: true
        }
        Flickable {
            id: flickable

            objectName: "detail"
            clip: true
            activeFocusOnTab: true
            contentWidth: width
            contentHeight: content.implicitHeight + 2 * Theme.large
            boundsBehavior: Flickable.StopAtBounds
            Layout.fillWidth: true
            Layout.fillHeight: true
            Accessible.role: Accessible.Grouping
            Accessible.name: card.group?.name ?? ""
            Keys.onUpPressed: contentY = Math.max(0, contentY - 42)
            Keys.onDownPressed: contentY = Math.max(0, Math.min(contentHeight - height, contentY + 42))

            ScrollBar.vertical: ScrollMark { flickable: flickable }
            ColumnLayout {
                id: content

                x: Theme.large
                y: Theme.large
                width: parent.width - 2 * Theme.large
                spacing: Theme.small

                SectionTitle {
                    text: qsTr("Reserved time")
                    Layout.fillWidth: true
                }
                Text {
                    objectName: "reservedTime"
                    text: (card.group?.reservedTime ?? 0) > 0 ? Units.duration(card.group.reservedTime)
                                                              : qsTr("Does not apply")
                    color: (card.group?.reservedTime ?? 0) > 0 ? Theme.text : Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    Layout.fillWidth: true
                    Layout.bottomMargin: Theme.medium
                }
                SectionTitle {
                    text: qsTr("Paths · %1").arg(card.group?.paths.length ?? 0)
                    Layout.fillWidth: true
                }
                Repeater {
                    model: card.group?.paths ?? []
                    delegate: GroupPathRow {
                        wide: card.wide
                        Layout.fillWidth: true
                    }
                }
                Text {
                    objectName: "noPaths"
                    visible: (card.group?.paths.length ?? 0) === 0
                    text: qsTr("No path: this group records nowhere.")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
                SectionTitle {
                    text: qsTr("Cameras · %1").arg(card.group?.members.length ?? 0)
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.medium
                }
                Repeater {
                    model: card.group?.members ?? []
                    delegate: GroupMemberRow {
                        wide: card.wide
                        Layout.fillWidth: true
                    }
                }
                Text {
                    objectName: "noMembers"
                    visible: (card.group?.members.length ?? 0) === 0
                    text: qsTr("No camera: this group records nothing yet.")
                    color: Theme.secondaryText
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
            }
        }
    }
}
