#include "ModelLookup.h"

#include <QDebug>

namespace {
int roleNumber(const QAbstractItemModel &model, const QString &role)
{
    const int number = model.roleNames().key(role.toUtf8(), -1);
    if (number < 0)
        qWarning().noquote() << model.metaObject()->className() << "has no role called" << role;
    return number;
}
} // namespace

ModelLookup::ModelLookup(QObject *parent)
    : QObject(parent)
{
}

int ModelLookup::rowOf(const QAbstractItemModel *model, const QString &role, const QVariant &value,
                       const QModelIndex &parent) const
{
    if (!model || model->rowCount(parent) == 0)
        return -1;
    const int number = roleNumber(*model, role);
    if (number < 0)
        return -1;
    const QModelIndexList found =
        model->match(model->index(0, 0, parent), number, value, 1, Qt::MatchExactly | Qt::MatchCaseSensitive);
    return found.isEmpty() ? -1 : found.constFirst().row();
}

QVariant ModelLookup::value(const QModelIndex &index, const QString &role) const
{
    if (!index.isValid())
        return {};
    const int number = roleNumber(*index.model(), role);
    return number < 0 ? QVariant() : index.data(number);
}
