#pragma once

#include "TextTable.h"

#include <QJsonArray>

class QAbstractItemModel;

/// The rows of @p model under its role names, in the order of the roles; children follow their row, indented in the
/// first column. Passwords are replaced by asterisks.
TextTable modelTable(const QAbstractItemModel &model);

/// The rows of @p model as objects: the roles without "Role" as fieldsJson() has them, children under "children".
/// @param getter of the plug-in that gives the model: roles that say nothing there are left out
QJsonArray modelJson(const QAbstractItemModel &model, const QString &getter = {});

/// The "nameRole" of each row of @p model on a line of its own.
QString nameLines(const QAbstractItemModel &model);
/// The same as texts.
QJsonArray namesJson(const QAbstractItemModel &model);
