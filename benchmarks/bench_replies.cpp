#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "PlainPlugin.h"
#include "Replies.h"
#include "Rows.h"
#include "ServerVocabulary.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::DoNotOptimize;

void readVolumes(const QVariant &data)
{
    const QVariantList volumes = data.toList();
    for (const QVariant &element : volumes) {
        const QVariantMap volume = element.toMap();
        DoNotOptimize(volume.value(FieldKey::volumePath).toString());
        DoNotOptimize(volume.value(FieldKey::volumeName).toString());
        DoNotOptimize(volume.value(FieldKey::volumeSize).toLongLong());
        DoNotOptimize(volume.value(FieldKey::volumeAvailableSize).toLongLong());
        DoNotOptimize(volume.value(FieldKey::volumeIsSystem).toBool());
    }
}

void readNasServers(const QVariant &data)
{
    static const QString id = QStringLiteral("id");
    const QVariantList servers = data.toList();
    for (const QVariant &element : servers) {
        const QVariantMap server = element.toMap();
        DoNotOptimize(server.value(id).toString());
        DoNotOptimize(server.value(FieldKey::host).toString());
        DoNotOptimize(server.value(FieldKey::logonDomain).toString());
        DoNotOptimize(server.value(FieldKey::userName).toString());
        DoNotOptimize(server.value(FieldKey::password).toString());
    }
}

void readRecordingGroups(const QVariant &data)
{
    const QVariantList groups = data.toList();
    for (const QVariant &element : groups) {
        const QVariantMap group = element.toMap();
        DoNotOptimize(group.value(FieldKey::recordingGroupID).toString());
        DoNotOptimize(group.value(FieldKey::recordingGroupName).toString());
        DoNotOptimize(group.value(FieldKey::recordingGroupPathList).toStringList());
        DoNotOptimize(group.value(FieldKey::recordingGroupNodeIdList).toStringList());
        DoNotOptimize(group.value(FieldKey::recordingGroupNASPathList).toStringList());
    }
}

/// A reply that fills one list model.
struct Refill
{
    QVariant data;
    Client client;
    PlainPlugin plain;
    std::vector<RowValues> values;
    QStandardItemModel floor;
};

Work refillWork(const QVariant &data, const QString &command, QStandardItemModel &(Client::*ourModel)(),
                QStandardItemModel PlainPlugin::*plainModel, void (PlainPlugin::*plainHandler)(const QVariant &),
                void (*read)(const QVariant &), int madeUpRole)
{
    const auto refillOf = std::make_shared<Refill>();
    Refill &it = *refillOf;
    it.data = data;
    it.client.reply(command, it.data);
    it.values = rowValues((it.client.*ourModel)().invisibleRootItem());
    refill(it.floor, it.values);
    (it.plain.*plainHandler)(it.data);
    return {
        {
            {"ours", [refillOf, command] { refillOf->client.reply(command, refillOf->data); }},
            {"plain", [refillOf, plainHandler] { (refillOf->plain.*plainHandler)(refillOf->data); }},
            {"read", [refillOf, read] { read(refillOf->data); }},
            {"floor", [refillOf] { refill(refillOf->floor, refillOf->values); }},
        },
        [refillOf, ourModel, plainModel, madeUpRole] {
            return difference((refillOf->client.*ourModel)().invisibleRootItem(),
                              (refillOf->plain.*plainModel).invisibleRootItem(), madeUpRole);
        },
    };
}

} // namespace

std::vector<Case> replyCases()
{
    const std::vector<int> sizes{100, 1000, 10'000};
    return {
        {1,
         "volume reply",
         {10, 100, 1000, 10'000, 100'000},
         [](int size) {
             return refillWork(Replies::volumes(size), "getVolume", &Client::volumes, &PlainPlugin::volumes,
                               &PlainPlugin::handleRetrieveVolume, readVolumes, VolumeRole::Id);
         },
         {1000, 4000}},
        {2,
         "NAS server reply",
         sizes,
         [](int size) {
             return refillWork(Replies::nasServers(size), "GetNasServers", &Client::nasServers,
                               &PlainPlugin::nasServers, &PlainPlugin::handleGetNASServers, readNasServers, -1);
         },
         {1000, 4000}},
        {3,
         "recording-group reply",
         sizes,
         [](int size) {
             return refillWork(Replies::recordingGroups(size), "getRecordingGroup", &Client::recordingGroups,
                               &PlainPlugin::recordingGroups, &PlainPlugin::handleGetRecordingGroup,
                               readRecordingGroups, -1);
         },
         {1000, 4000}},
    };
}
