#include "Scenario.h"

#include "ItemRoles.h"
#include "PrivateMembers.h"
#include "Replies.h"
#include "Rows.h"

#include <QStandardItemModel>

#include <algorithm>

namespace {

constexpr int entriesOfAGroup = 16;
constexpr int volumesOfAStation = 8;

QString nameIn(int turn, const QString &name)
{
    return QStringLiteral("%1, turn %2").arg(name).arg(turn);
}

// The first @p count records with a name that tells the turn.
QVariantList renamed(QVariantList records, const QString &key, int turn, int count)
{
    for (qsizetype i = 0; i < std::min<qsizetype>(count, records.size()); ++i) {
        QVariantMap record = records[i].toMap();
        record[key] = nameIn(turn, record[key].toString());
        records[i] = record;
    }
    return records;
}

Message groupReply(int records, int turn)
{
    return {false, "retrieveRecordingGroupTreeModel",
            renamed(Replies::recordingGroups(records), "recordingGroupName", turn, records)};
}

std::vector<Fact> groupsShown(int records, int turn)
{
    return {{"tree", "rows", records + 1}, {"group:" + nameIn(turn, "Group 0"), "visible", true}};
}

Message usageEvent(int records, int turn)
{
    QVariantList entries = Replies::volumeEntries(records, entriesOfAGroup);
    for (QVariant &element : entries) {
        QVariantMap entry = element.toMap();
        entry["volumeAvailableSize"] = entry["volumeAvailableSize"].toLongLong() - turn * 1024LL;
        element = entry;
    }
    return {true, "VolumeChanged", renamed(entries, "recordingGroupName", turn, entriesOfAGroup)};
}

/// No group will reach its reserved time: an alarm for each.
Message alarmingEvent(int records, int turn)
{
    Message event = usageEvent(records, turn);
    QVariantList entries = event.data.toList();
    for (QVariant &element : entries) {
        QVariantMap entry = element.toMap();
        entry["volumeRecordedDays"] = 0;
        entry["volumeOneDayUsage"] = 300'000'000'000LL; // bytes
        element = entry;
    }
    event.data = entries;
    return event;
}

std::vector<Fact> usageShown(int records, int turn)
{
    return {{"groups", "count", std::max(1, (records + entriesOfAGroup - 1) / entriesOfAGroup)},
            {"group:" + Replies::groupId(0), "name", nameIn(turn, "Group 0")}};
}

Message volumeReply(int records, int turn)
{
    return {false, "getVolume", renamed(Replies::volumes(records), "volumeName", turn, records)};
}

std::vector<Fact> volumesShown(int records, int turn)
{
    return {{"volumes", "count", records}, {"volume:/mnt/video/0", "nameRole", nameIn(turn, "Video disk 0")}};
}

std::string differentRows(QObject *left, QObject *right, int differingRole)
{
    return difference(qobject_cast<QStandardItemModel *>(left)->invisibleRootItem(),
                      qobject_cast<QStandardItemModel *>(right)->invisibleRootItem(), differingRole);
}

} // namespace

std::vector<Scenario> scenarios()
{
    return {
        {
            .name = "groups page",
            .page = "groups",
            .sizes = {{1000}, {10'000, true}},
            .message = groupReply,
            .facts = groupsShown,
            .request = [](PluginRecordingManagement &plugin) { plugin.retrieveRecordingGroupTreeModel(); },
            .before = {{false, "getVolume", Replies::volumes(volumesOfAStation)}},
        },
        {.name = "usage page",
         .page = "usage",
         .sizes = {{10'000}, {100'000}},
         .message = usageEvent,
         .facts = usageShown},
        {.name = "usage page, every group short",
         .page = "usage",
         .sizes = {{50'000}},
         .message = alarmingEvent,
         .facts = usageShown},
        {.name = "volumes page",
         .page = "volumes",
         .sizes = {{1000}, {10'000}},
         .message = volumeReply,
         .facts = volumesShown},
    };
}

std::string difference(PluginRecordingManagement &left, PluginRecordingManagement &right)
{
    const auto stationOf = [](PluginRecordingManagement &plugin) {
        return qobject_cast<QStandardItemModel *>(plugin.getRecordingGroupTreeModel())->item(0);
    };
    std::string text = differentRows(left.getVolumeModel(), right.getVolumeModel(), VolumeRole::Id);
    if (text.empty())
        text = differentRows(left.getStorageUsageModel({}), right.getStorageUsageModel({}), -1);
    if (text.empty() && stationOf(left) && stationOf(right))
        text = difference(stationOf(left), stationOf(right), TreeRole::Id);
    const auto groups = PrivateMembers::groupVolumeModels(left).value(QString());
    if (text.empty() && groups.keys() != PrivateMembers::groupVolumeModels(right).value(QString()).keys())
        text = "the groups differ";
    for (auto group = groups.cbegin(); group != groups.cend() && text.empty(); ++group)
        text = differentRows(group->data(), right.getGroupVolumeModel({}, group.key()), VolumeRole::Id);
    return text;
}
