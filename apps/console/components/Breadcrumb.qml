import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole

/// The way to a folder, at first from the list of the volumes; each step leads there. Where it is too long, the end stays in view.
Control {
    id: breadcrumb

    required property string folder
    property var steps: FolderPath.steps(folder) ///< maps with "name" and "path"

    signal opened(path: string)

    implicitHeight: Theme.controlHeight
    horizontalPadding: Theme.small
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Path %1").arg(folder === "" ? qsTr("Volumes") : folder)

    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border.color: Theme.outline
    }
    contentItem: Flickable {
        contentWidth: row.width
        contentHeight: height
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        contentX: Math.max(0, contentWidth - width)

        Row {
            id: row

            height: breadcrumb.availableHeight

            Repeater {
                id: crumbs

                model: breadcrumb.steps

                Row {
                    id: step

                    required property int index
                    required property var modelData
                    readonly property bool last: index === crumbs.count - 1

                    height: row.height

                    Icon {
                        visible: step.index > 0
                        anchors.verticalCenter: parent.verticalCenter
                        name: "chevron"
                        color: Theme.disabledText
                        size: Theme.sized(16)
                    }
                    AbstractButton {
                        id: crumb

                        objectName: "crumb:" + step.modelData.path
                        width: Math.min(implicitWidth, Theme.sized(260))
                        height: parent.height
                        leftPadding: 6
                        rightPadding: 6
                        text: step.modelData.name
                        font.pixelSize: Theme.bodySize
                        font.bold: step.last
                        Accessible.name: step.modelData.path === "" ? text : step.modelData.path
                        onClicked: breadcrumb.opened(step.modelData.path)
                        Keys.onReturnPressed: crumb.clicked()
                        Keys.onEnterPressed: crumb.clicked()

                        contentItem: Text {
                            text: crumb.text
                            font: crumb.font
                            color: step.last ? Theme.text : Theme.accent
                            textFormat: Text.PlainText
                            verticalAlignment: Text.AlignVCenter
                            elide: Text.ElideMiddle
                        }
                        background: Rectangle {
                            radius: Theme.radius
                            color: crumb.hovered ? Theme.hover : "transparent"

                            FocusRing { shown: crumb.activeFocus && crumb.focusReason !== Qt.MouseFocusReason }
                        }
                    }
                }
            }
        }
    }
}
