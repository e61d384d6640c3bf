#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "Measuring.h"
#include "PrivateMembers.h"
#include "Replies.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

constexpr int heapRows = 10'000;

struct SignalCounts
{
    explicit SignalCounts(QStandardItemModel &model)
    {
        QObject::connect(&model, &QAbstractItemModel::modelReset, &context, [this] { ++resets; });
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &context, [this] { ++insertions; });
        QObject::connect(&model, &QAbstractItemModel::dataChanged, &context, [this] { ++changes; });
    }

    QObject context;
    double resets = 0;
    double insertions = 0;
    double changes = 0;
};

// Every handler that fills a list; the largest number counts.
void countSignals(benchmark::State &state)
{
    struct Reply
    {
        QString command;
        QVariant data;
        QObject *(PluginRecordingManagement::*model)();
    };
    const QVariantMap folders{{"basePath", "/"}, {"dirFolderList", QStringList{"a", "b"}}};
    const Reply replies[] = {
        {"getVolume", Replies::volumes(10), &PluginRecordingManagement::getVolumeModel},
        {"GetNasServers", Replies::nasServers(10), &PluginRecordingManagement::getNASServerModel},
        {"getRecordingGroup", Replies::recordingGroups(10), &PluginRecordingManagement::getRecordingGroupModel},
        {"getServerDir", folders, &PluginRecordingManagement::getServerDirModel},
        {"GetNasDir", folders, &PluginRecordingManagement::getNASServerDirModel},
    };
    for ([[maybe_unused]] auto iteration : state) {
        for (const Reply &entry : replies) {
            Client client;
            auto &model = *qobject_cast<QStandardItemModel *>((client.plugin.*entry.model)());
            const SignalCounts counts(model);
            client.reply(entry.command, entry.data);
            if (model.rowCount() == 0)
                state.SkipWithError("a reply brought no row");
            const auto keepLargest = [&state](const char *name, double count) {
                state.counters[name] = std::max<double>(state.counters[name], count);
            };
            keepLargest("modelReset", counts.resets);
            keepLargest("rowsInserted", counts.insertions);
            keepLargest("dataChanged", counts.changes);
        }
    }
}

// What the heap grows by while @p fill fills an empty model from @p data, which stays.
template<typename Fill>
void countHeap(benchmark::State &state, const QVariantList &data, Fill fill)
{
    for ([[maybe_unused]] auto iteration : state) {
        Client client;
        fill(client, data.mid(0, 1)); // what is made once only
        fill(client, QVariantList());
        const double before = heapInUse();
        fill(client, data);
        state.counters["bytes"] = (heapInUse() - before) / static_cast<double>(data.size());
    }
}

void fillTree(Client &client, const QVariantList &data)
{
    QStandardItemModel &tree = client.tree();
    if (tree.rowCount() == 0) {
        auto *const station = new QStandardItem;
        station->setData(Replies::relayPath(), TreeRole::RelayPath);
        tree.appendRow(station);
    }
    tree.item(0)->removeRows(0, tree.item(0)->rowCount());
    PrivateMembers::appendRecordingGroupToTreeModel(client.plugin, data);
}

} // namespace

void registerSignalCounts()
{
    benchmark::RegisterBenchmark("13 signals of a reply", countSignals)->Iterations(1);
}

void registerHeapCounts()
{
    const auto reply = [](const char *command) {
        return [command](Client &client, const QVariantList &data) { client.reply(command, data); };
    };
    const auto add = [](const char *name, const auto &data, const auto &fill) {
        benchmark::RegisterBenchmark(name, [data, fill](benchmark::State &state) {
            countHeap(state, data(heapRows), fill);
        })->Iterations(1);
    };
    add("15 heap of a volume", Replies::volumes, reply("getVolume"));
    add("15 heap of a NAS server", Replies::nasServers, reply("GetNasServers"));
    add(
        "15 heap of a group in the tree", [](int size) { return Replies::recordingGroups(size); }, fillTree);
    add(
        "15 heap of a group volume", [](int size) { return Replies::volumeEntries(size); },
        [](Client &client, QVariant data) {
            const QStringList groupIds = PrivateMembers::calculateGroupUsage(client.plugin, data).keys();
            PrivateMembers::updateRecordingGroupVolumeModel(client.plugin, {}, data, groupIds);
        });
}
