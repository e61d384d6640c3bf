#include "CommandKind.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

const QSet<QString> &editCommands()
{
    static const QSet<QString> edits{
        ServerCommand::createDirectory,
        ServerCommand::addRecordingGroup,
        ServerCommand::addRecordingGroupWithCompleteInfo,
        ServerCommand::addPathToRecordingGroup,
        ServerCommand::removePathFromRecordingGroup,
        ServerCommand::updateRecordingGroup,
        ServerCommand::removeRecordingGroup,
        ServerCommand::AddNasServer,
        ServerCommand::UpdateNASServer,
        ServerCommand::RemoveNASServer,
        StationCommandName::addCamera,
        StationCommandName::removeCamera,
        StationCommandName::createSampleSite,
        StationCommandName::assignRecordings,
        StationCommandName::deleteRecordings,
        StationCommandName::acknowledgeAlarm,
        StationCommandName::withdrawAcknowledgement,
    };
    return edits;
}

bool changesAnything(const QString &command)
{
    return isEdit(command) || command == StationCommandName::cancelDeletion;
}

bool isEdit(const QString &command)
{
    return editCommands().contains(command);
}
