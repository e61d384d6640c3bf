import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The station with its recording groups, in the natural order of their names, and a search above them. What is selected
/// is known by its id, so that it outlasts a refresh and a search that hides it; the empty id is the station.
Rectangle {
    id: card

    required property RecordingGroups groups
    property string selectedId
    property ConsoleSettings settings: null ///< where it is remembered whether the operator folded it; null: nowhere
    readonly property string foldedKey: "folded/groups"
    property GroupChoice choice: null ///< what is chosen beside the selected group; null: nothing can be
    property bool folded: false ///< by the operator
    property bool seeking: false // what is selected is to come into view when the rows have their places
    property alias tree: tree
    property alias rows: rows
    property alias search: search
    property alias typed: typing.typed
    readonly property real contentHeight: tree.contentHeight + search.height
    readonly property bool settled: tree.rows === (folded ? Math.min(1, rows.rowCount()) : rows.rowCount() + rows.count)

    /// The operator went to a row.
    signal chosen(groupId: string)

    /// Shows the groups below their station.
    function unfold(): void {
        folded = false;
        settings?.setValue(foldedKey, false);
        layOut();
    }

    function fold(): void {
        folded = true;
        settings?.setValue(foldedKey, true);
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

    function station(): var {
        return rows.index(0, 0);
    }

    /// Where a group stands in view below its station; -1 where there is none of this id, or where the search hides it.
    function placeOf(groupId: string): int {
        return groupId === "" || rows.count === 0 ? -1
            : ModelLookup.rowOf(rows, "recordingGroupIDRole", groupId, station());
    }

    /// The id of the group that stands there; empty where there is none.
    function idAt(place: int): string {
        return place < 0 || place >= rows.count ? ""
            : ModelLookup.value(rows.index(place, 0, station()), "recordingGroupIDRole") ?? "";
    }

    /// The ids of the groups that the search leaves, in their order.
    function shownIds(): var {
        return Array.from({ length: rows.count }, (value, place) => idAt(place));
    }

    /// Goes @p step rows on and chooses the groups on the way as well.
    function chooseTo(step: int): void {
        const shown = shownIds();
        const from = placeOf(selectedId);
        const to = Math.max(0, Math.min(shown.length - 1, Math.max(0, from) + step));
        if (shown.length === 0)
            return;
        if (!shown.includes(choice.anchor) || !choice.has(selectedId))
            choice.anchor = shown[Math.max(0, from)];
        choice.extendTo(shown[to], shown);
        goTo(to + 1);
    }

    function selectedRow(): int {
        return placeOf(selectedId) + 1;
    }

    function goTo(row: int): void {
        const target = Math.max(0, Math.min(tree.rows - 1, row));
        chosen(idAt(target - 1));
        bringIntoView();
    }

    /// Leads to a group that somebody else names: where the search hides it, all groups are shown again.
    function reveal(groupId: string): void {
        if (placeOf(groupId) < 0)
            rows.clear();
        folded = false;
        chosen(groupId);
        seeking = true;
        layOutLater.restart();
    }

    function bringIntoView(): void {
        layOut();
        const row = selectedRow();
        if (tree.rows > row && tree.height > 0)
            tree.positionViewAtRow(row, TableView.Contain);
    }

    function handleKey(event: var): bool {
        const page = Math.max(1, Math.floor(tree.height / Theme.sized(42)) - 1);
        const steps = { [Qt.Key_Up]: -1, [Qt.Key_Down]: 1, [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page,
                        [Qt.Key_Home]: -tree.rows, [Qt.Key_End]: tree.rows };
        if (event.key === Qt.Key_Escape && rows.filtering)
            search.leave();
        else if (tree.rows === 0)
            return false;
        else if (event.key in steps)
            goTo(selectedRow() + steps[event.key]);
        else if (event.key === Qt.Key_Left && selectedId !== "")
            goTo(0);
        else if (event.key === Qt.Key_Left)
            fold();
        else if (event.key === Qt.Key_Right && !tree.isExpanded(0))
            unfold();
        else if (event.key === Qt.Key_Right && selectedId === "")
            goTo(1);
        else
            return goToName(event.text, event.modifiers);
        return true;
    }

    /// To the next group whose name begins with what was typed.
    function goToName(text: string, modifiers: int): bool {
        const place = typing.row(text, modifiers, placeOf(selectedId));
        if (place < 0)
            return false;
        unfold();
        goTo(place + 1);
        return true;
    }

    Component.onCompleted: folded = settings?.value(foldedKey, false) ?? false
    radius: Theme.radius
    color: Theme.surface
    border.color: tree.activeFocus ? Theme.accent : Theme.outline

    RowFilter {
        id: rows

        sourceModel: card.groups.tree
        branched: true
        nameRole: "nameRole"
        orderBy: "nameRole"
        onTextChanged: card.seeking = true
    }
    TypeAhead {
        id: typing

        rows: rows
    }
    GroupStandings {
        id: standings

        groups: card.groups
        watching: card.visible
    }
    ListSearch {
        id: search

        objectName: "search"
        x: 1
        y: 1
        width: parent.width - 2
        height: implicitHeight
        rows: rows
        hint: qsTr("Search groups")
        onLeaving: {
            tree.forceActiveFocus(Qt.ShortcutFocusReason);
            card.bringIntoView();
        }
    }
    TreeView {
        id: tree

        objectName: "tree"
        anchors.fill: parent
        anchors.margins: 1
        anchors.topMargin: 1 + search.height
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false // of cells; here a row is a group
        pointerNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        columnWidthProvider: () => Math.max(1, tree.width)
        model: rows
        Accessible.role: Accessible.Tree
        Accessible.name: qsTr("Recording groups by station")
        Keys.onPressed: event => {
            event.accepted = card.handleKey(event);
        }
        onWidthChanged: forceLayout()
        onRowsChanged: layOutLater.restart()

        delegate: GroupTreeRow {
            selectedId: card.selectedId
            figures: isGroup ? (standings.revision, standings.of(groupId)) : ({})
            onChosen: {
                treeView.forceActiveFocus(Qt.MouseFocusReason);
                card.chosen(groupId);
            }
            onToggleRequested: card.toggle()
            choosable: card.choice !== null
            chosenToo: card.choice?.chosen[groupId] ?? false
            onChoiceToggled: {
                treeView.forceActiveFocus(Qt.MouseFocusReason);
                card.choice.toggle(groupId);
                card.chosen(groupId);
            }
            onChoiceExtended: {
                treeView.forceActiveFocus(Qt.MouseFocusReason);
                if (card.choice.anchor === "")
                    card.choice.anchor = card.selectedId;
                card.choice.extendTo(groupId, card.shownIds());
                card.chosen(groupId);
            }
        }
        ScrollBar.vertical: ScrollMark { flickable: tree }
    }
    Text {
        objectName: "nothingFound"
        x: Theme.large
        y: tree.y + Theme.huge + Theme.sized(42)
        width: parent.width - 2 * Theme.large
        visible: rows.total > 0 && rows.count === 0 && rows.filtering
        text: qsTr("None of %1 groups contains “%2”. Esc shows all of them.").arg(rows.total).arg(rows.text)
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    Timer {
        id: layOutLater // not while the view is at work on its rows

        interval: 0
        onTriggered: {
            card.layOut();
            if (!card.seeking)
                return;
            card.seeking = false;
            tree.forceLayout();
            card.bringIntoView();
        }
    }
}
