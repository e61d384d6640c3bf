import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The selected recording group: its name and actions, and below them, in one list that recycles its rows, all that it
/// consists of: it may have a thousand cameras.
Rectangle {
    id: card

    required property RecordingGroups groups
    property var group: null ///< as RecordingGroups.read() gives it
    property bool editable: true
    required property bool wide ///< there is room for a row's marks beside it

    property string shownId // of the group in view

    signal editWanted
    signal removeWanted

    /// A group begins at its top; one that was asked for again stays where it was scrolled to.
    function show(): void {
        const again = group !== null && group.id === shownId;
        const offset = list.contentY - list.originY;
        shownId = group?.id ?? "";
        list.model = group?.members ?? [];
        list.forceLayout();
        list.scrollTo(list.originY + (again ? offset : 0));
    }

    onGroupChanged: show()
    radius: Theme.radius
    color: Theme.surface
    border.color: Theme.outline

    // No layout: one that hears of several new widths at once may go by an old one.
    Item {
        id: whole

        anchors.fill: parent
        anchors.margins: 1
        visible: card.group !== null

        Text {
            objectName: "groupName"
            x: Theme.large
            anchors.verticalCenter: editButton.verticalCenter
            width: Math.max(0, editButton.x - Theme.small - x)
            text: card.group?.name ?? ""
            color: Theme.text
            font.pixelSize: Theme.dialogTitleSize
            font.weight: Font.DemiBold
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        ActionButton {
            id: editButton

            objectName: "edit"
            x: removeButton.x - Theme.small - width
            y: Theme.medium
            iconName: "edit"
            text: card.wide ? qsTr("Edit") : ""
            hint: qsTr("Change this recording group (Enter)")
            enabled: card.editable
            onClicked: card.editWanted()
        }
        ActionButton {
            id: removeButton

            objectName: "remove"
            x: whole.width - Theme.medium - width
            y: Theme.medium
            iconName: "remove"
            text: card.wide ? qsTr("Remove") : ""
            hint: qsTr("Remove this recording group (Del)")
            enabled: card.editable
            onClicked: card.removeWanted()
        }
        Rectangle {
            id: line

            y: editButton.y + editButton.height + Theme.medium
            width: parent.width
            height: 1
            color: Theme.outline
        }
        ListView {
            id: list

            property bool atTop: true // keeps its beginning in view when the header grows

            function scrollTo(y: real): void {
                contentY = Math.max(originY, Math.min(originY + contentHeight - height, y));
            }

            objectName: "detail"
            clip: true
            activeFocusOnTab: true
            keyNavigationEnabled: false // a row is nothing to choose
            currentIndex: -1
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            y: line.y + line.height
            width: parent.width
            height: Math.max(0, parent.height - y)
            Accessible.role: Accessible.Grouping
            Accessible.name: card.group?.name ?? ""
            onContentYChanged: atTop = contentY <= originY + 1
            onOriginYChanged: {
                if (atTop)
                    contentY = originY;
            }
            Keys.onPressed: event => {
                const page = Math.max(Theme.controlHeight, height - Theme.controlHeight);
                const steps = { [Qt.Key_Up]: -Theme.controlHeight, [Qt.Key_Down]: Theme.controlHeight,
                                [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
                                [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight };
                event.accepted = event.key in steps;
                if (event.accepted)
                    scrollTo(contentY + steps[event.key]);
            }

            ScrollBar.vertical: ScrollMark { flickable: list }
            FocusRing {
                parent: list
                shown: list.activeFocus
            }
            header: Item {
                width: list.width
                implicitHeight: content.implicitHeight + Theme.large

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
                            groups: card.groups
                            groupId: card.group?.id ?? ""
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
            delegate: Item {
                id: place

                required property int index
                required property var modelData

                width: list.width
                implicitHeight: row.implicitHeight + Theme.small

                GroupMemberRow {
                    id: row

                    x: Theme.large
                    y: Theme.small
                    width: place.width - 2 * Theme.large
                    height: implicitHeight
                    modelData: place.modelData
                    index: place.index
                    wide: card.wide
                }
            }
            footer: Item { implicitHeight: Theme.large }
        }
    }
}
