import QtQuick
import RecordingConsole

/// Offers what was entered in a dialog again: its request was refused after the dialog was left.
PageStrip {
    required property ConsoleDialog dialog
    property string keptText: qsTr("What you entered is kept.")
    readonly property var draft: dialog.drafts[0] ?? null

    objectName: "draftStrip"
    text: draft === null ? "" : qsTr("%1: %2 %3").arg(draft.subject).arg(draft.refusal).arg(keptText)
    actionText: qsTr("Edit again")
    onActionTriggered: dialog.resumeFirst()
    onDismissed: dialog.forgetFirst()
}
