import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// Recordings of no group in one folder: where they are, how much they are, and what can be done with them.
ItemDelegate {
    id: row

    required property int index
    required property string place
    required property string folder
    required property string volumePath
    required property string volumeName
    required property int location ///< an UnassignedRecordingsModel.Standing
    required property bool editable
    required property real recordedBytes
    required property real recordedFiles
    required property real recordedDays
    required property string firstDay
    required property string lastDay
    required property var cameras
    required property bool counted
    required property string countedAt
    required property string lastDeletion
    required property ConsoleSession session
    required property UnassignedWords words ///< of the deletion that runs
    property bool busy: false ///< the station is deleting or moving something

    readonly property bool current: ListView.isCurrentItem
    readonly property bool deleting: words.deletion.running && words.deletion.place === place
    readonly property bool wide: width >= Theme.sized(760)
    readonly property string title: folder !== "" ? folder : qsTr("Former backup area")
    readonly property string volumeText: volumeName !== "" && volumeName !== volumePath
        ? qsTr("%1 on %2").arg(place).arg(volumeName) : place
    readonly property string sizeText: recordedBytes < 0 ? qsTr("Size unknown") : Units.bytes(recordedBytes)
    readonly property string daysText: recordedDays < 0 ? qsTr("Days unknown")
        : firstDay === "" ? Units.days(recordedDays)
        : firstDay === lastDay ? qsTr("%1, %2").arg(Units.days(recordedDays)).arg(firstDay)
        : qsTr("%1, %2 to %3").arg(Units.days(recordedDays)).arg(firstDay).arg(lastDay)
    readonly property string filesText: recordedFiles < 0 ? ""
        : Units.counted(recordedFiles, qsTr("1 file"), qsTr("%1 files"))
    readonly property string camerasText: cameras.length === 0 ? ""
        : cameras.length === 1 ? qsTr("Camera %1").arg(cameras[0]) : qsTr("Cameras %1").arg(cameras.join(", "))
    readonly property string markText: {
        switch (location) {
        case UnassignedRecordingsModel.ReadOnly:
            return qsTr("Read-only");
        case UnassignedRecordingsModel.Gone:
            return qsTr("Not there");
        case UnassignedRecordingsModel.NotAnswering:
            return qsTr("Not answering");
        case UnassignedRecordingsModel.OnNas:
            return qsTr("NAS");
        default:
            return recordedBytes < 0 ? qsTr("Not counted yet") : "";
        }
    }
    readonly property bool lost: location === UnassignedRecordingsModel.Gone
                                 || location === UnassignedRecordingsModel.NotAnswering
    /// Of both buttons, where only one is shown, too: the columns of all rows are the same.
    readonly property real buttonsWidth: Math.ceil(assignText.advanceWidth) + Math.ceil(deleteText.advanceWidth)
                                         + 4 * Theme.large + Theme.small
    /// What an operator should know about the figures or the buttons.
    readonly property string remark: deleting ? ""
        : lastDeletion !== "" ? lastDeletion
        : location === UnassignedRecordingsModel.OnNas ? qsTr("As counted last; the station changes nothing here")
        : counted || recordedBytes < 0 ? ""
        : countedAt !== "" ? qsTr("As counted at %1").arg(Units.moment(new Date(countedAt)))
        : location === UnassignedRecordingsModel.There ? qsTr("Not all counted yet") : qsTr("As counted last")

    signal assignmentAsked
    signal deletionAsked

    /// What is empty is left out.
    function joined(texts: var, separator: string): string {
        return texts.filter(Boolean).join(separator);
    }

    function summary(): string {
        return joined([title, markText, volumeText, sizeText, daysText, filesText, camerasText, remark,
                       deleting ? words.progress : ""], ", ");
    }

    objectName: "unassigned:" + place
    leftPadding: Theme.large
    rightPadding: Theme.large
    topPadding: Theme.medium
    bottomPadding: Theme.medium
    highlighted: current && ListView.view.activeFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: summary()
    onClicked: {
        ListView.view.currentIndex = index;
        ListView.view.forceActiveFocus(Qt.MouseFocusReason);
    }

    TextMetrics {
        id: assignText

        font.pixelSize: Theme.bodySize
        text: qsTr("Give to a group…")
    }
    TextMetrics {
        id: deleteText

        font.pixelSize: Theme.bodySize
        text: qsTr("Delete…")
    }

    contentItem: GridLayout {
        columns: row.wide ? 3 : 1
        columnSpacing: Theme.large
        rowSpacing: Theme.small

        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Layout.preferredWidth: 5
            Layout.alignment: Qt.AlignTop

            RowLayout {
                spacing: Theme.small

                Text {
                    id: nameText

                    objectName: "name"
                    text: row.title
                    color: row.lost ? Theme.danger : Theme.text
                    font.pixelSize: Theme.titleSize
                    font.weight: Font.DemiBold
                    textFormat: Text.PlainText
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                    Layout.maximumWidth: Math.ceil(implicitWidth)
                }
                Mark {
                    objectName: "mark"
                    visible: text !== ""
                    danger: row.lost
                    warning: row.location === UnassignedRecordingsModel.ReadOnly
                    iconName: row.lost || warning ? "alert"
                        : row.location === UnassignedRecordingsModel.OnNas ? "network" : "unknown"
                    text: row.markText
                }
            }
            Text {
                id: placeText

                objectName: "place"
                text: row.volumeText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Text {
                id: camerasLine

                objectName: "cameras"
                visible: text !== ""
                text: row.camerasText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Layout.preferredWidth: 4
            Layout.alignment: Qt.AlignTop

            Text {
                objectName: "size"
                text: row.filesText === "" ? row.sizeText : qsTr("%1 · %2").arg(row.sizeText).arg(row.filesText)
                color: Theme.text
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                objectName: "days"
                text: row.daysText
                color: Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                id: remarkText

                objectName: "remark"
                visible: text !== ""
                text: row.remark
                color: Theme.warning
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            ShareBar {
                objectName: "progressBar"
                visible: row.deleting && row.words.share >= 0
                share: row.words.share
                Layout.fillWidth: true
                Layout.topMargin: Theme.tiny
            }
            Text {
                objectName: "progress"
                visible: row.deleting
                text: row.words.deletion.cancelling ? qsTr("Cancelling…") : row.words.progress
                color: Theme.text
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        RowLayout {
            spacing: Theme.small
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: !row.wide
            Layout.preferredWidth: row.wide ? row.buttonsWidth : -1

            ActionButton {
                objectName: "assign"
                visible: !row.deleting
                text: assignText.text
                hint: qsTr("Give the recordings of %1 to a recording group (Return)").arg(row.title)
                enabled: row.editable && !row.busy && row.session.connected
                activeFocusOnTab: row.current || activeFocus
                Layout.preferredWidth: implicitWidth
                onClicked: row.assignmentAsked()
            }
            ActionButton {
                objectName: "delete"
                text: row.deleting ? qsTr("Show the deletion…") : deleteText.text
                hint: row.deleting ? text : qsTr("Delete the recordings of %1 for good (Del)").arg(row.title)
                enabled: row.deleting || (row.editable && !row.busy && row.session.connected)
                activeFocusOnTab: row.current || activeFocus
                Layout.preferredWidth: implicitWidth
                onClicked: row.deletionAsked()
            }
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: row.highlighted ? Theme.selected : row.hovered ? Theme.hover : "transparent"

        Rectangle {
            visible: row.index > 0
            x: Theme.large
            width: parent.width - 2 * Theme.large
            height: 1
            color: Theme.outline
        }
        FocusRing { shown: row.activeFocus }
    }

    ConsoleToolTip {
        visible: row.hovered && (nameText.truncated || placeText.truncated || camerasLine.truncated || remarkText.truncated)
        text: row.joined([row.title, row.volumeText, row.camerasText, row.remark], "\n")
    }
}
