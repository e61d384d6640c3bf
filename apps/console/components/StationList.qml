import QtQuick
import RecordingConsole

/// All stations of the site, the worst first, with the names of the columns above them.
ListCard {
    id: card

    readonly property real wholeHeight: fullHeight + head.height ///< with which nothing has to be scrolled
    readonly property StationColumns columns: StationColumns { width: card.list.width }

    /// The operator wants to work on the station of @p row, a row of the list.
    signal chosen(row: int)

    nameRole: "nameRole"
    searchRoles: ["relayPathRole", "addressRole"]
    search.hint: qsTr("Search by name, id or address")
    search.always: true
    orders: [
        { text: qsTr("Worst first"), role: "badnessOrderRole", descending: true },
        { text: qsTr("Name"), role: "nameRole" },
        { text: qsTr("Most days short"), role: "missingOrderRole", descending: true },
        { text: qsTr("Least free space"), role: "freeOrderRole" },
        { text: qsTr("Most alarms"), role: "alarmsOrderRole", descending: true }
    ]
    list.reuseItems: true
    list.Accessible.name: qsTr("Stations")
    list.anchors.topMargin: 1 + search.height + head.height
    delegate: StationRow {
        width: ListView.view?.width ?? 0
        columns: card.columns
        onChosen: card.chosen(index)
    }

    Item {
        id: head

        x: 1
        y: 1 + card.search.height
        width: card.list.width
        height: visible ? Theme.sized(28) : 0
        visible: card.columns.wide && card.total > 0

        Repeater {
            model: [
                { text: qsTr("Days short"), x: card.columns.daysX },
                { text: qsTr("Free"), x: card.columns.freeX },
                { text: qsTr("Alarms"), x: card.columns.alarmsX }
            ]

            Text {
                required property var modelData

                x: modelData.x
                width: card.columns.figureWidth
                height: head.height
                text: modelData.text
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignRight
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
            }
        }
        Rectangle {
            anchors.bottom: parent.bottom
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
    }
}
