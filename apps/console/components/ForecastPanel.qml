import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// What an edit would do, in sight while it is made: the forecast of the station, and the list of the differences.
Rectangle {
    id: panel

    required property GroupForecast forecast
    required property ConsoleSession session
    required property var differences ///< as GroupDifferences.list() gives them
    property bool changed: false ///< there is something to forecast
    property string held ///< why the station was not asked yet, in words; else empty
    property var editNames: [] ///< of several edits, what each of them changes; empty: it is a single one
    property int longest: 120 ///< pixels, of each of its lists
    readonly property bool pending: forecast.state === GroupForecast.Pending
    readonly property var lines: !changed ? [] : held !== "" ? [{ text: held, kind: "unknown" }] : stateLines()
    readonly property bool warned: lines.some(line => ["short", "refused", "failed"].includes(line.kind))
    readonly property string differenceText: Units.counted(differences.length, qsTr("1 change"), qsTr("%1 changes"))

    function stateLines(): var {
        switch (forecast.state) {
        case GroupForecast.Failed:
            return [{ text: qsTr("What this will do is not known: %1").arg(forecast.reason), kind: "failed" }];
        case GroupForecast.Refused:
            return editNames.length > 0 ? partLines() : [{ text: qsTr("The station would refuse this. %1").arg(refusalWords(forecast.errors)), kind: "refused" }];
        case GroupForecast.Pending:
            return forecast.groups.length > 0 ? knownLines()
                                              : [{ text: qsTr("Asking the station what this will do…"), kind: "unknown" }];
        case GroupForecast.Known:
            return knownLines();
        default:
            return [];
        }
    }

    function refusalWords(errors: var): string {
        return GroupEdit.errorWords(errors, session) || forecast.reason;
    }

    /// A line for each of several edits that would be refused, and what the others would do.
    function partLines(): var {
        const places = Array.from(new Set(Array.from(forecast.errors, error => error.index))).filter(place => place >= 0);
        const refused = places.map(place => ({
            text: qsTr("The station would refuse %1: %2").arg(editNames[place] ?? "")
                .arg(GroupEdit.errorWords(Array.from(forecast.errors).filter(error => error.index === place), session)),
            kind: "refused"
        }));
        return (refused.length > 0 ? refused : [{ text: qsTr("The station would refuse this. %1").arg(forecast.reason), kind: "refused" }])
            .concat(knownLines());
    }

    function knownLines(): var {
        return editNames.length === 0 ? forecastWords.lines(forecast.groups)
            : forecastWords.volumeLines(forecast.volumes).concat(forecastWords.lines(forecast.groups));
    }

    visible: lines.length > 0 || differences.length > 0
    implicitHeight: visible ? content.implicitHeight + 2 * Theme.small : 0
    radius: Theme.radius
    color: warned ? Theme.warningGround : Theme.window
    border.color: warned ? Theme.warning : Theme.outline
    Accessible.role: warned ? Accessible.AlertMessage : Accessible.StaticText
    Accessible.name: lines.map(line => line.text).join(" ")

    ForecastWords { id: forecastWords }
    ColumnLayout {
        id: content

        anchors.fill: parent
        anchors.leftMargin: Theme.medium
        anchors.rightMargin: Theme.small
        anchors.topMargin: Theme.small
        anchors.bottomMargin: Theme.small
        spacing: Theme.tiny

        RowLayout {
            spacing: Theme.small

            SectionTitle {
                objectName: "forecastTitle"
                text: panel.pending && panel.forecast.groups.length > 0 ? qsTr("Forecast · asking again…") : qsTr("Forecast")
                Layout.fillWidth: true
            }
            ActionButton {
                id: opener

                objectName: "differences"
                visible: panel.differences.length > 0
                quiet: true
                checkable: true
                implicitHeight: Theme.sized(28)
                font.pixelSize: Theme.captionSize
                iconName: checked ? "down" : "chevron"
                text: panel.differenceText
                hint: checked ? qsTr("Hide what is changed") : qsTr("Show what is changed")
            }
        }
        ListView {
            id: lineList

            objectName: "forecastLines"
            visible: count > 0
            clip: true
            implicitHeight: Math.min(contentHeight, panel.longest)
            spacing: Theme.tiny
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: contentHeight > height
            opacity: panel.pending ? 0.6 : 1
            model: panel.lines.length
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Forecast")
            Layout.fillWidth: true

            ScrollBar.vertical: ScrollMark { flickable: lineList }
            FocusRing { shown: lineList.activeFocus }

            delegate: Item {
                id: line

                required property int index
                readonly property var values: panel.lines[index] ?? { text: "", kind: "fine" }
                readonly property bool warning: values.kind !== "fine" && values.kind !== "unknown"
                readonly property string text: values.text

                objectName: "forecastLine:" + index
                width: lineList.width - Theme.small
                implicitHeight: words.implicitHeight
                Accessible.role: Accessible.ListItem
                Accessible.name: text

                Icon {
                    y: 1
                    name: line.warning ? "alert" : line.values.kind === "fine" ? "check" : "unknown"
                    color: line.warning ? Theme.warning : line.values.kind === "fine" ? Theme.good : Theme.secondaryText
                    size: 16
                }
                Text {
                    id: words

                    x: 16 + Theme.small
                    width: parent.width - x
                    text: line.text
                    color: line.warning ? Theme.text : Theme.secondaryText
                    font.pixelSize: Theme.sized(13)
                    font.weight: line.warning ? Font.DemiBold : Font.Normal
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }
        }
        ListView {
            id: differenceList

            objectName: "differenceList"
            visible: opener.checked && opener.visible
            clip: true
            implicitHeight: Math.min(contentHeight, panel.longest)
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: contentHeight > height
            model: panel.differences.length
            Accessible.role: Accessible.List
            Accessible.name: panel.differenceText
            Layout.fillWidth: true
            Layout.topMargin: Theme.tiny

            ScrollBar.vertical: ScrollMark { flickable: differenceList }
            FocusRing { shown: differenceList.activeFocus }

            delegate: Text {
                id: difference

                required property int index
                readonly property var values: panel.differences[index] ?? { text: "", sign: "" }

                objectName: "difference:" + index
                width: differenceList.width - Theme.small
                text: values.sign === "+" ? qsTr("Added: %1").arg(values.text)
                    : values.sign === "-" ? qsTr("Removed: %1").arg(values.text) : values.text
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.ListItem
                Accessible.name: text
            }
        }
    }
}
