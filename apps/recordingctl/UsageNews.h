#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QVariantMap>

class QAbstractItemModel;

/// Tells which figures of storage usage changed since they were looked at last.
class UsageNews
{
public:
    struct Change
    {
        bool isGone = false; ///< the station says nothing of the group any more
        /// "source", "group", "groupId" and, unless it is gone, "recordedDays", "remainingDays", "oneDayUsage" (bytes),
        /// "reservedTime" (minutes); what is not known is an invalid value.
        QVariantMap values;
    };

    /// What is new in @p usage, the storage-usage model of the station @p source: everything at first.
    QList<Change> take(const QString &source, const QAbstractItemModel &usage);

private:
    QMap<QString, QMap<QString, QVariantMap>> m_known; // by source, then by the group's id
};
