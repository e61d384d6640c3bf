#pragma once

#include "PluginRecordingManagement.h"
#include "ServerVocabulary.h"

#include <QSharedPointer>
#include <QStandardItemModel>

#include <vector>

/// The rules written down step by step, nothing saved: what the plug-in is measured against.
///
/// Every record is taken as a map of its own and read by subscript, every row is made and appended alone, every group
/// is looked for with match(), every query walks the whole cache. The rows go into the plug-in's own models where it
/// hands them out. What it keeps to itself is kept here, and the queries for it stand before the plug-in's own of the
/// same name, for QML too: a page cannot tell the difference. Requests are the plug-in's.
class PlainPlugin : public PluginRecordingManagement
{
    Q_OBJECT
public:
    bool InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework) override;
    /// Handles "getVolume" and "retrieveRecordingGroupTreeModel"; other commands are dropped.
    void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString, bool finish,
                          const QString &) override;
    /// Handles "VolumeChanged".
    void EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source) override;

    /// Without them an event's entries are kept by group instead, for models that nobody asks for.
    void setVolumeModelsMade(bool areMade) { m_areVolumeModelsMade = areMade; }

    Q_INVOKABLE QVariantList getRecordingGroupPathList(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::recordingGroupPathList).toList();
    }
    Q_INVOKABLE QVariantList getRecordingGroupReservedSpaceList(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::reserveSpace).toList();
    }
    Q_INVOKABLE QVariantList getRecordingGroupNasPathList(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::recordingGroupNASPathList).toList();
    }
    Q_INVOKABLE QVariantList getRecordingGroupRecoveryPathList(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::recordingGroupRecoveryPathList).toList();
    }
    Q_INVOKABLE int getRecordingGroupReservedTime(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::recordingGroupReservedTime).toInt();
    }
    Q_INVOKABLE QVariantList getRecordingGroupMemberList(const QString &id, const QString &relayPath) const
    {
        return cached(id, relayPath, FieldKey::recordingGroupMemberList).toList();
    }
    Q_INVOKABLE QVariantList getRecordingGroupIDList(const QString &cameraId) const;
    Q_INVOKABLE QObject *getGroupVolumeModel(const QString &relayPath, const QString &groupId)
    {
        return m_groupVolumeModels.value(relayPath).value(groupId).data();
    }
    Q_INVOKABLE QVariantList getRecordingGroupInfoList();

private:
    void keepEntries(const QString &source, const QVariant &data);
    QVariant cached(const QString &id, const QString &relayPath, const QString &key) const;

    QObject *m_statusMonitor = nullptr; // not owned
    std::vector<QVariantMap> m_cache; // the recording groups as the station sent them
    QMap<QString, QMap<QString, QSharedPointer<QStandardItemModel>>> m_groupVolumeModels; // by station and group
    QMap<QString, QMap<QString, QVariantList>> m_keptEntries; // likewise
    bool m_areVolumeModelsMade = true;
};
