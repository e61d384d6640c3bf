#include "ClientSession.h"

#include "PluginHost.h"
#include "Station.h"
#include "framework/PluginBase.h"

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
    const auto thisMachine = [] { return std::make_unique<Station>(); };
    m_link = std::make_unique<EmbeddedLink>(options.makeStation ? options.makeStation : thisMachine, options.relayPath);
    m_framework = std::make_unique<HostFramework>(*m_link);
    m_framework->setReplyTimeout(options.replyTimeout);
    if (!m_framework->attach(m_plugin.get(), host.pluginId())) {
        m_error = QStringLiteral("The plug-in %1 could not be initialised.").arg(host.fileName());
        stop();
        return false;
    }
    connect(m_link.get(), &EmbeddedLink::upChanged, this, &ClientSession::connectedChanged);
    m_link->start();
    return true;
}

void ClientSession::stop()
{
    if (m_framework)
        m_framework->close(); // while the plug-in lives: it takes its contexts back
    m_plugin.reset();
    m_framework.reset();
    m_link.reset();
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

bool ClientSession::isConnected() const
{
    return m_link && m_link->isUp();
}
