pragma Singleton

import QtQuick

/// Colours, sizes and distances of the console, each once. Text keeps a contrast of 4.5 to every ground that it stands on,
/// also where it is disabled; bars, outlines and the focus ring keep one of 3.
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
    readonly property color controlOutline: dark ? "#7d8d9c" : "#71808e"
    readonly property color scrim: dark ? "#a0000000" : "#66101820"

    // What stands on them.
    readonly property color text: dark ? "#e6ebf0" : "#17212b"
    readonly property color secondaryText: dark ? "#adb9c5" : "#44525f"
    readonly property color disabledText: dark ? "#93a0ad" : "#5b6772"
    readonly property color accent: dark ? "#62b6d8" : "#0d6487"
    readonly property color accentHover: dark ? "#7cc5e2" : "#0a5473"
    readonly property color accentText: dark ? "#0b1a22" : "#ffffff"
    readonly property color remaining: dark ? "#2a5568" : "#b4d7e6"
    readonly property color track: dark ? "#12181e" : "#eef2f6"
    readonly property color good: dark ? "#79c79a" : "#1d7044"
    readonly property color warning: dark ? "#e9b455" : "#8a5300"
    readonly property color warningGround: dark ? "#362b17" : "#fdf1da"
    readonly property color danger: dark ? "#f29b92" : "#a8261d"
    readonly property color dangerGround: dark ? "#3a2020" : "#fdebe9"
    readonly property color dangerOutline: dark ? "#6d3a37" : "#eebcb7"

    // Parts of a volume.
    readonly property var groupParts: dark ? ["#62b6d8", "#4789a5", "#529fbf"] : ["#0d6487", "#4a8aa6", "#2f7690"]
    readonly property color otherGroupPart: dark ? "#5b8ca1" : "#57879c" ///< of those that a bar is not drawn for
    readonly property color backupPart: dark ? "#a394cf" : "#6a5c96"
    readonly property color otherPart: dark ? "#7d8c98" : "#6b7a84"

    // Distances.
    readonly property int tiny: 4
    readonly property int small: 8
    readonly property int medium: 12
    readonly property int large: 16
    readonly property int huge: 24
    readonly property int radius: 6
    readonly property int controlHeight: sized(36)
    readonly property int iconSize: sized(20)
    readonly property int stripHeight: sized(30) + 2 * tiny ///< of a message of one line

    // Type.
    readonly property var textSizes: [100, 110, 125, 150, 175, 200] ///< percent, to choose from
    property int textSize: 100 ///< percent; one of those
    readonly property int captionSize: sized(12)
    readonly property int bodySize: sized(14)
    readonly property int titleSize: sized(15)
    readonly property int dialogTitleSize: sized(18)
    readonly property int headlineSize: sized(22)

    /// The colour of a part of a volume: see VolumeParts. @p focused: the bar is drawn for one group.
    function partColor(kind: string, index: int, own: bool, focused: bool): color {
        switch (kind) {
        case "group":
            return own ? accent : focused ? otherGroupPart : groupParts[index % groupParts.length];
        case "moreGroups":
            return otherGroupPart;
        case "backup":
            return backupPart;
        case "withoutGroup":
            return warning;
        case "free":
            return "transparent";
        default:
            return otherPart;
        }
    }

    /// A height or width that has to hold text, @p pixels at the normal text size.
    function sized(pixels: real): int {
        return Math.round(pixels * textSize / 100);
    }

    /// Makes text larger by so many steps, or smaller where @p steps is negative.
    function changeTextSize(steps: int): void {
        const index = textSizes.indexOf(textSize) + steps;
        textSize = textSizes[Math.max(0, Math.min(textSizes.length - 1, index))];
    }

    /// The scheme that follows in the cycle of the theme switch.
    function nextScheme(): int {
        return (scheme + 1) % 3;
    }
}
