import QtQuick

/// Upright strokes over a part of a bar, so that the part reads without its colour.
Row {
    id: hatching

    property color color

    clip: true
    spacing: 5

    Repeater {
        model: hatching.visible ? Math.max(0, Math.ceil(hatching.width / 7)) : 0

        Rectangle {
            width: 2
            height: hatching.height
            color: hatching.color
        }
    }
}
