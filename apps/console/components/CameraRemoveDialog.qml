import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Asks before cameras are removed, shows how far that is, and lets the rest be left. What the station refused stands
/// in it.
ConsoleDialog {
    id: dialog

    required property StationCameras cameras
    property var names: [] ///< to remove
    property var kept: [] ///< that were chosen too, and that recording groups still record
    property int done: 0
    property var refusals: [] ///< maps: "name" and "text"
    readonly property int mostRefusals: 5 ///< that are listed

    /// The answer is complete, and @p count cameras are gone.
    signal removed(count: int)

    /// @param recorded those of @p chosen that a recording group records: the station would refuse them
    function ask(chosen: var, recorded: var): void {
        names = chosen.filter(name => !recorded.includes(name));
        kept = recorded;
        done = 0;
        refusals = [];
        busy = false;
        open();
        buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit(): void {
        if (busy || names.length === 0)
            return;
        done = 0;
        refusals = [];
        busy = cameras.remove(names);
    }

    function cancel(): void {
        if (busy && cameras.toRemove > 1)
            cameras.cancelRemoval();
        else
            close();
    }

    function quoted(list: var): string {
        return list.map(name => qsTr("“%1”").arg(name)).join(", ");
    }

    objectName: "cameraRemoveDialog"
    title: names.length > 1 ? qsTr("Remove %1 cameras").arg(names.length) : qsTr("Remove camera")
    width: Math.min(Theme.sized(480), parent.width - 2 * Theme.large)

    Connections {
        target: dialog.cameras

        function onRemoved(name: string, refusal: string): void {
            if (!dialog.busy)
                return;
            if (refusal === "")
                ++dialog.done;
            else
                dialog.refusals = dialog.refusals.concat([{ name: name, text: refusal }]);
        }
        function onRemovalEnded(): void {
            if (!dialog.busy)
                return;
            if (dialog.done > 0)
                dialog.removed(dialog.done);
            if (dialog.endLeft(dialog.refusals.map(refusal => qsTr("%1: %2").arg(refusal.name).arg(refusal.text)).join(" ")))
                return;
            dialog.busy = false;
            if (dialog.refusals.length === 0)
                dialog.close();
            else
                dialog.names = dialog.refusals.map(refusal => refusal.name);
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.medium

        Text {
            objectName: "question"
            text: dialog.busy ? qsTr("%1 of %2 are removed.").arg(dialog.done).arg(dialog.names.length)
                : dialog.names.length === 0 ? qsTr("Recording groups record what was chosen. Take the cameras out of the groups first.")
                : dialog.names.length <= 3 ? qsTr("Remove %1?").arg(dialog.quoted(dialog.names))
                : qsTr("Remove %1 and %2 more?").arg(dialog.quoted(dialog.names.slice(0, 2))).arg(dialog.names.length - 2)
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Layout.fillWidth: true
        }
        Text {
            objectName: "keptCameras"
            visible: dialog.kept.length > 0 && dialog.names.length > 0
            text: qsTr("%1 more were chosen and stay: recording groups record them.").arg(dialog.kept.length)
            color: Theme.warning
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Text {
            objectName: "promise"
            visible: dialog.names.length > 0
            text: qsTr("Recorded files stay on the disk.")
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        ErrorStrip {
            objectName: "removeStrip"
            closable: false
            text: dialog.busy ? "" : dialog.refusals.slice(0, dialog.mostRefusals)
                      .map(refusal => qsTr("%1: %2").arg(refusal.name).arg(refusal.text))
                      .concat(dialog.refusals.length > dialog.mostRefusals
                              ? [qsTr("%1 more were refused.").arg(dialog.refusals.length - dialog.mostRefusals)] : [])
                      .join("\n")
            Layout.fillWidth: true
        }
    }

    footer: DialogButtons {
        id: buttons

        busy: dialog.busy
        cancelText: dialog.names.length === 0 ? qsTr("Close") : qsTr("Cancel")
        leaveText: dialog.cameras.toRemove > 1 ? qsTr("Leave the rest") : qsTr("Leave")
        acceptable: dialog.names.length > 0
        text: qsTr("Remove")
        busyText: qsTr("Removing…")
        onAccepted: dialog.submit()
        onRejected: dialog.cancel()
    }
}
