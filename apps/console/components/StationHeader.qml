import QtQuick
import RecordingConsole

/// Which station all pages are about, above everything else in the window; nothing where there is one alone.
Rectangle {
    id: header

    required property ConsoleSession session
    readonly property StationOverview stations: session.stations
    readonly property bool narrow: width < Theme.sized(560)
    readonly property string others: stations.count < 2 ? ""
        : stations.notUp === 0 ? qsTr("%1 stations").arg(stations.count)
        : qsTr("%1 of %2 stations not connected").arg(stations.notUp).arg(stations.count)

    /// The operator wants to see all stations.
    signal listWanted

    height: visible ? implicitHeight : 0
    implicitHeight: Theme.sized(38)
    visible: stations.site
    color: Theme.rail
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Station %1, %2").arg(stations.directName)
        .arg(session.connected ? qsTr("connected") : qsTr("not connected"))

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.outline
    }
    Icon {
        id: sign

        x: header.narrow ? Theme.large : Theme.huge
        anchors.verticalCenter: parent.verticalCenter
        name: "station"
        color: header.session.connected ? Theme.accent : Theme.danger
        size: Theme.iconSize
    }
    // No layout: it would tell the texts their widths a frame late.
    Text {
        id: name

        objectName: "workedOn"
        anchors.verticalCenter: parent.verticalCenter
        x: sign.x + sign.width + Theme.medium
        width: Math.min(Math.ceil(implicitWidth), opener.x - Theme.medium - x)
        text: header.session.connected ? header.stations.directName
            : qsTr("%1 – not connected").arg(header.stations.directName)
        color: header.session.connected ? Theme.text : Theme.danger
        font.pixelSize: Theme.bodySize
        font.weight: Font.DemiBold
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Text {
        objectName: "otherStations"
        anchors.verticalCenter: parent.verticalCenter
        x: opener.x - width - Theme.small
        width: Math.ceil(implicitWidth)
        visible: x >= name.x + name.width + Theme.large
        text: header.others
        color: header.stations.notUp > 0 ? Theme.warning : Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
    }
    ActionButton {
        id: opener

        objectName: "openStations"
        anchors.verticalCenter: parent.verticalCenter
        x: parent.width - Theme.small - width
        quiet: true
        implicitHeight: Theme.sized(30)
        text: qsTr("Stations…")
        hint: qsTr("Show all stations and choose another one")
        onClicked: header.listWanted()
    }
    HoverHandler { id: hover }
    ConsoleToolTip {
        visible: hover.hovered && name.truncated
        text: header.stations.directName
    }
}
