import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Says above every page that alarms are in force: the worst one, and how many more. It opens the list of all.
Rectangle {
    id: strip

    property alias model: alarms.model
    readonly property var worst: alarms.sorted[0] ?? null
    readonly property int count: alarms.sorted.length
    readonly property bool severe: worst !== null && alarms.isSevere(worst)
    readonly property string remedy: worst?.remedy ?? ""
    readonly property color foreground: severe ? Theme.danger : Theme.warning
    readonly property string text: worst === null ? "" : alarms.words(worst)
    readonly property string moreText: count < 2 ? "" : count === 2 ? qsTr("and 1 more alarm")
                                                                    : qsTr("and %1 more alarms").arg(count - 1)

    /// The operator wants to see what an alarm is about; @p groupId is empty for a volume.
    signal chosen(groupId: string)

    implicitHeight: visible ? content.implicitHeight + 2 * Theme.small : 0
    visible: count > 0
    color: severe ? Theme.dangerGround : Theme.warningGround
    Accessible.role: Accessible.AlertMessage
    Accessible.name: moreText === "" ? text : qsTr("%1, %2").arg(text).arg(moreText)
    Accessible.description: remedy

    Alarms { id: alarms }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: strip.foreground
    }
    RowLayout {
        id: content

        anchors.fill: parent
        anchors.leftMargin: Theme.huge
        anchors.rightMargin: Theme.small
        spacing: Theme.medium

        Icon {
            name: "alert"
            color: strip.foreground
            size: Theme.iconSize
        }
        ColumnLayout {
            spacing: 0

            Text {
                objectName: "alarmText"
                text: strip.text
                color: Theme.text
                font.pixelSize: Theme.bodySize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.ignored: true
                Layout.fillWidth: true
            }
            Text {
                objectName: "alarmRemedy"
                visible: text !== ""
                text: strip.remedy
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                maximumLineCount: strip.width < 640 ? 2 : 3
                elide: Text.ElideRight
                Accessible.ignored: true
                Layout.fillWidth: true
            }
            Text {
                objectName: "alarmCount"
                visible: text !== ""
                text: strip.moreText
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Accessible.ignored: true
                Layout.fillWidth: true
            }
        }
        ActionButton {
            id: opener

            objectName: "openAlarms"
            quiet: true
            text: strip.count === 1 ? qsTr("Show") : qsTr("Show all")
            hint: list.visible ? text : strip.count === 1 ? qsTr("Go to what the alarm is about") : qsTr("Open the list of the alarms")
            onClicked: {
                if (strip.count === 1 && strip.remedy === "")
                    strip.chosen(strip.worst.groupId);
                else
                    list.open();
            }
        }
    }
    AlarmList {
        id: list

        alarms: alarms
        x: parent.width - width - Theme.small
        y: parent.height + Theme.tiny
        width: Math.min(480, parent.width - 2 * Theme.small)
        onChosen: groupId => strip.chosen(groupId)
    }
}
