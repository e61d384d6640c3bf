#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "PlainPlugin.h"
#include "Program.h"
#include "Replies.h"
#include "Rows.h"

namespace {

const QStringList usageKeys{"recordingGroupID",    "recordingGroupName", "recordingGroupReservedTime",
                            "volumeAvailableSize", "volumeRecordedDays", "volumeOneDayUsage"};
const QStringList volumeKeys{"recordingGroupID",    "recordingPath",  "volumeName", "volumeSize",
                             "volumeAvailableSize", "volumeIsSystem", "volumeIsNAS"};

/// What becomes of an event.
struct Reception
{
    std::string name; ///< of the case
    Replies::Order order;
    bool isAskedForModels; ///< each group's volume model is asked for afterwards
    bool arePlainModelsMade; ///< the plain rules make them; else they keep the entries, as nobody asks
};

void receiveEvent(const Reception &reception, int size, const Measure &measure)
{
    const QVariant data = Replies::volumeEntries(size, reception.order);
    const QStringList groups = Replies::groupIds(size);
    Client ours;
    Client<PlainPlugin> plain;
    deliver(plain.plugin, ServerEvent::VolumeChanged, data);
    const std::vector<RowValues> usage = rowValues(plain.plugin.getStorageUsageModel({}));
    std::vector<std::vector<RowValues>> volumes;
    for (const QString &group : groups)
        volumes.push_back(rowValues(plain.plugin.getGroupVolumeModel({}, group)));
    QObject parent;
    QStandardItemModel usageFloor;
    std::vector<std::unique_ptr<QStandardItemModel>> volumeFloors;
    const auto makeFloor = [&] {
        volumeFloors.clear();
        for (const std::vector<RowValues> &rows : volumes) {
            const auto &model = volumeFloors.emplace_back(std::make_unique<QStandardItemModel>(&parent));
            model->setItemRoleNames(volumeRoleNames());
            appendRows(model->invisibleRootItem(), rows);
        }
        refill(usageFloor, usage);
    };
    plain.plugin.setVolumeModelsMade(reception.arePlainModelsMade);
    measure({
        {"ours",
         [&] {
             deliver(ours.plugin, ServerEvent::VolumeChanged, data);
             for (const QString &group : reception.isAskedForModels ? groups : QStringList())
                 benchmark::DoNotOptimize(ours.plugin.getGroupVolumeModel({}, group));
         }},
        {"plain", [&] { deliver(plain.plugin, ServerEvent::VolumeChanged, data); }},
        {"read", [&] { readFields(data, usageKeys), readFields(data, volumeKeys); }},
        {"floor", makeFloor},
    });
    require(rowValues(ours.plugin.getStorageUsageModel({})) == usage, "the usage rows differ");
    for (const QString &group : reception.arePlainModelsMade ? groups : QStringList())
        require(rowValues(ours.plugin.getGroupVolumeModel({}, group), VolumeRole::Id)
                    == rowValues(plain.plugin.getGroupVolumeModel({}, group), VolumeRole::Id),
                "the volumes of a group differ");
}

} // namespace

std::vector<Case> eventCases()
{
    using Replies::Order;
    const Reception receptions[] = {
        {"05 group volume models", Order::Together, true, true},
        {"06 usage sums, entries together", Order::Together, false, false},
        {"06 usage sums, entries spread", Order::Spread, false, false},
        {"07 the whole event", Order::Together, false, true},
        {"07 the event, every model asked for", Order::Together, true, true},
    };
    std::vector<Case> cases;
    for (const Reception &reception : receptions) {
        cases.push_back({
            reception.name,
            {100, 1000, 10'000},
            [reception](int size, const Measure &measure) { receiveEvent(reception, size, measure); },
            {1000, 4000},
        });
    }
    return cases;
}
