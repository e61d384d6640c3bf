#pragma once

#include "framework/HostFramework.h"
#include "link/EmbeddedLink.h"

#include <QObject>

#include <memory>

class PluginBase;
class StationCalls;
class StationPlugin;
class StatusMonitorPlugin;

/// Everything a client needs around the plug-in, put together once: a link to an embedded station on this machine, the
/// framework, the companions that the plug-in asks for, and the plug-in loaded and initialised. Ends it all in the
/// right order. Lives on the UI thread, and must outlive the QML engine that shows the plug-in's models.
class ClientSession : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        QStringList pluginFolders; ///< empty: PluginHost::defaultFolders()
        QString relayPath; ///< of the embedded station
        QString stationName; ///< likewise; empty: the name of this machine
        QString dataFolder; ///< StationSettings::dataFolder of the embedded station
        std::chrono::milliseconds replyTimeout = std::chrono::seconds(30);
        EmbeddedLink::MakeStation makeStation; ///< empty: a station of this machine, with the two settings above
    };

    explicit ClientSession(QObject *parent = nullptr);
    ~ClientSession() override;

    /// Loads and initialises the plug-in and starts the station; false with error() set when that failed.
    bool start(const Options &options);
    QString error() const;

    QObject *plugin() const; ///< the PluginRecordingManagement; null before start()
    HostFramework *framework() const; ///< null before start()
    StationCalls *stationCalls() const; ///< what no plug-in sends; null before start()
    StatusMonitorPlugin *statusMonitor() const; ///< the alarms that the plug-in raises; null before start()
    bool isConnected() const;

signals:
    /// The link to the station went up or down.
    void connectedChanged(bool connected);

private:
    void stop();

    void askForAlarms(bool connected);
    void takeEvent(const QString &event, const QVariant &data, const QString &source);

    QString m_error;
    std::unique_ptr<EmbeddedLink> m_link;
    std::unique_ptr<StationCalls> m_stationCalls;
    std::unique_ptr<StationPlugin> m_stationPlugin;
    std::unique_ptr<StatusMonitorPlugin> m_statusMonitor;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<PluginBase> m_plugin;
};
