#include "ClientSession.h"

#include "PluginHost.h"
#include "Station.h"
#include "StationProtocol.h"
#include "companions/StationPlugin.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/PluginBase.h"
#include "link/StationCalls.h"

#include <utility>

ClientSession::ClientSession(QObject *parent)
    : QObject(parent)
{
}

ClientSession::~ClientSession()
{
    stop();
}

bool ClientSession::start(const Options &options)
{
    if (m_plugin) {
        m_error = QStringLiteral("The session was started already.");
        return false;
    }
    m_error.clear();
    PluginHost::loadTraceLibrary();
    PluginHost host;
    m_plugin = options.pluginFolders.isEmpty() ? host.load() : host.load(options.pluginFolders);
    if (!m_plugin) {
        m_error = host.error();
        return false;
    }
    const auto thisMachine = [folder = options.dataFolder, relayPath = options.relayPath] {
        return std::make_unique<Station>(StationSettings{folder, relayPath, {}});
    };
    m_link = std::make_unique<EmbeddedLink>(options.makeStation ? options.makeStation : thisMachine, options.relayPath);
    m_stationCalls = std::make_unique<StationCalls>(*m_link);
    m_stationCalls->setReplyTimeout(options.replyTimeout);
    m_stationPlugin = std::make_unique<StationPlugin>(options.stationName, options.relayPath);
    m_statusMonitor = std::make_unique<StatusMonitorPlugin>();
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_framework->setReplyTimeout(options.replyTimeout);
    m_framework->addPluginObject(StationPlugin::pluginId, m_stationPlugin.get());
    m_framework->addPluginObject(StatusMonitorPlugin::pluginId, m_statusMonitor.get());
    connect(m_framework.get(), &HostFramework::eventDelivered, this, &ClientSession::takeEvent);
    if (!m_framework->attach(m_plugin.get(), host.pluginId())) {
        m_error = QStringLiteral("The plug-in %1 could not be initialised.").arg(host.fileName());
        stop();
        return false;
    }
    connect(m_link.get(), &EmbeddedLink::upChanged, this, &ClientSession::connectedChanged);
    connect(m_link.get(), &EmbeddedLink::upChanged, this, &ClientSession::askForAlarms);
    m_link->start();
    return true;
}

void ClientSession::stop()
{
    if (m_framework)
        m_framework->close(); // while the plug-in lives: it takes its contexts back
    m_plugin.reset();
    m_framework.reset();
    m_statusMonitor.reset();
    m_stationPlugin.reset();
    m_stationCalls.reset();
    m_link.reset();
}

/// What the station raised before it was connected.
void ClientSession::askForAlarms(bool connected)
{
    if (!connected)
        return;
    m_stationCalls->send(StationOwnCommandName::listAlarms, {}, this, [this](const StationReply &part) {
        if (part.returnCode == StationReturnCode::Success)
            m_statusMonitor->setStationAlarms({}, part.data.toMap().value(StationKey::alarms).toList());
    });
}

void ClientSession::takeEvent(const QString &event, const QVariant &data, const QString &source)
{
    if (event == StationOwnEventName::AlarmsChanged)
        m_statusMonitor->setStationAlarms(source, data.toMap().value(StationKey::alarms).toList());
    if (event != StationEventName::VolumeChanged)
        return;
    QSet<QString> groupIds;
    const QVariantList entries = data.toList();
    for (const QVariant &entry : entries)
        groupIds.insert(entry.toMap().value(QStringLiteral("recordingGroupID")).toString());
    m_statusMonitor->keepGroups(source, groupIds);
}

QString ClientSession::error() const
{
    return m_error;
}

QObject *ClientSession::plugin() const
{
    return m_plugin.get();
}

HostFramework *ClientSession::framework() const
{
    return m_framework.get();
}

StationCalls *ClientSession::stationCalls() const
{
    return m_stationCalls.get();
}

StatusMonitorPlugin *ClientSession::statusMonitor() const
{
    return m_statusMonitor.get();
}

bool ClientSession::isConnected() const
{
    return m_link && m_link->isUp();
}
