import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The alarms in force, one below the other. It closes when one is chosen and when none is left.
Popup {
    id: popup

    required property Alarms alarms
    readonly property int alarmCount: alarms.sorted.length

    signal chosen(groupId: string)

    function choose(index: int): void {
        const alarm = alarms.sorted[index];
        close();
        if (alarm)
            chosen(alarm.groupId);
    }

    objectName: "alarmList"
    padding: Theme.tiny
    focus: true
    height: Math.min(360, list.contentHeight + 2 * padding)
    enter: null
    exit: null
    onOpened: {
        list.currentIndex = 0;
        list.forceActiveFocus(Qt.PopupFocusReason);
    }
    onAlarmCountChanged: {
        if (alarmCount === 0)
            close();
    }

    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius + 2
    }
    contentItem: ListView {
        id: list

        clip: true
        focus: true
        model: popup.alarms.sorted
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Alarms, the worst first")
        Keys.onReturnPressed: popup.choose(currentIndex)
        Keys.onEnterPressed: popup.choose(currentIndex)
        Keys.onSpacePressed: popup.choose(currentIndex)
        delegate: AlarmRow {
            width: ListView.view?.width ?? 0
            words: popup.alarms.words(modelData)
            severe: popup.alarms.isSevere(modelData)
            since: popup.alarms.since(modelData)
            onChosen: popup.choose(index)
        }

        ScrollBar.vertical: ScrollBar {}
    }
}
