#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "PlainPlugin.h"
#include "Program.h"
#include "Replies.h"
#include "Rows.h"

namespace {

/// A reply that fills a list model.
struct Reply
{
    QString command;
    QVariantList (*records)(int count);
    QObject *(PluginRecordingManagement::*model)();
    int firstRole; ///< of those that are read from the record; the others follow
    QStringList keys;
    QStringList textLists = {}; ///< likewise, after the keys
};

void requireRecords(const QStandardItemModel &model, const QVariantList &records, const Reply &reply)
{
    require(model.rowCount() == records.size(), "there is not a row for each record");
    for (int row = 0; row < model.rowCount(); ++row) {
        int role = reply.firstRole;
        for (const QString &key : reply.keys + reply.textLists) {
            QVariant said = records[row].toMap().value(key);
            if (reply.textLists.contains(key))
                said = said.toStringList();
            require(model.index(row, 0).data(role++) == said, "a row is not what the record says");
        }
    }
}

void refillModel(const Reply &reply, int size, const Measure &measure)
{
    const QVariantList data = reply.records(size);
    Client ours;
    Client<PlainPlugin> plain;
    const QStandardItemModel &model = rowsOf((ours.plugin.*reply.model)());
    deliver(ours.plugin, reply.command, data);
    const std::vector<RowValues> values = rowValues((ours.plugin.*reply.model)());
    QStandardItemModel floor;
    std::vector<Variant> variants{
        {"ours", [&] { deliver(ours.plugin, reply.command, data); }},
        {"read", [&] { readFields(data, reply.keys, reply.textLists); }},
        {"floor", [&] { refill(floor, values); }},
    };
    if (reply.command == ServerCommand::getVolume)
        variants.push_back({"plain", [&] { deliver(plain.plugin, reply.command, data); }});
    measure(variants);
    requireRecords(model, data, reply);
}

Case listCase(const std::string &name, const std::vector<int> &sizes, const Reply &reply)
{
    return {
        name, sizes, [reply](int size, const Measure &measure) { refillModel(reply, size, measure); }, {1000, 4000}};
}

const QStringList treeKeys{"recordingGroupName", "relayPath", "recordingGroupID"};
const QStringList cacheKeys{"recordingGroupID",
                            "relayPath",
                            "recordingGroupPathList",
                            "reserveSpace",
                            "recordingGroupNASPathList",
                            "recordingGroupNodeIdList",
                            "recordingGroupRecoveryPathList",
                            "recordingGroupReservedTime",
                            "recordingGroupMemberList"};
constexpr int mostPlainGroups = 1000; // beyond it the plain rules take seconds

QStandardItem *stationOf(PluginRecordingManagement &plugin)
{
    return rowsOf(plugin.getRecordingGroupTreeModel()).item(0);
}

/// The reply that fills the tree and the cache. The request before it, which empties both, is not measured.
void fillTree(int size, const Measure &measure)
{
    const QString &command = ServerCommand::retrieveRecordingGroupTreeModel;
    const QVariantList data = Replies::recordingGroups(size);
    Client ours;
    Client<PlainPlugin> plain;
    ours.plugin.retrieveRecordingGroupTreeModel();
    deliver(ours.plugin, command, data);
    const std::vector<RowValues> rows = rowValues(stationOf(ours.plugin));
    const std::vector<RowValues> records = fieldValues(data, cacheKeys);
    std::vector<RowValues> cache;
    QStandardItemModel floor;
    const auto empty = [&] { floor.clear(), cache.clear(); };
    std::vector<Variant> variants{
        {"ours", [&] { deliver(ours.plugin, command, data); }, [&] { ours.plugin.retrieveRecordingGroupTreeModel(); }},
        {"read", [&] { readFields(data, treeKeys), readFields(data, cacheKeys); }},
        {"floor", [&] { appendRows(floor.invisibleRootItem(), rows), cache = records; }, empty},
    };
    if (size <= mostPlainGroups) {
        variants.push_back({"plain", [&] { deliver(plain.plugin, command, data); },
                            [&] { plain.plugin.retrieveRecordingGroupTreeModel(); }});
    }
    measure(variants);
    for (const QVariant &element : data) {
        const QVariantMap group = element.toMap();
        require(ours.plugin.getRecordingGroupMemberList(group["recordingGroupID"].toString(), Replies::relayPath())
                    == group["recordingGroupMemberList"],
                "the members of a group are not those of the reply");
    }
    if (size <= mostPlainGroups)
        require(rowValues(stationOf(ours.plugin), TreeRole::Id) == rowValues(stationOf(plain.plugin), TreeRole::Id),
                "the rows of the tree differ");
}

} // namespace

std::vector<Case> replyCases()
{
    using Plugin = PluginRecordingManagement;
    return {
        listCase("01 volume reply", {10, 100, 1000, 10'000, 100'000},
                 {"getVolume",
                  Replies::volumes,
                  &Plugin::getVolumeModel,
                  VolumeRole::RootPath,
                  {"volumePath", "volumeName", "volumeSize", "volumeAvailableSize", "volumeIsSystem"}}),
        listCase("02 NAS server reply", {100, 1000, 10'000},
                 {"GetNasServers",
                  Replies::nasServers,
                  &Plugin::getNASServerModel,
                  NasServerRole::Id,
                  {"id", "host", "logonDomain", "userName", "password"}}),
        listCase("03 recording-group reply", {100, 1000, 10'000},
                 {"getRecordingGroup",
                  [](int count) { return Replies::recordingGroups(count); },
                  &Plugin::getRecordingGroupModel,
                  RecordingGroupRole::Id,
                  {"recordingGroupID", "recordingGroupName"},
                  {"recordingGroupPathList", "recordingGroupNodeIdList", "recordingGroupNASPathList"}}),
        {"04 tree filling", {100, 1000, 10'000}, fillTree, {1000, 4000}},
    };
}
