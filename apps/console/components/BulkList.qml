import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// Several recording groups with what is changed in each of them and, once that was begun, what came of it.
FocusScope {
    id: card

    required property BulkSender sender
    property bool outcomes: false ///< what came of it is shown, not only what is to be changed
    property alias list: list

    function stateText(state: string): string {
        switch (state) {
        case sender.sending:
            return qsTr("Sending…");
        case sender.done:
            return qsTr("Done");
        case sender.refused:
            return qsTr("Refused");
        case sender.unsent:
            return qsTr("Not sent");
        case sender.unknown:
            return qsTr("Unknown");
        case sender.changed:
            return qsTr("Changed meanwhile");
        default:
            return qsTr("Waiting");
        }
    }


    implicitHeight: list.contentHeight + 2

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.surface
        border.color: list.activeFocus ? Theme.accent : Theme.outline
    }
    ListView {
        id: list

        objectName: "bulkList"
        anchors.fill: parent
        anchors.margins: 1
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        highlightResizeDuration: 0
        model: card.sender.rows
        Accessible.role: Accessible.List
        Accessible.name: card.outcomes ? qsTr("Recording groups and what came of their changes")
                                       : qsTr("Recording groups and their changes")
        Keys.onPressed: event => {
            const rowsInView = Math.max(1, Math.floor(list.height * list.count / Math.max(1, list.contentHeight)) - 1);
            const steps = { [Qt.Key_Home]: -list.count, [Qt.Key_End]: list.count, [Qt.Key_PageUp]: -rowsInView,
                            [Qt.Key_PageDown]: rowsInView };
            if (!(event.key in steps) || list.count === 0)
                return;
            list.currentIndex = Math.max(0, Math.min(list.count - 1, list.currentIndex + steps[event.key]));
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
            event.accepted = true;
        }

        ScrollBar.vertical: ScrollMark { flickable: list }

        delegate: Item {
            id: row

            required property int index
            required property string name
            required property string change
            required property string state
            required property string reason
            readonly property bool failed: card.sender.isFailed(state)
            readonly property bool current: ListView.isCurrentItem && list.activeFocus
            readonly property string stateWords: card.outcomes ? card.stateText(state) : ""
            readonly property string details: !card.outcomes ? change : reason

            objectName: "bulkRow:" + name
            width: ListView.view?.width ?? 0
            implicitHeight: content.implicitHeight + 2 * Theme.small
            Accessible.role: Accessible.ListItem
            Accessible.name: name + (stateWords === "" ? "" : ", " + stateWords) + (details === "" ? "" : ", " + details)

            Rectangle {
                anchors.fill: parent
                anchors.margins: 2
                radius: Theme.radius
                color: row.current ? Theme.selected : "transparent"
                border.width: row.current ? 2 : 0
                border.color: Theme.accent
            }
            Rectangle {
                visible: row.index > 0
                x: Theme.medium
                width: parent.width - 2 * Theme.medium
                height: 1
                color: Theme.outline
            }
            TapHandler {
                onTapped: {
                    list.currentIndex = row.index;
                    list.forceActiveFocus(Qt.MouseFocusReason);
                }
            }
            Column {
                id: content

                x: Theme.medium
                y: Theme.small
                width: parent.width - 2 * Theme.medium
                spacing: 2

                Item {
                    width: parent.width
                    height: Math.max(nameText.implicitHeight, mark.visible ? mark.height : 0)

                    Text {
                        id: nameText

                        objectName: "name"
                        anchors.verticalCenter: parent.verticalCenter
                        width: parent.width - (mark.visible ? mark.width + Theme.small : 0)
                        text: row.name
                        color: Theme.text
                        font.pixelSize: Theme.bodySize
                        font.weight: Font.DemiBold
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        Accessible.ignored: true
                    }
                    Mark {
                        id: mark

                        objectName: "state"
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        width: implicitWidth
                        height: implicitHeight
                        visible: text !== ""
                        text: row.stateWords
                        iconName: row.failed ? "alert" : row.state === card.sender.done ? "check" : "clock"
                        danger: row.state === card.sender.refused
                        warning: row.failed && !danger
                    }
                }
                Text {
                    objectName: "details"
                    width: parent.width
                    visible: text !== ""
                    text: row.details
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }
        }
    }
}
