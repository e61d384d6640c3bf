import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// A station in the list of all. What it told last is grey where it is not up, with the time that it is of. No layout: one
/// tells texts their widths a frame late.
ItemDelegate {
    id: row

    required property int index
    required property string relayPathRole
    required property string nameRole
    required property string addressRole
    required property string versionRole
    required property int stateRole
    required property date sinceRole
    required property string reasonRole
    required property int missingDaysRole
    required property int shortGroupsRole
    required property real freeRole
    required property int alarmsRole
    required property int errorsRole
    required property bool alarmsKnownRole
    required property date figuresAtRole
    required property bool directRole
    required property StationColumns columns
    property bool current: ListView.isCurrentItem
    readonly property bool up: stateRole === StationOverview.Up
    readonly property bool isDown: stateRole === StationOverview.Down
    readonly property bool dated: !isNaN(figuresAtRole.getTime())
    readonly property string since: isNaN(sinceRole.getTime()) ? "" : Units.moment(sinceRole)
    readonly property string stateText: since === ""
        ? [qsTr("Not heard of"), qsTr("Connecting"), qsTr("Down"), qsTr("Up")][stateRole]
        : [qsTr("Not heard of since %1"), qsTr("Connecting since %1"), qsTr("Down since %1"), qsTr("Up since %1")][stateRole]
              .arg(since)
    readonly property string daysText: missingDaysRole < 0 ? qsTr("unknown")
        : missingDaysRole === 0 ? qsTr("none") : Units.days(missingDaysRole)
    readonly property string freeText: freeRole < 0 ? qsTr("unknown") : Units.estimate(freeRole)
    readonly property string alarmsText: alarmsKnownRole ? (alarmsRole === 0 ? qsTr("none") : String(alarmsRole))
        : alarmsRole === 0 ? qsTr("unknown") : qsTr("%1 or more").arg(alarmsRole)
    readonly property string figuresText: qsTr("%1 short, %2 free, %3").arg(daysText).arg(freeText)
        .arg(alarmsText === "1" ? qsTr("1 alarm") : qsTr("%1 alarms").arg(alarmsText))
    readonly property string datedText: dated ? qsTr("as of %1").arg(Units.moment(figuresAtRole)) : ""

    /// The operator wants to work on it.
    signal chosen

    /// Those of @p parts that say something.
    function joined(parts: var, separator: string): string {
        return parts.filter(part => part !== "").join(separator);
    }

    objectName: "station:" + relayPathRole
    height: Theme.sized(60)
    padding: 0
    highlighted: current && (ListView.view?.activeFocus ?? false)
    Accessible.role: Accessible.ListItem
    Accessible.name: joined([nameRole, stateText, figuresText, datedText, directRole ? qsTr("you work on it") : ""], ", ")
    Accessible.description: reasonRole
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }
    onDoubleClicked: chosen()

    contentItem: Item {
        Icon {
            id: sign

            objectName: "sign"
            x: Theme.large
            anchors.verticalCenter: parent.verticalCenter
            name: row.up ? "station" : row.isDown ? "disconnected" : "unknown"
            color: row.isDown ? Theme.danger : row.up ? Theme.accent : Theme.warning
            size: 24
        }
        Column {
            id: words

            anchors.verticalCenter: parent.verticalCenter
            x: sign.x + sign.width + Theme.medium
            width: row.columns.nameWidth - x
            spacing: 2

            Text {
                id: nameText

                objectName: "name"
                width: parent.width
                text: row.nameRole
                color: Theme.text
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideRight
            }
            Text {
                id: stateLine

                objectName: "state"
                width: parent.width
                text: row.columns.wide ? row.stateText
                    : row.joined([row.stateText, row.figuresText, row.datedText], " · ")
                color: row.isDown ? Theme.danger : row.up ? Theme.secondaryText : Theme.warning
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
            }
        }
        StationFigure {
            objectName: "days"
            visible: row.columns.wide
            x: row.columns.daysX
            width: row.columns.figureWidth
            height: parent.height
            text: row.daysText
            faded: !row.up
            color: row.missingDaysRole > 0 ? Theme.warning : row.missingDaysRole < 0 ? Theme.secondaryText : Theme.text
            caption: row.datedText
        }
        StationFigure {
            objectName: "free"
            visible: row.columns.wide
            x: row.columns.freeX
            width: row.columns.figureWidth
            height: parent.height
            text: row.freeText
            faded: !row.up
            color: row.freeRole < 0 ? Theme.secondaryText : Theme.text
        }
        StationFigure {
            objectName: "alarms"
            visible: row.columns.wide
            x: row.columns.alarmsX
            width: row.columns.figureWidth
            height: parent.height
            text: row.alarmsText
            faded: !row.up
            color: row.errorsRole > 0 ? Theme.danger : row.alarmsRole > 0 ? Theme.warning
                 : row.alarmsKnownRole ? Theme.text : Theme.secondaryText
        }
        Mark {
            objectName: "workedOn"
            visible: row.directRole
            anchors.verticalCenter: parent.verticalCenter
            x: row.columns.actionX + Theme.small
            iconName: "check"
            text: row.columns.wide ? qsTr("Working on it") : qsTr("Here")
        }
        ActionButton {
            objectName: "choose"
            visible: !row.directRole && row.up
            anchors.verticalCenter: parent.verticalCenter
            x: row.columns.actionX
            quiet: true
            focusPolicy: Qt.NoFocus
            text: row.columns.wide ? qsTr("Work on it") : qsTr("Choose")
            hint: qsTr("Show this station on all pages (Enter)")
            onClicked: row.chosen()
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.pressed ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
        border.width: row.highlighted ? 2 : 0
        border.color: Theme.accent

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
    }

    ConsoleToolTip {
        visible: row.hovered
        delay: 700
        text: row.joined([row.nameRole, row.relayPathRole !== row.nameRole ? row.relayPathRole : "", row.addressRole,
               row.versionRole !== "" ? qsTr("Version %1").arg(row.versionRole) : "", row.stateText, row.reasonRole,
               row.shortGroupsRole > 0 ? Units.counted(row.shortGroupsRole, qsTr("1 recording group is short of days"),
                                                       qsTr("%1 recording groups are short of days")) : "",
               row.dated ? qsTr("Its figures are %1").arg(row.datedText) : ""], "\n")
    }
}
