import QtQuick
import RecordingConsole

/// The keys that count on every page, while no dialog is open.
Item {
    id: windowKeys

    required property var pages ///< maps with "title"

    signal pageWanted(index: int)
    signal alarmsWanted
    signal helpWanted

    /// All of them, in the order of the help.
    function list(): var {
        const all = Array.from({ length: pageKeys.count }, (value, index) => pageKeys.objectAt(index));
        all.unshift(helpKey);
        all.push(alarmsKey, largerKey, smallerKey, normalKey);
        return all;
    }

    ConsoleKey {
        id: helpKey

        armed: true
        sequence: StandardKey.HelpContents
        text: qsTr("Show this help")
        onActivated: windowKeys.helpWanted()
    }
    Instantiator {
        id: pageKeys

        model: windowKeys.pages
        delegate: ConsoleKey {
            required property int index
            required property var modelData

            armed: true
            sequence: "Ctrl+" + (index + 1)
            text: qsTr("Go to the page “%1”").arg(modelData.title)
            onActivated: windowKeys.pageWanted(index)
        }
    }
    ConsoleKey {
        id: alarmsKey

        armed: true
        sequence: "F8"
        text: qsTr("Show the alarms")
        onActivated: windowKeys.alarmsWanted()
    }
    ConsoleKey {
        id: largerKey

        armed: true
        sequence: "Ctrl++"
        sequences: ["Ctrl+="]
        text: qsTr("Make text larger")
        onActivated: Theme.changeTextSize(1)
    }
    ConsoleKey {
        id: smallerKey

        armed: true
        sequence: "Ctrl+-"
        text: qsTr("Make text smaller")
        onActivated: Theme.changeTextSize(-1)
    }
    ConsoleKey {
        id: normalKey

        armed: true
        sequence: "Ctrl+0"
        text: qsTr("Make text as large as usual")
        onActivated: Theme.textSize = 100
    }
}
