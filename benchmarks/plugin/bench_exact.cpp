#include "Case.h"
#include "Client.h"
#include "Program.h"
#include "Replies.h"

#include <algorithm>

namespace {

using Plugin = PluginRecordingManagement;

constexpr int heapRecords = 10'000;

// Notes how often each signal comes while @p model is filled; the largest number of any reply counts.
void countSignals(benchmark::State &state, const QString &command, const QVariant &data, QObject *(Plugin::*getter)())
{
    Client client;
    QStandardItemModel &model = rowsOf((client.plugin.*getter)());
    QObject context;
    const auto count = [&](const char *name, auto signal) {
        benchmark::Counter &largest = state.counters[name];
        QObject::connect(&model, signal, &context,
                         [&largest, number = 0.0]() mutable { largest = std::max<double>(largest, ++number); });
    };
    count("modelReset", &QAbstractItemModel::modelReset);
    count("rowsInserted", &QAbstractItemModel::rowsInserted);
    count("dataChanged", &QAbstractItemModel::dataChanged);
    deliver(client.plugin, command, data);
    require(model.rowCount() > 0, "a reply brought no row");
}

/// Something of which the heap holds one for each record of a message.
struct Held
{
    std::string name;
    QVariantList (*records)(int count);
    void (*fill)(Plugin &plugin, const QVariantList &records); ///< replaces what was there
    int before = 1; ///< records that make what is made once only
};

/// "bytes" come on top of what is shared with the message, "bytes alone" are left when the message has gone.
void countHeap(benchmark::State &state, const Held &held)
{
    Client client;
    held.fill(client.plugin, held.records(held.before));
    held.fill(client.plugin, {});
    const double empty = heapInUse();
    QVariantList message = held.records(heapRecords);
    const double before = heapInUse();
    held.fill(client.plugin, message);
    const double after = heapInUse();
    message.clear();
    state.counters["bytes"] = (after - before) / heapRecords;
    state.counters["bytes alone"] = (heapInUse() - empty) / heapRecords;
}

/// Whatever the heap holds for the event but the usage rows.
void fillEntries(Plugin &plugin, const QVariantList &records)
{
    deliver(plugin, ServerEvent::VolumeChanged, records);
    rowsOf(plugin.getStorageUsageModel({})).clear();
}

void fillEntriesAndModels(Plugin &plugin, const QVariantList &records)
{
    fillEntries(plugin, records);
    for (const QString &group : Replies::groupIds(static_cast<int>(records.size())))
        plugin.getGroupVolumeModel({}, group);
}

/// Whatever the heap holds for the reply but the cache.
void fillTree(Plugin &plugin, const QVariantList &records)
{
    rowsOf(plugin.getRecordingGroupTreeModel()).clear();
    plugin.retrieveRecordingGroupTreeModel();
    deliver(plugin, ServerCommand::retrieveRecordingGroupTreeModel, records);
    plugin.clearRecordingGroupDataList();
}

} // namespace

void addSignalCounts()
{
    add("13 signals of a reply", [](benchmark::State &state) {
        const QVariantMap folders{{"basePath", "/"}, {"dirFolderList", QStringList{"a", "b"}}};
        countSignals(state, ServerCommand::getVolume, Replies::volumes(10), &Plugin::getVolumeModel);
        countSignals(state, ServerCommand::GetNasServers, Replies::nasServers(10), &Plugin::getNASServerModel);
        countSignals(state, ServerCommand::getRecordingGroup, Replies::recordingGroups(10),
                     &Plugin::getRecordingGroupModel);
        countSignals(state, ServerCommand::getServerDir, folders, &Plugin::getServerDirModel);
        countSignals(state, ServerCommand::GetNasDir, folders, &Plugin::getNASServerDirModel);
    });
}

void addHeapCounts()
{
    const auto groups = [](int count) { return Replies::recordingGroups(count); };
    const auto entries = [](int count) { return Replies::volumeEntries(count); };
    const Held everything[] = {
        {"15 heap of a volume", Replies::volumes,
         [](Plugin &plugin, const QVariantList &records) { deliver(plugin, ServerCommand::getVolume, records); }},
        {"15 heap of a NAS server", Replies::nasServers,
         [](Plugin &plugin, const QVariantList &records) { deliver(plugin, ServerCommand::GetNasServers, records); }},
        {"15 heap of a group in the tree", groups, fillTree, heapRecords}, // the cache keeps its room
        {"15 heap of a group volume", entries, fillEntriesAndModels},
        {"15 heap of an entry not asked for", entries, fillEntries},
    };
    for (const Held &held : everything)
        add(held.name, [held](benchmark::State &state) { countHeap(state, held); });
}
