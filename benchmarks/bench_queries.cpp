#include "Case.h"
#include "Client.h"
#include "PlainPlugin.h"
#include "PrivateMembers.h"
#include "Replies.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::DoNotOptimize;

constexpr int membersPerGroup = 64;
constexpr int cameraQueries = 1000;

/// A filled cache.
struct Cache
{
    explicit Cache(int groups, int members)
        : data(Replies::recordingGroups(groups, members))
    {
        refill();
        plain.saveRecordingGroupData(data);
    }

    void refill() // whatever the plug-in keeps for its queries is gone
    {
        client.plugin.clearRecordingGroupDataList();
        PrivateMembers::saveRecordingGroupData(client.plugin, data);
    }

    QVariant data;
    Client client;
    PlainPlugin plain;
};

QString queriedCamera(int query, int groups)
{
    return Replies::cameraId(query % groups, query % membersPerGroup);
}

/// "ours" asks a thousand times, "plain" once.
Work cameraQuery(int groups)
{
    const auto cache = std::make_shared<Cache>(groups, membersPerGroup);
    std::vector<QString> cameras;
    for (int query = 0; query < cameraQueries; ++query)
        cameras.push_back(queriedCamera(query, groups));
    return {
        {
            {"ours",
             [cache, cameras] {
                 for (const QString &camera : cameras)
                     DoNotOptimize(cache->client.plugin.getRecordingGroupIDList(camera));
             },
             [cache] { cache->refill(); }},
            {"plain", [cache, cameras] { DoNotOptimize(cache->plain.getRecordingGroupIDList(cameras.back())); }},
        },
        [cache, cameras] {
            const bool same = cache->client.plugin.getRecordingGroupIDList(cameras.back())
                == cache->plain.getRecordingGroupIDList(cameras.back());
            return same ? std::string() : "the groups of a camera differ";
        },
    };
}

/// Every group is asked for once; reading is answering from what was at hand.
Work byId(int groups)
{
    const auto cache = std::make_shared<Cache>(groups, 1);
    Work work{
        {
            {"ours",
             [cache, groups] {
                 for (int group = 0; group < groups; ++group)
                     DoNotOptimize(
                         cache->client.plugin.getRecordingGroupPathList(Replies::groupId(group), Replies::relayPath()));
             },
             [cache] { cache->refill(); }},
            {"read",
             [groups] {
                 for (int group = 0; group < groups; ++group) {
                     DoNotOptimize(Replies::groupId(group));
                     DoNotOptimize(Replies::relayPath());
                 }
             }},
        },
        [cache, groups] {
            const QString last = Replies::groupId(groups - 1);
            const bool same = cache->client.plugin.getRecordingGroupPathList(last, Replies::relayPath())
                == cache->plain.getRecordingGroupPathList(last, Replies::relayPath());
            return same ? std::string() : "the paths of a group differ";
        },
    };
    if (groups <= 1000) {
        work.variants.push_back({"plain", [cache, groups] {
                                     for (int group = 0; group < groups; ++group)
                                         DoNotOptimize(cache->plain.getRecordingGroupPathList(Replies::groupId(group),
                                                                                              Replies::relayPath()));
                                 }});
    }
    return work;
}

struct Usage
{
    Client client;
    PlainPlugin plain;
    SilentMonitor monitor;
    QVariantList ours;
    QVariantList asPlain;
};

Work infoList(int groups)
{
    const auto usage = std::make_shared<Usage>();
    const QVariant data = Replies::volumeEntries(groups * 16);
    usage->client.volumeChanged(data);
    usage->plain.handleVolumeChanged({}, data, &usage->monitor);
    return {
        {
            {"ours", [usage] { usage->ours = usage->client.plugin.getRecordingGroupInfoList(); },
             [usage] { usage->ours.clear(); }}, // what becomes of a list is the caller's cost
            {"plain", [usage] { usage->asPlain = usage->plain.getRecordingGroupInfoList(); },
             [usage] { usage->asPlain.clear(); }},
        },
        [usage] { return usage->ours == usage->asPlain ? std::string() : "the lists differ"; },
    };
}

} // namespace

std::vector<Case> queryCases()
{
    return {
        {8, "1000 camera queries", {1000}, cameraQuery},
        {9, "groups by id", {100, 1000, 10'000}, byId, {1000, 10'000}},
        {10, "list of all groups", {1000}, infoList},
    };
}
