#pragma once

#include "ConsoleSession.h"
#include "PluginRecordingManagement.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/FrameworkWrapperBase.h"

#include <memory>

/// Names the station of the tree, the one that every group of the replies belongs to.
class NamedStation : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE QVariant getStationTree() const;
};

/// What a station sends: a reply to a command, or an event.
struct Message
{
    bool isEvent;
    QString name;
    QVariant data;
};

/// A client around the plug-in, with the console's own status monitor: takes every command and answers none; the
/// benchmark delivers what a station would send.
class ConsoleClient : private FrameworkWrapperBase
{
public:
    explicit ConsoleClient(std::unique_ptr<PluginRecordingManagement> plugin);

    void deliver(const Message &message);

    StatusMonitorPlugin &monitor() { return m_monitor; }
    ConsoleSession &session() { return m_session; }
    PluginRecordingManagement &plugin() { return *m_plugin; }

private:
    bool SendCommand(void *, const QString &, const QString &, const QVariant &, void *, bool, const QString &) override
    {
        return true;
    }
    QObject *GetPluginObject(void *, const QString &pluginId) override;

    NamedStation m_station;
    StatusMonitorPlugin m_monitor;
    ConsoleSession m_session;
    std::unique_ptr<PluginRecordingManagement> m_plugin; // goes first
};
