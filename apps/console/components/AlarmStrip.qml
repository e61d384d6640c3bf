import QtQuick
import RecordingConsole

/// Has a room of its own above every page, so that nothing moves when an alarm comes: the worst one, and how many more. It
/// opens the list of all, which lies over the page.
Rectangle {
    id: strip

    property alias model: alarms.model
    property alias stations: alarms.stations
    required property bool connected
    required property bool known ///< the station has told its alarms
    readonly property var worst: alarms.worst
    readonly property int count: worst === null ? 0 : alarms.count
    readonly property bool severe: worst !== null && alarms.isSevere(worst)
    readonly property string remedy: worst?.remedy ?? ""
    readonly property color foreground: count === 0 ? Theme.secondaryText : severe ? Theme.danger : Theme.warning
    readonly property int silent: alarms.stations?.count > 1 ? alarms.stations.notUp + alarms.stations.untold : 0
    readonly property string text: worst !== null ? alarms.words(worst)
        : known && silent > 0 ? qsTr("No alarms told; nothing from %1 of %2 stations at the moment")
                                    .arg(silent).arg(alarms.stations.count)
        : known ? qsTr("No alarms")
        : connected ? qsTr("Asking the station for its alarms…") : qsTr("No connection: alarms are not known")
    readonly property bool narrow: width < Theme.sized(560)
    readonly property string moreText: count < 2 ? "" : count === 2 ? qsTr("and 1 more alarm")
                                                                    : qsTr("and %1 more alarms").arg(count - 1)

    /// The operator wants to see what an alarm is about: the page's key and the place on it.
    signal chosen(key: string, place: string)
    /// The operator wants to acknowledge an alarm, or to take that back; as in Alarms.
    signal acknowledgementAsked(alarm: var)

    readonly property bool leadsOn: count === 1 && remedy === "" && alarms.place(worst) !== null ///< without a list between

    /// The list of all, or what the only alarm is about.
    function show(): void {
        if (leadsOn)
            choose(worst);
        else if (count > 0)
            list.open();
    }

    function choose(alarm: var): void {
        const target = alarms.place(alarm);
        chosen(target.key, target.place);
    }

    /// What keys do in the list.
    function keys(): var {
        return [list.acknowledgeKey];
    }

    function isAcknowledged(alarm: var): bool {
        return alarms.isAcknowledged(alarm);
    }

    implicitHeight: Theme.controlHeight + Theme.tiny
    color: count === 0 ? Theme.rail : severe ? Theme.dangerGround : Theme.warningGround
    Accessible.role: count > 0 ? Accessible.AlertMessage : Accessible.StaticText
    Accessible.name: moreText === "" ? text : qsTr("%1, %2").arg(text).arg(moreText)
    Accessible.description: remedy

    Alarms { id: alarms }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: strip.count === 0 ? Theme.outline : strip.foreground
    }
    Icon {
        id: sign

        visible: strip.count > 0 || !strip.known
        x: strip.narrow ? Theme.large : Theme.huge
        anchors.verticalCenter: parent.verticalCenter
        name: strip.count > 0 ? "alert" : "unknown"
        color: strip.foreground
        size: Theme.iconSize
    }
    // No layout: it would tell the texts their widths a frame late.
    Text {
        id: words

        objectName: "alarmText"
        anchors.verticalCenter: parent.verticalCenter
        x: sign.visible ? sign.x + sign.width + Theme.medium : sign.x
        width: Math.min(Math.ceil(implicitWidth), more.x - Theme.medium - x)
        text: strip.text
        color: strip.count > 0 ? Theme.text : Theme.secondaryText
        font.pixelSize: Theme.bodySize
        font.weight: strip.count > 0 ? Font.DemiBold : Font.Normal
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Text {
        objectName: "alarmRemedy"
        anchors.verticalCenter: parent.verticalCenter
        x: words.x + words.width + Theme.medium
        width: Math.max(0, more.x - Theme.medium - x)
        visible: text !== "" && width >= Theme.sized(80)
        text: strip.remedy
        color: Theme.text
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Text {
        id: more

        objectName: "alarmCount"
        anchors.verticalCenter: parent.verticalCenter
        x: opener.x - width - (text === "" ? 0 : Theme.small)
        width: Math.ceil(implicitWidth)
        visible: text !== ""
        text: strip.narrow && strip.count > 1 ? qsTr("+%1").arg(strip.count - 1) : strip.moreText
        color: Theme.text
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
    ActionButton {
        id: opener

        objectName: "openAlarms"
        anchors.verticalCenter: parent.verticalCenter
        x: parent.width - Theme.small - width
        width: visible ? implicitWidth : 0
        visible: strip.count > 0
        quiet: true
        text: strip.count === 1 ? qsTr("Show") : qsTr("Show all")
        hint: strip.leadsOn ? qsTr("Go to what the alarm is about (F8)") : qsTr("Open the list of the alarms (F8)")
        onClicked: strip.show()
    }
    HoverHandler { id: hover }
    ConsoleToolTip {
        visible: hover.hovered && words.truncated
        text: strip.text
    }
    AlarmList {
        id: list

        alarms: alarms
        x: parent.width - width - Theme.small
        y: parent.height
        width: Math.min(Theme.sized(480), parent.width - 2 * Theme.small)
        onChosen: alarm => strip.choose(alarm)
        onAcknowledgementAsked: alarm => {
            list.close();
            strip.acknowledgementAsked(alarm);
        }
    }
}
