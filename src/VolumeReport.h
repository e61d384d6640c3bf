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
/// The event is read once. Of each entry only what a row needs is kept; a group's model is made when it is first asked
/// for, with a row for each entry of the group, and is the same from then on until the report ends. Its place in memory
/// is inside the report: as long as a new report is made while the old one is there, no new model has the address of an
/// old one, which would look unchanged to a view.
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
        quint32 next; ///< of the same group, or none
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
        if (const Group *const group = m_groups.find(groupId))
            forEachVolume(*group, visit);
    }

    /// The group's model (roles: VolumeRole), a child of @p parent; null where the event named no such group. Throws
    /// std::bad_alloc, and tries again with the next call.
    QStandardItemModel *model(const QString &groupId, RowIds &ids, QObject *parent);

private:
    static constexpr quint32 none = 0xffffffff;

    struct Group
    {
        GroupUsage usage;
        quint32 first = none; // of m_volumes
        quint32 last = none;
        std::optional<QStandardItemModel> model;
    };

    template<typename Visit>
    void forEachVolume(const Group &group, Visit visit) const
    {
        for (quint32 number = group.first; number != none; number = m_volumes[number].next)
            visit(m_volumes[number]);
    }
    void append(Group &group, Volume volume);
    void fill(QStandardItemModel &model, const Group &group, RowIds &ids) const;

    std::vector<Volume> m_volumes;
    GroupMap<Group> m_groups;
    bool m_hasLostVolume = false;
};
