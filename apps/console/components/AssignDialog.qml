import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// Gives recordings of no group to a recording group. It stays open until the station has moved them: a refusal stands
/// below the choice.
ConsoleDialog {
    id: dialog

    readonly property UnassignedRecordingsModel recordings: session.unassigned
    property string place
    property var takers: [] ///< as UnassignedRecordingsModel.takersOf()
    property string refusal
    property var inTheWay: [] ///< folders that the group has already
    readonly property var taker: takers[box.currentIndex] ?? null
    readonly property string volume: (recordings.valueOf(place, "volumeName") || recordings.valueOf(place, "volumePath")) ?? ""

    /// They are in @p path now, and belong to the group called @p name.
    signal done(name: string, path: string)

    function ask(where: string): void {
        if (busy) {
            open(); // on what was left
            return;
        }
        place = where;
        clear();
        takers = recordings.takersOf(place);
        box.currentIndex = takers.length === 1 ? 0 : -1;
        open();
        if (takers.length > 0)
            box.forceActiveFocus(Qt.TabFocusReason);
        else
            buttons.cancelButton.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit(): void {
        if (busy || taker === null)
            return;
        clear();
        busy = true;
        recordings.assign(place, taker.id);
    }

    function clear(): void {
        refusal = "";
        inTheWay = [];
    }

    /// The folders in the way, the first of them in full.
    function inTheWayText(): string {
        const most = 3;
        const lines = inTheWay.slice(0, most);
        if (inTheWay.length > most)
            lines.push(qsTr("and %1 more").arg(inTheWay.length - most));
        return lines.join("\n");
    }

    objectName: "assignDialog"
    title: qsTr("Give recordings to a group")
    width: Math.min(Theme.sized(520), parent.width - 2 * Theme.large)

    Connections {
        target: dialog.recordings

        function onAssigned(place: string, refusal: string, inTheWay: var, path: string): void {
            if (!dialog.busy || place !== dialog.place || dialog.endLeft(refusal))
                return;
            dialog.busy = false;
            dialog.refusal = refusal;
            dialog.inTheWay = inTheWay;
            if (refusal !== "") {
                box.forceActiveFocus(Qt.TabFocusReason);
                return;
            }
            const name = dialog.taker?.name ?? "";
            dialog.close();
            dialog.done(name, path);
        }
    }
    Connections {
        target: dialog.session.storage

        function onChanged(): void {
            if (dialog.visible && dialog.takers.length === 0)
                dialog.takers = dialog.recordings.takersOf(dialog.place);
        }
    }

    contentItem: ColumnLayout {
        spacing: Theme.small

        Text {
            objectName: "assignPlace"
            text: dialog.place
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            Layout.fillWidth: true
        }
        ChoiceBox {
            id: box

            objectName: "groupChoice"
            visible: dialog.takers.length > 0
            enabled: !dialog.busy
            model: dialog.takers
            textRole: "name"
            emptyText: qsTr("Choose a recording group")
            mistaken: dialog.refusal !== ""
            Accessible.name: qsTr("Recording group")
            Accessible.description: dialog.refusal
            Layout.fillWidth: true
            Layout.topMargin: Theme.small
            onActivated: dialog.clear()
        }
        FieldMessage {
            objectName: "assignMessage"
            text: dialog.refusal
            Layout.fillWidth: true
        }
        Text {
            objectName: "inTheWay"
            visible: text !== ""
            text: dialog.inTheWayText()
            color: Theme.secondaryText
            font.pixelSize: Theme.captionSize
            textFormat: Text.PlainText
            wrapMode: Text.WrapAnywhere
            Layout.fillWidth: true
            Layout.leftMargin: Theme.sized(16) + Theme.small
        }
        Text {
            objectName: "promise"
            text: dialog.takers.length > 0
                ? qsTr("The station moves the days of recordings into the group's folder%1. Nothing is copied and nothing is overwritten; if one day cannot be moved, all stay where they are. From then on they count as recordings of the group.")
                    .arg(dialog.taker ? qsTr(" in %1").arg(dialog.taker.path) : "")
                : dialog.session.storage.failure !== ""
                ? qsTr("Which recording groups have a path on this volume is not known: %1").arg(dialog.session.storage.failure)
                : qsTr("No recording group has a path on %1. Add a path there to a group first, on the page Recording groups.")
                    .arg(dialog.volume !== "" ? dialog.volume : qsTr("this volume"))
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Layout.fillWidth: true
            Layout.topMargin: Theme.small
        }
    }

    footer: DialogButtons {
        id: buttons

        busy: dialog.busy
        acceptable: dialog.taker !== null
        text: qsTr("Give to the group")
        busyText: qsTr("Moving…")
        onAccepted: dialog.submit()
        onRejected: dialog.close()
    }
}
