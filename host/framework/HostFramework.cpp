#include "HostFramework.h"

HostFramework::HostFramework(StationLink &link, QObject *parent)
    : QObject(parent)
    , m_link(link)
    , m_sender(link, CommandSender::Range::Plugins)
{
    connect(&m_link, &StationLink::upChanged, this, &HostFramework::changeUp);
    connect(&m_link, &StationLink::eventReceived, this, &HostFramework::deliverEvent);
}

HostFramework::~HostFramework()
{
    close();
}

void HostFramework::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_sender.setReplyTimeout(timeout);
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
    if (!m_closed && m_link.isUp())
        plugin->PluginServerConnected();
    return true;
}

void HostFramework::addPluginObject(const QString &pluginId, QObject *object)
{
    m_pluginObjects.insert(pluginId, object);
}

void HostFramework::close()
{
    m_closed = true;
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

void HostFramework::changeUp(bool up)
{
    if (!up)
        return;
    const auto connected = plugins();
    for (const QPointer<PluginBase> &plugin : connected) {
        if (plugin && !m_closed)
            plugin->PluginServerConnected();
    }
}

void HostFramework::deliverEvent(const QString &relayPath, const StationEvent &event)
{
    const auto receivers = plugins();
    for (const QPointer<PluginBase> &plugin : receivers) {
        if (plugin && !m_closed)
            plugin->EventProcessor(event.name, 0, 0, 0, event.data, relayPath);
    }
    emit eventDelivered(event.name, event.data, relayPath);
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
