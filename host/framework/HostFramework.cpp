#include "HostFramework.h"

#include "HostReturnCode.h"

#include <algorithm>

HostFramework::HostFramework(StationLink &link, QObject *parent)
    : QObject(parent)
    , m_link(link)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &HostFramework::refuseOverdue);
    connect(&m_link, &StationLink::upChanged, this, &HostFramework::changeUp);
    connect(&m_link, &StationLink::replyReceived, this, &HostFramework::deliverReply);
    connect(&m_link, &StationLink::eventReceived, this, &HostFramework::deliverEvent);
}

HostFramework::~HostFramework()
{
    close();
}

void HostFramework::setReplyTimeout(std::chrono::milliseconds timeout)
{
    m_replyTimeout = std::max(timeout, std::chrono::milliseconds(1));
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
    refuseAll(m_outstanding.keys(), HostReturnCode::Closing);
}

bool HostFramework::SendCommand(void *, const QString &pluginId, const QString &command, const QVariant &data,
                                void *context, bool, const QString &relayPath)
{
    const QPointer<PluginBase> plugin = m_plugins.value(pluginId);
    if (m_closed || !plugin)
        return false;
    const quint64 correlation = ++m_lastCorrelation;
    m_outstanding.insert(correlation, {plugin, command, context, relayPath, QDeadlineTimer(m_replyTimeout)});
    if (m_link.isUp()) {
        watchDeadline();
        m_link.send(correlation, relayPath, {command, data});
    } else {
        const auto refuse = [this, correlation] { deliverReply(correlation, {HostReturnCode::LinkDown, {}}); };
        QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
    }
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
    if (!up) {
        refuseAll(m_outstanding.keys(), HostReturnCode::LinkDown);
        return;
    }
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

void HostFramework::deliverReply(quint64 correlation, const StationReply &reply)
{
    const auto found = m_outstanding.find(correlation);
    if (found == m_outstanding.end())
        return; // late or once too often
    const Command command = *found;
    if (reply.finish) {
        m_outstanding.erase(found);
    } else {
        found->deadline = QDeadlineTimer(m_replyTimeout);
        watchDeadline();
    }
    if (!command.plugin)
        return;
    emit commandAnswered(command.name, reply.returnCode, reply.data, reply.finish);
    // A slot may have closed the framework: then the last part went out already, and nothing may follow it.
    if (command.plugin && (reply.finish || m_outstanding.contains(correlation)))
        command.plugin->CommandProcessor(command.name, reply.data, command.context, reply.returnCode, {}, reply.finish,
                                         command.relayPath);
}

void HostFramework::refuseAll(const QList<quint64> &correlations, const QString &returnCode)
{
    for (const quint64 correlation : correlations)
        deliverReply(correlation, {returnCode, {}});
}

void HostFramework::watchDeadline()
{
    if (!m_timer.isActive() || m_timer.remainingTimeAsDuration() > m_replyTimeout)
        m_timer.start(m_replyTimeout);
}

void HostFramework::refuseOverdue()
{
    QList<quint64> overdue;
    for (auto command = m_outstanding.cbegin(); command != m_outstanding.cend(); ++command) {
        if (command->deadline.hasExpired())
            overdue.append(command.key());
    }
    refuseAll(overdue, HostReturnCode::NoAnswer);
    if (m_outstanding.isEmpty())
        return;
    const auto earliest =
        std::min_element(m_outstanding.cbegin(), m_outstanding.cend(),
                         [](const Command &one, const Command &other) { return one.deadline < other.deadline; });
    m_timer.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(earliest->deadline.remainingTimeAsDuration()),
                           std::chrono::milliseconds(1)));
}
