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

template struct Reveal<Usage, &PluginRecordingManagement::calculateGroupUsage>;
template struct Reveal<GroupVolumes, &PluginRecordingManagement::updateRecordingGroupVolumeModel>;
template struct Reveal<Tree, &PluginRecordingManagement::appendRecordingGroupToTreeModel>;
template struct Reveal<Cache, &PluginRecordingManagement::saveRecordingGroupData>;

} // namespace

QMap<QString, QVariant> PrivateMembers::calculateGroupUsage(PluginRecordingManagement &plugin, QVariant &data)
{
    return (plugin.*member(Usage()))(data);
}

void PrivateMembers::updateRecordingGroupVolumeModel(PluginRecordingManagement &plugin, const QString &source,
                                                     QVariant &data)
{
    (plugin.*member(GroupVolumes()))(source, data);
}

void PrivateMembers::appendRecordingGroupToTreeModel(PluginRecordingManagement &plugin, const QVariant &data)
{
    (plugin.*member(Tree()))(data);
}

void PrivateMembers::saveRecordingGroupData(PluginRecordingManagement &plugin, const QVariant &data)
{
    (plugin.*member(Cache()))(data);
}
