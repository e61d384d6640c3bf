#include "RowItems.h"

#include "ItemRoles.h"
#include "ServerVocabulary.h"

#include <QStandardItemModel>
#include <QStringList>

#include <algorithm>
#include <new>
#include <utility>

namespace {

bool isInModel(const QStandardItem *row)
{
    return row->model() != nullptr;
}

// The item that @p parent names, with a column; null where a slot does not leave it one. A column inserted from within
// the insertion of rows would reach the views nested in it.
QStandardItem *withColumn(const std::function<QStandardItem *()> &parent)
{
    QStandardItem *item = parent();
    if (item && item->columnCount() == 0) {
        item->setColumnCount(1);
        item = parent();
    }
    return item && item->columnCount() > 0 ? item : nullptr;
}

// Any model's reset can be ended through this name.
struct ResetEnd : QStandardItemModel
{
    using QStandardItemModel::endResetModel;
};

// After a reset that was broken off: views that heard of its begin wait for its end.
void clearAgain(QStandardItemModel &model)
{
    try {
        (model.*&ResetEnd::endResetModel)();
        model.clear();
    } catch (...) {
        model.removeRows(0, model.rowCount());
        throw;
    }
}

} // namespace

RowMaker volumeRows()
{
    return RowMaker{{VolumeRole::Id},          {VolumeRole::RootPath},      {VolumeRole::Name},
                    {VolumeRole::Size},        {VolumeRole::AvailableSize}, {VolumeRole::IsSystem, false},
                    {VolumeRole::IsNas, false}};
}

RowMaker recordingGroupRows()
{
    return RowMaker{
        {RecordingGroupRole::Id},
        {RecordingGroupRole::Name},
        {RecordingGroupRole::PathList, QStringList()},
        {RecordingGroupRole::NodeIdList, QStringList()},
        {RecordingGroupRole::NasPathList, QStringList()},
        {RecordingGroupRole::RecordedDays, 0},
        {RecordingGroupRole::RemainDays, 0},
        {RecordingGroupRole::OneDayUsage, qlonglong(0)},
        {RecordingGroupRole::ReserveTime, 0},
    };
}

RowMaker nasServerRows()
{
    return RowMaker{{NasServerRole::Id},
                    {NasServerRole::Host},
                    {NasServerRole::LogonDomain},
                    {NasServerRole::UserName},
                    {NasServerRole::Password}};
}

RowMaker directoryRows()
{
    return RowMaker{{DirectoryRole::Id}, {DirectoryRole::Name}};
}

RowMaker treeStationRows()
{
    return RowMaker{{TreeRole::Name}, {TreeRole::StationIp}, {TreeRole::RelayPath}, {TreeRole::Type}, {TreeRole::Id}};
}

RowMaker treeGroupRows()
{
    return RowMaker{{TreeRole::Id},
                    {TreeRole::Name},
                    {TreeRole::RelayPath},
                    {TreeRole::RecordingGroupId},
                    {TreeRole::Type, NodeType::RecordingGroup}};
}

RowMaker::RowMaker(std::initializer_list<Cell> cells)
    : m_count(cells.size())
{
    Q_ASSERT(m_count <= mostCells);
    std::copy(cells.begin(), cells.end(), m_cells.begin());
}

RowItem RowMaker::copyOfFirst()
{
    if (!m_first) {
        RowItem first(new (std::nothrow) QStandardItem);
        if (!first)
            throw std::bad_alloc();
        for (std::size_t cell = 0; cell < m_count; ++cell)
            first->setData(m_cells[cell].value, m_cells[cell].role); // an invalid value lays its role out, too
        m_first = std::move(first);
    }
    return RowItem(m_first->clone());
}

void RowMaker::setValue(QStandardItem &item, std::size_t cell, const QVariant &value) const
{
    if (value.isValid())
        item.setData(value, m_cells[cell].role);
}

int RowBatch::append(QStandardItemModel *model)
{
    return append([model] { return model ? model->invisibleRootItem() : nullptr; }); // a cleared model has a new root
}

int RowBatch::append(const std::function<QStandardItem *()> &parent)
{
    if (m_rows.isEmpty())
        return 0;
    try {
        if (QStandardItem *const item = withColumn(parent)) {
            item->appendRows(m_rows);
            m_rows.clear();
            return 0;
        }
    } catch (...) {
        if (isInModel(m_rows.constFirst())) {
            m_rows.clear();
            throw;
        }
    }
    return appendOneByOne(parent);
}

int RowBatch::appendOneByOne(const std::function<QStandardItem *()> &parent) noexcept
{
    int lost = 0;
    for (QStandardItem *const row : std::exchange(m_rows, {})) {
        try {
            if (QStandardItem *const item = withColumn(parent))
                item->appendRow(row);
        } catch (...) {
        }
        if (!isInModel(row)) {
            delete row;
            ++lost;
        }
    }
    return lost;
}

void clearRows(QStandardItemModel *model)
{
    if (!model)
        return;
    const QStandardItem *const root = model->invisibleRootItem();
    try {
        model->clear();
    } catch (...) {
        if (model->invisibleRootItem() != root)
            throw;
        clearAgain(*model);
    }
}

QStandardItemModel *newListModel(const QHash<int, QByteArray> &roleNames, QObject *parent) noexcept
{
    try {
        std::unique_ptr<QStandardItemModel> model(new (std::nothrow) QStandardItemModel);
        if (!model)
            return nullptr;
        model->setItemRoleNames(roleNames);
        model->setParent(parent); // last: a child that failed half made would stay in its parent's list
        return model.release();
    } catch (const std::exception &) {
        return nullptr;
    }
}
