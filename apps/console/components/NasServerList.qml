import QtQuick
import RecordingConsole

/// The NAS servers that the station knows, each of them a row; words in their place while there are none.
ListCard {
    id: card

    property string chosen ///< id of the server that is marked
    property bool connected: false
    property bool editable: false
    property bool loading: false
    property bool failed: false ///< the servers could not be listed

    signal opened(id: string, host: string)
    signal editWanted(id: string)
    signal removeWanted(id: string, host: string)

    function edit(row: NasServerRow): void {
        if (row && row.editable)
            editWanted(row.idRole);
    }

    function remove(row: NasServerRow): void {
        if (row && row.editable)
            removeWanted(row.idRole, row.nameRole);
    }

    list.Accessible.name: qsTr("NAS servers")
    list.Keys.onReturnPressed: (list.currentItem as NasServerRow)?.opened()
    list.Keys.onEnterPressed: (list.currentItem as NasServerRow)?.opened()
    list.Keys.onDeletePressed: card.remove(list.currentItem as NasServerRow)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_F2)
            return;
        card.edit(card.list.currentItem as NasServerRow);
        event.accepted = true;
    }
    delegate: NasServerRow {
        id: row

        width: ListView.view?.width ?? 0
        shown: idRole === card.chosen
        editable: card.editable
        onOpened: card.opened(idRole, nameRole)
        onEditWanted: card.edit(row)
        onRemoveWanted: card.remove(row)
    }

    Placeholder {
        objectName: "placeholder"
        anchors.centerIn: parent
        width: Math.min(320, parent.width - 2 * Theme.large)
        visible: card.count === 0
        busy: card.connected && card.loading
        iconName: "network"
        title: !card.connected ? qsTr("No connection to the station")
            : busy ? qsTr("Asking the station for its NAS servers…")
            : card.failed ? qsTr("The NAS servers could not be listed") : qsTr("No NAS servers yet")
        text: busy ? "" : !card.connected ? qsTr("The NAS servers appear as soon as it is there.")
            : card.failed ? "" : qsTr("“Add server” tests the log-on and adds the first one.")
    }
}
