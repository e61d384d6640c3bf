import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// The console's window: the pages at the left, the chosen one beside them, the connection below.
ApplicationWindow {
    id: window

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property string startPage: "volumes"
    property string startPlace ///< of the start page
    property int scheme: Theme.followDesktop ///< to begin with

    /// The pages, in their order. A page is a file in pages/ and a line here.
    readonly property var pages: [
        { key: "volumes", title: qsTr("Volumes"), iconName: "volume", source: "pages/VolumesPage.qml" },
        { key: "groups", title: qsTr("Recording groups"), iconName: "group", source: "pages/RecordingGroupsPage.qml" },
        { key: "usage", title: qsTr("Usage"), iconName: "gauge", source: "pages/UsagePage.qml" },
        { key: "folders", title: qsTr("Folders"), iconName: "folder", source: "pages/FoldersPage.qml" },
        { key: "nas", title: qsTr("NAS servers"), iconName: "network", source: "pages/NasPage.qml" }
    ]
    property int currentIndex: Math.max(0, pages.findIndex(page => page.key === startPage))
    readonly property ConsolePage currentPage: (stack.count, stack.itemAt(currentIndex) as Loader)?.item as ConsolePage
    readonly property bool broken: (stack.count, stack.itemAt(currentIndex) as Loader)?.status === Loader.Error
    readonly property bool settled: broken || (currentPage?.settled ?? false)
    readonly property string failure: broken ? qsTr("The page could not be loaded.") : currentPage?.failure ?? ""

    minimumWidth: 400
    minimumHeight: 360
    title: qsTr("%1 – Recording console").arg(pages[currentIndex].title)
    color: Theme.window
    visible: true
    font.pixelSize: Theme.bodySize
    Component.onCompleted: Theme.scheme = scheme

    /// Opens the page called @p key, at @p place unless that is empty.
    function goTo(key: string, place: string): void {
        currentIndex = pages.findIndex(page => page.key === key);
        if (place !== "")
            currentPage?.goTo(place);
    }

    Instantiator {
        model: window.pages.length
        delegate: Shortcut {
            required property int index

            sequence: "Ctrl+" + (index + 1)
            onActivated: window.currentIndex = index
        }
    }

    NasVolumes {
        id: nasVolumes

        recording: window.recording
        session: window.session
    }
    NavigationRail {
        id: rail

        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: status.top
        pages: window.pages
        currentIndex: window.currentIndex
        narrow: window.width < 900
        onChosen: index => window.currentIndex = index
    }
    AlarmStrip {
        id: alarms

        objectName: "alarms"
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.top: parent.top
        model: window.session.alarms
        onChosen: groupId => window.goTo("usage", groupId)
    }
    FocusScope {
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.top: alarms.bottom
        anchors.bottom: status.top
        anchors.margins: window.width < 640 ? Theme.large : Theme.huge
        focus: true

        Repeater {
            id: stack

            model: window.pages

            Loader {
                id: loader

                required property int index
                required property var modelData
                readonly property bool current: index === window.currentIndex

                anchors.fill: parent
                visible: current
                focus: current
                onCurrentChanged: show()
                Component.onCompleted: show()

                function show(): void {
                    if (!current)
                        return;
                    if (status === Loader.Null) {
                        setSource(modelData.source, {
                            recording: window.recording,
                            session: window.session,
                            nasVolumes: nasVolumes,
                            startPlace: modelData.key === window.startPage ? window.startPlace : ""
                        });
                    }
                    forceActiveFocus();
                }
            }
        }
    }
    StatusLine {
        id: status

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        session: window.session
        troubled: alarms.severe
    }
}
