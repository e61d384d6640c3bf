#pragma once

#include "StationStorage.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

/// Every volume that an operator has to know of, as rows that stay: first those that are lost and that a recording
/// group still names, then the plug-in's volumes in their order, then the NAS shares that groups record to. Folders of
/// one share count once. The figures are the station's; where it tells none of a volume, those of the plug-in. Lives on
/// the UI thread.
class VolumeOverview : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    /// The plug-in's model of volumes, a QAbstractItemModel; not owned, may be null.
    Q_PROPERTY(QObject *model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(StationStorage *storage READ storage WRITE setStorage NOTIFY storageChanged) ///< not owned, may be null
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(int lostCount READ lostCount NOTIFY changed)
    Q_PROPERTY(double size READ size NOTIFY changed) ///< of those that are there, bytes
    Q_PROPERTY(double free READ free NOTIFY changed) ///< likewise

public:
    /// In QML by the names with a small first letter.
    enum Role {
        Path = Qt::UserRole + 1, ///< string
        Volume, ///< map, with the keys of "station.listStorage"
        Parts, ///< as volumeParts()
        Name, ///< string; the path where the volume has none
        Size, ///< double, bytes; -1: unknown
        Free, ///< likewise
    };

    explicit VolumeOverview(QObject *parent = nullptr);

    QObject *model() const { return m_model; }
    void setModel(QObject *model);
    StationStorage *storage() const { return m_storage; }
    void setStorage(StationStorage *storage);

    int count() const { return static_cast<int>(m_rows.size()); }
    int lostCount() const;
    double size() const;
    double free() const;

    /// The row of the volume @p path, or of the one that @p path lies on; -1 without one.
    Q_INVOKABLE int rowOf(const QString &path) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void modelChanged();
    void storageChanged();
    void changed();

private:
    struct Row
    {
        QString path;
        QVariantMap volume;
    };

    QList<Row> rowsNow() const;
    double sum(const QString &key) const;
    void update();

    QPointer<QAbstractItemModel> m_model;
    QPointer<StationStorage> m_storage;
    QTimer m_later;
    QList<Row> m_rows;
};
