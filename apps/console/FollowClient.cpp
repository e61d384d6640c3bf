#include "FollowClient.h"

#include "ClientSession.h"
#include "ConsoleSession.h"
#include "PluginErrors.h"
#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationDirectory.h"
#include "StationVocabulary.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/HostReturnCode.h"
#include "link/StationCalls.h"

#include <QPointer>

#include <memory>

namespace {
/// An answer of the station that was worked on before says nothing of this one.
bool isOfAnother(const StationReply &reply)
{
    return reply.returnCode == HostReturnCode::OtherStation;
}

void followStations(ClientSession &client, ConsoleSession &session)
{
    const QPointer<StationDirectory> directory = client.stations();
    StationOverview &stations = *session.stations();
    const auto recordOf = [directory](const QString &relayPath) {
        return directory ? directory->record(relayPath) : StationDirectory::Record();
    };
    const auto take = [directory, &stations, recordOf](const QStringList &relayPaths) {
        stations.take(relayPaths, recordOf);
        stations.setCounts(directory->count(), directory->notUp(), directory->untold());
    };
    if (directory->isSite())
        stations.setSite();
    stations.setDirect(client.directStation());
    take(directory->relayPaths());
    QObject::connect(directory, &StationDirectory::changed, &stations,
                     [&client, &stations, take](const QStringList &news) {
                         stations.setDirect(client.directStation());
                         take(news);
                     });
    QObject::connect(&stations, &StationOverview::chosen, &client, [&client, &stations](const QString &relayPath) {
        QString error;
        if (!client.setDirectStation(relayPath, &error))
            stations.refuse(error);
    });
    QObject::connect(&client, &ClientSession::directStationChanging, &session, &ConsoleSession::leaveStation);
    QObject::connect(&client, &ClientSession::directStationChanged, &session,
                     [&client, &session](const QString &relayPath) {
                         session.stations()->setDirect(relayPath);
                         session.enterStation(client.stationState().kind == StationState::Kind::Up);
                     });
}
} // namespace

void followClient(ClientSession &client, ConsoleSession &session)
{
    followStations(client, session);
    const auto askForStorage = [&client, &session] {
        client.stationCalls()->send(StationCommandName::listStorage, {}, &session,
                                    [&session](const StationReply &reply) {
                                        if (isOfAnother(reply))
                                            return;
                                        if (reply.returnCode == ReturnCode::Success)
                                            session.storage()->take(reply.data.toList());
                                        else
                                            session.storage()->fail(session.refusalText(reply.returnCode));
                                    });
    };
    QObject::connect(session.storage(), &StationStorage::wanted, &client, askForStorage);
    const auto acknowledge = [&client, &session](const QString &command, const QVariant &data, const QString &source) {
        client.stationCalls()->send(
            command, data, &session,
            [&session](const StationReply &reply) { session.noteAcknowledgement(reply.returnCode); }, source);
    };
    QObject::connect(&session, &ConsoleSession::acknowledgementWanted, &client, acknowledge);
    const QPointer<StationCalls> calls = client.stationCalls();
    session.setStationCall([calls](const QString &command, const QVariant &data, QObject *context,
                                   const ConsoleSession::OnAnswer &onAnswer) {
        if (calls)
            calls->send(command, data, context,
                        [onAnswer](const StationReply &reply) { onAnswer(reply.returnCode, reply.data); });
    });
    const auto ask = [&client, &session](const QString &command, const QVariantMap &request) {
        const QVariant data = request.isEmpty() ? QVariant() : QVariant(request);
        client.stationCalls()->send(command, data, &session, [&session, command, request](const StationReply &reply) {
            if (!isOfAnother(reply))
                session.unassigned()->takeReply(command, request, reply.returnCode, reply.data);
        });
    };
    QObject::connect(session.unassigned(), &UnassignedRecordingsModel::requested, &client, ask);
    session.setConnected(client.isConnected());
    session.setAlarms(client.statusMonitor());
    session.setAlarmsKnown(client.areAlarmsKnown());
    QObject::connect(&client, &ClientSession::alarmsKnownChanged, &session, &ConsoleSession::setAlarmsKnown,
                     Qt::QueuedConnection); // after what the pages read of them
    QObject::connect(&client, &ClientSession::connectedChanged, &session, &ConsoleSession::setConnected);
    QObject::connect(client.framework(), &HostFramework::commandAnswered, &session, &ConsoleSession::noteAnswer);
    QObject::connect(client.framework(), &HostFramework::eventArriving, &session, &ConsoleSession::noteArrival);
    QObject::connect(client.framework(), &HostFramework::eventDelivered, &session, &ConsoleSession::noteEvent);
    QObject::connect(client.framework(), &HostFramework::eventHandedOn, &session,
                     [&session] { session.noteArrival({}); });
    QObject::connect(&client, &ClientSession::lateOutcomeCame, &session, &ConsoleSession::noteLateOutcome);
    const auto errors = std::make_shared<PluginErrors>();
    session.setPluginFact([errors] { return errors->lastFact(); });
    StationCameras *const cameras = session.cameraList();
    const auto askForCameras = [&client, &session, cameras] {
        client.stationCalls()->send(StationCommandName::listCameras, {}, cameras,
                                    [&session, cameras](const StationReply &reply) {
                                        if (isOfAnother(reply))
                                            return;
                                        if (reply.returnCode == ReturnCode::Success)
                                            cameras->take(reply.data.toList());
                                        else
                                            cameras->fail(session.refusalText(reply.returnCode));
                                    });
    };
    const auto editCameras = [&client, cameras](const QString &command, const QVariantMap &data) {
        client.stationCalls()->send(command, data, cameras, [cameras, command](const StationReply &reply) {
            if (!isOfAnother(reply))
                cameras->noteEdit(refusalText(reply.returnCode) + outcomeHint(command, reply.returnCode));
        });
    };
    QObject::connect(cameras, &StationCameras::wanted, &client, askForCameras);
    QObject::connect(cameras, &StationCameras::editWanted, &client, editCameras);
}
