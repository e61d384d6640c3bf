#pragma once

#include <QSortFilterProxyModel>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// The alarms of a status monitor in an order of urgency, however many there are: by kind, then those that nobody has
/// acknowledged, then the oldest. Lives on the UI thread.
class AlarmOrder : public QSortFilterProxyModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QAbstractItemModel *model READ sourceModel WRITE setModel NOTIFY modelChanged) ///< not owned
    /// The monitor's kinds, the worst first.
    Q_PROPERTY(QVariantList ranks READ ranks WRITE setRanks NOTIFY ranksChanged)
    Q_PROPERTY(int count READ count NOTIFY changed)

public:
    explicit AlarmOrder(QObject *parent = nullptr);

    void setModel(QAbstractItemModel *model);
    QVariantList ranks() const;
    void setRanks(const QVariantList &ranks);
    int count() const { return rowCount(); }

    /// What the roles of a row say, by their names without "Role"; empty where there is no such row.
    Q_INVOKABLE QVariantMap at(int row) const;

signals:
    void modelChanged();
    void ranksChanged();
    /// There are other alarms than before, or they say other things. Comes once for all changes of a turn of the event
    /// loop, after it.
    void changed();

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    void findRoles();

    QList<int> m_ranks;
    int m_kind = -1;
    int m_since = -1;
    int m_acknowledgedAt = -1;
    int m_acknowledgedBy = -1;
    QTimer m_later;
};
