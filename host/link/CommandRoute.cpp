#include "CommandRoute.h"

#include "ServerVocabulary.h"

QString stationOf(const QString &relayPath, const StationCommand &command)
{
    if (!relayPath.isEmpty())
        return relayPath;
    if (command.name == ServerCommand::GetNasServers)
        return command.data.toString();
    return command.data.toMap().value(FieldKey::relayPath).toString();
}
