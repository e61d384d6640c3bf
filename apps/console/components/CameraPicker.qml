import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// Cameras to choose several of, the ones that no recording group records first. What is chosen stays chosen while the
/// search shows other cameras.
ConsoleDialog {
    id: picker

    required property CameraOverview overview
    property string one: qsTr("Add 1 camera") ///< what the button says that accepts
    property string many: qsTr("Add %1 cameras")
    property string none: qsTr("Add")
    property string fullText: qsTr("In this group already") ///< of a camera that cannot be chosen
    property var freeStreams: null ///< function of a camera's name: streams that could still be added
    property var chosen: ({}) ///< true for the names of chosen cameras
    readonly property int chosenCount: Object.keys(chosen).length

    /// The operator has chosen cameras, in the order of the list.
    signal picked(names: var)

    function ask(streamsLeft: var): void {
        freeStreams = streamsLeft;
        chosen = {};
        rows.clear();
        rows.keepBy = "";
        open();
        goToFirst();
        search.find();
    }

    function goToFirst(): void {
        list.currentIndex = 0;
        list.positionViewAtBeginning();
    }

    function canChoose(name: string): bool {
        const streams = freeStreams;
        return streams !== null && name !== "" && streams(name) > 0;
    }

    function toggle(name: string): void {
        if (!canChoose(name))
            return;
        const next = Object.assign({}, chosen);
        if (next[name])
            delete next[name];
        else
            next[name] = true;
        chosen = next;
    }

    /// Chooses all cameras in view, or, where all of them are chosen, none of them.
    function toggleShown(): void {
        const shown = Array.from(rows.names()).filter(name => canChoose(name));
        const all = shown.every(name => chosen[name]);
        const next = Object.assign({}, chosen);
        for (const name of shown) {
            if (all)
                delete next[name];
            else
                next[name] = true;
        }
        chosen = next;
    }

    function accept(): void {
        if (chosenCount === 0)
            return;
        rows.clear();
        rows.keepBy = "";
        const names = Array.from(rows.names()).filter(name => chosen[name]);
        close();
        picked(names);
    }

    objectName: "cameraPicker"
    title: qsTr("Add cameras")
    width: Math.min(Theme.sized(620), parent.width - 2 * Theme.large)
    height: Math.min(Theme.sized(640), parent.height - 2 * Theme.large)
    bottomPadding: Theme.medium

    Binding {
        target: picker.overview
        property: "active"
        value: picker.visible
    }

    contentItem: ColumnLayout {
        spacing: Theme.small

        Rectangle {
            radius: Theme.radius
            color: Theme.surface
            border.color: list.activeFocus ? Theme.accent : Theme.outline
            Layout.fillWidth: true
            Layout.fillHeight: true

            RowFilter {
                id: rows

                sourceModel: picker.overview
                nameRole: "camName"
                searchRoles: ["groupNames"]
                orderBy: "camName"
                leadBy: "unrecorded"
                onTextChanged: goToFirstLater.restart()
            }
            Timer {
                id: goToFirstLater // the rows follow the text

                interval: 0
                onTriggered: picker.goToFirst()
            }
            TypeAhead {
                id: typing

                rows: rows
            }
            ListSearch {
                id: search

                objectName: "search"
                x: 1
                y: 1
                width: parent.width - 2
                height: implicitHeight
                rows: rows
                always: true
                inDialog: true
                keyed: picker.opened
                hint: qsTr("Search by camera or group")
                onLeaving: list.forceActiveFocus(Qt.ShortcutFocusReason)
            }
            ListView {
                id: list

                objectName: "cameraChoices"
                anchors.fill: parent
                anchors.margins: 1
                anchors.topMargin: search.height
                clip: true
                activeFocusOnTab: true
                keyNavigationEnabled: true
                reuseItems: true
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: 0
                highlightResizeDuration: 0
                model: picker.visible ? rows : null
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Cameras of the station")
                Keys.onSpacePressed: picker.toggle(rows.nameOf(currentIndex))
                Keys.onPressed: event => {
                    const row = typing.row(event.text, event.modifiers, currentIndex);
                    if (event.key === Qt.Key_Home)
                        currentIndex = 0;
                    else if (event.key === Qt.Key_End)
                        currentIndex = count - 1;
                    else if (event.key === Qt.Key_A && event.modifiers === Qt.ControlModifier)
                        picker.toggleShown();
                    else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                        picker.accept();
                    else if (row >= 0)
                        currentIndex = row;
                    else
                        return;
                    event.accepted = true;
                }
                delegate: CameraPickRow {
                    width: ListView.view?.width ?? 0
                    chosen: picker.chosen[camName] ?? false
                    free: picker.canChoose(camName)
                    fullText: picker.fullText
                    onToggled: picker.toggle(camName)
                }

                ScrollBar.vertical: ScrollMark { flickable: list }
            }
            Text {
                objectName: "pickerNote"
                anchors.horizontalCenter: parent.horizontalCenter
                y: list.y + Theme.huge
                width: parent.width - 2 * Theme.large
                visible: text !== ""
                text: rows.count > 0 ? ""
                    : picker.overview.loading && picker.overview.count === 0 ? qsTr("Asking the station for its cameras…")
                    : picker.overview.failure !== "" ? picker.overview.failure
                    : rows.text !== "" ? qsTr("None of %1 cameras contains “%2”.").arg(rows.total).arg(rows.text)
                    : rows.total > 0 ? qsTr("A group records each of the %1 cameras.").arg(rows.total)
                    : qsTr("The station has no cameras.")
                color: Theme.secondaryText
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }
        }
        RowLayout {
            spacing: Theme.medium
            Layout.fillWidth: true

            CheckOption {
                objectName: "onlyUnrecorded"
                enabled: picker.overview.known
                text: qsTr("Not recorded (%1)").arg(picker.overview.unrecordedCount)
                Accessible.description: qsTr("Show only cameras that no group records")
                checked: rows.keepBy !== ""
                onToggled: rows.keepBy = checked ? "unrecorded" : ""
            }
            Item { Layout.fillWidth: true }
            ActionButton {
                objectName: "chooseShown"
                quiet: true
                text: qsTr("Choose all in view")
                hint: qsTr("Choose all cameras in view, or none of them (Ctrl+A)")
                enabled: rows.count > 0
                onClicked: picker.toggleShown()
            }
        }
    }

    footer: DialogButtons {
        text: picker.chosenCount === 0 ? picker.none : Units.counted(picker.chosenCount, picker.one, picker.many)
        acceptable: picker.chosenCount > 0
        onAccepted: picker.accept()
        onRejected: picker.close()
    }
}
