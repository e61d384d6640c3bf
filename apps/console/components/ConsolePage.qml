import QtQuick
import QtQuick.Layouts
import RecordingConsole
import com.meridon.pluginrecordingmanagement

/// A page of the window: its title and actions, what went wrong in a place of its own below them, and one way of asking
/// the station for what it shows. A page overrides ask() and ends each asking with finish().
FocusScope {
    id: page

    /// The page's key in ConsolePages.
    required property string key
    /// The plug-in's object.
    required property PluginRecordingManagement recording
    /// The connection, and the words behind a refusal.
    required property ConsoleSession session
    /// The NAS paths that are used as volumes; null where nobody keeps them.
    property NasVolumes nasVolumes: null
    /// Where the page begins, if it can begin in several places; else not used.
    property string startPlace

    readonly property var info: ConsolePages.page(key)
    readonly property string title: info.title
    property string subtitle ///< a line about what the page shows
    readonly property bool roomy: width >= Theme.sized(640) ///< actions have room for their words
    property bool asking: false ///< a dialog of the page is open: the page's keys do not count

    property string help ///< what the page is for, and its words; two or three sentences
    property list<ConsoleKey> keys ///< the page's own
    property Item mainList: null ///< the view that has the focus when the page is shown
    property ListSearch search: null ///< of that view, where it has one
    property ConsoleSettings settings: null ///< what is remembered for the user; null where nothing is

    property bool loading: false ///< a reply is still to come
    property bool answered: false ///< what the page shows has been answered for, well or badly
    property bool failed: false ///< it could not be had when it was asked for last
    /// True once the page shows what it will show.
    property bool settled: answered
    /// What went wrong last, in words; empty while nothing did.
    property string failure
    property bool followsOutcomes: false ///< it asks again when an edit had an outcome that nobody waited for any more
    property int outcomes: 0 // that the page knows of
    property bool overtaken: false // by an outcome that came while the page was not shown
    property bool askAgain: false // something changed while a reply was under way
    /// The plug-in may still have what another station told: nothing is shown before this one has answered.
    readonly property bool foreign: session.stationChanged && !succeeded
    property bool succeeded: false // once

    property alias actions: actionRow.data ///< at the right of the title
    property alias tools: toolColumn.data ///< below the title
    property alias strips: pageStrips.data ///< PageStrips below the page's own
    default property alias content: room.data
    readonly property alias room: room ///< where the content stands

    /// Where goTo() of the usage page leads to the recordings of no group.
    readonly property string unassignedPlace: "unassigned"

    /// Where goTo() of the page of recording groups leads to the choice of a group that records to @p path.
    function recordingPlace(path: string): string {
        return "record:" + path;
    }

    /// The operator wants to see a place on another page.
    signal placeWanted(key: string, place: string)

    focus: true // of the loader that shows it
    Component.onCompleted: {
        outcomes = session.lateOutcomes.length;
        ownKeys().forEach(key => key.armed = Qt.binding(() => page.visible && !page.asking));
        refresh();
    }

    /// The page's keys, those that all pages have first.
    function ownKeys(): var {
        const all = Array.from(keys);
        all.unshift(refreshKey);
        return all;
    }

    /// The same with those of its search, for the help.
    function allKeys(): var {
        return ownKeys().concat(search ? Array.from(search.keys) : []);
    }

    /// Puts the focus into the page's list.
    function takeFocus(): void {
        ((mainList as ListView)?.currentItem ?? mainList ?? page).forceActiveFocus(Qt.ShortcutFocusReason);
    }

    /// Asks the station for what the page shows; once more after a reply that is under way.
    function refresh(): void {
        if (loading) {
            askAgain = true;
            return;
        }
        if (!session.connected)
            return;
        askAgain = false;
        loading = true;
        if (!ask())
            finish(session.unsentText());
    }

    /// Sends what the page needs; false where the plug-in did not send it.
    function ask(): bool {
        return true;
    }

    /// To be called when all is answered; @p words say why it could not be had and are empty where it could.
    function finish(words: string): void {
        loading = false;
        failed = words !== "";
        succeeded = succeeded || !failed;
        tellFailure(words);
        answered = true;
        showAnswer();
        if (askAgain)
            refresh();
    }

    /// What a page does with the answer, before it asks again for what changed meanwhile.
    function showAnswer(): void {}

    /// The operator wants all that is in view anew.
    function refreshAll(): void {
        refresh();
    }

    function connectionChanged(): void {
        refresh();
    }

    /// Says that something went wrong; again where the same was said and closed. Empty words: nothing did.
    function tellFailure(words: string): void {
        failure = "";
        failure = words;
    }

    /// An edit had its outcome after nobody waited for it any more: what the page shows may have changed.
    function followOutcome(): void {
        overtaken = !visible;
        if (visible)
            refresh();
    }

    /// Leads the eye to @p place, for instance a recording group's id; pages that know no places do nothing.
    function goTo(place: string): void {}

    /// Opens one of the page's dialogs, "add" or "edit", and gives it; null where the page has none of that name.
    function showDialog(name: string): var {
        return null;
    }

    Connections {
        target: page

        function onVisibleChanged(): void {
            if (page.visible && page.overtaken)
                page.followOutcome();
        }
    }
    Connections {
        target: page.session

        function onConnectedChanged(): void {
            page.connectionChanged();
        }
        function onLateOutcomesChanged(): void {
            const more = page.session.lateOutcomes.length > page.outcomes;
            page.outcomes = page.session.lateOutcomes.length;
            if (more && page.followsOutcomes)
                page.followOutcome();
        }
    }
    ConsoleKey {
        id: refreshKey

        sequence: StandardKey.Refresh
        text: qsTr("Ask the station again")
        onActivated: page.refreshAll()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        PageHeader {
            title: page.title
            subtitle: page.subtitle
            z: 1 // a long message lies over the content
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.small

            ActionButton {
                objectName: "refresh"
                iconName: "refresh"
                text: page.roomy ? qsTr("Refresh") : ""
                hint: qsTr("Ask the station again (F5)")
                enabled: page.session.connected && !page.loading
                onClicked: page.refreshAll()
            }
            Row {
                id: actionRow

                visible: children.length > 0
                spacing: Theme.small
            }
            messages: [
                PageStrip {
                    objectName: "errorStrip"
                    text: page.failure
                    actionText: page.session.connected && page.failed ? qsTr("Try again") : ""
                    onActionTriggered: page.refresh()
                },
                Column {
                    id: pageStrips

                    width: parent?.width ?? 0
                    spacing: Theme.tiny
                }
            ]
        }
        ColumnLayout {
            id: toolColumn

            visible: children.length > 0
            Layout.fillWidth: true
            Layout.fillHeight: false
            Layout.bottomMargin: Theme.large
        }
        Item {
            id: room

            enabled: !page.foreign
            opacity: page.foreign ? 0 : 1
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }
    Placeholder {
        objectName: "foreign"
        anchors.centerIn: parent
        width: Math.min(Theme.sized(420), parent.width - 2 * Theme.huge)
        visible: page.foreign && !page.failed
        busy: page.session.connected
        iconName: page.info.iconName
        title: page.session.connected ? qsTr("Asking the station…") : qsTr("No connection to the station")
    }
}
