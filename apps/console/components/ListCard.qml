import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The ground of a list, and the list's behaviour that every page shares: search and order above it, keys that lead
/// through it. The rows in view may be fewer than the model's and stand in another order; rows are numbered as in view
/// but for reveal().
FocusScope {
    id: card

    property var model: null ///< a QAbstractItemModel
    property alias nameRole: rows.nameRole
    property alias searchRoles: rows.searchRoles
    property alias rows: rows
    property alias search: search
    property alias delegate: list.delegate
    property alias currentIndex: list.currentIndex
    property alias count: list.count ///< of rows in view
    readonly property int total: rows.total ///< of the model's rows
    property alias list: list
    property alias color: ground.color
    readonly property real fullHeight: search.height + list.contentHeight + 2 ///< with which nothing has to be scrolled

    /// What the rows can be sorted by: maps with "text", "role" and "descending"; the first one is in use to begin with.
    property var orders: []
    property int order: 0
    property ConsoleSettings settings: null ///< where the operator's choice of an order is remembered; null: nowhere
    property string settingsKey ///< of this list, "volumes" for instance
    readonly property string orderKey: "order/" + settingsKey

    // The model itself while nothing is searched or sorted: a view follows what moves in it, and no row twice.
    readonly property bool arranged: rows.arranged
    property bool showing: false

    onArrangedChanged: show()
    Component.onCompleted: {
        const remembered = settings?.value(orderKey, "") ?? "";
        const number = orders.findIndex(candidate => orderWord(candidate) === remembered);
        if (remembered !== "" && number >= 0)
            order = number;
    }

    /// An order by what it goes by: its number and its text may change.
    function orderWord(candidate: var): string {
        return (candidate.descending ? "-" : "+") + candidate.role;
    }

    function show(): void {
        showing = true;
        list.model = arranged ? rows : rows.sourceModel;
        showing = false;
        keepCurrent();
    }

    function settle(): void {
        showing = false;
        keepCurrent();
    }

    /// The current row stays the same when rows came into another order.
    function keepCurrent(): void {
        const row = rows.held();
        if (row < 0)
            return;
        list.currentIndex = row;
        list.positionViewAtIndex(row, ListView.Contain);
    }

    /// Makes a row of the model the current one and brings it into view; where the search hides it, all rows are shown
    /// again. False where there is no such row.
    function reveal(row: int): bool {
        const place = rows.reveal(row);
        if (place < 0)
            return false;
        list.currentIndex = place;
        list.positionViewAtIndex(place, ListView.Contain);
        return true;
    }

    function revealFirst(): void {
        list.currentIndex = 0;
        list.positionViewAtBeginning();
    }

    function sortBy(number: int): void {
        showing = true;
        order = number;
        showing = false;
        keepCurrent();
        settings?.setValue(orderKey, orderWord(orders[number]));
    }

    /// The row that a key leads to, which may lie beyond the ends; not a number where it leads nowhere.
    function target(key: int, text: string, modifiers: int): real {
        const rowsInView = Math.max(1, Math.floor(list.height * list.count / Math.max(1, list.contentHeight)) - 1);
        const steps = { [Qt.Key_Home]: -list.count, [Qt.Key_End]: list.count, [Qt.Key_PageUp]: -rowsInView,
                        [Qt.Key_PageDown]: rowsInView };
        if (key in steps)
            return list.currentIndex + steps[key];
        const row = typing.row(text, modifiers, list.currentIndex);
        return row < 0 ? NaN : row;
    }

    Rectangle {
        id: ground

        anchors.fill: parent
        radius: Theme.radius
        color: Theme.surface
        border.color: list.activeFocus ? Theme.accent : Theme.outline
    }
    RowFilter {
        id: rows

        sourceModel: card.model
        orderBy: card.orders[card.order]?.role ?? ""
        descending: card.orders[card.order]?.descending ?? false
        onSourceModelChanged: card.show()
        onLayoutAboutToBeChanged: card.showing = card.arranged
        onLayoutChanged: {
            if (card.arranged)
                settleLater.restart();
        }
    }
    Timer {
        id: settleLater // when the view has its rows again

        interval: 0
        onTriggered: card.settle()
    }
    TypeAhead {
        id: typing

        rows: rows
    }
    ListSearch {
        id: search

        objectName: "search"
        x: 1
        y: 1
        width: parent.width - 2
        height: implicitHeight
        rows: rows
        orders: card.orders
        order: card.order
        onOrderWanted: order => card.sortBy(order)
        onLeaving: {
            list.forceActiveFocus(Qt.ShortcutFocusReason);
            if (list.currentIndex < 0 && list.count > 0)
                list.currentIndex = 0;
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        }
    }
    ListView {
        id: list

        objectName: "list"
        anchors.fill: parent
        anchors.margins: 1
        anchors.topMargin: 1 + search.height
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        highlightResizeDuration: 0
        onCurrentIndexChanged: {
            if (!card.showing)
                rows.hold(currentIndex);
        }
        Accessible.role: Accessible.List
        onActiveFocusChanged: {
            if (!activeFocus && currentItem)
                currentItem.focus = true; // the focus comes back to the row, not to a button in it
        }
        Keys.onPressed: event => {
            if (event.key === Qt.Key_Escape && rows.filtering) {
                search.leave();
                event.accepted = true;
                return;
            }
            const target = card.target(event.key, event.text, event.modifiers);
            if (isNaN(target) || list.count === 0)
                return;
            list.currentIndex = Math.max(0, Math.min(list.count - 1, target));
            list.positionViewAtIndex(list.currentIndex, ListView.Contain);
            event.accepted = true;
        }

        ScrollBar.vertical: ScrollMark { flickable: list }
    }
    Text {
        objectName: "nothingFound"
        anchors.horizontalCenter: parent.horizontalCenter
        y: list.y + Theme.huge
        width: Math.min(Theme.sized(420), parent.width - 2 * Theme.large)
        visible: card.total > 0 && card.count === 0
        text: rows.text === "" ? qsTr("None of %1 is of this kind.").arg(card.total)
            : qsTr("None of %1 contains “%2”. Esc shows all of them.").arg(card.total).arg(rows.text)
        color: Theme.secondaryText
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
