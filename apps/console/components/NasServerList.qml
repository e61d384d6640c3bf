import QtQuick
import RecordingConsole

/// The NAS servers that the station knows, each of them a row; words in their place while there are none.
ListCard {
    id: card

    required property ConsolePage owner
    property string chosen ///< id of the server that is marked
    property bool editable: false

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

    nameRole: "nameRole"
    searchRoles: ["userNameRole"]
    orders: [{ text: qsTr("Name"), role: "nameRole" }]
    search.hint: qsTr("Search servers")
    list.Accessible.name: qsTr("NAS servers")
    delegate: NasServerRow {
        id: row

        width: ListView.view?.width ?? 0
        shown: idRole === card.chosen
        editable: card.editable
        onOpened: card.opened(idRole, nameRole)
        onEditWanted: card.edit(row)
        onRemoveWanted: card.remove(row)
    }

    PagePlaceholder {
        objectName: "placeholder"
        owner: card.owner
        visible: card.total === 0
        askingTitle: qsTr("Asking the station for its NAS servers…")
        failedTitle: qsTr("The NAS servers could not be listed")
        emptyTitle: qsTr("No NAS servers yet")
        emptyText: qsTr("“Add server” tests the log-on and adds the first one.")
        awaitedText: qsTr("The NAS servers appear as soon as it is there.")
    }
}
