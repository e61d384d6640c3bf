#include "RowLayout.h"

#include "ItemRoles.h"
#include "ReplyFields.h"
#include "ServerVocabulary.h"

#include <QStandardItem>

#include <exception>
#include <new>

namespace {

// A value of the right type is handed on; everything else becomes what the conversion makes of it, typed nulls
// included.
bool isOf(const QVariant &value, QMetaType type)
{
    return value.metaType() == type && !value.isNull();
}

QVariant patternValue(const RowField &field)
{
    switch (field.value) {
    case RowField::Constant:
        return field.constant;
    case RowField::Flag:
        return false;
    default:
        return QVariant::fromValue(nullptr); // equals nothing: setData() would keep a value that equals the new one
    }
}

} // namespace

const RowLayout &volumeRow()
{
    static const RowLayout layout{
        {VolumeRole::Id, RowField::NewIdText},
        {VolumeRole::RootPath, RowField::Text, &FieldKey::volumePath},
        {VolumeRole::Name, RowField::Text, &FieldKey::volumeName},
        {VolumeRole::Size, RowField::Number, &FieldKey::volumeSize},
        {VolumeRole::AvailableSize, RowField::Number, &FieldKey::volumeAvailableSize},
        {VolumeRole::IsSystem, RowField::Flag, &FieldKey::volumeIsSystem},
        {VolumeRole::IsNas, RowField::Constant, nullptr, false},
    };
    return layout;
}

const RowLayout &groupVolumeRow()
{
    static const RowLayout layout{
        {VolumeRole::Id, RowField::NewIdText},
        {VolumeRole::RootPath, RowField::Text, &FieldKey::recordingPath},
        {VolumeRole::Name, RowField::Text, &FieldKey::volumeName},
        {VolumeRole::Size, RowField::Number, &FieldKey::volumeSize},
        {VolumeRole::AvailableSize, RowField::Number, &FieldKey::volumeAvailableSize},
        {VolumeRole::IsSystem, RowField::Flag, &FieldKey::volumeIsSystem},
        {VolumeRole::IsNas, RowField::Flag, &FieldKey::volumeIsNAS},
    };
    return layout;
}

const RowLayout &recordingGroupRow()
{
    static const RowLayout layout{
        {RecordingGroupRole::Id, RowField::Text, &FieldKey::recordingGroupID},
        {RecordingGroupRole::Name, RowField::Text, &FieldKey::recordingGroupName},
        {RecordingGroupRole::PathList, RowField::TextList, &FieldKey::recordingGroupPathList},
        {RecordingGroupRole::NodeIdList, RowField::TextList, &FieldKey::recordingGroupNodeIdList},
        {RecordingGroupRole::NasPathList, RowField::TextList, &FieldKey::recordingGroupNASPathList},
        {RecordingGroupRole::RecordedDays, RowField::Constant, nullptr, 0},
        {RecordingGroupRole::RemainDays, RowField::Constant, nullptr, 0},
        {RecordingGroupRole::OneDayUsage, RowField::Constant, nullptr, qlonglong(0)},
        {RecordingGroupRole::ReserveTime, RowField::Constant, nullptr, 0},
    };
    return layout;
}

const RowLayout &nasServerRow()
{
    static const QString id = QStringLiteral("id");
    static const RowLayout layout{
        {NasServerRole::Id, RowField::Text, &id},
        {NasServerRole::Host, RowField::Text, &FieldKey::host},
        {NasServerRole::LogonDomain, RowField::Text, &FieldKey::logonDomain},
        {NasServerRole::UserName, RowField::Text, &FieldKey::userName},
        {NasServerRole::Password, RowField::Text, &FieldKey::password},
    };
    return layout;
}

const RowLayout &treeGroupRow()
{
    static const RowLayout layout{
        {TreeRole::Id, RowField::NewId},
        {TreeRole::Name, RowField::AsItIs, &FieldKey::recordingGroupName},
        {TreeRole::RelayPath, RowField::AsItIs, &FieldKey::relayPath},
        {TreeRole::Type, RowField::Constant, nullptr, NodeType::RecordingGroup},
        {TreeRole::RecordingGroupId, RowField::AsItIs, &FieldKey::recordingGroupID},
    };
    return layout;
}

RowMaker::RowMaker(const RowLayout &layout)
    : m_layout(layout)
{
    for (const RowField &field : layout) {
        if (field.key)
            m_record.add(*field.key);
    }
}

RowItem RowMaker::row(const QVariant &record) noexcept
{
    try {
        m_record.read(record);
    } catch (const std::exception &) {
        return nullptr;
    }
    return row();
}

RowItem RowMaker::row() noexcept
{
    try {
        const QStandardItem *const first = pattern();
        if (!first)
            return nullptr;
        RowItem item(first->clone());
        std::size_t key = 0;
        for (const RowField &field : m_layout)
            fill(*item, field, field.key ? m_record[key++] : QVariant());
        return item;
    } catch (const std::exception &) {
        return nullptr;
    }
}

const QStandardItem *RowMaker::pattern()
{
    if (!m_pattern) {
        RowItem item(new (std::nothrow) QStandardItem);
        if (!item)
            return nullptr;
        for (const RowField &field : m_layout)
            item->setData(patternValue(field), field.role);
        m_pattern = std::move(item);
    }
    return m_pattern.get();
}

void RowMaker::fill(QStandardItem &item, const RowField &field, const QVariant &value)
{
    const auto set = [&item, &field](const QVariant &data) { item.setData(data, field.role); };
    switch (field.value) {
    case RowField::Constant:
        return;
    case RowField::NewIdText:
        return set(m_ids.next().toString());
    case RowField::NewId:
        return set(m_ids.next());
    case RowField::Text:
        return isOf(value, QMetaType::fromType<QString>()) ? set(value) : set(value.toString());
    case RowField::Number:
        return isOf(value, QMetaType::fromType<qlonglong>()) ? set(value) : set(value.toLongLong());
    case RowField::Flag:
        return value.toBool() ? set(true) : void();
    case RowField::TextList:
        return isOf(value, QMetaType::fromType<QStringList>()) ? set(value) : set(value.toStringList());
    case RowField::AsItIs:
        if (!value.isValid())
            set(value); // takes the role away: only then is an invalid value stored
        return set(value);
    }
}
