import RecordingConsole

/// One of the strips that stand in the place of a page's subtitle, one below the other. What is longer than the line lies
/// over the content.
ErrorStrip {
    width: parent?.width ?? 0
    padding: Theme.tiny
    buttonHeight: Theme.stripHeight - 2 * padding
}
