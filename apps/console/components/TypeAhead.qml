import QtQml
import RecordingConsole

/// Letters lead to the next row whose name begins with them; those that come quickly count as one word.
QtObject {
    id: typing

    required property RowFilter rows
    property string typed
    readonly property Timer pause: Timer {
        interval: 1000
        onTriggered: typing.typed = ""
    }

    /// The row that what was typed leads to from row @p current; -1 where it is no letter, or where no name begins so.
    /// A letter typed again leads on to the next one.
    function row(text: string, modifiers: int, current: int): int {
        const isLetter = text.length > 0 && text > " " && text !== "\u007f"; // blanks do not count in names
        if ((modifiers & ~(Qt.ShiftModifier | Qt.KeypadModifier)) !== 0 || !isLetter)
            return -1;
        pause.restart();
        const again = typed.length === 1 && typed.toLowerCase() === text.toLowerCase();
        typed = again ? text : typed + text;
        return rows.rowBeginningWith(typed, typed.length === 1 ? current + 1 : current);
    }
}
