import QtQuick
import RecordingConsole

/// Asks before a NAS server is removed.
RemoveDialog {
    id: dialog

    property string serverId
    property string host
    property int volumes: 0 ///< paths of the server that are used as volumes

    function ask(id: string, name: string, usedPaths: int): void {
        if (!busy) {
            serverId = id;
            host = name;
            volumes = usedPaths;
        }
        begin();
    }

    objectName: "nasRemoveDialog"
    title: qsTr("Remove NAS server")
    subject: qsTr("Remove “%1”").arg(host)
    question: qsTr("Remove “%1”? The station forgets this NAS server and its password.").arg(host)
        + (volumes === 0 ? "" : " " + (volumes === 1
            ? qsTr("One of its folders is used as a volume and is listed as one no longer.")
            : qsTr("%1 of its folders are used as volumes and are listed as such no longer.").arg(volumes)))
    promise: qsTr("The files on it stay as they are.")
}
