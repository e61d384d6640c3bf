import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// What a list is searched and sorted with: Ctrl+F leads into it, Esc shows all rows again and leads back. It stands
/// above long lists, and above short ones once it is asked for.
Item {
    id: bar

    required property RowFilter rows
    property string hint: qsTr("Search")
    property var orders: [] ///< what the rows can be sorted by: maps with "text", "role" and "descending"
    property int order: 0 ///< the one in use
    property bool keyed: true ///< Ctrl+F means this list, when several are in view
    property bool always: false ///< it stands above short lists, too
    property bool inDialog: false ///< Esc in the empty field is left to what is around it
    property bool opened: false ///< by the operator
    readonly property bool shown: always || opened || rows.filtering || rows.total >= 10
    readonly property bool compact: width < Theme.sized(300) ///< no room for the order beside the field

    /// What its keys do, in the order of the help. Esc counts where the focus is, and is no shortcut.
    readonly property list<ConsoleKey> keys: [
        ConsoleKey {
            sequence: StandardKey.Find
            armed: bar.keyed && bar.visible
            text: qsTr("Search the list")
            onActivated: bar.find()
        },
        ConsoleKey {
            sequence: "Esc"
            allowed: false
            text: qsTr("In the search: show all rows again, and go back to the list")
        }
    ]

    /// The operator goes back to the list.
    signal leaving
    /// The rows are to be sorted by another one of the orders.
    signal orderWanted(order: int)

    function find(): void {
        opened = true;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    function leave(): void {
        rows.clear();
        opened = false;
        leaving();
    }

    implicitHeight: shown ? line.implicitHeight + 2 * Theme.small : 0

    Connections {
        target: bar.rows

        function onTextChanged(): void {
            if (field.text !== bar.rows.text)
                field.text = bar.rows.text;
        }
    }

    RowLayout {
        id: line

        visible: bar.shown
        x: Theme.small
        y: Theme.small
        width: parent.width - 2 * Theme.small
        spacing: Theme.small

        InputField {
            id: field

            objectName: "searchField"
            placeholderText: bar.hint
            leftPadding: Theme.medium + Theme.iconSize + Theme.small
            rightPadding: countText.visible ? countText.width + 2 * Theme.medium : Theme.medium
            Accessible.name: bar.hint
            Accessible.description: countText.text
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            onTextEdited: bar.rows.text = text
            onAccepted: bar.leaving()
            Keys.onDownPressed: bar.leaving()
            Keys.onEscapePressed: event => {
                event.accepted = !bar.inDialog || bar.rows.text !== "";
                if (event.accepted)
                    bar.leave();
            }

            Icon {
                x: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                name: "search"
                color: Theme.secondaryText
                size: 18
            }
            Text {
                id: countText

                objectName: "searchCount"
                anchors.right: parent.right
                anchors.rightMargin: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                visible: bar.rows.filtering && field.width >= Theme.sized(160)
                text: bar.rows.filtering ? qsTr("%1 of %2").arg(bar.rows.count).arg(bar.rows.total) : ""
                color: bar.rows.count === 0 ? Theme.warning : Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
            }
        }
        ChoiceBox {
            objectName: "order"
            visible: bar.orders.length > 1 && !bar.compact
            model: bar.orders
            textRole: "text"
            currentIndex: bar.order
            Accessible.name: qsTr("Sorted by")
            Layout.preferredWidth: Math.min(Theme.sized(196), bar.width * 0.4)
            onActivated: index => bar.orderWanted(index)
        }
    }
}
