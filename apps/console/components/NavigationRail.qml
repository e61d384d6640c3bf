import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The pages, one below the other. Narrow, it shows drawings alone; tool tips then say the titles.
Rectangle {
    id: rail

    /// Maps with "title" and "iconName".
    required property var pages
    required property int currentIndex
    property bool narrow: false

    signal chosen(index: int)

    implicitWidth: narrow ? Theme.iconSize + 40 : Theme.sized(228)
    color: Theme.rail
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Pages")

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.outline
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.small
        anchors.rightMargin: Theme.small + 1
        spacing: Theme.tiny

        Text {
            visible: !rail.narrow
            text: qsTr("Recording")
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            font.weight: Font.DemiBold
            font.capitalization: Font.AllUppercase
            font.letterSpacing: 0.8
            textFormat: Text.PlainText
            Layout.leftMargin: Theme.medium
            Layout.topMargin: Theme.medium
            Layout.bottomMargin: Theme.small
        }

        Repeater {
            id: tabs

            model: rail.pages

            AbstractButton {
                id: tab

                required property int index
                required property var modelData
                readonly property bool current: index === rail.currentIndex
                readonly property color foreground: current ? Theme.accent : Theme.text

                objectName: "tab:" + modelData.key
                text: modelData.title
                implicitHeight: Theme.sized(42)
                leftPadding: Theme.medium
                rightPadding: Theme.medium
                font.pixelSize: Theme.bodySize
                font.weight: current ? Font.DemiBold : Font.Normal
                Layout.fillWidth: true
                Accessible.role: Accessible.PageTab
                Accessible.name: text
                Accessible.selected: current
                onClicked: rail.chosen(index)
                Keys.onReturnPressed: tab.clicked()
                Keys.onEnterPressed: tab.clicked()
                Keys.onDownPressed: (tabs.itemAt(index + 1) ?? tab).forceActiveFocus(Qt.TabFocusReason)
                Keys.onUpPressed: (tabs.itemAt(index - 1) ?? tab).forceActiveFocus(Qt.BacktabFocusReason)

                contentItem: RowLayout {
                    spacing: Theme.medium

                    Icon {
                        name: tab.modelData.iconName
                        color: tab.foreground
                        size: Theme.iconSize
                    }
                    Text {
                        visible: !rail.narrow
                        text: tab.text
                        font: tab.font
                        color: tab.current ? Theme.text : tab.foreground
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                }
                background: Rectangle {
                    radius: Theme.radius
                    color: tab.current ? Theme.selected : tab.hovered ? Theme.hover : "transparent"

                    Rectangle {
                        visible: tab.current
                        anchors.verticalCenter: parent.verticalCenter
                        width: 3
                        height: parent.height - 2 * Theme.small
                        radius: 2
                        color: Theme.accent
                    }
                    FocusRing { shown: tab.activeFocus && tab.focusReason !== Qt.MouseFocusReason }
                }

                ConsoleToolTip {
                    visible: tab.hovered && rail.narrow
                    text: tab.text
                }
            }
        }
        Item { Layout.fillHeight: true }
    }
}
