#pragma once

#include "PluginRecordingManagement.h"
#include "framework/FrameworkWrapperBase.h"

#include <QStandardItemModel>

/// A status monitor that listens to nothing.
class SilentMonitor : public QObject
{
    Q_OBJECT

public slots:
    void removeVolumeError(const QString &) { }
    void monitorVolumeStatus(const QString &) { }
    void monitorSufficientRecordingGroup(const QString &, const QString &) { }
    void monitorInsufficientRecordingDays(const QString &, const QString &, const QString &) { }
};

/// A client around the plug-in: takes every command, answers none; the benchmark hands in the replies.
class Client : private FrameworkWrapperBase
{
public:
    Client() { plugin.InitialPluginBase(nullptr, nullptr, this); }

    void reply(const QString &command, const QVariant &data)
    {
        plugin.CommandProcessor(command, data, nullptr, QStringLiteral("0"), {}, true, {});
    }
    void volumeChanged(const QVariant &data)
    {
        plugin.EventProcessor(QStringLiteral("VolumeChanged"), 0, 0, 0, data, {});
    }

    QStandardItemModel &volumes() { return *qobject_cast<QStandardItemModel *>(plugin.getVolumeModel()); }
    QStandardItemModel &nasServers() { return *qobject_cast<QStandardItemModel *>(plugin.getNASServerModel()); }
    QStandardItemModel &recordingGroups()
    {
        return *qobject_cast<QStandardItemModel *>(plugin.getRecordingGroupModel());
    }
    QStandardItemModel &tree() { return *qobject_cast<QStandardItemModel *>(plugin.getRecordingGroupTreeModel()); }
    QStandardItemModel &groupVolumes(const QString &group)
    {
        return *qobject_cast<QStandardItemModel *>(plugin.getGroupVolumeModel({}, group));
    }

    SilentMonitor monitor;
    PluginRecordingManagement plugin; // goes first

private:
    bool SendCommand(void *, const QString &, const QString &, const QVariant &, void *, bool, const QString &) override
    {
        return true;
    }
    QObject *GetPluginObject(void *, const QString &) override { return &monitor; }
};
