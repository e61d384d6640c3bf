#pragma once

#include <QStandardItemModel>

/// The tree of a station (top level) and its recording groups (its children); roles are TreeRole.
///
/// The plug-in fills it; the model itself never changes its contents. An item whose TreeRole::Type is "RecordingGroup"
/// is a recording group, any other a station. TreeRole::Data is computed, never stored: a map with the keys "nameRole",
/// "idRole", "stationIPRole" and "typeRole" and the item's values of these roles. Used on the UI thread.
class RecordingGroupTreeModel : public QStandardItemModel
{
public:
    explicit RecordingGroupTreeModel(QObject *parent = nullptr);
    ~RecordingGroupTreeModel() override = default;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Exactly the seven names of the TreeRole table; the standard roles have none.
    QHash<int, QByteArray> roleNames() const override;
};
