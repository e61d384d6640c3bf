import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// The members of the recording group that is edited, in a list of their own: there may be hundreds. Cameras come from
/// the picker.
ColumnLayout {
    id: section

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    required property bool wide ///< there is room for a member in one line
    required property var streamElsewhere ///< function of a camera's name, see MemberEditRow
    readonly property alias count: members.count
    property string title: qsTr("Cameras")
    property int awaitedRow: -1 // that is to have the focus as soon as it is made
    property Item waitingFocus: null // what has it until then

    signal edited ///< the operator changed, added or removed a member

    function show(rows: var): void {
        members.setRows(rows);
    }

    function values(): var {
        return members.rows();
    }

    /// True: what the picker offers cannot be wrong. A camera that the station does not list any more is its matter.
    function check(): bool {
        return true;
    }

    /// @param errors the refusals by row; @p words makes them a text
    function showMessages(errors: var, words: var): void {
        for (const row in errors)
            members.setMessage(Number(row), words(errors[row]));
    }

    function clearMessages(): void {
        members.clearMessages();
    }

    function focusMessage(): bool {
        const row = members.firstMessage();
        if (row >= 0)
            focusRow(row);
        return row >= 0;
    }

    function removeRow(index: int): void {
        addButton.forceActiveFocus(Qt.TabFocusReason);
        members.remove(index);
        edited();
    }

    function focusRow(row: int): void {
        list.currentIndex = row;
        list.positionViewAtIndex(row, ListView.Contain);
        list.forceLayout();
        awaitedRow = row;
        waitingFocus = Window.activeFocusItem;
        focusAwaited();
    }

    /// A list that was empty has no height yet, and may make its rows later. The operator may have gone on by then.
    function focusAwaited(): void {
        const item = list.itemAtIndex(awaitedRow) as MemberEditRow;
        if (item === null)
            return;
        awaitedRow = -1;
        if (Window.activeFocusItem === waitingFocus)
            item.takeFocus();
    }

    function pick(): void {
        picker.active = true; // the operator may never want it
        (picker.item as CameraPicker).ask(camera => members.freeStreams(camera));
    }

    function add(names: var): void {
        const row = members.add(names);
        if (row < 0)
            return;
        edited();
        focusRow(row);
    }

    spacing: Theme.small

    GroupMembers {
        id: members

        cameras: section.session.cameras
    }
    CameraOverview {
        id: cameraRows

        session: section.session
        recording: section.recording
    }
    Loader {
        id: picker

        active: false
        visible: false
        sourceComponent: CameraPicker {
            overview: cameraRows
            onPicked: names => section.add(names)
        }
    }
    SectionTitle {
        objectName: "membersTitle"
        text: members.count === 0 ? section.title : qsTr("%1 · %2").arg(section.title).arg(members.count)
        Layout.fillWidth: true
    }
    ListView {
        id: list

        readonly property int rowsInView: section.wide ? 6 : 4

        objectName: "members"
        visible: members.count > 0
        clip: true
        spacing: Theme.small
        reuseItems: true
        cacheBuffer: 0
        boundsBehavior: Flickable.StopAtBounds
        highlightFollowsCurrentItem: false
        model: members
        onCurrentItemChanged: section.focusAwaited()
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Cameras of the group")
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contentHeight, rowsInView * (Theme.sized(60) + spacing))
        delegate: MemberEditRow {
            width: list.width - (list.contentHeight > list.height + 0.5 ? Theme.medium : 0)
            wide: section.wide
            streamElsewhere: section.streamElsewhere(camName)
            onEdited: (role, value) => {
                members.change(index, role, value);
                section.edited();
            }
            onRemoved: section.removeRow(index)
        }

        ScrollBar.vertical: ScrollMark { flickable: list }
    }
    Text {
        objectName: "noCameras"
        visible: members.cameras.length === 0
        text: qsTr("The station names no cameras that could be added.")
        color: Theme.secondaryText
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    ActionButton {
        id: addButton

        objectName: "addCamera"
        iconName: "add"
        text: qsTr("Add cameras…")
        enabled: members.cameras.length > 0
        onClicked: section.pick()
    }
}
