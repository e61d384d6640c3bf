#include "Scenario.h"

#include "Replies.h"

#include <algorithm>

namespace {

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

/// @p values stand in every entry.
QVariantList entriesWith(const QVariantMap &values, int records, int turn)
{
    QVariantList entries = Replies::volumeEntries(records);
    for (QVariant &element : entries) {
        QVariantMap entry = element.toMap();
        entry["volumeAvailableSize"] = entry["volumeAvailableSize"].toLongLong() - turn * 1024LL;
        entry.insert(values);
        element = entry;
    }
    return renamed(entries, "recordingGroupName", turn, Replies::entriesPerGroup);
}

} // namespace

std::vector<Scenario> scenarios()
{
    const auto groups = [](int records, int turn) {
        return renamed(Replies::recordingGroups(records), "recordingGroupName", turn, records);
    };
    const auto groupsShown = [](int records, int turn) -> std::vector<Fact> {
        return {{"tree", "rows", records + 1}, {"group:" + nameIn(turn, "Group 0"), "visible", true}};
    };
    const auto usage = [](int records, int turn) { return entriesWith({}, records, turn); };
    const auto shortUsage = [](int records, int turn) { // no group will reach its reserved time: an alarm for each
        return entriesWith({{"volumeRecordedDays", 0}, {"volumeOneDayUsage", 300'000'000'000LL}}, records, turn);
    };
    const auto usageShown = [](int records, int turn) -> std::vector<Fact> {
        return {{"groups", "count", static_cast<int>(Replies::groupIds(records).size())},
                {"group:" + Replies::groupId(0), "name", nameIn(turn, "Group 0")}};
    };
    const auto volumes = [](int records, int turn) {
        return renamed(Replies::volumes(records), "volumeName", turn, records);
    };
    const auto volumesShown = [](int records, int turn) -> std::vector<Fact> {
        return {{"volumes", "count", records}, {"volume:/mnt/video/0", "name", nameIn(turn, "Video disk 0")}};
    };
    return {
        {"groups page", "groups", {1000, 10'000}, "retrieveRecordingGroupTreeModel", groups, groupsShown, true, 1000},
        {"usage page", "usage", {10'000, 100'000}, "VolumeChanged", usage, usageShown},
        {"usage page, every group short", "usage", {50'000}, "VolumeChanged", shortUsage, usageShown},
        {"volumes page", "volumes", {1000, 10'000}, "getVolume", volumes, volumesShown},
    };
}
