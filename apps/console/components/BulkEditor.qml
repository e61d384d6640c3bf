import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// Changes several recording groups at once, in four steps: what is to be changed; what that comes to for each group, with
/// the forecast of all of it; the sending, one group after another; and what came of each. Before anything is sent, the
/// station is asked again for its groups: what somebody else changed meanwhile is shown and not overwritten.
ConsoleDialog {
    id: editor

    required property PluginRecordingManagement recording
    required property RecordingGroups groups
    property bool groupsLoading: false ///< the station was asked for its groups
    property bool blocked: false ///< an answer to another edit of a group is outstanding
    property alias forecastMoment: forecast.moment ///< milliseconds until the station is asked

    property var ids: [] ///< of the groups that are changed
    property var change: ({}) ///< as BulkEdit takes it
    property var originals: [] // as they were when the summary was made
    property string step: "settings" // "summary", "sending" or "outcomes"
    property bool checking: false // what the groups are now is asked for before they are changed
    readonly property bool awaitsReply: sender.busy ///< the next answer to an edit of a group is for takeReply()
    property string notice // what should be known above the summary
    property string failure
    property bool dirty: false ///< something was entered that has not been sent
    property bool windowLeaves: false // closing waits for the operator
    readonly property int unchanged: originals.length - sender.rows.count ///< groups that are so already
    readonly property string countText: Units.counted(sender.rows.count, qsTr("1 group"), qsTr("%1 groups"))

    /// The station is to be asked for its groups; takeGroups() has the answer.
    signal groupsWanted
    /// The sending has begun: what takes an earlier edit back is not to be offered any more.
    signal begun
    signal ended

    function ask(groupIds: var): void {
        if (busy || sender.busy) {
            open(); // on what was left
            return;
        }
        ids = groupIds;
        originals = groups.readAll(ids);
        settings.originals = originals;
        notice = "";
        failure = "";
        step = "settings";
        proposals.refresh();
        session.refreshCameras();
        settings.reset();
        dirty = false;
        open();
        settings.takeFocus();
    }

    /// The keys of the last step's main button lead on.
    function goOn(): void {
        if (busy)
            return;
        if (step === "settings")
            review();
        else if (step === "summary")
            check();
        else
            tryAgain();
    }

    function goBack(): void {
        if (sender.busy && !sender.stopping)
            sender.stop();
        else if (checking)
            checking = busy = false;
        else if (step === "summary")
            showSettings();
        else if (step === "settings" && dirty)
            discarding.open();
        else
            close();
    }

    function showSettings(): void {
        failure = "";
        notice = "";
        step = "settings";
        forecast.clear();
        settings.takeFocus();
    }

    function review(): void {
        failure = "";
        if (!settings.check())
            return;
        change = settings.change();
        if (bulkEdit.isNothing(change)) {
            failure = qsTr("Nothing is to be changed yet: choose a setting first.");
            return;
        }
        notice = "";
        if (showPlan(groups.readAll(ids)))
            showSummary();
        else
            failure = qsTr("The groups are so already: there is nothing to change.");
    }

    /// What the change comes to for these groups; false where none of them differs.
    function showPlan(groupsNow: var): bool {
        originals = groupsNow;
        const plan = bulkEdit.plan(groupsNow, change);
        sender.show(plan);
        if (plan.length > 0)
            forecast.askAll("updateRecordingGroup", plan.map(entry => GroupEdit.parameters(entry.original, entry.request)));
        else
            forecast.clear();
        panel.editNames = plan.map(entry => entry.original.name);
        return plan.length > 0;
    }

    function showSummary(): void {
        step = "summary";
        table.list.currentIndex = 0;
        table.list.positionViewAtBeginning();
        table.list.forceActiveFocus(Qt.TabFocusReason);
    }

    /// Asks what the groups are now; they are changed when that is what the summary shows.
    function check(): void {
        if (blocked || sender.rows.count === 0)
            return;
        failure = "";
        table.list.forceActiveFocus(Qt.TabFocusReason); // the button that has it is enabled no longer
        checking = true;
        busy = true;
        groupsWanted();
    }

    /// The station has listed its groups, whoever asked; @p refusal is empty then, else it says why not.
    function takeGroups(refusal: string): void {
        if (sender.busy || (!visible && !left))
            return;
        if (refusal !== "") {
            if (checking)
                failure = qsTr("Nothing was sent: %1").arg(refusal);
            checking = busy = false;
            return;
        }
        if (step === "outcomes")
            sender.compareUnknown(id => groups.read(id));
        if (step !== "summary")
            return;
        const others = followOthers();
        if (checking && others)
            checking = busy = false;
        else if (checking)
            send();
    }

    /// Makes the summary anew where somebody else changed one of its groups; true where that was so.
    function followOthers(): bool {
        const before = new Map(originals.map(group => [group.id, bulkEdit.textOf(group)]));
        const groupsNow = groups.readAll(ids);
        const changed = groupsNow.filter(group => before.get(group.id) !== bulkEdit.textOf(group)).map(group => group.name);
        const gone = originals.filter(group => !groupsNow.some(other => other.id === group.id)).map(group => group.name);
        if (changed.length === 0 && gone.length === 0)
            return false;
        showPlan(groupsNow);
        notice = [changed.length > 0 ? qsTr("Changed by somebody else meanwhile: %1.").arg(named(changed)) : "",
                  gone.length > 0 ? qsTr("Removed by somebody else: %1.").arg(named(gone)) : "",
                  qsTr("The list shows what your change comes to now. Nothing was sent.")].filter(Boolean).join(" ");
        return true;
    }

    function named(names: var): string {
        const most = 3;
        return names.slice(0, most).join(", ") + (names.length > most ? qsTr(" and %1 more").arg(names.length - most) : "");
    }

    function send(): void {
        checking = false;
        busy = true;
        notice = "";
        forecast.clear();
        step = "sending";
        begun();
        sender.start();
    }

    function finish(): void {
        busy = false;
        dirty = false;
        step = "outcomes";
        sender.raiseFailed();
        table.list.currentIndex = 0;
        table.list.positionViewAtBeginning();
        if (!endLeft(sender.failureText()))
            table.list.forceActiveFocus(Qt.TabFocusReason);
        ended();
    }

    /// What failed is planned anew, by what the groups are now.
    function tryAgain(): void {
        if (sender.failedCount === 0 || groupsLoading)
            return;
        ids = sender.failedIds();
        failure = "";
        notice = "";
        if (showPlan(groups.readAll(ids)))
            showSummary();
        else
            close(); // they are gone, or as wanted
    }

    /// The station answered an edit of a recording group.
    function takeReply(success: bool, errors: var): void {
        sender.take(success, errors);
    }

    function outcomeText(): string {
        const counts = sender.counts;
        if (sender.failedCount === 0)
            return Units.counted(counts[sender.done] ?? 0, qsTr("1 group is changed."), qsTr("%1 groups are changed."));
        const words = [[sender.done, qsTr("%1 changed")], [sender.refused, qsTr("%1 refused")],
                       [sender.unknown, qsTr("%1 unknown")], [sender.changed, qsTr("%1 changed by somebody else")],
                       [sender.unsent, qsTr("%1 not sent")]];
        return words.filter(entry => counts[entry[0]] > 0).map(entry => entry[1].arg(counts[entry[0]])).join(" · ");
    }

    objectName: "bulkEditor"
    title: step === "outcomes" ? qsTr("Outcome") : Units.counted(ids.length, qsTr("Edit 1 recording group"), qsTr("Edit %1 recording groups"))
    subject: Units.counted(sender.rows.count, qsTr("The change of 1 recording group"), qsTr("The change of %1 recording groups"))
    width: Math.min(Theme.sized(720), parent.width - 2 * Theme.large)
    height: step === "settings" ? Math.min(implicitHeight, room) : room
    closePolicy: Popup.NoAutoClose // Esc asks
    rightPadding: Theme.tiny
    bottomPadding: Theme.medium
    onClosed: {
        forecast.clear();
        proposals.stop();
    }

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
            onChosen: path => settings.setPath(row, path)
        }
    }
    BulkEdit { id: bulkEdit }
    GroupForecast {
        id: forecast

        session: editor.session
    }
    PathProposals {
        id: proposals

        session: editor.session
        onChanged: {
            if (editor.visible && editor.step === "settings")
                settings.propose();
        }
    }
    BulkSender {
        id: sender

        recording: editor.recording
        session: editor.session
        onFinished: {
            stopSending.close();
            editor.finish();
        }
        onCurrentChanged: {
            if (current >= 0 && !followLater.running)
                followLater.start();
        }
    }
    Timer {
        id: followLater // not for each of those that come quickly

        interval: 50
        onTriggered: {
            if (sender.current < 0)
                return;
            table.list.currentIndex = sender.current;
            table.list.forceLayout();
            table.list.positionViewAtIndex(sender.current, ListView.Center);
        }
    }
    Connections {
        target: editor.session

        function onGroupEdited(groupId: string): void {
            sender.noteEdited(groupId);
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
    DiscardDialog {
        id: stopSending

        parent: editor.parent
        objectName: "stopSendingDialog"
        title: qsTr("Stop changing recording groups?")
        explanation: qsTr("%1 of %2 are answered. What was sent goes on; the others stay as they are.").arg(sender.answered).arg(editor.countText)
        discardText: qsTr("Close the console")
        keepText: qsTr("Go on")
        onDiscarded: {
            sender.stop();
            editor.contentItem.Window.window.close();
        }
    }
    Connections {
        target: editor.contentItem.Window.window

        function onClosing(close: var): void {
            if (sender.busy && !sender.stopping) {
                close.accepted = false;
                stopSending.open();
                return;
            }
            if (!editor.visible || !editor.dirty || editor.busy)
                return;
            close.accepted = false;
            editor.windowLeaves = true;
            discarding.open();
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.medium
        Keys.onEscapePressed: editor.goBack()

        ErrorStrip {
            objectName: "bulkStrip"
            text: editor.failure
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
            onDismissed: editor.failure = ""
        }
        ErrorStrip {
            objectName: "bulkNotice"
            notice: true
            text: editor.step !== "summary" ? ""
                : editor.blocked ? qsTr("Another change of a recording group is under way. This one can be sent when it is answered.")
                : editor.notice
            closable: !editor.blocked
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
            onDismissed: editor.notice = ""
        }
        BulkSettings {
            id: settings

            objectName: "bulkSettings"
            visible: editor.step === "settings"
            recording: editor.recording
            session: editor.session
            groups: editor.groups
            proposals: proposals
            Layout.fillWidth: true
            Layout.fillHeight: true
            onEdited: editor.dirty = true
            onAccepted: editor.goOn()
            onBrowseWanted: (row, path) => {
                browser.active = true; // most edits need none
                (browser.item as FolderDialog).askFor(row, path);
            }
        }
        Text {
            objectName: "bulkSummary"
            visible: editor.step !== "settings"
            text: editor.step === "outcomes" ? editor.outcomeText()
                : editor.step === "sending" ? qsTr("%1 of %2 answered").arg(sender.answered).arg(sender.rows.count)
                : editor.unchanged > 0 ? qsTr("%1 will change; %2 so already.").arg(editor.countText)
                      .arg(Units.counted(editor.unchanged, qsTr("1 is"), qsTr("%1 are")))
                : qsTr("%1 will change.").arg(editor.countText)
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
        }
        Rectangle {
            objectName: "bulkProgress"
            visible: editor.step === "sending"
            implicitHeight: 8
            radius: 4
            color: Theme.track
            border.color: Theme.controlOutline
            Accessible.role: Accessible.ProgressBar
            Accessible.name: qsTr("%1 of %2 answered").arg(sender.answered).arg(sender.rows.count)
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny

            Rectangle {
                width: parent.width * sender.answered / Math.max(1, sender.rows.count)
                height: parent.height
                radius: 4
                color: Theme.accent
            }
        }
        BulkList {
            id: table

            visible: editor.step !== "settings"
            sender: sender
            outcomes: editor.step === "sending" || editor.step === "outcomes"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: Theme.sized(64)
            Layout.rightMargin: Theme.huge - Theme.tiny
        }
        ForecastPanel {
            id: panel

            objectName: "forecast"
            visible: editor.step === "summary" && lines.length > 0
            forecast: forecast
            session: editor.session
            differences: []
            changed: editor.step === "summary"
            longest: Math.max(60, Math.min(160, editor.parent.height * 0.2))
            Layout.fillWidth: true
            Layout.rightMargin: Theme.huge - Theme.tiny
        }
    }

    footer: DialogButtons {
        Keys.onEscapePressed: editor.goBack()
        busy: editor.busy
        acceptable: editor.step === "settings" ? true
            : editor.step === "summary" ? sender.rows.count > 0 && !editor.blocked && editor.session.connected
            : sender.failedCount > 0 && !editor.groupsLoading
        text: editor.step === "settings" ? qsTr("Review…")
            : editor.step === "summary" ? qsTr("Change %1").arg(editor.countText)
            : sender.failedCount === 0 ? qsTr("Try again") : qsTr("Try %1 again").arg(sender.failedCount)
        busyText: editor.checking ? qsTr("Checking…") : sender.stopping ? qsTr("Cancelling…") : qsTr("Changing…")
        cancelText: editor.step === "settings" ? qsTr("Cancel") : editor.step === "summary" ? qsTr("Back") : qsTr("Close")
        leaveText: editor.checking || !sender.stopping ? qsTr("Cancel") : qsTr("Leave")
        leaveHint: editor.checking ? qsTr("Do not change the groups")
            : !sender.stopping ? qsTr("What was sent is finished; nothing more is sent.")
            : qsTr("Close this. What was sent goes on, and what comes of it is shown.")
        onAccepted: editor.goOn()
        onRejected: editor.goBack()
    }
}
