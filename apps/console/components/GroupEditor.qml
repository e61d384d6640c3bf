import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Adds a recording group or changes one. It stays open until the station has taken the group: what is refused is said
/// at the field it is about, and nothing that was entered is lost.
ConsoleDialog {
    id: editor

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    required property var volumes
    property int revision: 0 ///< counts the refreshes of the plug-in's groups

    property var group: null ///< as RecordingGroups.read() gave it; null for a new one
    property var sources: ({}) ///< of the request under way, see GroupEdit
    property string failure ///< what belongs to no field

    function ask(groupOrNull: var): void {
        group = groupOrNull;
        busy = false;
        clearMessages();
        nameField.text = group?.name ?? "";
        timeField.show(group?.reservedTime ?? 0);
        pathSection.show(group ? GroupEdit.pathRows(group) : [GroupEdit.emptyPathRow(volumes[0]?.path ?? "")]);
        memberSection.show(group ? GroupEdit.memberRows(group) : []);
        session.refreshCameras();
        flickable.contentY = 0;
        open();
        nameField.forceActiveFocus();
        nameField.selectAll();
    }

    function submit(): void {
        if (busy)
            return;
        clearMessages();
        if (!check()) {
            showFirstMessage();
            return;
        }
        const edited = { name: nameField.text, reservedTime: timeField.minutes, paths: pathSection.values(),
                         members: memberSection.values() };
        const request = group ? GroupEdit.changes(group, edited) : GroupEdit.newGroup(edited);
        if (group && GroupEdit.isEmpty(request)) {
            close();
            return;
        }
        sources = request.sources;
        busy = true;
        const sent = group
            ? recording.updateRecordingGroup(group.id, request.addMembers, request.removeMembers, request.addPaths,
                                             request.removePaths, request.setPaths, request.info)
            : recording.addRecordingGroupWithCompleteInfo(request.info, request.paths, request.members);
        if (!sent)
            refuse([], qsTr("The request could not be sent."));
    }

    /// Shows a refusal. @p errors says what was refused and where; where it is empty, @p reason says why.
    function refuse(errors: var, reason: string): void {
        busy = false;
        const places = GroupEdit.place(errors, sources);
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
        const sentences = errors.map(error => [error.returnCode, error.reason ?? ""].filter(Boolean)
                                                  .map(code => session.refusalText(code)).join(" "));
        return sentences.filter((sentence, index) => sentences.indexOf(sentence) === index).join(" ");
    }

    /// Only what the plug-in would refuse without a word. True when there is nothing of that kind.
    function check(): bool {
        nameField.message = nameField.text.trim() === "" ? qsTr("Enter a name.") : "";
        timeField.message = isNaN(timeField.minutes) ? qsTr("Enter a whole number, 1 or more, that is not too long.") : "";
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
            flickable.contentY = 0;
        if (nameField.message !== "")
            nameField.forceActiveFocus();
        else if (timeField.message !== "")
            timeField.takeFocus();
        else if (!pathSection.focusMessage() && !memberSection.focusMessage())
            nameField.forceActiveFocus();
    }

    objectName: "groupEditor"
    title: group ? qsTr("Edit %1").arg(group.name) : qsTr("New recording group")
    width: Math.min(680, parent.width - 2 * Theme.large)
    height: Math.min(implicitHeight, parent.height - 2 * Theme.large)
    rightPadding: Theme.tiny
    bottomPadding: Theme.medium

    contentItem: ColumnLayout {
        spacing: Theme.medium

        ErrorStrip {
            objectName: "editorStrip"
            text: editor.failure
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
            onDismissed: editor.failure = ""
        }
        Flickable {
            id: flickable

            readonly property Item focusItem: Window.activeFocusItem

            objectName: "editorContent"
            clip: true
            implicitHeight: contentHeight
            contentWidth: width
            contentHeight: Math.ceil(content.implicitHeight) + 1 // the frame of the last button
            boundsBehavior: Flickable.StopAtBounds
            Layout.fillWidth: true
            Layout.fillHeight: true
            onFocusItemChanged: scrollLater.restart()
            onContentHeightChanged: scrollLater.restart()

            function bringIntoView(): void {
                let ancestor = focusItem;
                while (ancestor && ancestor !== content)
                    ancestor = ancestor.parent;
                if (!ancestor)
                    return;
                const place = focusItem.mapToItem(content, 0, 0, focusItem.width, focusItem.height);
                const margin = Theme.huge;
                contentY = Math.max(0, Math.min(contentHeight - height,
                                                Math.max(Math.min(contentY, place.y - margin),
                                                         place.y + place.height + margin - height)));
            }

            ScrollBar.vertical: ScrollMark { flickable: flickable }

            Timer {
                id: scrollLater // when the rows have their places

                interval: 0
                onTriggered: flickable.bringIntoView()
            }

            ColumnLayout {
                id: content

                width: parent.width - Theme.huge + Theme.tiny
                enabled: !editor.busy
                spacing: Theme.small

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
                    onTextEdited: message = ""
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
                    onEdited: message = ""
                    onAccepted: editor.submit()
                }
                PathSection {
                    id: pathSection

                    volumes: editor.volumes
                    keptNasPaths: (editor.group?.paths ?? []).filter(path => path.nas).map(path => path.path)
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.medium
                    onAccepted: editor.submit()
                }
                MemberSection {
                    id: memberSection

                    cameras: editor.session.cameras
                    wide: editor.width >= 600
                    streamElsewhere: camera => (editor.revision, camera === "") ? -1
                        : editor.recording.streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(
                              camera, editor.group?.id ?? "", editor.group?.relayPath ?? "")
                    Layout.fillWidth: true
                    Layout.topMargin: Theme.medium
                }
            }
        }
    }

    footer: DialogButtons {
        busy: editor.busy
        text: editor.group ? qsTr("Save") : qsTr("Add")
        busyText: editor.group ? qsTr("Saving…") : qsTr("Adding…")
        onAccepted: editor.submit()
        onRejected: editor.close()
    }
}
