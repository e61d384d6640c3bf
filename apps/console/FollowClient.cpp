#include "FollowClient.h"

#include "ClientSession.h"
#include "ConsoleSession.h"
#include "StationProtocol.h"
#include "companions/StatusMonitorPlugin.h"
#include "link/StationCalls.h"

void followClient(const ClientSession &client, ConsoleSession &session)
{
    session.setConnected(client.isConnected());
    session.setAlarms(client.statusMonitor());
    QObject::connect(&client, &ClientSession::connectedChanged, &session, &ConsoleSession::setConnected);
    QObject::connect(client.framework(), &HostFramework::commandAnswered, &session, &ConsoleSession::noteAnswer);
    QObject::connect(client.framework(), &HostFramework::eventDelivered, &session, &ConsoleSession::noteEvent);
    const auto askForCameras = [&client, &session] {
        client.stationCalls()->send(StationOwnCommandName::listCameras, {}, &session,
                                    [&session](const StationReply &reply) {
                                        if (reply.returnCode == StationReturnCode::Success)
                                            session.setCameras(reply.data.toList());
                                    });
    };
    QObject::connect(&session, &ConsoleSession::camerasWanted, &client, askForCameras);
}
