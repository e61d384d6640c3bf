import QtQuick
import QtQuick.Controls.Basic
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// The console's window: the pages at the left, the alarms above the chosen one, the connection below. What the operator
/// chooses about the window is remembered in its settings, what the command line states is not.
ApplicationWindow {
    id: window

    required property PluginRecordingManagement recording
    required property ConsoleSession session
    property ConsoleSettings settings: ConsoleSettings {} ///< what is remembered; at first for this window alone
    property string startPage ///< key of the page to begin with; empty: the one that was shown last
    property string startPlace ///< of the start page
    property int startScheme: -1 ///< of Theme; negative: the one that was chosen last
    property int startTextSize: 0 ///< percent; 0: as large as it was chosen last
    property size startSize: Qt.size(0, 0) ///< empty: as large as it was last
    readonly property var schemeNames: ["system", "light", "dark"] ///< remembered for the schemes of Theme
    property var presented: null // in a picture
    property bool restored: false // from now on there are pages, and what changes is the operator's choice

    readonly property var allPages: ConsolePages.list
    /// Those that there is something to see on: the first ones of all pages.
    readonly property var pages: session.stations.site ? allPages : allPages.filter(page => !page.ofSite)
    property int currentIndex: Math.max(0, allPages.findIndex(page => page.key === firstPage))
    readonly property string firstPage: startPage !== "" ? startPage : settings.value("window/page", "")
    readonly property ConsolePage currentPage: (stack.count, stack.itemAt(currentIndex) as Loader)?.item as ConsolePage
    readonly property bool broken: (stack.count, stack.itemAt(currentIndex) as Loader)?.status === Loader.Error
    readonly property bool settled: broken || (currentPage?.settled ?? false)
    readonly property string failure: broken ? qsTr("The page could not be loaded.") : currentPage?.failure ?? ""

    width: 1280
    height: 800
    minimumWidth: 400
    minimumHeight: 360
    title: session.stations.site
        ? qsTr("%1 – %2 – Recording console").arg(allPages[currentIndex].title).arg(session.stations.directName)
        : qsTr("%1 – Recording console").arg(allPages[currentIndex].title)
    color: Theme.window
    font.pixelSize: Theme.bodySize
    Component.onCompleted: {
        const remembered = schemeNames.indexOf(settings.value("window/theme", schemeNames[0]));
        Theme.scheme = startScheme >= 0 ? startScheme : Math.max(0, remembered);
        const textSize = startTextSize || settings.value("window/textSize", 100);
        Theme.textSize = Theme.textSizes.includes(textSize) ? textSize : 100;
        memory.restore(startSize);
        restored = true;
        memory.show();
    }
    onClosing: memory.keep()
    onCurrentIndexChanged: {
        if (restored)
            settings.setValue("window/page", allPages[currentIndex].key);
    }

    /// Opens the page called @p key, at @p place unless that is empty.
    function goTo(key: string, place: string): void {
        showPage(allPages.findIndex(page => page.key === key));
        if (place !== "")
            currentPage?.goTo(place);
    }

    /// For pictures of it: the page at @p index in the colours of @p scheme, at @p place and with @p dialog unless these are
    /// empty. "help" is that of F1, others as in ConsolePage.showDialog().
    function present(index: int, scheme: int, place: string, dialog: string): void {
        presented?.close();
        presented = dialog === "help" ? help : null;
        Theme.scheme = scheme;
        showPage(index);
        if (place !== "")
            currentPage?.goTo(place);
        if (dialog === "help")
            showHelp();
        else if (dialog !== "")
            presented = currentPage?.showDialog(dialog) ?? null;
    }

    function showPage(index: int): void {
        currentIndex = index;
        focusPage();
    }

    /// The focus is in the list of the page that is shown.
    function focusPage(): void {
        currentPage?.takeFocus();
    }

    function showHelp(): void {
        if (currentPage)
            help.show(currentPage.title, currentPage.help, currentPage.allKeys(), windowKeys.list().concat(alarms.keys()));
    }

    Connections {
        target: Theme
        enabled: window.restored

        function onSchemeChanged(): void {
            window.settings.setValue("window/theme", window.schemeNames[Theme.scheme]);
        }
        function onTextSizeChanged(): void {
            window.settings.setValue("window/textSize", Theme.textSize);
        }
    }
    WindowMemory {
        id: memory

        objectName: "memory"
        window: window
        settings: window.settings
    }
    WindowKeys {
        id: windowKeys

        objectName: "windowKeys"
        pages: window.pages
        onPageWanted: index => window.showPage(index)
        onAlarmsWanted: alarms.show()
        onHelpWanted: window.showHelp()
    }
    HelpDialog {
        id: help

        onClosed: window.focusPage()
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
        narrow: window.width < Theme.sized(900)
        onChosen: index => window.showPage(index)
    }
    StationHeader {
        id: header

        objectName: "stationHeader"
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.top: parent.top
        session: window.session
        onListWanted: window.goTo("stations", window.session.stations.direct)
    }
    AlarmStrip {
        id: alarms

        objectName: "alarms"
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.top: header.bottom
        model: window.session.alarms
        stations: window.session.stations
        connected: window.session.connected
        known: window.session.alarmsKnown
        onChosen: (key, place) => window.goTo(key, place)
        onAcknowledgementAsked: alarm => {
            if (alarms.isAcknowledged(alarm))
                window.session.withdrawAcknowledgement(alarm.word, alarm.subject, alarm.source ?? "");
            else
                acknowledgement.ask(alarm);
        }
    }
    LateOutcomes {
        id: lateOutcomes

        objectName: "lateOutcomes"
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.bottom: status.top
        anchors.margins: Theme.small
        z: 1 // over the page: nothing moves when it comes
        session: window.session
    }
    AcknowledgeDialog {
        id: acknowledgement

        session: window.session
        onClosed: window.focusPage()
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

            model: window.restored ? window.allPages : []

            Loader {
                id: loader

                required property int index
                required property var modelData
                readonly property bool current: index === window.currentIndex

                anchors.fill: parent
                visible: current
                focus: current
                readonly property bool ofSite: modelData.ofSite
                onCurrentChanged: show()
                onLoaded: (item as ConsolePage).placeWanted.connect(window.goTo)
                Component.onCompleted: show()

                /// What a page showed of one station says nothing of another.
                Connections {
                    target: window.session
                    enabled: !loader.ofSite

                    function onStationLeft(): void {
                        loader.source = "";
                    }
                    function onStationEntered(): void {
                        loader.show();
                    }
                }

                function show(): void {
                    if (!current)
                        return;
                    if (status === Loader.Null) {
                        setSource(modelData.source, {
                            recording: window.recording,
                            session: window.session,
                            nasVolumes: nasVolumes,
                            settings: window.settings,
                            startPlace: modelData.key === window.firstPage ? window.startPlace : ""
                        });
                    }
                    window.focusPage();
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
