#pragma once

#include <QMap>
#include <QSharedPointer>
#include <QString>
#include <QVariant>

#include <vector>

class PluginRecordingManagement;
class QStandardItemModel;
struct RecordingGroupData;

/// The steps of the handlers that are measured alone, by the plug-in's own names. They are private there, and stay so.
namespace PrivateMembers {

QMap<QString, QVariant> calculateGroupUsage(PluginRecordingManagement &plugin, QVariant &data);
void updateRecordingGroupVolumeModel(PluginRecordingManagement &plugin, const QString &source, QVariant &data,
                                     const QStringList &groupIds);
void appendRecordingGroupToTreeModel(PluginRecordingManagement &plugin, const QVariant &data);
void saveRecordingGroupData(PluginRecordingManagement &plugin, const QVariant &data);

// What the handlers fill and no getter gives whole.
std::vector<RecordingGroupData> &recordingGroups(PluginRecordingManagement &plugin);
QMap<QString, QSharedPointer<QStandardItemModel>> &storageUsageModels(PluginRecordingManagement &plugin);
QMap<QString, QMap<QString, QSharedPointer<QStandardItemModel>>> &groupVolumeModels(PluginRecordingManagement &plugin);

} // namespace PrivateMembers
