#pragma once

#include "TextTable.h"

#include <QJsonArray>

class QAbstractItemModel;

/// The rows of @p model under its role names, in the order of the roles; children follow their row, indented in the
/// first column. Passwords are replaced by asterisks.
TextTable modelTable(const QAbstractItemModel &model);

/// The rows of @p model as objects keyed by role names, values with their types; a row that has children has them under
/// "children". Passwords are replaced by asterisks.
QJsonArray modelJson(const QAbstractItemModel &model);

/// The "nameRole" of each row of @p model on a line of its own.
QString nameLines(const QAbstractItemModel &model);
