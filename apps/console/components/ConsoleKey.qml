import QtQuick

/// A key: what it does, in words that F1 shows, and the doing. One of a list counts while the list, or its current row, has
/// the focus.
Shortcut {
    required property string text
    property Item list: null ///< the view that it belongs to; null: it counts wherever the focus is
    property bool allowed: true ///< what it does can be done now
    property bool armed: false ///< its page is shown and no dialog of the page is open
    readonly property string label: nativeText === "Return" ? qsTr("Enter") : nativeText ///< as it stands on the key
    readonly property Item focused: list?.Window.activeFocusItem ?? null

    enabled: armed && allowed
             && (list === null || focused !== null && (focused === list || focused === (list as ListView)?.currentItem))
}
