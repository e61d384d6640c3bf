import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Whether the station can be reached, what it is busy with, and the switch of the colours.
Rectangle {
    id: line

    required property ConsoleSession session
    property bool troubled: false ///< something about the station is broken
    readonly property real countedShare: session.filesToCount > 0
                                         ? Math.min(1, session.countedFiles / session.filesToCount) : 0

    readonly property string siteText: {
        const stations = session.stations;
        const connection = session.connected ? qsTr("Connected to %1").arg(stations.directName)
                                             : qsTr("No connection to %1").arg(stations.directName);
        return stations.notUp === 0 || stations.count < 2 ? connection
            : qsTr("%1; %2 of %3 stations not connected").arg(connection).arg(stations.notUp).arg(stations.count);
    }

    implicitHeight: Theme.sized(40)
    color: Theme.rail

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.outline
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.small
        anchors.topMargin: 1
        spacing: Theme.small

        Icon {
            objectName: "connectionIcon"
            name: !line.session.connected ? "disconnected" : line.troubled ? "alert" : "connected"
            color: line.session.connected && !line.troubled ? Theme.good : Theme.danger
            size: Theme.sized(18)
        }
        Text {
            objectName: "connection"
            text: line.session.stations.site ? line.siteText
                : !line.session.connected ? qsTr("No connection to the station on this machine")
                : line.troubled ? qsTr("Connected to the station on this machine, which is in trouble")
                : qsTr("Connected to the station on this machine")
            color: Theme.text
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        RowLayout {
            objectName: "counting"
            visible: line.session.counting
            spacing: Theme.small

            ShareBar {
                visible: line.session.filesToCount > 0 && line.width >= Theme.sized(640)
                share: line.countedShare
                implicitWidth: 96
                implicitHeight: 6
                Accessible.ignored: true
            }
            Text {
                objectName: "countingText"
                text: line.width < Theme.sized(640) && line.session.filesToCount > 0
                    ? qsTr("Counting: %1").arg(Units.percent(line.countedShare))
                    : line.width < Theme.sized(640) ? qsTr("Counting…")
                    : line.session.filesToCount > 0
                    ? qsTr("Counting recorded files: %1 of %2").arg(line.session.countedFiles)
                          .arg(Math.max(line.session.countedFiles, line.session.filesToCount))
                    : qsTr("Counting recorded files: %1 so far").arg(line.session.countedFiles)
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
        ActionButton {
            objectName: "textSize"
            visible: Theme.textSize !== 100
            quiet: true
            implicitHeight: Theme.sized(30)
            font.pixelSize: Theme.captionSize
            text: qsTr("Text %1 %").arg(Theme.textSize)
            hint: qsTr("Make text as large as usual (Ctrl+0)")
            onClicked: Theme.textSize = 100
        }
        ActionButton {
            id: schemeButton

            readonly property var schemes: [
                { iconName: "desktop", text: qsTr("As the desktop") },
                { iconName: "light", text: qsTr("Light") },
                { iconName: "dark", text: qsTr("Dark") }
            ]

            objectName: "scheme"
            quiet: true
            implicitHeight: Theme.sized(30)
            font.pixelSize: Theme.captionSize
            iconName: schemes[Theme.scheme].iconName
            text: line.width >= Theme.sized(480) ? schemes[Theme.scheme].text : ""
            hint: qsTr("Change the colours; now: %1").arg(schemes[Theme.scheme].text)
            onClicked: Theme.scheme = Theme.nextScheme()
        }
    }
}
