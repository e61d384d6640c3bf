#include "VolumeReport.h"

#include "ItemRoles.h"
#include "ReplyFields.h"
#include "RowIds.h"
#include "RowItems.h"
#include "ServerVocabulary.h"

#include <new>
#include <utility>

VolumeReport::VolumeReport(const QVariant &data)
{
    enum Field {
        Id,
        Name,
        ReserveTime,
        AvailableSize,
        RecordedDays,
        OneDayUsage,
        Path,
        VolumeName,
        Size,
        IsSystem,
        IsNas,
    };
    RecordReader entry({&FieldKey::recordingGroupID, &FieldKey::recordingGroupName,
                        &FieldKey::recordingGroupReservedTime, &FieldKey::volumeAvailableSize,
                        &FieldKey::volumeRecordedDays, &FieldKey::volumeOneDayUsage, &FieldKey::recordingPath,
                        &FieldKey::volumeName, &FieldKey::volumeSize, &FieldKey::volumeIsSystem,
                        &FieldKey::volumeIsNAS});
    QString convertedText;
    const QVariantList entries = data.toList();
    for (const QVariant &element : entries) {
        entry.read(element);
        Group &group = m_groups[textIn(entry[Id], convertedText)];
        const qlonglong size = entry[Size].toLongLong();
        const qlonglong available = entry[AvailableSize].toLongLong();

        GroupUsage &usage = group.usage;
        usage.reserveTime = entry[ReserveTime].toInt();
        usage.name = textIn(entry[Name], convertedText);
        usage.availableSize = wrappingSum(usage.availableSize, available);
        GroupUsage::addKnown(usage.recordedDays, entry[RecordedDays].toLongLong());
        GroupUsage::addKnown(usage.oneDayUsage, entry[OneDayUsage].toLongLong());

        group.volumes.push_back({entry[Path].toString(), entry[VolumeName].toString(), size, available,
                                 entry[IsSystem].toBool(), entry[IsNas].toBool()});
        m_hasLostVolume = m_hasLostVolume || (size == 0 && available == 0);
    }
    m_groups.forEach([](const QString &, Group &group) { group.volumes.shrink_to_fit(); });
}

VolumeReport::Volume VolumeReport::volumeOf(const QModelIndex &row)
{
    return {row.data(VolumeRole::RootPath).toString(), row.data(VolumeRole::Name).toString(),
            row.data(VolumeRole::Size).toLongLong(),   row.data(VolumeRole::AvailableSize).toLongLong(),
            row.data(VolumeRole::IsSystem).toBool(),   row.data(VolumeRole::IsNas).toBool()};
}

QStandardItemModel *VolumeReport::model(const QString &groupId, RowIds &ids, QObject *parent)
{
    Group *const group = m_groups.find(groupId);
    if (!group)
        return nullptr;
    if (!group->model) {
        try {
            group->model.emplace();
            fill(*group->model, group->volumes, ids);
            group->model->setParent(parent); // last: a child that failed half made would stay in its parent's list
        } catch (...) {
            group->model.reset(); // some of the rows would look like all of them
            throw;
        }
        std::exchange(group->volumes, {});
    }
    return &*group->model;
}

void VolumeReport::fill(QStandardItemModel &model, const std::vector<Volume> &volumes, RowIds &ids)
{
    model.setItemRoleNames(volumeRoleNames());
    RowMaker maker = volumeRows();
    RowBatch rows;
    bool complete = true;
    for (const Volume &volume : volumes) {
        complete = rows.add([&] {
            return maker.row(ids.nextText(), volume.path, volume.name, volume.size, volume.availableSize,
                             trueOrNothing(volume.isSystem), trueOrNothing(volume.isNas));
        }) && complete;
    }
    if (rows.append(&model) > 0 || !complete)
        throw std::bad_alloc();
}
