#include "Rows.h"

#include "Program.h"

#include <QStandardItemModel>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

void fetch(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return DoNotOptimize(value.toString());
    case QMetaType::LongLong:
        return DoNotOptimize(value.toLongLong());
    case QMetaType::Int:
        return DoNotOptimize(value.toInt());
    case QMetaType::Bool:
        return DoNotOptimize(value.toBool());
    default:
        return DoNotOptimize(value.toList());
    }
}

} // namespace

QStandardItemModel &rowsOf(QObject *model)
{
    require(model != nullptr, "there is no model");
    return static_cast<QStandardItemModel &>(*model);
}

void readFields(const QVariant &data, const QStringList &keys, const QStringList &textLists)
{
    const QVariantList records = data.toList();
    for (const QVariant &element : records) {
        const QVariantMap record = element.toMap();
        for (const QString &key : keys)
            fetch(record.value(key));
        for (const QString &key : textLists)
            DoNotOptimize(record.value(key).toStringList());
    }
}

std::vector<RowValues> fieldValues(const QVariantList &records, const QStringList &keys)
{
    std::vector<RowValues> rows;
    for (const QVariant &record : records) {
        RowValues &values = rows.emplace_back();
        for (const QString &key : keys)
            values.emplace_back(0, record.toMap().value(key));
    }
    return rows;
}

std::vector<RowValues> rowValues(const QStandardItem *parent, int leftOut)
{
    std::vector<RowValues> rows;
    for (int row = 0; row < parent->rowCount(); ++row) {
        const QStandardItem *const item = parent->child(row);
        QMap<int, QVariant> data = item->model()->itemData(item->index());
        data.remove(leftOut);
        rows.emplace_back(data.keyValueBegin(), data.keyValueEnd());
    }
    return rows;
}

std::vector<RowValues> rowValues(QObject *model, int leftOut)
{
    return rowValues(rowsOf(model).invisibleRootItem(), leftOut);
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
