import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The alarms in force, one below the other. It closes when one is chosen and when none is left.
Popup {
    id: popup

    required property Alarms alarms
    readonly property ConsoleKey acknowledgeKey: ConsoleKey {
        sequence: "A"
        list: list
        armed: popup.visible
        text: qsTr("In the list of alarms: acknowledge the alarm, or take that back")
        onActivated: popup.acknowledge(list.currentIndex)
    }
    readonly property int alarmCount: alarms.count
    property int revision: 0 // counts the changes of the alarms
    readonly property Connections changes: Connections {
        target: popup.alarms

        function onChanged(): void {
            ++popup.revision;
        }
    }

    /// The operator wants to see what an alarm is about.
    signal chosen(alarm: var)
    /// The operator wants to acknowledge an alarm of the station's, or to take that back.
    signal acknowledgementAsked(alarm: var)

    /// Null without one.
    function alarmAt(index: int): var {
        return index >= 0 && index < alarms.rowCount() ? alarms.at(index) : null;
    }

    /// An alarm that no page shows stays in the list: its words and its remedy are all there is.
    function choose(index: int): void {
        const alarm = alarmAt(index);
        if (alarm === null || alarms.place(alarm) === null)
            return;
        close();
        chosen(alarm);
    }

    function acknowledge(index: int): void {
        const alarm = alarmAt(index);
        if (alarm !== null && alarms.isAcknowledgeable(alarm))
            acknowledgementAsked(alarm);
    }

    objectName: "alarmList"
    padding: Theme.tiny
    focus: true
    height: Math.min(Theme.sized(360), list.contentHeight + 2 * padding)
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
        model: popup.alarms
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Alarms, the worst first")
        Keys.onReturnPressed: popup.choose(currentIndex)
        Keys.onEnterPressed: popup.choose(currentIndex)
        Keys.onSpacePressed: popup.choose(currentIndex)
        delegate: AlarmRow {
            width: ListView.view?.width ?? 0
            alarm: (popup.revision, popup.alarms.at(index))
            words: popup.alarms.words(alarm)
            severe: popup.alarms.isSevere(alarm)
            since: popup.alarms.since(alarm)
            acknowledgement: popup.alarms.acknowledgement(alarm)
            acknowledgeable: popup.alarms.isAcknowledgeable(alarm)
            leadsOn: popup.alarms.place(alarm) !== null
            onChosen: popup.choose(index)
            onAcknowledgementAsked: popup.acknowledge(index)
        }

        ScrollBar.vertical: ScrollBar {}
    }
}
