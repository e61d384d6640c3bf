import QtQuick
import RecordingConsole

/// Remembers where the window stood and how large it was, and puts it there again. A place that no screen shows any more is
/// not used; its size is, as far as the screen has room.
Item {
    id: memory

    required property Window window
    required property ConsoleSettings settings
    readonly property var application: Qt.application
    property var screens: application.screens ///< with "virtualX", "virtualY", "width" and "height"
    property rect usual ///< the window's place while it is not maximized
    property bool maximized: false ///< to begin with
    readonly property int grip: 48 ///< pixels of the window's top that have to be on a screen

    /// Gives the window its place, before it is shown. @p size is used in place of the remembered one unless it is empty.
    function restore(size: size): void {
        const place = settings.value("window/place", {});
        const remembered = ["x", "y", "width", "height"].every(key => Number.isInteger(place[key]));
        const wanted = size.width > 0 ? size : remembered ? Qt.size(place.width, place.height) : Qt.size(0, 0);
        if (wanted.width > 0 && wanted.height > 0) {
            const screen = (remembered ? screenOf(place) : null) ?? screens[0];
            const bounded = size.width > 0 || !screen ? wanted
                : Qt.size(Math.min(wanted.width, screen.width), Math.min(wanted.height, screen.height));
            window.width = Math.max(window.minimumWidth, bounded.width);
            window.height = Math.max(window.minimumHeight, bounded.height);
        }
        if (remembered && screenOf(place)) {
            window.x = place.x;
            window.y = place.y;
        }
        usual = Qt.rect(window.x, window.y, window.width, window.height);
        maximized = size.width <= 0 && settings.value("window/maximized", false);
    }

    function show(): void {
        window.visibility = maximized ? Window.Maximized : Window.Windowed;
    }

    /// The screen that shows the top of a window at @p place; null where none does.
    function screenOf(place: var): var {
        const shown = screen => Math.min(place.x + place.width, screen.virtualX + screen.width)
            - Math.max(place.x, screen.virtualX) >= grip
            && place.y >= screen.virtualY && place.y + grip <= screen.virtualY + screen.height;
        for (let i = 0; i < screens.length; ++i) {
            if (shown(screens[i]))
                return screens[i];
        }
        return null;
    }

    function follow(): void {
        if (window.visibility === Window.Windowed)
            usual = Qt.rect(window.x, window.y, window.width, window.height);
    }

    /// To be called when the window closes.
    function keep(): void {
        follow();
        settings.setValue("window/place", { x: usual.x, y: usual.y, width: usual.width, height: usual.height });
        settings.setValue("window/maximized", window.visibility === Window.Maximized);
    }

    Connections {
        target: memory.window

        function onXChanged(): void {
            settle.restart();
        }
        function onYChanged(): void {
            settle.restart();
        }
        function onWidthChanged(): void {
            settle.restart();
        }
        function onHeightChanged(): void {
            settle.restart();
        }
    }
    Timer {
        id: settle // a window that is being maximized may say so after it has its new size

        interval: 300
        onTriggered: memory.follow()
    }
}
