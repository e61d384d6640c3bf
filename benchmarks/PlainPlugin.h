#pragma once

#include "RecordingGroupData.h"

#include <QMap>
#include <QSharedPointer>
#include <QStandardItemModel>
#include <QVariantMap>

#include <vector>

using ModelsByGroup = QMap<QString, QSharedPointer<QStandardItemModel>>;

/// What the rules fill; not owned.
struct PlainModels
{
    QStandardItemModel &volumes;
    QStandardItemModel &nasServers;
    QStandardItemModel &recordingGroups;
    QStandardItemModel &tree; ///< holds the stations
    QMap<QString, QSharedPointer<QStandardItemModel>> &usageModels; ///< by station
    QMap<QString, ModelsByGroup> &groupVolumeModels; ///< by station
    std::vector<RecordingGroupData> &cache;
    QObject &parent; ///< of the models that are made
};

/// The rules written down step by step, nothing saved: what the plug-in is measured against.
///
/// Every record is taken as a map of its own and read by subscript, every row is made and appended alone, every group
/// is looked for with match(), every query walks the whole cache.
class PlainRules
{
public:
    explicit PlainRules(const PlainModels &models);

    void handleRetrieveVolume(const QVariant &data);
    void handleGetNASServers(const QVariant &data);
    void handleGetRecordingGroup(const QVariant &data);
    void appendRecordingGroupToTreeModel(const QVariant &data);
    void saveRecordingGroupData(const QVariant &data);

    QMap<QString, QVariant> calculateGroupUsage(const QVariant &data) const;
    void updateRecordingGroupVolumeModel(const QString &source, const QVariant &data);
    void handleVolumeChanged(const QString &source, const QVariant &data, QObject *statusMonitor);

    QVariantList getRecordingGroupIDList(const QString &cameraId) const;
    QVariantList getRecordingGroupPathList(const QString &id, const QString &relayPath) const;
    QVariantList getRecordingGroupInfoList() const;

private:
    void updateRecordingGroupUsageModel(const QString &source, const QMap<QString, QVariant> &usage);

    PlainModels m_models;
};

/// The rules with models of their own.
class PlainPlugin : public QObject, public PlainRules
{
public:
    PlainPlugin();

    QStandardItemModel volumes;
    QStandardItemModel nasServers;
    QStandardItemModel recordingGroups;
    QStandardItemModel tree; ///< holds one station
    QMap<QString, QSharedPointer<QStandardItemModel>> usageModels;
    QMap<QString, ModelsByGroup> groupVolumeModels;

private:
    std::vector<RecordingGroupData> m_cache;
};
