#pragma once

#include <QHash>
#include <QList>
#include <QPersistentModelIndex>
#include <QString>
#include <QStringList>

#include <memory>

class QObject;
class QStandardItem;
class QStandardItemModel;

/// Rows of the item models: single items whose values stand under the roles of ItemRoles.h. Every function returns null
/// when memory ran out; none throws.
using RowItem = std::unique_ptr<QStandardItem>;

RowItem VolumeItem(const QString &path, const QString &name, qlonglong size, qlonglong availableSize, bool isSystem,
                   bool isNas);
RowItem RecordingGroupItem(const QString &id, const QString &name, const QStringList &pathList,
                           const QStringList &nodeIdList, const QStringList &nasPathList, int recordedDays,
                           int remainDays, qint64 oneDayUsage, int reserveTime);
RowItem NasServerItem(const QString &id, const QString &host, const QString &logonDomain, const QString &userName,
                      const QString &password);
RowItem DirectoryItem(const QString &folder);
RowItem TreeStationItem(const QString &name, const QString &ip, const QString &relayPath, const QString &type);

/// The rows of one reply, gathered first and then appended to their model in one insertion, so that a bound view hears
/// of them once. A missing model takes no row.
class RowBatch
{
public:
    explicit RowBatch(QStandardItemModel *model);
    /// Appends below @p parent, an item of a model; where it has left the model meanwhile, append() drops the rows.
    explicit RowBatch(QStandardItem *parent);
    ~RowBatch();
    RowBatch(RowBatch &&) noexcept;
    RowBatch &operator=(RowBatch &&) = delete;

    /// Takes @p row as the next one; false when it is null, memory ran out or there is nothing to append to.
    bool add(RowItem row) noexcept;
    /// Appends what was gathered; false when memory ran out or the parent is gone.
    bool append() noexcept;

private:
    QStandardItem *parent() const;

    QStandardItemModel *m_model = nullptr; // not owned
    bool m_below = false; // below m_parent, not at the top
    QPersistentModelIndex m_parent;
    QList<QStandardItem *> m_rows; // owned
};

/// Removes all rows; the role names stay. A missing model is left alone.
void clearRows(QStandardItemModel *model);

/// A model without rows whose roles have @p roleNames; null when memory ran out.
QStandardItemModel *newListModel(const QHash<int, QByteArray> &roleNames, QObject *parent) noexcept;
