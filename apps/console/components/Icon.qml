import QtQuick
import RecordingConsole

/// A line drawing in one colour. Decoration: what it says stands beside it in words, or in an accessible name.
Canvas {
    id: icon

    property string name
    property color color
    property int size: 20

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    onNameChanged: requestPaint()
    onColorChanged: requestPaint()
    onSizeChanged: requestPaint()

    onPaint: {
        const context = getContext("2d");
        context.reset();
        context.scale(width / 24, height / 24);
        context.strokeStyle = icon.color;
        context.lineWidth = 1.6;
        context.lineCap = "round";
        context.lineJoin = "round";
        context.path = Drawings.paths[name] ?? "";
        context.stroke();
    }
}
