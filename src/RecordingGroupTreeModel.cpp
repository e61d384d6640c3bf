#include "RecordingGroupTreeModel.h"

#include "ItemRoles.h"

RecordingGroupTreeModel::RecordingGroupTreeModel(QObject *parent)
    : QStandardItemModel(parent)
{
}

QVariant RecordingGroupTreeModel::data(const QModelIndex &index, int role) const
{
    if (role != TreeRole::Data)
        return QStandardItemModel::data(index, role);

    const QHash<int, QByteArray> names = roleNames();
    QVariantMap summary;
    for (const int part : {TreeRole::Name, TreeRole::Id, TreeRole::StationIp, TreeRole::Type})
        summary.insert(QString::fromUtf8(names.value(part)), QStandardItemModel::data(index, part));
    return summary;
}

QHash<int, QByteArray> RecordingGroupTreeModel::roleNames() const
{
    return treeRoleNames();
}
