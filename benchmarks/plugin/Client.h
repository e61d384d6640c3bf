#pragma once

#include "FakeStationPlugin.h"
#include "PluginRecordingManagement.h"
#include "Rows.h"
#include "ServerVocabulary.h"
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

/// The framework of a client that takes every command and answers none: the benchmark hands in the replies.
struct QuietFramework : FrameworkWrapperBase
{
    static inline const QString statusMonitorId = QStringLiteral("{CA5B02D6-F3E0-4FD7-A55C-17F425D5B415}");

    explicit QuietFramework(QObject &monitor)
        : statusMonitor(monitor)
    {
    }
    bool SendCommand(void *, const QString &, const QString &, const QVariant &, void *, bool, const QString &) override
    {
        return true;
    }
    QObject *GetPluginObject(void *, const QString &pluginId) override
    {
        return pluginId == statusMonitorId ? &statusMonitor : &station;
    }

    QObject &statusMonitor; // not owned
    FakeStationPlugin station;
};

/// A plug-in in a client of its own.
template<typename Plugin = PluginRecordingManagement>
struct Client
{
    Client() { plugin.InitialPluginBase(nullptr, nullptr, &framework); }

    SilentMonitor statusMonitor;
    QuietFramework framework{statusMonitor};
    Plugin plugin; // goes first
};

/// Hands in what a station sends: the event "VolumeChanged", or the reply to the command @p name.
inline void deliver(PluginBase &plugin, const QString &name, const QVariant &data)
{
    if (name == ServerEvent::VolumeChanged)
        plugin.EventProcessor(name, 0, 0, 0, data, {});
    else
        plugin.CommandProcessor(name, data, nullptr, ReturnCode::Success, {}, true, {});
}
