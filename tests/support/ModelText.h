#pragma once

#include <QAbstractItemModel>
#include <QList>
#include <QStringList>

/// The rows of @p model as text, one line for each: the values of @p roles, separated by " | ". Values that are no text
/// carry their type, so that a row with the wrong type reads differently: bool:true, qlonglong:42, QStringList:[a, b].
/// Children follow their row, indented by two spaces.
QStringList modelText(const QAbstractItemModel &model, const QList<int> &roles, const QModelIndex &parent = {});

/// One value as modelText() writes it; an invalid one reads "invalid".
QString valueText(const QVariant &value);
