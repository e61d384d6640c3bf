#pragma once

#include <QList>
#include <QVariant>

#include <string>
#include <utility>
#include <vector>

class QStandardItem;
class QStandardItemModel;

/// The values of one row with their roles, at hand.
using RowValues = std::vector<std::pair<int, QVariant>>;

/// The children of @p parent, value by value, in the order of the roles.
std::vector<RowValues> rowValues(const QStandardItem *parent);

/// The floor: an item for each row, setData() for each role, one append.
void appendRows(QStandardItem *parent, const std::vector<RowValues> &rows);

/// The same after clearing the model.
void refill(QStandardItemModel &model, const std::vector<RowValues> &rows);

/// Empty when both hold the same rows but for @p differingRole, else what differs.
std::string difference(const QStandardItem *left, const QStandardItem *right, int differingRole);
