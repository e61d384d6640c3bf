#pragma once

#include "framework/HostFramework.h"
#include "link/StationLink.h"

#include <QObject>

#include <memory>

class PluginBase;
class StationCalls;
class StationDirectory;
class StationPlugin;
class StatusMonitorPlugin;

/// Everything a client needs around the plug-in, put together once: a link to its station, the framework, the
/// companions that the plug-in asks for, and the plug-in loaded and initialised. Ends it all in the right order. Lives
/// on the UI thread, and must outlive the QML engine that shows the plug-in's models.
///
/// A link may reach many stations. One of them is the directly connected one, which the plug-in's requests go to unless
/// they name another, and which all of this but stations() and the status monitor is about.
class ClientSession : public QObject
{
    Q_OBJECT
public:
    /// What start() needs to know.
    struct Options
    {
        QStringList pluginFolders; ///< empty: PluginHost::defaultFolders()
        QString url; ///< of the station: see StationLink::open()
        QList<StationLink::Kind> linkKinds; ///< those that the client takes
        QString relayPath; ///< under which the directly connected station is also known
        QString station; ///< the directly connected one to begin with; empty: the one that the URL names
        QString stationName; ///< likewise; empty: the name of this machine
        std::chrono::milliseconds replyTimeout = std::chrono::seconds(30); ///< of each part of an answer
        /// The plug-in hears of the other stations' events, and all stations are asked for their alarms.
        bool followsOthers = true;
        /// The figures of each other station are told once in so long at most, the newest ones; 0: whenever they come.
        /// For a window figuresPauseOfWindows.
        std::chrono::milliseconds figuresPause{0};
    };

    /// Short enough for one who reads, and long enough for a thousand stations.
    static constexpr std::chrono::milliseconds figuresPauseOfWindows{2000};

    explicit ClientSession(QObject *parent = nullptr); ///< does nothing before start()
    ~ClientSession() override;

    /// Loads and initialises the plug-in and begins to connect; false with error() set when that failed.
    bool start(const Options &options);
    QString error() const; ///< why start() failed, a sentence

    QObject *plugin() const; ///< the PluginRecordingManagement; null before start()
    HostFramework *framework() const; ///< null before start()
    StationCalls *stationCalls() const; ///< what no plug-in sends; null before start()
    StatusMonitorPlugin *statusMonitor() const; ///< the alarms that the plug-in raises; null before start()
    bool isConnected() const; ///< whether the directly connected station can be reached
    /// Whether the status monitor has the alarms of the directly connected station: it is connected, has told its own,
    /// and has told the figures that the plug-in judges by.
    bool areAlarmsKnown() const;
    /// Of the directly connected station.
    StationState stationState() const;

    StationDirectory *stations() const; ///< all that the link reaches; null before start()
    /// The relay path of the directly connected station; empty where it has none.
    QString directStation() const;
    /// Makes the station behind @p relayPath the directly connected one. What the plug-in and stationCalls() asked the
    /// one before is answered with HostReturnCode::OtherStation, and the plug-in hears of a connection. False, and
    /// nothing changed, with a sentence in @p error, where there is no such station, or it is not up: what the plug-in
    /// knows of the one before would stand for it.
    bool setDirectStation(const QString &relayPath, QString *error = nullptr);

signals:
    /// The station can be reached, or cannot any more.
    void connectedChanged(bool connected);
    /// See areAlarmsKnown().
    void alarmsKnownChanged(bool known);
    /// Another station is about to become the directly connected one, nothing has changed yet.
    void directStationChanging(const QString &relayPath);
    /// Another station is the directly connected one, and the plug-in has asked it for what it asks at a connection.
    void directStationChanged(const QString &relayPath);
    /// The same as connectedChanged() in full, with the reason.
    void stationStateChanged(const StationState &state);
    /// What came of an edit, of the plug-in's or one of stationCalls(), that was answered with
    /// HostReturnCode::NoAnswer: once for each, unless the session ends before. Where the station was lost meanwhile it
    /// stays open (StationLost); what the station did is in its activity then ("station.listActivity"). The plug-in
    /// hears nothing of it.
    void lateOutcomeCame(const LateOutcome &outcome);

private:
    void stop();

    void followState(const QString &relayPath, const StationState &state);
    void nameStation();
    void followDirectStation(const QString &relayPath);
    void askForAlarms();
    void noteAlarms(bool ofStation, bool ofPlugin);
    void takeEvent(const QString &event, const QVariant &data, const QString &source);

    QString m_error;
    bool m_connected = false;
    bool m_hasStationAlarms = false;
    bool m_hasPluginAlarms = false;
    QString m_stationName;
    QString m_relayPath;
    std::unique_ptr<StationLink> m_link;
    std::unique_ptr<StationCalls> m_stationCalls;
    std::unique_ptr<StationPlugin> m_stationPlugin;
    std::unique_ptr<StatusMonitorPlugin> m_statusMonitor;
    std::unique_ptr<HostFramework> m_framework;
    std::unique_ptr<PluginBase> m_plugin;
    std::unique_ptr<StationDirectory> m_stations;
};
