#include "Rows.h"

#include <QStandardItemModel>

std::vector<RowValues> rowValues(const QStandardItem *parent)
{
    std::vector<RowValues> rows;
    for (int row = 0; row < parent->rowCount(); ++row) {
        const QStandardItem *const item = parent->child(row);
        const QMap<int, QVariant> data = item->model()->itemData(item->index());
        RowValues values;
        for (auto entry = data.cbegin(); entry != data.cend(); ++entry)
            values.emplace_back(entry.key(), entry.value());
        rows.push_back(values);
    }
    return rows;
}

void appendRows(QStandardItem *parent, const std::vector<RowValues> &rows)
{
    QList<QStandardItem *> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const RowValues &values : rows) {
        auto *const item = new QStandardItem;
        for (const auto &[role, value] : values)
            item->setData(value, role);
        items.append(item);
    }
    if (parent->columnCount() == 0)
        parent->setColumnCount(1);
    parent->appendRows(items);
}

void refill(QStandardItemModel &model, const std::vector<RowValues> &rows)
{
    model.clear();
    appendRows(model.invisibleRootItem(), rows);
}

std::string difference(const QStandardItem *left, const QStandardItem *right, int differingRole)
{
    if (left->rowCount() != right->rowCount())
        return "the numbers of rows differ";
    for (int row = 0; row < left->rowCount(); ++row) {
        QMap<int, QVariant> leftData = left->model()->itemData(left->child(row)->index());
        QMap<int, QVariant> rightData = right->model()->itemData(right->child(row)->index());
        leftData.remove(differingRole);
        rightData.remove(differingRole);
        if (leftData != rightData)
            return "row " + std::to_string(row) + " differs";
    }
    return {};
}
