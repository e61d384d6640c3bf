import QtQuick
import RecordingConsole

/// Asks before a recording group is removed.
RemoveDialog {
    id: dialog

    property string groupId
    property string groupName
    property string partsRefusal // of the parts so far

    /// The answer is complete, and the group gone.
    signal removed

    function ask(group: var): void {
        if (!busy) {
            groupId = group.id;
            groupName = group.name;
        }
        begin();
    }

    /// Takes a part of the answer: @p words say why it is a refusal, empty when it is none.
    function takePart(words: string, finish: bool): void {
        partsRefusal = partsRefusal || words;
        if (!finish)
            return;
        if (partsRefusal !== "") {
            refuse(partsRefusal);
            return;
        }
        done();
        removed();
    }

    objectName: "removeGroupDialog"
    title: qsTr("Remove recording group")
    subject: qsTr("Remove “%1”").arg(groupName)
    question: qsTr("Remove “%1”? Its cameras are recorded by this group no longer.").arg(groupName)
    promise: qsTr("Recorded files stay on the disk.")
    onBusyChanged: {
        if (busy)
            partsRefusal = "";
    }
}
