#include "ClientSession.h"

#include "EditSubject.h"
#include "PluginHost.h"
#include "ServerVocabulary.h"
#include "StationDirectory.h"
#include "StationVocabulary.h"
#include "companions/StationPlugin.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/PluginBase.h"
#include "link/StationCalls.h"

#include <QCoreApplication>

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
    if (m_link) {
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
    const StationLink::Client client{QCoreApplication::applicationName(),
                                     QCoreApplication::applicationVersion(),
                                     options.relayPath,
                                     options.station,
                                     options.followsOthers,
                                     options.figuresPause};
    m_link = StationLink::open(options.url, options.linkKinds, client, &m_error);
    if (!m_link)
        return false;
    m_stationCalls = std::make_unique<StationCalls>(*m_link);
    m_stationCalls->setReplyTimeout(options.replyTimeout);
    m_stationPlugin = std::make_unique<StationPlugin>(options.stationName, options.relayPath);
    m_statusMonitor = std::make_unique<StatusMonitorPlugin>();
    m_stationName = options.stationName;
    m_relayPath = options.relayPath;
    nameStation();
    connect(m_link.get(), &StationLink::directStationChanged, this, &ClientSession::nameStation); // before the plug-in
    connect(m_link.get(), &StationLink::stateChanged, this, [this](const QString &relayPath) { // asks
        if (relayPath.isEmpty())
            nameStation();
    });
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_framework->setReplyTimeout(options.replyTimeout);
    m_framework->setFollowsOthers(options.followsOthers);
    m_framework->addPluginObject(StationPlugin::pluginId, m_stationPlugin.get());
    m_framework->addPluginObject(StatusMonitorPlugin::pluginId, m_statusMonitor.get());
    connect(m_framework.get(), &HostFramework::eventDelivered, this, &ClientSession::takeEvent);
    const auto describe = [this](const StationCommand &command) { return editSubject(command, m_plugin.get()); };
    m_framework->setDescribe(describe);
    m_stationCalls->setDescribe(describe);
    connect(m_framework.get(), &HostFramework::lateOutcomeCame, this, &ClientSession::lateOutcomeCame);
    connect(m_stationCalls.get(), &StationCalls::lateOutcomeCame, this, &ClientSession::lateOutcomeCame);
    if (!m_framework->attach(m_plugin.get(), host.pluginId())) {
        m_error = QStringLiteral("The plug-in %1 could not be initialised.").arg(host.fileName());
        stop();
        return false;
    }
    m_stations = std::make_unique<StationDirectory>(*m_link, *m_stationCalls, *m_statusMonitor, *m_plugin);
    m_stations->setAsksForAlarms(options.followsOthers);
    connect(m_stations.get(), &StationDirectory::changed, this, [this](const QStringList &relayPaths) {
        if (relayPaths.contains(directStation()))
            nameStation();
    });
    connect(m_link.get(), &StationLink::directStationChanged, this, &ClientSession::followDirectStation);
    connect(m_link.get(), &StationLink::stateChanged, this, &ClientSession::followState);
    m_link->start();
    return true;
}

void ClientSession::stop()
{
    if (m_framework)
        m_framework->close(); // while the plug-in lives: it takes its contexts back
    m_stations.reset();
    m_plugin.reset();
    m_framework.reset();
    m_statusMonitor.reset();
    m_stationPlugin.reset();
    m_stationCalls.reset();
    m_link.reset();
}

void ClientSession::followState(const QString &relayPath, const StationState &state)
{
    if (!relayPath.isEmpty())
        return;
    const bool isUp = state.kind == StationState::Kind::Up;
    if (std::exchange(m_connected, isUp) != isUp)
        emit connectedChanged(isUp);
    if (!isUp)
        noteAlarms(false, false);
    emit stationStateChanged(state);
    if (isUp && m_link)
        askForAlarms();
}

/// Who the directly connected station is, for the companions.
void ClientSession::nameStation()
{
    const QString relayPath = directStation();
    if (relayPath.isEmpty()) {
        m_stationPlugin->setStation(m_stationName, {}, m_relayPath);
        return;
    }
    const StationPresence presence = m_link->presence();
    const QString &name = presence.name.isEmpty() ? m_stationName : presence.name;
    m_stationPlugin->setStation(name.isEmpty() ? relayPath : name, presence.address, relayPath);
    m_statusMonitor->setDirectStation(relayPath);
}

void ClientSession::followDirectStation(const QString &relayPath)
{
    const bool isUp = stationState().kind == StationState::Kind::Up;
    noteAlarms(false, false);
    emit directStationChanged(relayPath);
    if (std::exchange(m_connected, isUp) != isUp)
        emit connectedChanged(isUp);
    emit stationStateChanged(stationState());
    if (!isUp)
        return;
    noteAlarms(false, m_stations->record(relayPath).figures.isTold());
    askForAlarms();
}

/// What the station raised before it was connected.
void ClientSession::askForAlarms()
{
    const QString station = directStation();
    m_stationCalls->send(StationCommandName::listAlarms, {}, this, [this, station](const StationReply &part) {
        if (part.returnCode != ReturnCode::Success)
            return;
        m_statusMonitor->setStationAlarms({}, part.data.toMap().value(StationKey::alarms).toList());
        m_stations->noteAlarmsTold(station);
        noteAlarms(true, m_hasPluginAlarms);
    });
}

void ClientSession::noteAlarms(bool ofStation, bool ofPlugin)
{
    const bool before = areAlarmsKnown();
    m_hasStationAlarms = ofStation;
    m_hasPluginAlarms = ofPlugin;
    if (areAlarmsKnown() != before)
        emit alarmsKnownChanged(!before);
}

void ClientSession::takeEvent(const QString &event, const QVariant &data, const QString &source)
{
    if (event == StationEventName::AlarmsChanged)
        m_statusMonitor->setStationAlarms(source, data.toMap().value(StationKey::alarms).toList());
    if (m_stations)
        m_stations->noteEvent(event, data, source.isEmpty() ? directStation() : source);
    if (event != ServerEvent::VolumeChanged)
        return;
    if (source.isEmpty() && m_connected)
        noteAlarms(m_hasStationAlarms, true);
    QSet<QString> groupIds;
    const QVariantList entries = data.toList();
    for (const QVariant &entry : entries)
        groupIds.insert(entry.toMap().value(QStringLiteral("recordingGroupID")).toString());
    m_statusMonitor->keepGroups(source, groupIds);
}

bool ClientSession::areAlarmsKnown() const
{
    return m_hasStationAlarms && m_hasPluginAlarms;
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
    return m_connected;
}

StationDirectory *ClientSession::stations() const
{
    return m_stations.get();
}

QString ClientSession::directStation() const
{
    return m_link ? m_link->directStation() : QString();
}

bool ClientSession::setDirectStation(const QString &relayPath, QString *error)
{
    const auto refuse = [error](const QString &sentence) {
        if (error)
            *error = sentence;
        return false;
    };
    if (!m_link || relayPath.isEmpty())
        return refuse(QStringLiteral("There is no such station."));
    if (relayPath == directStation())
        return true;
    const StationState state = m_link->state(relayPath);
    if (state.kind != StationState::Kind::Up)
        return refuse(state.reason.isEmpty()
                          ? QStringLiteral("The station %1 is not up.").arg(relayPath)
                          : QStringLiteral("The station %1 is not up: %2").arg(relayPath, state.reason));
    emit directStationChanging(relayPath);
    if (!m_link->setDirectStation(relayPath))
        return refuse(QStringLiteral("There is no station %1 here.").arg(relayPath));
    return true;
}

StationState ClientSession::stationState() const
{
    return m_link ? m_link->state() : StationState();
}
