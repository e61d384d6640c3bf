#include "ActivityCommand.h"

#include "CommandRun.h"
#include "JsonFields.h"
#include "Output.h"
#include "RecordingGroups.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

namespace {

QString textIn(const QVariant &entry, const QString &key)
{
    return entry.toMap().value(key).toString();
}

/// What an edit was about, in the words that an operator knows.
QString subjectOf(const QVariant &entry)
{
    QStringList parts;
    for (const QString &key : {FieldKey::recordingGroupName, StationKey::subject}) {
        const QString text = textIn(entry, key);
        if (!text.isEmpty())
            parts.append(text);
    }
    return parts.isEmpty() ? textIn(entry, FieldKey::recordingGroupID) : parts.join(QStringLiteral(", "));
}

} // namespace

TextTable activityTable(const QVariantList &entries)
{
    TextTable table({QStringLiteral("Time"), QStringLiteral("User"), QStringLiteral("Client"),
                     QStringLiteral("Command"), QStringLiteral("About"), QStringLiteral("Outcome"),
                     QStringLiteral("Took")});
    constexpr int duration = 6;
    table.setRightAligned(duration);
    for (const QVariant &entry : entries) {
        const QString code = textIn(entry, StationKey::returnCode);
        table.addRow({textIn(entry, StationKey::time), printable(textIn(entry, StationKey::user)),
                      printable(textIn(entry, StationKey::client)), printable(textIn(entry, StationKey::command)),
                      printable(subjectOf(entry)), code == ReturnCode::Success ? QStringLiteral("done") : code,
                      QStringLiteral("%1 ms").arg(textIn(entry, StationKey::duration))});
    }
    return table;
}

ExitCode showActivity(CommandRun &run)
{
    QVariantMap request;
    const CommandLine &line = run.line();
    if (line.has(QStringLiteral("group"))) {
        ExitCode exitCode = ExitCode::Done;
        const QString id = groupId(run, line.value(QStringLiteral("group")), &exitCode);
        if (id.isEmpty())
            return exitCode;
        request.insert(FieldKey::recordingGroupID, id);
    }
    for (const QString &option : {StationKey::from, StationKey::until}) {
        if (line.has(option))
            request.insert(option, line.value(option));
    }
    if (line.has(StationKey::limit))
        request.insert(StationKey::limit, line.value(StationKey::limit).toInt());
    const CallOutcome outcome = run.callStation(StationCommandName::listActivity, request);
    const QVariant entries = outcome.parts.isEmpty() ? QVariant() : outcome.parts.constLast().data;
    return run.end(outcome,
                   {[&] { return plainJson(entries, StationCommandName::listActivity); },
                    [&] { printText(activityTable(entries.toList()).toString()); }});
}
