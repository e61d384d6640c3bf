#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "PlainPlugin.h"
#include "PrivateMembers.h"
#include "Replies.h"
#include "Rows.h"
#include "ServerVocabulary.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::DoNotOptimize;

using Models = QMap<QString, QSharedPointer<QStandardItemModel>>;

/// An event and whom it reaches.
struct Event
{
    QVariant data;
    QStringList groupIds;
    Client client;
    PlainPlugin plain;
    SilentMonitor monitor;
    QObject floorParent;
    Models floor;
    std::map<QString, std::vector<RowValues>> values; // by group
};

std::shared_ptr<Event> newEvent(const QVariantList &entries)
{
    const auto event = std::make_shared<Event>();
    event->data = entries;
    event->client.volumeChanged(event->data);
    event->plain.handleVolumeChanged({}, event->data, &event->monitor);
    event->groupIds = event->plain.groupVolumeModels[QString()].keys();
    for (const QString &group : std::as_const(event->groupIds))
        event->values[group] = rowValues(event->client.groupVolumes(group).invisibleRootItem());
    return event;
}

void readVolumes(const QVariant &data)
{
    const QVariantList entries = data.toList();
    for (const QVariant &element : entries) {
        const QVariantMap entry = element.toMap();
        DoNotOptimize(entry.value(FieldKey::recordingGroupID).toString());
        DoNotOptimize(entry.value(FieldKey::recordingPath).toString());
        DoNotOptimize(entry.value(FieldKey::volumeName).toString());
        DoNotOptimize(entry.value(FieldKey::volumeSize).toLongLong());
        DoNotOptimize(entry.value(FieldKey::volumeAvailableSize).toLongLong());
        DoNotOptimize(entry.value(FieldKey::volumeIsSystem).toBool());
        DoNotOptimize(entry.value(FieldKey::volumeIsNAS).toBool());
    }
}

void readFigures(const QVariant &data)
{
    const QVariantList entries = data.toList();
    for (const QVariant &element : entries) {
        const QVariantMap entry = element.toMap();
        DoNotOptimize(entry.value(FieldKey::recordingGroupID).toString());
        DoNotOptimize(entry.value(FieldKey::recordingGroupName).toString());
        DoNotOptimize(entry.value(FieldKey::recordingGroupReservedTime).toInt());
        DoNotOptimize(entry.value(FieldKey::volumeAvailableSize).toLongLong());
        DoNotOptimize(entry.value(FieldKey::volumeRecordedDays).toLongLong());
        DoNotOptimize(entry.value(FieldKey::volumeOneDayUsage).toLongLong());
    }
}

void rebuildFloor(Event &event)
{
    event.floor.clear();
    for (const auto &[group, rows] : event.values) {
        const QSharedPointer<QStandardItemModel> model(new QStandardItemModel(&event.floorParent));
        model->setItemRoleNames(volumeRoleNames());
        appendRows(model->invisibleRootItem(), rows);
        event.floor.insert(group, model);
    }
}

std::string modelsDiffer(Event &event)
{
    const Models plain = event.plain.groupVolumeModels[QString()];
    for (auto group = plain.cbegin(); group != plain.cend(); ++group) {
        const std::string text = difference(event.client.groupVolumes(group.key()).invisibleRootItem(),
                                            group.value()->invisibleRootItem(), VolumeRole::Id);
        if (!text.empty())
            return text;
    }
    return {};
}

Work groupVolumes(int size)
{
    const auto event = newEvent(Replies::volumeEntries(size));
    return {
        {
            {"ours",
             [event] {
                 PrivateMembers::updateRecordingGroupVolumeModel(event->client.plugin, {}, event->data,
                                                                 event->groupIds);
             }},
            {"plain", [event] { event->plain.updateRecordingGroupVolumeModel({}, event->data); }},
            {"read", [event] { readVolumes(event->data); }},
            {"floor", [event] { rebuildFloor(*event); }},
        },
        [event] { return modelsDiffer(*event); },
    };
}

Work usageSums(int size, Replies::Order order)
{
    const auto event = newEvent(Replies::volumeEntries(size, 16, order));
    return {
        {
            {"ours",
             [event] { DoNotOptimize(PrivateMembers::calculateGroupUsage(event->client.plugin, event->data)); }},
            {"plain", [event] { DoNotOptimize(event->plain.calculateGroupUsage(event->data)); }},
            {"read", [event] { readFigures(event->data); }},
        },
        [event] {
            const auto ours = PrivateMembers::calculateGroupUsage(event->client.plugin, event->data);
            return ours == event->plain.calculateGroupUsage(event->data) ? std::string() : "the sums differ";
        },
    };
}

Work wholeEvent(int size)
{
    const auto event = newEvent(Replies::volumeEntries(size));
    return {
        {
            {"ours", [event] { event->client.volumeChanged(event->data); }},
            {"plain", [event] { event->plain.handleVolumeChanged({}, event->data, &event->monitor); }},
            {"read", [event] { readFigures(event->data), readVolumes(event->data); }},
            {"floor", [event] { rebuildFloor(*event); }},
        },
        [event] { return modelsDiffer(*event); },
    };
}

} // namespace

std::vector<Case> eventCases()
{
    const std::vector<int> sizes{100, 1000, 10'000};
    const std::vector<int> growth{1000, 4000};
    return {
        {5, "group volume models", sizes, groupVolumes, growth},
        {6, "usage sums, entries together", sizes, [](int size) { return usageSums(size, Replies::Order::Together); },
         growth},
        {6, "usage sums, entries spread", sizes, [](int size) { return usageSums(size, Replies::Order::Spread); },
         growth},
        {7, "the whole event", sizes, wholeEvent, growth},
    };
}
