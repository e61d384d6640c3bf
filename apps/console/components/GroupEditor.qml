import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Adds a recording group or changes one. It stays open until the station has taken the group: what is refused is said
/// at the field it is about, and nothing that was entered is lost. While it is edited, the station forecasts what it would
/// do; that never keeps anybody from sending it.
ConsoleDialog {
    id: editor

    required property PluginRecordingManagement recording
    required property RecordingGroups groups
    property int revision: 0 ///< counts the refreshes of the plug-in's groups
    property alias forecastMoment: forecast.moment ///< milliseconds without an edit before the station is asked

    property var group: null ///< as RecordingGroups.read() gave it; null for a new one
    property var sent: null ///< the request under way, see GroupEdit
    property string failure ///< what belongs to no field
    property string initial // what was entered when it opened
    property bool dirty: false ///< something was changed that has not been sent
    property bool windowLeaves: false // closing waits for the operator
    property var differences: [] // from the group as it is

    /// The station took @p request, as GroupEdit makes it, for @p group; null for a new one.
    signal taken(group: var, request: var)

    function ask(groupOrNull: var): void {
        if (busy) {
            open(); // on what was left
            return;
        }
        group = groupOrNull;
        show({ name: group?.name ?? "", reservedTime: group?.reservedTime ?? 0,
               paths: group ? GroupEdit.pathRows(group) : [GroupEdit.newPathRow("", -1)],
               members: group ? GroupEdit.memberRows(group) : [] });
        begin();
    }

    /// The same, and @p path is added: at once the first path of a new group, else a new one of the group.
    function askWithPath(groupOrNull: var, path: string): void {
        const wasBusy = busy;
        ask(groupOrNull);
        if (!wasBusy)
            pathSection.record(path);
    }

    function show(edited: var): void {
        clearMessages();
        nameField.text = edited.name;
        timeField.show(edited.reservedTime);
        proposals.refresh();
        pathSection.show(edited.paths);
        memberSection.show(edited.members);
        session.refreshCameras();
        form.contentY = 0;
        windowLeaves = false;
        open();
        nameField.forceActiveFocus();
        nameField.selectAll();
    }

    /// A copy: the rows themselves change with the next edit.
    function entry(): var {
        const edited = entered();
        const paths = edited.paths.map(row => ({ path: row.path, kind: row.kind, reserve: row.reserve,
                                                 recovery: row.recovery, message: "", reserveWrong: false }));
        const members = edited.members.map(GroupEdit.memberFrom);
        return { group: group, edited: { name: edited.name, reservedTime: edited.reservedTime, paths: paths, members: members } };
    }

    /// On the group as it is now.
    function resume(draft: var): void {
        const before = draft.entry.group;
        group = before ? groups.read(before.id) ?? before : null;
        show(draft.entry.edited);
        failure = draft.refusal;
        initial = ""; // none of it is saved
        follow();
    }

    function submit(): void {
        if (busy)
            return;
        clearMessages();
        if (!check()) {
            showFirstMessage();
            return;
        }
        const request = requestFor(entered());
        if (group && GroupEdit.isEmpty(request)) {
            close();
            return;
        }
        sent = request;
        busy = true;
        const isSent = group
            ? recording.updateRecordingGroup(group.id, request.addMembers, request.removeMembers, request.addPaths,
                                             request.removePaths, request.setPaths, request.info)
            : recording.addRecordingGroupWithCompleteInfo(request.info, request.paths, request.members);
        if (!isSent)
            refuse([], session.unsentText());
    }

    /// The station took what was sent.
    function finish(): void {
        if (!endLeft("")) {
            busy = false;
            close();
        }
        taken(group, sent);
    }

    function entered(): var {
        return { name: nameField.text, reservedTime: timeField.minutes(), paths: pathSection.values(),
                 members: memberSection.values() };
    }

    function requestFor(edited: var): var {
        return group ? GroupEdit.changes(group, edited) : GroupEdit.newGroup(edited);
    }

    /// What is entered now is where the edit begins.
    function begin(): void {
        const edited = entered();
        initial = textOf(edited);
        take(edited, initial);
    }

    function textOf(edited: var): string {
        return JSON.stringify([edited.name, String(edited.reservedTime),
                               edited.paths.map(row => [row.path, row.kind, row.reserve, row.recovery]),
                               edited.members.map(GroupEdit.memberFrom)]);
    }

    /// Something was edited.
    function follow(): void {
        const edited = entered();
        take(edited, textOf(edited));
    }

    /// @param text of what is entered, which takes a while to make of a thousand cameras
    function take(edited: var, text: string): void {
        dirty = text !== initial;
        const request = dirty ? requestFor(edited) : null;
        differences = group && dirty ? groupDifferences.list(group, edited, request) : [];
        panel.changed = group ? differences.length > 0 : dirty;
        panel.held = !GroupEdit.isComplete(group, edited) ? qsTr("Shown as soon as nothing is missing.")
            : pathSection.isTypingNas() ? qsTr("Shown as soon as you leave the field: a NAS server has to be asked.") : "";
        if (panel.changed && panel.held === "")
            forecast.ask(group ? "updateRecordingGroup" : "addRecordingGroupWithCompleteInfo",
                         GroupEdit.parameters(group, request));
        else
            forecast.clear();
    }

    /// Closes it; asks first where something would be lost. What was sent already goes on.
    function leave(): void {
        if (dirty && !busy)
            discarding.open();
        else
            close();
    }

    /// Shows a refusal. @p errors says what was refused and where; where it is empty, @p reason says why.
    function refuse(errors: var, reason: string): void {
        if (endLeft(errors.length > 0 ? words(errors) : reason))
            return;
        busy = false;
        const places = GroupEdit.place(errors, sent?.sources ?? {});
        nameField.message = words(places.name);
        timeField.message = words(places.time);
        pathSection.showMessages(places.paths, words);
        memberSection.showMessages(places.members, words);
        const other = places.other.map(error => error.value ? qsTr("%1: %2").arg(error.value).arg(words([error]))
                                                            : words([error]));
        failure = errors.length > 0 ? other.join("\n") : reason;
        showFirstMessage();
    }

    function words(errors: var): string {
        return GroupEdit.errorWords(errors, session);
    }

    /// Only what the plug-in would refuse without a word. True when there is nothing of that kind.
    function check(): bool {
        nameField.message = nameField.text.trim() === "" ? qsTr("Enter a name.") : "";
        timeField.message = isNaN(timeField.minutes()) ? qsTr("Enter a whole number, 1 or more, that is not too long.") : "";
        const pathsRight = pathSection.check(group);
        const membersRight = memberSection.check();
        return pathsRight && membersRight && nameField.message === "" && timeField.message === "";
    }

    function clearMessages(): void {
        failure = "";
        nameField.message = "";
        timeField.message = "";
        pathSection.clearMessages();
        memberSection.clearMessages();
    }

    function showFirstMessage(): void {
        if (failure !== "")
            form.contentY = 0;
        if (nameField.message !== "")
            nameField.forceActiveFocus();
        else if (timeField.message !== "")
            timeField.takeFocus();
        else if (!pathSection.focusMessage() && !memberSection.focusMessage())
            nameField.forceActiveFocus();
    }

    objectName: "groupEditor"
    title: group ? qsTr("Edit %1").arg(group.name) : qsTr("New recording group")
    width: Math.min(Theme.sized(720), parent.width - 2 * Theme.large)
    closePolicy: busy ? Popup.CloseOnEscape : Popup.NoAutoClose // before, Esc asks
    onClosed: {
        forecast.clear();
        proposals.stop();
    }
    rightPadding: Theme.tiny
    bottomPadding: Theme.medium

    Loader {
        id: browser

        active: false
        visible: false
        sourceComponent: FolderDialog {
            property int row: 0

            function askFor(index: int, path: string): void {
                row = index;
                ask(path);
            }

            parent: editor.parent
            recording: editor.recording
            session: editor.session
            onChosen: path => pathSection.change(row, "path", path)
        }
    }
    GroupDifferences { id: groupDifferences }
    GroupForecast {
        id: forecast

        session: editor.session
    }
    PathProposals {
        id: proposals

        session: editor.session
        onChanged: {
            const untouched = !editor.dirty;
            if (editor.visible && pathSection.propose()) {
                if (untouched)
                    editor.begin();
                else
                    editor.follow();
            }
        }
    }
    Connections {
        target: editor.contentItem.Window.window

        function onClosing(close: var): void {
            if (!editor.visible || !editor.dirty || editor.busy)
                return;
            close.accepted = false;
            editor.windowLeaves = true;
            editor.leave();
        }
    }
    DiscardDialog {
        id: discarding

        parent: editor.parent
        onDiscarded: {
            const window = editor.contentItem.Window.window;
            editor.dirty = false;
            editor.close();
            if (editor.windowLeaves)
                window.close();
        }
        onClosed: editor.windowLeaves = false
    }

    contentItem: ColumnLayout {
        spacing: Theme.medium
        Keys.onEscapePressed: editor.leave()

        ErrorStrip {
            objectName: "editorStrip"
            text: editor.failure
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
            onDismissed: editor.failure = ""
        }
        FormPane {
            id: form

            objectName: "editorContent"
            editable: !editor.busy
            Layout.fillWidth: true
            Layout.fillHeight: true

            SectionTitle {
                text: qsTr("Name")
                Layout.fillWidth: true
            }
            InputField {
                id: nameField

                property string message

                objectName: "groupNameField"
                mistaken: message !== ""
                placeholderText: qsTr("Name of the recording group")
                Accessible.description: message
                Layout.fillWidth: true
                onTextEdited: {
                    message = "";
                    editor.follow();
                }
                onAccepted: editor.submit()
            }
            FieldMessage {
                objectName: "nameMessage"
                text: nameField.message
                Layout.fillWidth: true
            }
            SectionTitle {
                text: qsTr("Reserved time")
                Layout.fillWidth: true
                Layout.topMargin: Theme.medium
            }
            ReservedTimeField {
                id: timeField

                Layout.fillWidth: true
                onEdited: {
                    message = "";
                    editor.follow();
                }
                onAccepted: editor.submit()
            }
            PathSection {
                id: pathSection

                groups: editor.groups
                groupId: editor.group?.id ?? ""
                proposals: proposals
                keptNasPaths: (editor.group?.paths ?? []).filter(path => path.nas).map(path => path.path)
                Layout.fillWidth: true
                Layout.topMargin: Theme.medium
                onAccepted: editor.submit()
                onEdited: editor.follow()
                onBrowseWanted: row => {
                    browser.active = true; // most edits need none
                    (browser.item as FolderDialog).askFor(row, pathSection.values()[row].path);
                }
            }
            MemberSection {
                id: memberSection

                recording: editor.recording
                session: editor.session
                wide: editor.width >= Theme.sized(600)
                streamElsewhere: camera => (editor.revision, camera === "") ? -1
                    : editor.recording.streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(
                          camera, editor.group?.id ?? "", editor.group?.relayPath ?? "")
                Layout.fillWidth: true
                Layout.topMargin: Theme.medium
                onEdited: editor.follow()
            }
        }
        ForecastPanel {
            id: panel

            objectName: "forecast"
            forecast: forecast
            session: editor.session
            differences: editor.differences
            longest: Math.max(Theme.sized(60), Math.min(Theme.sized(120), editor.parent.height * 0.15))
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
        }
    }

    footer: DialogButtons {
        Keys.onEscapePressed: editor.leave()
        busy: editor.busy
        text: editor.group ? qsTr("Save") : qsTr("Add")
        busyText: editor.group ? qsTr("Saving…") : qsTr("Adding…")
        onAccepted: editor.submit()
        onRejected: editor.leave()
    }
}
