import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// One volume: name, path and marks, and how full it is. The two halves stand side by side where there is room.
GridLayout {
    id: figures

    required property string name
    required property string path
    required property real size ///< KB; not positive: unknown
    required property real availableSize ///< KB; negative: unknown
    required property bool isSystem
    required property bool isNas
    property bool gone: false ///< the volume was there before and is not any more
    required property real room ///< the width there is: its own comes too late to choose the layout by
    property bool wide: false
    /// Stands, smaller, below a recording group; the available size is the group's share of the volume's.
    property bool forGroup: false

    readonly property bool known: size > 0 && availableSize >= 0
    readonly property real usedSize: Math.max(0, size - availableSize)
    readonly property real usedShare: known ? Math.min(1, usedSize / size) : 0
    readonly property bool low: known && (forGroup ? availableSize <= 0 : availableSize < size / 10)
    readonly property string usedText: known ? (forGroup ? qsTr("%1 taken") : qsTr("%1 used"))
                                                   .arg(Units.capacity(usedSize))
        : gone ? qsTr("The station cannot reach it") : qsTr("Size unknown")
    readonly property string freeText: !known ? ""
        : (forGroup ? qsTr("%1 of %2 for this group") : qsTr("%1 free of %2")).arg(Units.capacity(availableSize))
              .arg(Units.capacity(size))
    readonly property bool marksBeside: room >= 420
    readonly property bool textsBeside: room >= 320
    readonly property bool named: name !== "" && name !== path
    readonly property bool truncated: nameText.truncated || pathText.truncated
    readonly property string fullName: named ? name + "\n" + path : path

    /// Everything that stands here, as one line.
    function summary(): string {
        let words = named ? [name, path] : [path];
        for (const mark of [systemMark, nasMark, goneMark, lowMark]) {
            if (mark.visible)
                words.push(mark.text);
        }
        words.push(usedText);
        if (freeText !== "")
            words.push(freeText);
        return words.join(", ");
    }

    columns: wide ? 3 : 2
    columnSpacing: Theme.large
    rowSpacing: Theme.medium

    Icon {
        name: figures.isNas ? "network" : "volume"
        color: Theme.secondaryText
        size: figures.forGroup ? 22 : 28
        Layout.leftMargin: (28 - size) / 2
        Layout.rightMargin: (28 - size) / 2
        Layout.alignment: Qt.AlignVCenter
    }
    ColumnLayout {
        spacing: Theme.tiny
        Layout.fillWidth: true
        Layout.preferredWidth: 1

        GridLayout {
            columns: figures.marksBeside ? 2 : 1
            columnSpacing: Theme.small
            rowSpacing: Theme.tiny

            Text {
                id: nameText

                objectName: "name"
                text: figures.named ? figures.name : figures.path
                color: Theme.text
                font.pixelSize: figures.forGroup ? Theme.bodySize : Theme.titleSize
                font.weight: figures.forGroup ? Font.Normal : Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                Layout.fillWidth: true
                Layout.maximumWidth: figures.marksBeside ? Math.ceil(implicitWidth) : -1
            }
            Flow {
                id: marks

                readonly property real naturalWidth: {
                    let sum = 0;
                    for (const mark of [systemMark, nasMark, goneMark, lowMark])
                        sum += mark.visible ? mark.width + spacing : 0;
                    return Math.max(0, sum - spacing);
                }

                visible: figures.isSystem || figures.isNas || figures.gone || figures.low
                spacing: Theme.small
                Layout.fillWidth: true
                Layout.minimumWidth: figures.marksBeside ? naturalWidth : 0

                Mark {
                    id: systemMark

                    objectName: "systemMark"
                    visible: figures.isSystem
                    iconName: "system"
                    text: qsTr("System")
                }
                Mark {
                    id: nasMark

                    objectName: "nasMark"
                    visible: figures.isNas
                    iconName: "network"
                    text: qsTr("NAS")
                }
                Mark {
                    id: goneMark

                    objectName: "goneMark"
                    visible: figures.gone
                    warning: true
                    iconName: "alert"
                    text: qsTr("Not there")
                }
                Mark {
                    id: lowMark

                    objectName: "lowMark"
                    visible: figures.low
                    warning: true
                    iconName: "gauge"
                    text: figures.availableSize <= 0 ? qsTr("Full") : qsTr("Nearly full")
                }
            }
        }
        Text {
            id: pathText

            objectName: "path"
            visible: figures.named
            text: figures.path
            color: Theme.secondaryText
            font.pixelSize: figures.forGroup ? Theme.captionSize : Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
    }
    ColumnLayout {
        spacing: 6
        Layout.fillWidth: true
        Layout.preferredWidth: figures.wide ? 1 : -1
        Layout.columnSpan: figures.wide ? 1 : 2

        RowLayout {
            spacing: Theme.medium

            CapacityBar {
                objectName: "bar"
                share: figures.usedShare
                low: figures.low
                Layout.fillWidth: true
            }
            Text {
                id: percentText

                objectName: "percent"
                text: figures.known ? Units.percent(figures.usedShare) : "–"
                color: Theme.text
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignRight
                Layout.preferredWidth: percentMetrics.advanceWidth
            }
        }
        GridLayout {
            columns: figures.textsBeside ? 2 : 1
            columnSpacing: Theme.medium
            rowSpacing: 2
            Layout.rightMargin: figures.textsBeside ? percentMetrics.advanceWidth + Theme.medium : 0

            Text {
                objectName: "used"
                text: figures.usedText
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                objectName: "free"
                visible: text !== ""
                text: figures.freeText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: !figures.textsBeside
            }
        }
    }
    TextMetrics {
        id: percentMetrics

        font: percentText.font
        text: Units.percent(0.001)
    }
}
