import QtQuick
import RecordingConsole

/// Days of recording on one scale: recorded ones full, remaining ones light, and the reserved time as a mark. What is
/// missing up to the mark is hatched. Negative figures are unknown and take no part of the bar; the words are not here.
Item {
    id: gauge

    required property real recordedDays
    required property real remainingDays
    required property real reservedDays ///< 0: no mark
    required property bool insufficient

    readonly property bool known: recordedDays >= 0 && remainingDays >= 0
    readonly property real covered: Math.max(0, recordedDays) + Math.max(0, remainingDays)
    readonly property real scaleEnd: Math.max(covered, reservedDays, 1) ///< in days
    readonly property real recordedWidth: part(Math.max(0, recordedDays))
    readonly property real coveredWidth: part(covered)
    readonly property real markPosition: Math.round(Math.min(part(reservedDays), width - mark.width))
    readonly property int barHeight: 12

    function part(days: real): real {
        return days <= 0 ? 0 : Math.max(2, width * days / scaleEnd);
    }

    implicitHeight: barHeight + 8
    implicitWidth: 160
    Accessible.ignored: true

    Rectangle {
        id: track

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: gauge.barHeight
        radius: 3
        color: gauge.known ? Theme.track : "transparent"
        border.color: Theme.controlOutline
    }
    Hatching {
        objectName: "missingPart"
        x: gauge.coveredWidth
        y: track.y
        width: Math.max(0, gauge.part(gauge.reservedDays) - x)
        height: track.height
        visible: gauge.insufficient
        color: Theme.warning
    }
    Rectangle {
        objectName: "remainingPart"
        y: track.y
        width: Math.min(gauge.coveredWidth, gauge.width)
        height: track.height
        radius: 3
        color: Theme.remaining
        border.width: width > 0 ? 1 : 0
        border.color: Theme.accent
    }
    Rectangle {
        objectName: "recordedPart"
        y: track.y
        width: Math.min(gauge.recordedWidth, gauge.width)
        height: track.height
        radius: 3
        color: Theme.accent
    }
    BarMark {
        id: mark

        objectName: "mark"
        x: gauge.markPosition
        width: 3
        height: parent.height
        visible: gauge.reservedDays > 0
        color: Theme.text
    }
}
