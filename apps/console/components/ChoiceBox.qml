import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// One of several, from a list that opens below.
ComboBox {
    id: box

    property bool mistaken: false ///< what is chosen was refused
    property string emptyText ///< stands there while nothing is chosen

    implicitHeight: Theme.controlHeight
    leftPadding: Theme.medium
    rightPadding: indicator.width + Theme.small
    topPadding: 0
    bottomPadding: 0
    font.pixelSize: Theme.bodySize

    contentItem: Text {
        text: box.currentIndex >= 0 ? box.displayText : box.emptyText
        font: box.font
        color: !box.enabled || box.currentIndex < 0 ? Theme.disabledText : Theme.text
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    indicator: Icon {
        x: box.width - width - Theme.small
        y: (box.height - height) / 2
        name: "down"
        color: box.enabled ? Theme.secondaryText : Theme.disabledText
        size: Theme.sized(16)
    }
    background: Rectangle {
        implicitWidth: Theme.sized(120)
        radius: Theme.radius
        color: box.down ? Theme.pressed : box.hovered && box.enabled ? Theme.hover : Theme.window
        border.width: box.activeFocus ? 2 : 1
        border.color: box.activeFocus ? Theme.accent
                    : box.mistaken ? Theme.danger : box.enabled ? Theme.controlOutline : Theme.outline
    }
    delegate: ItemDelegate {
        id: entry

        required property int index
        required property var modelData

        width: ListView.view?.width ?? 0
        implicitHeight: Theme.sized(34)
        leftPadding: Theme.medium
        rightPadding: Theme.medium
        text: box.textRole !== "" ? modelData[box.textRole] : modelData
        highlighted: box.highlightedIndex === index
        Accessible.name: text

        contentItem: Text {
            text: entry.text
            color: Theme.text
            font.pixelSize: Theme.bodySize
            font.weight: box.currentIndex === entry.index ? Font.DemiBold : Font.Normal
            textFormat: Text.PlainText
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        background: Rectangle {
            radius: Theme.radius
            color: entry.highlighted ? Theme.selected : "transparent"
        }
    }
    popup: DropDown {
        width: box.width
        model: box.delegateModel
        currentIndex: box.highlightedIndex
        y: box.height + 2
    }
}
