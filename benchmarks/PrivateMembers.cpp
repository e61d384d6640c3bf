#include "PrivateMembers.h"

#include "PluginRecordingManagement.h"

namespace {

// Private names may stand in an explicit instantiation; the friend that comes with it hands the member out.
template<typename Tag, auto Member>
struct Reveal
{
    friend constexpr auto member(Tag) { return Member; }
};

struct Usage
{
    friend constexpr auto member(Usage);
};
struct GroupVolumes
{
    friend constexpr auto member(GroupVolumes);
};
struct Tree
{
    friend constexpr auto member(Tree);
};
struct Cache
{
    friend constexpr auto member(Cache);
};
struct Groups
{
    friend constexpr auto member(Groups);
};
struct UsageModels
{
    friend constexpr auto member(UsageModels);
};
struct GroupVolumeModels
{
    friend constexpr auto member(GroupVolumeModels);
};

template struct Reveal<Usage, &PluginRecordingManagement::calculateGroupUsage>;
template struct Reveal<GroupVolumes, &PluginRecordingManagement::updateRecordingGroupVolumeModel>;
template struct Reveal<Tree, &PluginRecordingManagement::appendRecordingGroupToTreeModel>;
template struct Reveal<Cache, &PluginRecordingManagement::saveRecordingGroupData>;
template struct Reveal<Groups, &PluginRecordingManagement::m_recordingGroups>;
template struct Reveal<UsageModels, &PluginRecordingManagement::m_storageUsageModels>;
template struct Reveal<GroupVolumeModels, &PluginRecordingManagement::m_groupVolumeModels>;

} // namespace

QMap<QString, QVariant> PrivateMembers::calculateGroupUsage(PluginRecordingManagement &plugin, QVariant &data)
{
    return (plugin.*member(Usage()))(data);
}

void PrivateMembers::updateRecordingGroupVolumeModel(PluginRecordingManagement &plugin, const QString &source,
                                                     QVariant &data, const QStringList &groupIds)
{
    (plugin.*member(GroupVolumes()))(source, data, groupIds);
}

void PrivateMembers::appendRecordingGroupToTreeModel(PluginRecordingManagement &plugin, const QVariant &data)
{
    (plugin.*member(Tree()))(data);
}

void PrivateMembers::saveRecordingGroupData(PluginRecordingManagement &plugin, const QVariant &data)
{
    (plugin.*member(Cache()))(data);
}

std::vector<RecordingGroupData> &PrivateMembers::recordingGroups(PluginRecordingManagement &plugin)
{
    return plugin.*member(Groups());
}

QMap<QString, QSharedPointer<QStandardItemModel>> &PrivateMembers::storageUsageModels(PluginRecordingManagement &plugin)
{
    return plugin.*member(UsageModels());
}

QMap<QString, QMap<QString, QSharedPointer<QStandardItemModel>>> &
PrivateMembers::groupVolumeModels(PluginRecordingManagement &plugin)
{
    return plugin.*member(GroupVolumeModels());
}
