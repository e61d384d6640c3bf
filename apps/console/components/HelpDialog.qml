import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import RecordingConsole

/// What a page is for, and which keys there are: the page's own and the window's.
ConsoleDialog {
    id: dialog

    property string pageTitle
    property string help ///< about the page
    property var pageKeys: [] ///< ConsoleKeys
    property var windowKeys: [] ///< likewise

    function show(title: string, words: string, ofPage: var, ofWindow: var): void {
        pageTitle = title;
        help = words;
        pageKeys = ofPage;
        windowKeys = ofWindow;
        flickable.contentY = 0;
        open();
        close.forceActiveFocus(Qt.TabFocusReason);
    }

    objectName: "helpDialog"
    title: qsTr("Help: %1").arg(pageTitle)
    width: Math.min(Theme.sized(560), parent.width - 2 * Theme.large)
    rightPadding: Theme.tiny

    contentItem: Flickable {
        id: flickable

        objectName: "helpContent"
        clip: true
        implicitHeight: content.implicitHeight
        contentWidth: width
        contentHeight: content.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        Accessible.role: Accessible.Document
        Accessible.name: dialog.help
        Keys.onUpPressed: contentY = Math.max(0, contentY - Theme.controlHeight)
        Keys.onDownPressed: contentY = Math.max(0, Math.min(contentHeight - height, contentY + Theme.controlHeight))

        ScrollBar.vertical: ScrollMark { flickable: flickable }

        ColumnLayout {
            id: content

            width: flickable.width - Theme.huge + Theme.tiny
            spacing: Theme.small

            Text {
                objectName: "help"
                visible: text !== ""
                text: dialog.help
                color: Theme.text
                font.pixelSize: Theme.bodySize
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                Layout.fillWidth: true
                Layout.bottomMargin: Theme.small
            }
            KeyTable {
                objectName: "pageKeys"
                visible: keys.length > 0
                title: qsTr("Keys of this page")
                keys: dialog.pageKeys
                room: content.width
                Layout.fillWidth: true
                Layout.bottomMargin: Theme.small
            }
            KeyTable {
                objectName: "windowKeys"
                title: qsTr("Keys of the window")
                keys: dialog.windowKeys
                room: content.width
                Layout.fillWidth: true
            }
        }
    }

    footer: Item {
        implicitHeight: close.implicitHeight + Theme.large

        ActionButton {
            id: close

            objectName: "closeHelp"
            anchors.right: parent.right
            anchors.rightMargin: Theme.huge
            text: qsTr("Close")
            Keys.forwardTo: [flickable] // it scrolls
            onClicked: dialog.close()
        }
    }
}
