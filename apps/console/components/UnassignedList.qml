import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// The recordings of no group, a row for each folder, to be given to a group or deleted.
FocusScope {
    id: view

    required property ConsoleSession session
    readonly property UnassignedRecordingsModel recordings: session.unassigned
    readonly property alias words: allWords
    readonly property alias list: card.list
    readonly property alias search: card.search
    readonly property UnassignedRow currentRow: list.currentItem as UnassignedRow
    readonly property bool asking: assignment.visible || deletion.visible
    readonly property bool settled: !recordings.loading && (recordings.known || recordings.failure !== "")
    readonly property string subtitle: recordings.known && recordings.count > 0 ? words.figures
        : qsTr("What removed groups and paths have left")
    property string givenText ///< what came of giving some away; empty once it was read
    readonly property string problem: recordings.failure === "" ? ""
        : qsTr("The recordings of no group could not be listed: %1").arg(recordings.failure)
    /// What came of the last deletion, until somebody has read it or looks at it.
    readonly property string outcome: deletion.visible || words.outcome === "" ? ""
        : qsTr("%1: %2").arg(recordings.deletion.place).arg(words.outcome)

    /// The operator wants back.
    signal backWanted

    function assign(row: UnassignedRow): void {
        if (!row || !row.editable || row.busy || !session.connected)
            return;
        givenText = "";
        assignment.ask(row.place);
    }

    function remove(row: UnassignedRow): void {
        if (!row)
            return;
        if (row.deleting)
            deletion.show();
        else if (row.editable && !row.busy && session.connected)
            deletion.ask(row.place, qsTr("%1, %2, %3").arg(row.sizeText).arg(Units.days(row.recordedDays)).arg(row.filesText));
    }

    /// The deletion that is under way, or what came of the last one.
    function showDeletion(): void {
        deletion.show();
    }

    Keys.onEscapePressed: backWanted()

    UnassignedWords {
        id: allWords

        session: view.session
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.medium

        RowLayout {
            spacing: Theme.small
            Layout.fillWidth: true

            ActionButton {
                objectName: "back"
                quiet: true
                iconName: "back"
                hint: qsTr("Back to the recording groups (Esc)")
                onClicked: view.backWanted()
            }
            Text {
                text: qsTr("Recordings of no group")
                color: Theme.text
                font.pixelSize: Theme.titleSize
                font.weight: Font.DemiBold
                textFormat: Text.PlainText
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
                Accessible.name: text
                Layout.fillWidth: true
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListCard {
                id: card

                objectName: "unassigned"
                width: parent.width
                height: count > 0 ? Math.min(parent.height, list.contentHeight + 2) : parent.height
                focus: true
                model: view.recordings
                list.Accessible.name: qsTr("Recordings of no group")
                onCountChanged: {
                    if (currentIndex < 0 && count > 0)
                        currentIndex = 0;
                }
                delegate: UnassignedRow {
                    id: row

                    width: ListView.view?.width ?? 0
                    session: view.session
                    words: view.words
                    busy: view.recordings.deletion.running
                    onAssignmentAsked: view.assign(row)
                    onDeletionAsked: view.remove(row)
                }

                Placeholder {
                    objectName: "unassignedPlaceholder"
                    anchors.centerIn: parent
                    width: Math.min(Theme.sized(420), parent.width - 2 * Theme.huge)
                    visible: card.total === 0
                    busy: view.session.connected && !view.recordings.known && view.recordings.failure === ""
                    iconName: "folder"
                    title: view.recordings.known && view.recordings.failure === "" ? qsTr("No recordings of no group")
                        : !view.session.connected ? qsTr("No connection to the station")
                        : busy ? qsTr("Asking the station for recordings of no group…")
                        : qsTr("The recordings of no group could not be listed")
                    text: view.recordings.known && view.recordings.failure === ""
                        ? qsTr("What a recording group leaves when it, or a path of it, is removed appears here.") : ""
                }
            }
        }
    }

    AssignDialog {
        id: assignment

        session: view.session
        onDone: (name, path) => {
            view.givenText = qsTr("The recordings belong to “%1” now, and are in %2.").arg(name).arg(path);
        }
    }
    DeletionDialog {
        id: deletion

        session: view.session
        words: view.words
    }
}
