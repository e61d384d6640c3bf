import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// Asks which recording group is to record to a folder: a new one, or one that there is. The editor follows.
ConsoleDialog {
    id: dialog

    property string path

    /// @p groupId is empty for a new group.
    signal chosen(path: string, groupId: string)

    function ask(folder: string, groups: RecordingGroups): void {
        path = folder;
        model.clear();
        model.append({ groupId: "", name: qsTr("New recording group"), isNew: true, has: false });
        for (const group of groups.readAll(groups.ids()))
            model.append({ groupId: group.id, name: group.name, isNew: false,
                           has: group.paths.some(path => path.path === folder) });
        rows.clear();
        open();
        list.currentIndex = 0;
        list.positionViewAtBeginning();
        list.forceActiveFocus(Qt.TabFocusReason);
    }

    function accept(): void {
        const row = rows.sourceRow(list.currentIndex);
        if (row < 0)
            return;
        const groupId = model.get(row).groupId;
        const folder = path;
        close();
        chosen(folder, groupId);
    }

    objectName: "recordHereDialog"
    title: qsTr("Record here")
    width: Math.min(Theme.sized(480), parent.width - 2 * Theme.large)
    height: Math.min(Theme.sized(520), room)
    bottomPadding: Theme.medium

    contentItem: ColumnLayout {
        spacing: Theme.small

        Text {
            objectName: "recordPath"
            text: dialog.path
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: Font.DemiBold
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        Text {
            text: qsTr("Which recording group is to record to this folder?")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        Rectangle {
            radius: Theme.radius
            color: Theme.surface
            border.color: list.activeFocus ? Theme.accent : Theme.outline
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListModel {
                id: model

                ListElement {
                    groupId: ""
                    name: ""
                    isNew: true
                    has: false
                }
            }
            RowFilter {
                id: rows

                sourceModel: model
                nameRole: "name"
                orderBy: "name"
                leadBy: "isNew"
                onTextChanged: firstLater.restart()
            }
            Timer {
                id: firstLater // the rows follow the text

                interval: 0
                onTriggered: list.currentIndex = 0
            }
            TypeAhead {
                id: typing

                rows: rows
            }
            ListSearch {
                id: search

                objectName: "search"
                x: 1
                y: 1
                width: parent.width - 2
                height: implicitHeight
                rows: rows
                keyed: dialog.opened
                hint: qsTr("Search groups")
                onLeaving: list.forceActiveFocus(Qt.ShortcutFocusReason)
            }
            ListView {
                id: list

                objectName: "groupChoices"
                anchors.fill: parent
                anchors.margins: 1
                anchors.topMargin: 1 + search.height
                clip: true
                activeFocusOnTab: true
                keyNavigationEnabled: true
                reuseItems: true
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: 0
                highlightResizeDuration: 0
                model: rows
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Recording groups")
                Keys.onPressed: event => {
                    const row = typing.row(event.text, event.modifiers, currentIndex);
                    if (event.key === Qt.Key_Home)
                        currentIndex = 0;
                    else if (event.key === Qt.Key_End)
                        currentIndex = count - 1;
                    else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                        dialog.accept();
                    else if (row >= 0)
                        currentIndex = row;
                    else
                        return;
                    event.accepted = true;
                }
                delegate: ItemDelegate {
                    id: entry

                    required property int index
                    required property string name
                    required property bool isNew
                    required property bool has

                    objectName: "record:" + name
                    width: ListView.view?.width ?? 0
                    implicitHeight: Theme.sized(42)
                    leftPadding: Theme.large
                    rightPadding: Theme.large
                    highlighted: ListView.isCurrentItem
                    Accessible.role: Accessible.ListItem
                    Accessible.name: has ? qsTr("%1, has this path already").arg(name) : name
                    onClicked: {
                        list.currentIndex = index;
                        list.forceActiveFocus(Qt.MouseFocusReason);
                    }
                    onDoubleClicked: dialog.accept()

                    contentItem: RowLayout {
                        spacing: Theme.medium

                        Icon {
                            name: entry.isNew ? "add" : "group"
                            color: Theme.accent
                            size: Theme.iconSize
                        }
                        Text {
                            text: entry.name
                            color: Theme.text
                            font.pixelSize: Theme.bodySize
                            font.weight: entry.isNew ? Font.DemiBold : Font.Normal
                            textFormat: Text.PlainText
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                        Text {
                            visible: entry.has
                            text: qsTr("Has this path")
                            color: Theme.secondaryText
                            font.pixelSize: Theme.captionSize
                            textFormat: Text.PlainText
                        }
                    }
                    background: Rectangle {
                        radius: Theme.radius
                        color: entry.highlighted ? Theme.selected : entry.down ? Theme.pressed
                             : entry.hovered ? Theme.hover : "transparent"
                        border.width: entry.highlighted && list.activeFocus ? 2 : 0
                        border.color: Theme.accent
                    }
                }

                ScrollBar.vertical: ScrollMark { flickable: list }
            }
        }
    }

    footer: DialogButtons {
        text: qsTr("Go on")
        acceptable: list.currentIndex >= 0 && list.count > 0
        onAccepted: dialog.accept()
        onRejected: dialog.close()
    }
}
