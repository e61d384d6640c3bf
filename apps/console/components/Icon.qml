import QtQuick

/// A line drawing in one colour. Decoration: what it says stands beside it in words, or in an accessible name.
Canvas {
    id: icon

    property string name
    property color color
    property int size: 20

    /// Paths on a ground of 24 by 24.
    readonly property var drawings: ({
        "volume": "M4 13.5 L6.8 5 H17.2 L20 13.5 V19 H4 Z M4 13.5 H20 M16.2 16.3 H17.2",
        "folder": "M3.5 18.5 V5.5 H9.5 L11.5 8 H20.5 V18.5 Z",
        "newFolder": "M3.5 18.5 V5.5 H9.5 L11.5 8 H20.5 V18.5 Z M12 10.6 V15.8 M9.4 13.2 H14.6",
        "group": "M7.5 4.5 H20.5 V15 H7.5 Z M3.5 8.5 V19 H16.5 M15.8 9.75 A1.8 1.8 0 1 1 12.2 9.75 A1.8 1.8 0 1 1 15.8 9.75",
        "station": "M4 4.5 H20 V10.5 H4 Z M4 13.5 H20 V19.5 H4 Z M7 7.5 H8 M7 16.5 H8 M13 7.5 H17 M13 16.5 H17",
        "camera": "M3.5 7 H15 V17 H3.5 Z M15 10.8 L20.5 7.8 V16.2 L15 13.2",
        "clock": "M20.5 12 A8.5 8.5 0 1 1 3.5 12 A8.5 8.5 0 1 1 20.5 12 M12 7.2 V12 L15.2 14",
        "add": "M12 5.5 V18.5 M5.5 12 H18.5",
        "edit": "M4.5 19.5 L5.3 15.8 L15.8 5.3 L18.7 8.2 L8.2 18.7 Z M13.6 7.5 L16.5 10.4",
        "remove": "M5 7 H19 M9.5 7 V4.5 H14.5 V7 M7 7 L7.8 19.5 H16.2 L17 7 M10.3 10.5 V16 M13.7 10.5 V16",
        "check": "M6 12.5 L10.3 16.8 L18 7.8",
        "down": "M6 9.5 L12 15.5 L18 9.5",
        "refresh": "M19 12 A7 7 0 1 1 16.6 6.7 M17.2 2.9 V7.1 H13",
        "up": "M12 19 V5.5 M6.2 11.3 L12 5.5 L17.8 11.3",
        "chevron": "M9.5 6 L15.5 12 L9.5 18",
        "close": "M6.5 6.5 L17.5 17.5 M17.5 6.5 L6.5 17.5",
        "alert": "M12 4 L21 19.5 H3 Z M12 10 V14 M12 16.5 V17",
        "gauge": "M3.8 17 A9 9 0 1 1 20.2 17 M12 14 L15.8 9",
        "unknown": "M8.4 9 A3.6 3.6 0 1 1 13.6 12.3 Q12 13.2 12 15 M12 18.6 V19",
        "backup": "M4 8.5 H20 V19.5 H4 Z M4 8.5 L6 4.5 H18 L20 8.5 M12 17 V11.5 M9.4 14 L12 11.4 L14.6 14",
        "system": "M7 7 H17 V17 H7 Z M10 7 V4 M14 7 V4 M10 20 V17 M14 20 V17 M7 10 H4 M7 14 H4 M20 10 H17 M20 14 H17",
        "network": "M4 4.5 H20 V11 H4 Z M12 11 V15.5 M3.5 18.2 H9.3 M14.7 18.2 H20.5 M9.3 15.5 H14.7 V21 H9.3 Z M7 7.8 H8",
        "share": "M3.5 15 V4.5 H9 L11 7 H20.5 V15 Z M12 15 V20 M4 20 H20",
        "info": "M20.5 12 A8.5 8.5 0 1 1 3.5 12 A8.5 8.5 0 1 1 20.5 12 M12 11 V16.5 M12 7.6 V8",
        "connected": "M20.5 12 A8.5 8.5 0 1 1 3.5 12 A8.5 8.5 0 1 1 20.5 12 M8.2 12.2 L11 15 L15.9 9.4",
        "disconnected": "M20.5 12 A8.5 8.5 0 1 1 3.5 12 A8.5 8.5 0 1 1 20.5 12 M8.8 8.8 L15.2 15.2 M15.2 8.8 L8.8 15.2",
        "light": "M16 12 A4 4 0 1 1 8 12 A4 4 0 1 1 16 12 M12 2.5 V5 M12 19 V21.5 M2.5 12 H5 M19 12 H21.5 "
                 + "M5.3 5.3 L7 7 M17 17 L18.7 18.7 M5.3 18.7 L7 17 M17 7 L18.7 5.3",
        "dark": "M20 14.3 A8.3 8.3 0 1 1 9.7 4 A6.6 6.6 0 0 0 20 14.3 Z",
        "desktop": "M3.5 5 H20.5 V16 H3.5 Z M12 16 V19.5 M8 19.5 H16"
    })

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
        context.path = drawings[name] ?? "";
        context.stroke();
    }
}
