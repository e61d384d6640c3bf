import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// The fields of a dialog one below the other, scrolled so that the one that has the focus is in sight.
Flickable {
    id: pane

    default property alias fields: content.data
    property bool editable: true
    readonly property Item focusItem: Window.activeFocusItem

    function bringIntoView(): void {
        let ancestor = focusItem;
        while (ancestor && ancestor !== content)
            ancestor = ancestor.parent;
        if (!ancestor)
            return;
        const place = focusItem.mapToItem(content, 0, 0, focusItem.width, focusItem.height);
        const margin = Theme.huge;
        contentY = Math.max(0, Math.min(contentHeight - height,
                                        Math.max(Math.min(contentY, place.y - margin), place.y + place.height + margin - height)));
    }

    clip: true
    implicitHeight: contentHeight
    contentWidth: width
    contentHeight: Math.ceil(content.implicitHeight) + 1 // the frame of the last button
    boundsBehavior: Flickable.StopAtBounds
    onFocusItemChanged: scrollLater.restart()
    onContentHeightChanged: scrollLater.restart()

    ScrollBar.vertical: ScrollMark { flickable: pane }

    Timer {
        id: scrollLater // when the rows have their places

        interval: 0
        onTriggered: pane.bringIntoView()
    }
    ColumnLayout {
        id: content

        width: parent.width - Theme.huge + Theme.tiny
        enabled: pane.editable
        spacing: Theme.small
    }
}
