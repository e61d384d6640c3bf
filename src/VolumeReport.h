#pragma once

#include "GroupMap.h"
#include "UsageFigures.h"

#include <QStandardItemModel>
#include <QString>

#include <optional>
#include <vector>

class RowIds;

/// What a station's last "VolumeChanged" event said about the storage paths of its recording groups, and the models of
/// those groups that somebody asked for.
///
/// The event is read once. Of each entry only what a row needs is kept, and only until the group's model takes its
/// place: that is made when it is first asked for, with a row for each entry, and is the same until the report ends.
/// Its place in memory is inside the report: as long as a new report is made while the old one is there, no new model
/// has the address of an old one, which would look unchanged to a view.
class VolumeReport
{
public:
    /// An entry's storage path. Sizes are in the station's unit.
    struct Volume
    {
        QString path;
        QString name;
        qlonglong size;
        qlonglong availableSize;
        bool isSystem;
        bool isNas;
    };

    /// Reads the event's @p data, a list of maps; anything else counts as an empty list. Throws std::bad_alloc.
    explicit VolumeReport(const QVariant &data);

    /// Whether an entry has neither size nor free space.
    bool hasLostVolume() const { return m_hasLostVolume; }

    /// Calls @p visit with each group's id and its GroupUsage, in the order of the ids.
    template<typename Visit>
    void forEachGroup(Visit visit) const
    {
        m_groups.forEach([&visit](const QString &id, const Group &group) { visit(id, group.usage); });
    }

    /// Calls @p visit with each Volume of the group, in the order of the event.
    template<typename Visit>
    void forEachVolume(const QString &groupId, Visit visit)
    {
        const Group *const group = m_groups.find(groupId);
        if (!group)
            return;
        for (const Volume &volume : group->volumes)
            visit(volume);
        for (int row = 0; group->model && row < group->model->rowCount(); ++row)
            visit(volumeOf(group->model->index(row, 0)));
    }

    /// The group's model (roles: VolumeRole), a child of @p parent; null where the event named no such group. Throws
    /// std::bad_alloc, and tries again with the next call.
    QStandardItemModel *model(const QString &groupId, RowIds &ids, QObject *parent);

private:
    struct Group
    {
        GroupUsage usage;
        std::vector<Volume> volumes; // while there is no model
        std::optional<QStandardItemModel> model;
    };

    static Volume volumeOf(const QModelIndex &row);
    static void fill(QStandardItemModel &model, const std::vector<Volume> &volumes, RowIds &ids);

    GroupMap<Group> m_groups;
    bool m_hasLostVolume = false;
};
