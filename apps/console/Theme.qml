pragma Singleton

import QtQuick

/// Colours, sizes and distances of the console, each once. Pairs of text and ground keep a contrast of 4.5 and more.
QtObject {
    id: theme

    // Schemes.
    readonly property int followDesktop: 0
    readonly property int alwaysLight: 1
    readonly property int alwaysDark: 2

    /// Which colours are shown: one of the schemes above.
    property int scheme: followDesktop

    readonly property bool dark: scheme === followDesktop ? systemPalette.window.hslLightness < 0.5
                                                          : scheme === alwaysDark
    readonly property SystemPalette systemPalette: SystemPalette {}

    // Grounds, from the back to the front.
    readonly property color window: dark ? "#12171d" : "#f3f5f8"
    readonly property color rail: dark ? "#171d24" : "#e9edf2"
    readonly property color surface: dark ? "#1b222a" : "#ffffff"
    readonly property color hover: dark ? "#242d37" : "#eef2f6"
    readonly property color pressed: dark ? "#2c3743" : "#e2e8ee"
    readonly property color selected: dark ? "#1f3947" : "#d7e8f0"
    readonly property color outline: dark ? "#303b46" : "#d3dae2"
    readonly property color controlOutline: dark ? "#667685" : "#7d8b99"
    readonly property color scrim: dark ? "#a0000000" : "#66101820"

    // What stands on them.
    readonly property color text: dark ? "#e6ebf0" : "#17212b"
    readonly property color secondaryText: dark ? "#a3b0bd" : "#51606e"
    readonly property color disabledText: dark ? "#6c7986" : "#8a96a2"
    readonly property color accent: dark ? "#62b6d8" : "#0d6487"
    readonly property color accentHover: dark ? "#7cc5e2" : "#0a5473"
    readonly property color accentText: dark ? "#0b1a22" : "#ffffff"
    readonly property color remaining: dark ? "#2a5568" : "#b4d7e6"
    readonly property color track: dark ? "#2e3944" : "#dde4eb"
    readonly property color good: dark ? "#79c79a" : "#1d7044"
    readonly property color warning: dark ? "#e9b455" : "#8a5300"
    readonly property color warningGround: dark ? "#362b17" : "#fdf1da"
    readonly property color danger: dark ? "#f29b92" : "#a8261d"
    readonly property color dangerGround: dark ? "#3a2020" : "#fdebe9"
    readonly property color dangerOutline: dark ? "#6d3a37" : "#eebcb7"

    // Distances.
    readonly property int tiny: 4
    readonly property int small: 8
    readonly property int medium: 12
    readonly property int large: 16
    readonly property int huge: 24
    readonly property int radius: 6
    readonly property int controlHeight: 36
    readonly property int iconSize: 20

    // Type.
    readonly property int captionSize: 12
    readonly property int bodySize: 14
    readonly property int titleSize: 15
    readonly property int headlineSize: 22

    /// The scheme that follows in the cycle of the theme switch.
    function nextScheme(): int {
        return (scheme + 1) % 3;
    }
}
