#pragma once

#include <QStringList>
#include <QVariant>

#include <utility>
#include <vector>

class QObject;
class QStandardItem;
class QStandardItemModel;

/// A model as the plug-in's getters give it. Throws where there is none.
QStandardItemModel &rowsOf(QObject *model);

/// Fetches the fields @p keys of every record of a reply and makes nothing of them. Lists are taken as texts where they
/// are among @p textLists.
void readFields(const QVariant &data, const QStringList &keys, const QStringList &textLists = {});

/// The values of one row with their roles, at hand.
using RowValues = std::vector<std::pair<int, QVariant>>;

/// The fields @p keys of every record, at hand.
std::vector<RowValues> fieldValues(const QVariantList &records, const QStringList &keys);

/// The children of @p parent, value by value, in the order of the roles and without @p leftOut.
std::vector<RowValues> rowValues(const QStandardItem *parent, int leftOut = -1);
/// Those of a model's root.
std::vector<RowValues> rowValues(QObject *model, int leftOut = -1);

/// The floor: an item for each row, setData() for each role, one append.
void appendRows(QStandardItem *parent, const std::vector<RowValues> &rows);
/// The same after clearing the model.
void refill(QStandardItemModel &model, const std::vector<RowValues> &rows);
