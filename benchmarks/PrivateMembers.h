#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class PluginRecordingManagement;

/// The steps of the handlers that are measured alone, by the plug-in's own names. They are private there, and stay so.
namespace PrivateMembers {

QMap<QString, QVariant> calculateGroupUsage(PluginRecordingManagement &plugin, QVariant &data);
void updateRecordingGroupVolumeModel(PluginRecordingManagement &plugin, const QString &source, QVariant &data);
void appendRecordingGroupToTreeModel(PluginRecordingManagement &plugin, const QVariant &data);
void saveRecordingGroupData(PluginRecordingManagement &plugin, const QVariant &data);

} // namespace PrivateMembers
