import QtQuick
import QtQuick.Layouts
import RecordingConsole

/// A path of a recording group: what is reserved there, and the volume it lies on.
ColumnLayout {
    id: row

    required property int index
    required property var modelData ///< a path of RecordingGroups.read()
    required property RecordingGroups groups
    required property string groupId
    readonly property var volume: (groups.storage.volumes, groups.volumes,
                                   groups.volumeOf(modelData.path, modelData.nas))
    required property bool wide
    readonly property string reserveText: modelData.reserve > 0
        ? qsTr("%1 reserved").arg(Units.capacity(modelData.reserve * 1024)) : qsTr("Nothing reserved")
    readonly property var marks: (modelData.recovery ? [{ text: qsTr("Recovery"), iconName: "refresh" }] : []).concat(
        modelData.nas ? [{ text: qsTr("NAS"), iconName: "network" }] : [{ text: qsTr("Local"), iconName: "volume" }])

    objectName: "path:" + modelData.path
    spacing: Theme.tiny
    Accessible.role: Accessible.ListItem
    Accessible.name: [modelData.path].concat(marks.map(mark => mark.text), [reserveText, figures.summary()]).join(", ")

    Rectangle {
        visible: row.index > 0
        implicitHeight: 1
        color: Theme.outline
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.small
    }
    Item {
        implicitHeight: Math.max(drawing.height, pathText.implicitHeight, markRow.visible ? markRow.implicitHeight : 0)
        Layout.fillWidth: true

        Icon {
            id: drawing

            anchors.verticalCenter: parent.verticalCenter
            name: row.modelData.nas ? "network" : "folder"
            color: Theme.accent
            size: Theme.sized(22)
        }
        Text {
            id: pathText

            objectName: "path"
            anchors.left: drawing.right
            anchors.leftMargin: Theme.medium
            anchors.right: markRow.visible ? markRow.left : parent.right
            anchors.rightMargin: markRow.visible ? Theme.medium : 0
            anchors.verticalCenter: parent.verticalCenter
            text: row.modelData.path
            color: Theme.text
            font.pixelSize: Theme.bodySize
            textFormat: Text.PlainText
            elide: Text.ElideMiddle

            HoverHandler { id: pathHover }
            ConsoleToolTip {
                visible: pathHover.hovered && pathText.truncated
                text: pathText.text
            }
        }
        MarkRow {
            id: markRow

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: row.wide
            marks: row.marks
        }
    }
    Text {
        objectName: "reserve"
        text: row.wide ? row.reserveText : row.reserveText + row.marks.map(mark => " · " + mark.text).join("")
        color: Theme.text
        font.pixelSize: Theme.captionSize
        textFormat: Text.PlainText
        Layout.leftMargin: Theme.sized(22) + Theme.medium
        Layout.fillWidth: true
    }
    VolumeFigures {
        id: figures

        objectName: "volume"
        volume: row.volume
        parts: row.groups.storage.parts(row.volume, row.groupId)
        groupId: row.groupId
        forGroup: true
        room: row.width - Theme.sized(22) - Theme.medium
        wide: room >= Theme.sized(640)
        Layout.leftMargin: Theme.sized(22) + Theme.medium
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.small
    }
}
