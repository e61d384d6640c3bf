import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// One volume: name, path and marks, and how full it is. The two halves stand side by side where there is room.
ItemDelegate {
    id: row

    required property int index
    required property string nameRole
    required property string rootPathRole
    required property real sizeRole
    required property real availableSizeRole
    required property bool isSystemRole
    required property bool isNASRole

    readonly property real usedSize: Math.max(0, sizeRole - availableSizeRole)
    readonly property real usedShare: sizeRole > 0 ? Math.min(1, usedSize / sizeRole) : 0
    readonly property bool low: sizeRole > 0 && availableSizeRole < sizeRole / 10
    readonly property string usedText: sizeRole > 0 ? qsTr("%1 used").arg(Units.capacity(usedSize))
                                                    : qsTr("Size unknown")
    readonly property string freeText: sizeRole > 0 ? qsTr("%1 free of %2").arg(Units.capacity(availableSizeRole))
                                                          .arg(Units.capacity(sizeRole)) : ""
    readonly property bool named: nameRole !== "" && nameRole !== rootPathRole
    readonly property bool wide: width >= 760

    objectName: "volume:" + rootPathRole
    leftPadding: Theme.large
    rightPadding: Theme.huge
    topPadding: Theme.large
    bottomPadding: Theme.large
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: summary()

    function summary(): string {
        let words = named ? [nameRole, rootPathRole] : [rootPathRole];
        for (const mark of [systemMark, nasMark, lowMark]) {
            if (mark.visible)
                words.push(mark.text);
        }
        words.push(usedText, freeText);
        return words.join(", ");
    }

    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }

    contentItem: GridLayout {
        columns: row.wide ? 3 : 2
        columnSpacing: Theme.large
        rowSpacing: Theme.medium

        Icon {
            name: row.isNASRole ? "network" : "volume"
            color: Theme.secondaryText
            size: 28
            Layout.alignment: Qt.AlignVCenter
        }
        ColumnLayout {
            spacing: Theme.tiny
            Layout.fillWidth: true
            Layout.preferredWidth: 1

            RowLayout {
                spacing: Theme.small

                Text {
                    id: nameText

                    objectName: "name"
                    text: row.named ? row.nameRole : row.rootPathRole
                    color: Theme.text
                    font.pixelSize: Theme.titleSize
                    font.weight: Font.DemiBold
                    textFormat: Text.PlainText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                    Layout.maximumWidth: Math.ceil(implicitWidth)
                }
                Mark {
                    id: systemMark

                    objectName: "systemMark"
                    visible: row.isSystemRole
                    iconName: "system"
                    text: qsTr("System")
                }
                Mark {
                    id: nasMark

                    objectName: "nasMark"
                    visible: row.isNASRole
                    iconName: "network"
                    text: qsTr("NAS")
                }
                Mark {
                    id: lowMark

                    objectName: "lowMark"
                    visible: row.low
                    warning: true
                    iconName: "gauge"
                    text: row.availableSizeRole <= 0 ? qsTr("Full") : qsTr("Nearly full")
                }
                Item { Layout.fillWidth: true }
            }
            Text {
                id: pathText

                objectName: "path"
                visible: row.named
                text: row.rootPathRole
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 6
            Layout.fillWidth: true
            Layout.preferredWidth: row.wide ? 1 : -1
            Layout.columnSpan: row.wide ? 1 : 2

            RowLayout {
                spacing: Theme.medium

                CapacityBar {
                    objectName: "bar"
                    share: row.usedShare
                    low: row.low
                    Layout.fillWidth: true
                }
                Text {
                    id: percentText

                    objectName: "percent"
                    text: row.sizeRole > 0 ? Units.percent(row.usedShare) : "–"
                    color: Theme.text
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    horizontalAlignment: Text.AlignRight
                    Layout.preferredWidth: percentMetrics.advanceWidth
                }
            }
            RowLayout {
                spacing: Theme.medium
                Layout.rightMargin: percentMetrics.advanceWidth + Theme.medium

                Text {
                    objectName: "used"
                    text: row.usedText
                    color: Theme.text
                    font.pixelSize: Theme.captionSize
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                Text {
                    objectName: "free"
                    text: row.freeText
                    color: Theme.secondaryText
                    font.pixelSize: Theme.captionSize
                    textFormat: Text.PlainText
                }
            }
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
    }

    TextMetrics {
        id: percentMetrics

        font: percentText.font
        text: Units.percent(0.001)
    }
    ConsoleToolTip {
        visible: row.hovered && (nameText.truncated || pathText.truncated)
        text: row.named ? row.nameRole + "\n" + row.rootPathRole : row.rootPathRole
    }
}
