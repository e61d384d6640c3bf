#pragma once

#include <QObject>
#include <QSet>
#include <QVariantMap>

/// Says which station the client is connected to.
class MyStation : public QObject
{
    Q_OBJECT
public:
    static inline const QString pluginId = QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD");

    Q_INVOKABLE QVariant getStationTree() const
    {
        return QVariantMap{{"name", "North gate"}, {"ip", "192.0.2.7"}, {"relayPath", ""}, {"type", "RecordingServer"}};
    }
};

/// Keeps what is wrong with the storage, until it is right again.
class MyStatusMonitor : public QObject
{
    Q_OBJECT
public:
    static inline const QString pluginId = QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}");

    QSet<QString> lostVolumes; ///< stations, by relay path
    QSet<QString> shortGroups; ///< "relay path/group id"

    Q_INVOKABLE void removeVolumeError(const QString &source) { lostVolumes.remove(source); }
    Q_INVOKABLE void monitorVolumeStatus(const QString &source) { lostVolumes.insert(source); }
    Q_INVOKABLE void monitorSufficientRecordingGroup(const QString &source, const QString &groupId)
    {
        shortGroups.remove(source + '/' + groupId);
    }
    Q_INVOKABLE void monitorInsufficientRecordingDays(const QString &source, const QString &groupName,
                                                      const QString &groupId)
    {
        qInfo("%s will not reach its reserved time", qPrintable(groupName));
        shortGroups.insert(source + '/' + groupId);
    }
};
