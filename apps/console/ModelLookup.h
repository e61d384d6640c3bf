#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QtQml/qqmlregistration.h>

/// Looks things up in a model by the names of its roles, which QML's own view of a model wants as numbers. A name that
/// the model does not have is a slip of the page and leaves a warning.
class ModelLookup : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit ModelLookup(QObject *parent = nullptr);

    /// The first row below @p parent whose @p role equals @p value; -1 where there is none. Texts are compared with
    /// their case.
    Q_INVOKABLE int rowOf(const QAbstractItemModel *model, const QString &role, const QVariant &value,
                          const QModelIndex &parent = {}) const;
    /// The value of @p role there; nothing where the index is invalid.
    Q_INVOKABLE QVariant value(const QModelIndex &index, const QString &role) const;
};
