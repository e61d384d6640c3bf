import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import RecordingConsole

/// The frame of the console's dialogs. It may be closed while a request is under way; what comes of that is shown above
/// the status line then. Its top stays where it is: what it shows grows downwards. When it closes, the page that it was
/// opened from has the focus in its list.
Dialog {
    id: dialog

    property bool busy: false ///< a request is under way
    property bool left: false ///< it was closed meanwhile
    property string subject: title ///< of the request, for what comes of it later
    property var drafts: [] ///< what was entered and refused after it was left, the oldest first: "subject", "refusal", "entry"
    property ConsoleSession session: null ///< of those that send requests
    property ConsolePage opener: null ///< that it was opened from
    readonly property real top: Math.max(Theme.large, Math.round(parent.height * 0.08))
    readonly property real room: parent.height - top - Theme.large ///< height that it may fill

    /// The page that an item stands on; null where it stands on none.
    function pageOf(item: Item): ConsolePage {
        while (item && !(item instanceof ConsolePage))
            item = item.parent;
        return item as ConsolePage;
    }

    /// Shows the end of a request that was left: @p words say why it was refused, and are empty where it was not. False
    /// where the dialog is open and shows it itself.
    function endLeft(words: string): bool {
        if (!left)
            return false;
        left = false;
        busy = false;
        const entered = words === "" ? null : entry();
        if (entered !== null)
            drafts = drafts.concat([{ subject: subject, refusal: words, entry: entered }]);
        session.noteOutcome(subject, words);
        return true;
    }

    /// What was entered, for resume(); null where that is nothing.
    function entry(): var {
        return null;
    }

    /// Opens it with the "entry" of one of its drafts, and says why that was refused.
    function resume(draft: var): void {}

    /// Offers the oldest draft again, unless something is under way.
    function resumeFirst(): void {
        if (busy || drafts.length === 0) {
            open();
            return;
        }
        const first = drafts[0];
        forgetFirst();
        resume(first);
    }

    function forgetFirst(): void {
        drafts = drafts.slice(1);
    }

    parent: T.Overlay.overlay
    modal: true
    focus: true
    x: Math.round((parent.width - width) / 2)
    y: top
    height: Math.min(implicitHeight, room)
    padding: Theme.huge
    topPadding: Theme.small
    closePolicy: Popup.CloseOnEscape
    enter: null
    exit: null
    onAboutToShow: {
        left = false;
        opener = pageOf(parent.Window.activeFocusItem);
    }
    onClosed: {
        left = busy;
        opener?.takeFocus();
    }

    header: Text {
        text: dialog.title
        color: Theme.text
        font.pixelSize: Theme.dialogTitleSize
        font.weight: Font.DemiBold
        textFormat: Text.PlainText
        elide: Text.ElideRight
        padding: Theme.huge
        bottomPadding: Theme.small
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    background: Rectangle {
        color: Theme.surface
        border.color: Theme.controlOutline
        radius: Theme.radius + 2
    }
    T.Overlay.modal: Rectangle { color: Theme.scrim }
}
