import QtQuick
import RecordingConsole

/// Stands where a page's rows would: no connection, asking, failed, or none there.
Placeholder {
    required property ConsolePage owner
    property string askingTitle
    property string failedTitle
    property string emptyTitle
    property string emptyText
    property string awaitedText ///< without a connection
    readonly property bool connected: owner.session.connected

    anchors.centerIn: parent
    width: Math.min(Theme.sized(420), parent.width - 2 * Theme.huge)
    busy: connected && (owner.loading || !owner.answered)
    iconName: owner.info.iconName
    title: !connected ? qsTr("No connection to the station")
        : busy ? askingTitle : owner.failed ? failedTitle : emptyTitle
    text: !connected ? awaitedText : busy || owner.failed ? "" : emptyText
}
