#include "HostFramework.h"

#include "ServerVocabulary.h"

#include <utility>

HostFramework::HostFramework(StationLink &link, QObject *parent)
    : QObject(parent)
    , m_link(link)
    , m_sender(link, CommandSender::Range::Plugins)
    , m_others([this](const QString &source, const StationEvent &event, bool isRepeated) {
        handOn(source, event, isRepeated);
    })
{
    connect(&m_link, &StationLink::stateChanged, this, &HostFramework::followState);
    connect(&m_link, &StationLink::eventReceived, this, &HostFramework::deliverEvent);
    connect(&m_link, &StationLink::directStationChanged, this, &HostFramework::followDirectStation);
    connect(&m_sender, &CommandSender::lateOutcomeCame, this, &HostFramework::lateOutcomeCame);
}

HostFramework::~HostFramework()
{
    close();
}

void HostFramework::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_sender.setReplyTimeout(timeout);
}

void HostFramework::setDescribe(const CommandSender::Describe &describe)
{
    m_sender.setDescribe(describe);
}

bool HostFramework::attach(PluginBase *plugin, const QString &pluginId, QQmlContext *context)
{
    if (m_closed || !plugin || m_plugins.value(pluginId))
        return false;
    m_plugins.insert(pluginId, plugin); // first: it may send already while it initialises
    if (!plugin->InitialPluginBase(context, this, this)) {
        m_plugins.remove(pluginId);
        return false;
    }
    if (!m_closed && m_link.isUp()) {
        plugin->PluginServerConnected();
        repeatFigures();
    }
    return true;
}

void HostFramework::setFollowsOthers(bool follows)
{
    m_followsOthers = follows;
}

void HostFramework::addPluginObject(const QString &pluginId, QObject *object)
{
    m_pluginObjects.insert(pluginId, object);
}

void HostFramework::close()
{
    m_closed = true;
    m_others.clear();
    m_link.disconnect(this);
    m_sender.close();
}

bool HostFramework::SendCommand(void *, const QString &pluginId, const QString &command, const QVariant &data,
                                void *context, bool, const QString &relayPath)
{
    const QPointer<PluginBase> plugin = m_plugins.value(pluginId);
    if (m_closed || !plugin)
        return false;
    const Command sent{plugin, command, context, relayPath};
    m_sender.send(relayPath, {command, data}, [this, sent](quint64 correlation, const StationReply &part) {
        deliverPart(sent, correlation, part);
    });
    return true;
}

QObject *HostFramework::GetPluginObject(void *, const QString &pluginId)
{
    QObject *object = m_pluginObjects.value(pluginId);
    return object ? object : m_plugins.value(pluginId);
}

QList<QPointer<PluginBase>> HostFramework::plugins() const
{
    return m_plugins.values();
}

void HostFramework::followState(const QString &relayPath, const StationState &state)
{
    if (!relayPath.isEmpty())
        return;
    const QString toldOf = std::exchange(m_toldOf, {});
    if (state.kind == StationState::Kind::Up && (toldOf.isEmpty() || toldOf != m_link.directStation()))
        tellOfConnection();
}

void HostFramework::followDirectStation(const QString &relayPath)
{
    m_others.deliverNow(relayPath);
    if (m_closed)
        return;
    const StationEvent figures{ServerEvent::VolumeChanged, m_lastFigures.value(relayPath, QVariantList())};
    if (m_link.isUp()) {
        m_toldOf = relayPath; // the link may tell its state besides
        tellOfConnection();
    }
    handOn({}, figures, true); // else the plug-ins would still have those of the station before
    repeatFigures();
}

void HostFramework::tellOfConnection()
{
    const auto connected = plugins();
    for (const QPointer<PluginBase> &plugin : connected) {
        if (plugin && !m_closed)
            plugin->PluginServerConnected();
    }
    repeatFigures();
}

void HostFramework::repeatFigures()
{
    if (m_closed || !m_followsOthers)
        return;
    const QString direct = m_link.directStation();
    for (auto station = m_lastFigures.cbegin(); station != m_lastFigures.cend(); ++station) {
        if (station.key() != direct)
            m_others.repeat(station.key(), {ServerEvent::VolumeChanged, *station});
    }
}

void HostFramework::deliverEvent(const QString &relayPath, const StationEvent &event)
{
    const QString direct = m_link.directStation();
    const bool isDirect = relayPath.isEmpty() || relayPath == direct;
    if (!isDirect && !m_followsOthers)
        return;
    const QString station = isDirect ? direct : relayPath;
    if (event.name == ServerEvent::VolumeChanged && !station.isEmpty())
        m_lastFigures.insert(station, event.data);
    if (isDirect)
        handOn({}, event, false);
    else
        m_others.add(relayPath, event);
}

void HostFramework::handOn(const QString &source, const StationEvent &event, bool isRepeated)
{
    const auto receivers = plugins();
    emit eventArriving(source);
    for (const QPointer<PluginBase> &plugin : receivers) {
        if (plugin && !m_closed)
            plugin->EventProcessor(event.name, 0, 0, 0, event.data, source);
    }
    emit eventHandedOn();
    if (!isRepeated)
        emit eventDelivered(event.name, event.data, source);
}

void HostFramework::deliverPart(const Command &command, quint64 correlation, const StationReply &part)
{
    if (!command.plugin)
        return;
    emit commandAnswered(command.name, part.returnCode, part.data, part.finish);
    // A slot may have closed the framework: then the last part went out already, and nothing may follow it.
    if (command.plugin && (part.finish || m_sender.isOutstanding(correlation)))
        command.plugin->CommandProcessor(command.name, part.data, command.context, part.returnCode, {}, part.finish,
                                         command.relayPath);
}
