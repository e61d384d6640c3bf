#include "ConsoleClient.h"

#include "Replies.h"

#include <utility>

QVariant NamedStation::getStationTree() const
{
    return QVariantMap{{"name", "North"}, {"ip", "192.168.7.20"}, {"relayPath", Replies::relayPath()}, {"type", "NVR"}};
}

ConsoleClient::ConsoleClient(std::unique_ptr<PluginRecordingManagement> plugin)
    : m_plugin(std::move(plugin))
{
    m_plugin->InitialPluginBase(nullptr, nullptr, this);
    m_session.setConnected(true);
    m_session.setAlarms(&m_monitor);
}

void ConsoleClient::deliver(const Message &message)
{
    if (message.isEvent)
        m_plugin->EventProcessor(message.name, 0, 0, 0, message.data, {});
    else
        m_plugin->CommandProcessor(message.name, message.data, nullptr, QStringLiteral("0"), {}, true, {});
}

QObject *ConsoleClient::GetPluginObject(void *, const QString &pluginId)
{
    return pluginId == StatusMonitorPlugin::pluginId ? static_cast<QObject *>(&m_monitor) : &m_station;
}
