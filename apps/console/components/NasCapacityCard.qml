import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// How full the share is that a NAS path lies in, and whether the path is used as a volume.
Rectangle {
    id: card

    required property NasVolumes volumes
    property string path
    property string serverId
    property real total: 0 ///< KB
    property real used: 0 ///< KB
    property string refusal
    property bool asking: false

    readonly property real share: total > 0 ? Math.min(1, Math.max(0, used / total)) : 0
    readonly property bool low: total > 0 && total - used < total / 10
    readonly property var volume: volumes.entries.find(entry => entry.path === path) ?? null
    readonly property int state: volume?.state ?? volumes.notUsed
    readonly property bool wide: width >= 400

    /// Shows @p newPath; the figures of another folder stay in view until the new ones come.
    function show(newPath: string, id: string): void {
        if (serverId !== id || NasPath.share(path) !== NasPath.share(newPath))
            total = used = 0;
        path = newPath;
        serverId = id;
        ask();
    }

    function ask(): void {
        if (!NasPath.inShare(path))
            return;
        refusal = "";
        asking = true;
        volumes.capacity.ask(path, serverId, false);
    }

    function answered(request: var, words: string, newTotal: real, newUsed: real): void {
        if (request.path !== path || request.serverId !== serverId)
            return;
        if (!request.asVolume)
            asking = false;
        else if (words !== "")
            return;
        refusal = words;
        total = newTotal;
        used = newUsed;
    }

    Connections {
        target: card.volumes.capacity

        function onAnswered(request: var, refusal: string, total: real, used: real): void {
            card.answered(request, refusal, total, used);
        }
    }

    implicitHeight: content.implicitHeight + 2 * Theme.medium
    radius: Theme.radius
    color: Theme.surface
    border.color: Theme.outline

    GridLayout {
        id: content

        anchors.fill: parent
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.medium
        anchors.topMargin: Theme.medium
        anchors.bottomMargin: Theme.medium
        columns: card.wide ? 2 : 1
        columnSpacing: Theme.large
        rowSpacing: Theme.medium

        ColumnLayout {
            spacing: 6
            Layout.fillWidth: true

            RowLayout {
                spacing: Theme.medium

                CapacityBar {
                    objectName: "bar"
                    share: card.share
                    low: card.low
                    Layout.fillWidth: true
                }
                Text {
                    objectName: "percent"
                    text: card.total > 0 ? Units.percent(card.share) : "–"
                    color: Theme.text
                    font.pixelSize: Theme.bodySize
                    textFormat: Text.PlainText
                    horizontalAlignment: Text.AlignRight
                    Layout.minimumWidth: 44
                }
            }
            Text {
                objectName: "figures"
                text: card.refusal !== "" ? card.refusal
                    : card.total > 0 ? qsTr("%1 free of %2").arg(Units.capacity(card.total - card.used))
                                           .arg(Units.capacity(card.total))
                    : card.asking ? qsTr("Asking for the capacity…") : qsTr("Size unknown")
                color: card.refusal !== "" ? Theme.danger : Theme.secondaryText
                font.pixelSize: Theme.captionSize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.StaticText
                Accessible.name: text
                Layout.fillWidth: true
            }
        }
        RowLayout {
            spacing: Theme.small
            Layout.alignment: Qt.AlignRight | Qt.AlignVCenter

            ActionButton {
                objectName: "capacityAgain"
                visible: card.refusal !== "" && !card.asking
                text: qsTr("Try again")
                onClicked: card.ask()
            }
            Mark {
                objectName: "volumeMark"
                visible: card.state === card.volumes.listed
                iconName: "check"
                text: qsTr("Volume")
            }
            ActionButton {
                objectName: "useAsVolume"
                visible: card.state !== card.volumes.listed
                iconName: "volume"
                text: card.state === card.volumes.asked ? qsTr("Adding…") : qsTr("Use as volume")
                hint: qsTr("List this folder among the volumes")
                enabled: card.state !== card.volumes.asked && card.volumes.session.connected
                onClicked: card.volumes.use(card.path, card.serverId)
            }
            ActionButton {
                objectName: "stopUsing"
                visible: card.state === card.volumes.listed
                quiet: true
                text: qsTr("Stop using")
                hint: qsTr("Take this folder out of the volumes again")
                onClicked: card.volumes.forget(card.path)
            }
        }
        FieldMessage {
            objectName: "volumeRefusal"
            text: card.volume !== null && card.state === card.volumes.refused
                ? qsTr("Not among the volumes: %1").arg(card.volume.refusal) : ""
            Layout.fillWidth: true
            Layout.columnSpan: content.columns
        }
    }
}
