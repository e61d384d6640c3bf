import QtQuick
import QtTest
import RecordingConsole
import "Contrast.js" as Contrast

/// The colours as they are used in pairs, in both schemes.
TestCase {
    id: test

    readonly property real readable: 4.5
    readonly property real discernible: 3
    readonly property var grounds: ["window", "rail", "surface", "hover", "pressed", "selected"]
    readonly property var parts: ["group0", "group1", "group2", "otherGroupPart", "backupPart", "otherPart", "warning", "accent"]

    name: "Theme"

    function cleanup(): void {
        Theme.scheme = Theme.followDesktop;
        Theme.textSize = 100;
    }

    function colour(name: string): color {
        return Qt.color(String(name.startsWith("group") ? Theme.groupParts[Number(name.substring(5))] : Theme[name]));
    }

    function pairs(): var {
        const list = [];
        const add = (names, onto, least) => names.forEach(name => onto.forEach(ground => list.push([name, ground, least])));
        add(["text", "secondaryText", "disabledText"], grounds, readable);
        add(["accent", "warning", "danger"], grounds, readable); // links, names of lost volumes, messages at fields
        add(["text", "secondaryText"], ["warningGround", "dangerGround"], readable);
        add(["warning"], ["warningGround"], readable);
        add(["danger"], ["dangerGround"], readable);
        add(["accentText"], ["accent", "accentHover"], readable);
        add(["disabledText"], ["pressed"], readable); // a disabled primary button
        add(["accentText"], ["disabledText"], discernible); // the tick of a disabled option
        add(["good"], ["rail"], discernible);
        add(["controlOutline"], grounds, discernible);
        // The focus ring, against the control within and the ground around.
        add(["accent"], grounds.concat(["warningGround", "dangerGround", "track"]), discernible);
        // Bars: each part against the bar's ground, which also parts it from the next one, and their frame.
        add(parts, ["track"], discernible);
        add(["controlOutline"], ["track"], discernible);
        add(["accent"], ["remaining"], discernible);
        add(["text", "secondaryText", "warning"], ["surface"], discernible); // marks have a rim of this colour
        add(["warning"], ["track"], discernible);
        return list;
    }

    function test_everyPairIsReadable_data(): var {
        return [{ tag: "light", scheme: Theme.alwaysLight }, { tag: "dark", scheme: Theme.alwaysDark }];
    }

    function test_everyPairIsReadable(data): void {
        Theme.scheme = data.scheme;
        const poor = pairs().filter(pair => !(Contrast.ratio(colour(pair[0]), colour(pair[1])) >= pair[2]))
            .map(pair => pair[0] + " on " + pair[1] + ": " + Contrast.ratio(colour(pair[0]), colour(pair[1])).toFixed(2));
        compare(poor, []);
    }

    function test_contrastIsMeasured(): void {
        fuzzyCompare(Contrast.ratio(Qt.rgba(0, 0, 0, 1), Qt.rgba(1, 1, 1, 1)), 21, 0.001);
        fuzzyCompare(Contrast.ratio(Qt.color("#777777"), Qt.rgba(1, 1, 1, 1)), 4.48, 0.01);
        compare(Contrast.over(Qt.rgba(0, 0, 0, 1), Qt.rgba(1, 1, 1, 1), 0.5), Qt.rgba(0.5, 0.5, 0.5, 1));
    }

    function test_neighboursOfAVolumeDiffer(): void {
        for (const scheme of [Theme.alwaysLight, Theme.alwaysDark]) {
            Theme.scheme = scheme;
            for (let i = 1; i < Theme.groupParts.length; ++i)
                verify(Contrast.ratio(colour("group" + (i - 1)), colour("group" + i)) > 1.2);
        }
    }

    function test_textSizeGoesInSteps(): void {
        compare(Theme.bodySize, 14);
        Theme.changeTextSize(-1);
        compare(Theme.textSize, 100);
        Theme.changeTextSize(1);
        compare(Theme.textSize, 110);
        compare(Theme.bodySize, 15);
        Theme.changeTextSize(20);
        compare(Theme.textSize, 200);
        compare(Theme.bodySize, 28);
        compare(Theme.controlHeight, 72);
    }
}
