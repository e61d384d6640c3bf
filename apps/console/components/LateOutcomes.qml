import RecordingConsole

/// Says over every page what came of edits that had timed out, or whose dialog was left, until somebody closes it.
ErrorStrip {
    id: strip

    required property ConsoleSession session
    readonly property int mostShown: 4
    readonly property var outcomes: session.lateOutcomes
    readonly property int hidden: Math.max(0, outcomes.length - mostShown)

    text: (hidden === 0 ? [] : hidden === 1 ? [qsTr("1 earlier outcome is not shown.")]
                             : [qsTr("%1 earlier outcomes are not shown.").arg(hidden)])
          .concat(outcomes.slice(-mostShown)).join("\n")
    notice: !session.lateFailure
    onDismissed: session.forgetLateOutcomes()
}
