import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// What is to be changed in several recording groups. What is not filled in stays as it is in each of them.
FormPane {
    id: settings

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    required property RecordingGroups groups
    required property PathProposals proposals
    property var originals: [] ///< the groups, as RecordingGroups.read() gave them
    property var removedCameras: [] ///< names
    readonly property var paths: bulkEdit.pathsOf(originals)
    readonly property var recorded: bulkEdit.cameraCounts(originals)

    signal edited ///< the operator changed something
    signal accepted
    signal browseWanted(row: int, path: string)

    /// Begins with nothing to be changed.
    function reset(): void {
        const times = new Set(originals.map(group => group.reservedTime));
        changesTime.checked = false;
        time.show(times.size === 1 ? originals[0].reservedTime : 30 * 1440);
        changesReserve.checked = false;
        reserve.text = "2";
        reservePath.currentIndex = 0;
        removedPath.currentIndex = 0;
        pathSection.show([]);
        memberSection.show([]);
        removedCameras = [];
        clearMessages();
        contentY = 0;
    }

    function takeFocus(): void {
        changesTime.forceActiveFocus(Qt.TabFocusReason);
    }

    /// As BulkEdit takes it; only where check() found nothing wrong.
    function change(): var {
        const result = { addPaths: pathSection.values().map(row => ({ path: row.path, kind: row.kind, reserve: row.reserve,
                                                                      recovery: row.recovery })),
                         removePath: paths[removedPath.currentIndex - 1]?.path ?? "",
                         addMembers: Array.from(memberSection.values()), removeCameras: removedCameras };
        if (changesTime.checked)
            result.reservedTime = time.minutes();
        if (changesReserve.checked)
            result.reserve = { text: reserve.text, path: paths[reservePath.currentIndex - 1]?.path ?? "" };
        return result;
    }

    /// True where nothing is wrong; else it is said where it is.
    function check(): bool {
        clearMessages();
        const pathsRight = pathSection.check(null);
        if (changesTime.checked && isNaN(time.minutes()))
            time.message = qsTr("Enter a whole number, 1 or more, that is not too long.");
        if (changesReserve.checked && isNaN(GroupEdit.reserveFrom(reserve.text, undefined)))
            reserve.message = qsTr("Enter the reserve in whole gigabytes.");
        const both = removedPath.currentIndex > 0
            && pathSection.values().some(row => row.path === paths[removedPath.currentIndex - 1].path);
        removedMessage.text = both ? qsTr("This path is to be added as well.") : "";
        if (time.message !== "")
            time.takeFocus();
        else if (reserve.message !== "")
            reserve.forceActiveFocus(Qt.TabFocusReason);
        else if (!pathSection.focusMessage() && both)
            removedPath.forceActiveFocus(Qt.TabFocusReason);
        return pathsRight && time.message === "" && reserve.message === "" && !both;
    }

    function clearMessages(): void {
        time.message = "";
        reserve.message = "";
        removedMessage.text = "";
        pathSection.clearMessages();
    }

    function setPath(row: int, path: string): void {
        pathSection.change(row, "path", path);
    }

    function propose(): void {
        pathSection.propose();
    }

    /// The words of a choice box: @p first, and then the paths with how many groups have each.
    function pathChoices(first: string): var {
        const words = paths.map(path => qsTr("%1 · %2").arg(path.path)
            .arg(Units.counted(path.count, qsTr("1 group"), qsTr("%1 groups"))));
        words.unshift(first);
        return words;
    }

    BulkEdit { id: bulkEdit }
    CameraOverview {
        id: cameraRows

        session: settings.session
        recording: settings.recording
    }
    Loader {
        id: picker

        active: false
        visible: false
        sourceComponent: CameraPicker {
            objectName: "removePicker"
            title: qsTr("Remove cameras from the groups")
            one: qsTr("Remove 1 camera")
            many: qsTr("Remove %1 cameras")
            none: qsTr("Remove")
            fullText: qsTr("In none of these groups")
            overview: cameraRows
            onPicked: names => {
                settings.removedCameras = Array.from(names);
                settings.edited();
            }
            onClosed: removeCamera.forceActiveFocus(Qt.TabFocusReason)
        }
    }

    CheckOption {
        id: changesTime

        objectName: "changesTime"
        text: qsTr("Change the reserved time")
        Layout.fillWidth: true
        onToggled: settings.edited()
    }
    ReservedTimeField {
        id: time

        visible: changesTime.checked
        Layout.fillWidth: true
        Layout.leftMargin: Theme.huge
        onEdited: {
            message = "";
            settings.edited();
        }
        onAccepted: settings.accepted()
    }
    CheckOption {
        id: changesReserve

        objectName: "changesReserve"
        text: qsTr("Change the reserved space")
        Accessible.description: SettingWords.reservedSpace
        Layout.fillWidth: true
        onToggled: settings.edited()
    }
    RowLayout {
        visible: changesReserve.checked
        spacing: Theme.small
        Layout.fillWidth: true
        Layout.leftMargin: Theme.huge

        InputField {
            id: reserve

            property string message

            objectName: "bulkReserve"
            mistaken: message !== ""
            horizontalAlignment: TextInput.AlignRight
            inputMethodHints: Qt.ImhDigitsOnly
            Accessible.name: qsTr("Reserved space in gigabytes")
            Accessible.description: message
            Layout.preferredWidth: Theme.sized(84)
            onTextEdited: {
                message = "";
                settings.edited();
            }
            onAccepted: settings.accepted()
        }
        FieldLabel { text: qsTr("GB on") }
        ChoiceBox {
            id: reservePath

            objectName: "reservePath"
            model: settings.pathChoices(qsTr("every path of each group"))
            Accessible.name: qsTr("Paths whose reserved space is changed")
            Layout.fillWidth: true
            onActivated: settings.edited()
        }
    }
    FieldMessage {
        objectName: "bulkReserveMessage"
        text: reserve.message
        Layout.fillWidth: true
        Layout.leftMargin: Theme.huge
    }
    PathSection {
        id: pathSection

        title: qsTr("Paths to add to each group")
        needed: false
        groups: settings.groups
        groupId: ""
        proposals: settings.proposals
        keptNasPaths: []
        Layout.fillWidth: true
        Layout.topMargin: Theme.medium
        onEdited: settings.edited()
        onAccepted: settings.accepted()
        onBrowseWanted: row => settings.browseWanted(row, values()[row].path)
    }
    SectionTitle {
        text: qsTr("Path to remove")
        Layout.fillWidth: true
        Layout.topMargin: Theme.medium
    }
    ChoiceBox {
        id: removedPath

        objectName: "removedPath"
        model: settings.pathChoices(qsTr("None"))
        mistaken: removedMessage.text !== ""
        Accessible.name: qsTr("Path to remove from the groups")
        Accessible.description: removedMessage.text
        Layout.fillWidth: true
        onActivated: {
            removedMessage.text = "";
            settings.edited();
        }
    }
    FieldMessage {
        id: removedMessage

        objectName: "removedMessage"
        Layout.fillWidth: true
    }
    MemberSection {
        id: memberSection

        title: qsTr("Cameras to add to each group")
        recording: settings.recording
        session: settings.session
        wide: settings.width >= Theme.sized(600)
        streamElsewhere: camera => -1
        Layout.fillWidth: true
        Layout.topMargin: Theme.medium
        onEdited: settings.edited()
    }
    SectionTitle {
        text: qsTr("Cameras to remove")
        Layout.fillWidth: true
        Layout.topMargin: Theme.medium
    }
    Text {
        objectName: "removedCameras"
        text: settings.removedCameras.length === 0 ? qsTr("None") : settings.removedCameras.join(", ")
        color: settings.removedCameras.length === 0 ? Theme.secondaryText : Theme.text
        font.pixelSize: Theme.bodySize
        textFormat: Text.PlainText
        elide: Text.ElideRight
        Layout.fillWidth: true
    }
    RowLayout {
        spacing: Theme.small

        ActionButton {
            id: removeCamera

            objectName: "removeCamera"
            iconName: "remove"
            text: qsTr("Choose cameras…")
            hint: qsTr("Choose the cameras that are taken out of the groups")
            enabled: Object.keys(settings.recorded).length > 0
            onClicked: {
                picker.active = true; // the operator may never want it
                (picker.item as CameraPicker).ask(name => settings.recorded[name] ?? 0);
            }
        }
        ActionButton {
            objectName: "keepCameras"
            visible: settings.removedCameras.length > 0
            quiet: true
            iconName: "close"
            hint: qsTr("Remove no cameras")
            onClicked: {
                settings.removedCameras = [];
                removeCamera.forceActiveFocus(Qt.TabFocusReason);
                settings.edited();
            }
        }
    }
}
