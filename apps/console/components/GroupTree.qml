import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The station with its recording groups. What is selected is known by its id, so that it outlasts a refresh; the empty
/// id is the station.
Rectangle {
    id: card

    required property RecordingGroups groups
    property string selectedId
    property bool folded: false ///< by the operator
    property alias tree: tree
    readonly property real contentHeight: tree.contentHeight

    /// The operator went to a row.
    signal chosen(groupId: string)
    /// The operator wants to change, or to remove, the selected group.
    signal editWanted
    signal removeWanted

    /// Shows the groups below their station.
    function unfold(): void {
        folded = false;
        layOut();
    }

    function fold(): void {
        folded = true;
        tree.collapse(0);
        chosen("");
    }

    /// The view does not unfold a station by itself that had no groups before.
    function layOut(): void {
        if (!folded && tree.rows > 0 && !tree.isExpanded(0))
            tree.expand(0);
    }

    function toggle(): void {
        if (tree.isExpanded(0))
            fold();
        else
            unfold();
    }

    function selectedRow(): int {
        const index = groups.indexOf(selectedId);
        return index.valid ? index.row + 1 : 0;
    }

    function goTo(row: int): void {
        const target = Math.max(0, Math.min(tree.rows - 1, row));
        chosen(groups.idAt(target - 1));
        bringIntoView();
    }

    function bringIntoView(): void {
        layOut();
        const row = selectedRow();
        if (tree.rows > row && tree.height > 0)
            tree.positionViewAtRow(row, TableView.Contain);
    }

    function handleKey(key: int): bool {
        const page = Math.max(1, Math.floor(tree.height / 42) - 1);
        const steps = { [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
                        [Qt.Key_Home]: -tree.rows, [Qt.Key_End]: tree.rows };
        if (tree.rows === 0)
            return false;
        if (key in steps)
            goTo(selectedRow() + steps[key]);
        else if (key === Qt.Key_Left && selectedId !== "")
            goTo(0);
        else if (key === Qt.Key_Left)
            fold();
        else if (key === Qt.Key_Right && !tree.isExpanded(0))
            unfold();
        else if (key === Qt.Key_Right && selectedId === "")
            goTo(1);
        else if (key === Qt.Key_Return || key === Qt.Key_Enter)
            editWanted();
        else if (key === Qt.Key_Delete)
            removeWanted();
        else
            return false;
        return true;
    }

    radius: Theme.radius
    color: Theme.surface
    border.color: tree.activeFocus ? Theme.accent : Theme.outline

    TreeView {
        id: tree

        objectName: "tree"
        anchors.fill: parent
        anchors.margins: 1
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false // of cells; here a row is a group
        pointerNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        columnWidthProvider: () => Math.max(1, tree.width)
        model: card.groups.tree
        Accessible.role: Accessible.Tree
        Accessible.name: qsTr("Recording groups by station")
        Keys.onPressed: event => {
            event.accepted = card.handleKey(event.key);
        }
        onWidthChanged: forceLayout()
        onRowsChanged: layOutLater.restart()

        delegate: GroupTreeRow {
            selectedId: card.selectedId
            onChosen: {
                treeView.forceActiveFocus(Qt.MouseFocusReason);
                card.chosen(groupId);
            }
            onToggleRequested: card.toggle()
        }
        ScrollBar.vertical: ScrollMark { flickable: tree }
    }
    Timer {
        id: layOutLater // not while the view is at work on its rows

        interval: 0
        onTriggered: card.layOut()
    }
}
