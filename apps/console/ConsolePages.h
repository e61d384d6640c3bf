#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// The pages of the console, in the order of the window. A page is a file in pages/ and a row in ConsolePages.cpp; the
/// window, the option --page and the alarms that lead to a page know it by its key.
class ConsolePages : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// Maps with "key", "title" (translated), "iconName" (of Drawings) and "source" (beside Main.qml), all strings, and
    /// "ofSite" (bool): it is about all stations, and stands behind those that are about one.
    Q_PROPERTY(QVariantList list READ list CONSTANT)

public:
    explicit ConsolePages(QObject *parent = nullptr);

    QVariantList list() const;
    /// The row of list() with this key; an empty map where there is none.
    Q_INVOKABLE QVariantMap page(const QString &key) const;

    static QStringList keys();
};
