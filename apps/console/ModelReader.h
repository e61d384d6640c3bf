#pragma once

#include <QAbstractItemModel>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// Reads a list model, for pages that look through its rows or sort them. Lives on the UI thread.
class ModelReader : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// A QAbstractItemModel; not owned, may be null.
    Q_PROPERTY(QObject *model READ model WRITE setModel NOTIFY modelChanged)

public:
    explicit ModelReader(QObject *parent = nullptr);

    QObject *model() const;
    void setModel(QObject *model);

    /// The rows as they are now, a map for each. @p roles says what a map holds: the names of roles by the map's keys.
    Q_INVOKABLE QVariantList read(const QVariantMap &roles) const;

signals:
    void modelChanged();
    /// The model has other rows than before, or other values. Comes once for all changes of a turn of the event loop,
    /// after it.
    void changed();

private:
    QPointer<QAbstractItemModel> m_model;
    QTimer m_later;
};
