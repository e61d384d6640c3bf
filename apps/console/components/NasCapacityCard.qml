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

    /// Of the share: as the station tells it where a recording group records there, else as it answered just now.
    readonly property var figures: {
        const told = (volumes.session.storage.volumes, volumes.session.storage.holding(path, true));
        if (told.size > 0)
            return told;
        return total > 0 ? { size: total * 1024, free: Math.max(0, total - used) * 1024, unknownBytes: used * 1024 }
                         : { size: -1, free: -1 };
    }
    readonly property var volume: volumes.entries.find(entry => entry.path === path) ?? null
    readonly property int state: volume?.state ?? volumes.notUsed
    readonly property bool wide: width >= Theme.sized(400)

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

            VolumeBar {
                objectName: "bar"
                parts: card.volumes.session.storage.parts(card.figures)
                size: card.figures.size
                Layout.fillWidth: true
            }
            Text {
                objectName: "figures"
                text: card.refusal !== "" ? card.refusal
                    : card.figures.size > 0 ? qsTr("%1 free of %2 · %3").arg(Units.bytes(card.figures.free))
                        .arg(Units.bytes(card.figures.size)).arg(Units.percent(card.figures.free / card.figures.size))
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
