import QtQuick
import RecordingConsole

/// Where the columns of the list of stations stand; narrow, it has the names alone.
QtObject {
    id: columns

    required property real width ///< of the list
    readonly property bool wide: width >= Theme.sized(600)
    readonly property real figureWidth: Math.min(Theme.sized(124), (width - actionWidth) / 5.6)
    readonly property real actionWidth: wide ? Theme.sized(140) : Theme.sized(96)
    readonly property real actionX: width - actionWidth - Theme.small
    readonly property real alarmsX: actionX - figureWidth - Theme.large
    readonly property real freeX: alarmsX - figureWidth
    readonly property real daysX: freeX - figureWidth
    readonly property real nameWidth: (wide ? daysX : actionX) - Theme.medium ///< ends there
}
