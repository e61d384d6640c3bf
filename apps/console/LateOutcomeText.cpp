#include "LateOutcomeText.h"

#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "link/LateOutcome.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>

namespace {
/// What the edit @p command is about; %1 is its subject. Null: nobody has named it.
const char *subjectPattern(const QString &command)
{
    static const QHash<QString, const char *> patterns{
        {ServerCommand::createDirectory, QT_TRANSLATE_NOOP("LateOutcome", "the folder %1")},
        {ServerCommand::addRecordingGroup, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::addRecordingGroupWithCompleteInfo, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::addPathToRecordingGroup, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::removePathFromRecordingGroup, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::updateRecordingGroup, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::removeRecordingGroup, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {ServerCommand::AddNasServer, QT_TRANSLATE_NOOP("LateOutcome", "the NAS server %1")},
        {ServerCommand::UpdateNASServer, QT_TRANSLATE_NOOP("LateOutcome", "the NAS server %1")},
        {ServerCommand::RemoveNASServer, QT_TRANSLATE_NOOP("LateOutcome", "the NAS server %1")},
        {StationCommandName::addCamera, QT_TRANSLATE_NOOP("LateOutcome", "the camera %1")},
        {StationCommandName::removeCamera, QT_TRANSLATE_NOOP("LateOutcome", "the camera %1")},
        {StationCommandName::createSampleSite, QT_TRANSLATE_NOOP("LateOutcome", "the sample site")},
        {StationCommandName::assignRecordings, QT_TRANSLATE_NOOP("LateOutcome", "the recording group %1")},
        {StationCommandName::deleteRecordings, QT_TRANSLATE_NOOP("LateOutcome", "the recordings in %1")},
        {StationCommandName::acknowledgeAlarm, QT_TRANSLATE_NOOP("LateOutcome", "the alarm about %1")},
        {StationCommandName::withdrawAcknowledgement, QT_TRANSLATE_NOOP("LateOutcome", "the alarm about %1")},
    };
    return patterns.value(command);
}

/// %1 is what the edit was about, %2 when it timed out, %3 why it is not done.
const char *sentencePattern(const LateOutcome &outcome, bool isOpen)
{
    if (outcome.returnCode == ReturnCode::Success)
        return QT_TRANSLATE_NOOP("LateOutcome", "The edit of %1 that timed out at %2 was done.");
    if (isOpen) {
        return QT_TRANSLATE_NOOP("LateOutcome", "What came of the edit of %1 that timed out at %2 is not known: %3");
    }
    if (outcome.isDoneInPart)
        return QT_TRANSLATE_NOOP("LateOutcome", "The edit of %1 that timed out at %2 was done in part: %3");
    return QT_TRANSLATE_NOOP("LateOutcome", "The edit of %1 that timed out at %2 was refused: %3");
}

QString translated(const char *text)
{
    return QCoreApplication::translate("LateOutcome", text);
}

QString subjectText(const LateOutcome &outcome)
{
    const char *const text = subjectPattern(outcome.command);
    if (!text)
        return outcome.command;
    const QString subject = translated(text);
    return subject.contains(QStringLiteral("%1")) ? subject.arg(outcome.subject) : subject;
}
} // namespace

QString lateOutcomeText(const LateOutcome &outcome)
{
    const QString time = QLocale().toString(outcome.timedOutAt.toLocalTime().time(), QStringLiteral("HH:mm"));
    const QString hint = outcomeHint(outcome.command, outcome.returnCode);
    QString text = translated(sentencePattern(outcome, !hint.isEmpty()));
    if (outcome.returnCode == ReturnCode::Success)
        return text.arg(subjectText(outcome), time);
    return text.arg(subjectText(outcome), time, refusalText(outcome.returnCode) + hint);
}
