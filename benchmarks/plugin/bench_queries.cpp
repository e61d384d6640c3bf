#include "Case.h"
#include "Client.h"
#include "PlainPlugin.h"
#include "Program.h"
#include "Replies.h"
#include "RowIds.h"

#include <algorithm>
#include <set>

namespace {

using benchmark::DoNotOptimize;

constexpr int membersPerGroup = 64;
constexpr int cameraQueries = 1000;

/// Fills the cache; whatever the plug-in kept for its queries is gone.
void fillCache(PluginRecordingManagement &plugin, const QVariant &groups)
{
    plugin.retrieveRecordingGroupTreeModel();
    deliver(plugin, ServerCommand::retrieveRecordingGroupTreeModel, groups);
}

/// "ours" asks a thousand times, "plain" once.
void queryCameras(int groups, const Measure &measure)
{
    const QVariant data = Replies::recordingGroups(groups, membersPerGroup);
    QStringList cameras;
    for (int query = 0; query < cameraQueries; ++query)
        cameras.append(Replies::cameraId(query % groups, query % membersPerGroup));
    Client ours;
    Client<PlainPlugin> plain;
    fillCache(plain.plugin, data);
    QVariantList found;
    QVariantList foundPlainly;
    const auto askForAll = [&] {
        for (const QString &camera : std::as_const(cameras))
            found = ours.plugin.getRecordingGroupIDList(camera);
    };
    measure({
        {"ours", askForAll, [&] { fillCache(ours.plugin, data); }},
        {"plain", [&] { foundPlainly = plain.plugin.getRecordingGroupIDList(cameras.last()); }},
    });
    require(found == foundPlainly, "the groups of a camera differ");
}

/// Every group is asked for once; reading is answering from what was at hand.
void queryGroups(int groups, const Measure &measure)
{
    const QVariantList data = Replies::recordingGroups(groups, 1);
    Client ours;
    const auto askForAll = [&] {
        for (int group = 0; group < groups; ++group)
            DoNotOptimize(ours.plugin.getRecordingGroupPathList(Replies::groupId(group), Replies::relayPath()));
    };
    const auto nameAll = [&] {
        for (int group = 0; group < groups; ++group) {
            DoNotOptimize(Replies::groupId(group));
            DoNotOptimize(Replies::relayPath());
        }
    };
    measure({{"ours", askForAll, [&] { fillCache(ours.plugin, data); }}, {"read", nameAll}});
    require(ours.plugin.getRecordingGroupPathList(Replies::groupId(groups - 1), Replies::relayPath())
                == data.last().toMap().value(FieldKey::recordingGroupPathList),
            "the paths of a group are not those of the reply");
}

void listGroups(int groups, const Measure &measure)
{
    const QVariant data = Replies::volumeEntries(groups * 16);
    Client ours;
    Client<PlainPlugin> plain;
    deliver(ours.plugin, ServerEvent::VolumeChanged, data);
    deliver(plain.plugin, ServerEvent::VolumeChanged, data);
    QVariantList list;
    QVariantList plainList;
    measure({
        {"ours", [&] { list = ours.plugin.getRecordingGroupInfoList(); },
         [&] { list.clear(); }}, // what becomes of a list is the caller's cost
        {"plain", [&] { plainList = plain.plugin.getRecordingGroupInfoList(); }, [&] { plainList.clear(); }},
    });
    require(list == plainList, "the lists differ");
}

/// One object makes the identifiers of all rounds, as it makes those of all rows.
void makeIdentifiers(int count, const Measure &measure)
{
    RowIds ids;
    std::vector<QUuid> made(static_cast<std::size_t>(count));
    measure({
        {"ours", [&] { std::generate(made.begin(), made.end(), [&ids] { return ids.next(); }); }},
        {"plain", [&] { std::generate(made.begin(), made.end(), QUuid::createUuid); }},
    });
    std::generate(made.begin(), made.end(), [&ids] { return ids.next(); });
    for (const QUuid &id : made)
        require(id.version() == QUuid::Random && id.variant() == QUuid::DCE, "an identifier is not of version 4");
    require(std::set(made.begin(), made.end()).size() == made.size(), "an identifier came twice");
}

} // namespace

std::vector<Case> queryCases()
{
    return {
        {"08 1000 camera queries", {1000}, queryCameras},
        {"09 groups by id", {100, 1000, 10'000}, queryGroups, {1000, 10'000}},
        {"10 list of all groups", {1000}, listGroups},
        {"14 an identifier", {1000}, makeIdentifiers},
    };
}
