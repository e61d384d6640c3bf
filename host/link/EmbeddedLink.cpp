#include "EmbeddedLink.h"

#include "Station.h"
#include "framework/HostReturnCode.h"

#include <utility>

EmbeddedLink::EmbeddedLink(MakeStation makeStation, QString relayPath, QObject *parent)
    : StationLink(parent)
    , m_makeStation(std::move(makeStation))
    , m_relayPath(std::move(relayPath))
{
    m_thread.setObjectName(QStringLiteral("station"));
    m_stationSide.moveToThread(&m_thread);
    connect(&m_thread, &QThread::started, &m_stationSide, [this] { createStation(); });
    connect(
        &m_thread, &QThread::finished, &m_stationSide, [this] { m_station.reset(); }, Qt::DirectConnection);
}

EmbeddedLink::~EmbeddedLink()
{
    m_thread.requestInterruption();
    m_thread.quit();
    m_thread.wait();
}

void EmbeddedLink::start()
{
    if (!m_thread.isRunning())
        m_thread.start();
}

bool EmbeddedLink::isUp() const
{
    return m_up;
}

void EmbeddedLink::send(quint64 correlation, const QString &relayPath, const StationCommand &command)
{
    if (!m_up)
        return;
    if (relayPath.isEmpty() || relayPath == m_relayPath) {
        QMetaObject::invokeMethod(
            &m_stationSide, [this, correlation, command] { carryOut(correlation, command); }, Qt::QueuedConnection);
        return;
    }
    const auto refuse = [this, correlation] { emit replyReceived(correlation, {HostReturnCode::UnknownStation, {}}); };
    QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
}

void EmbeddedLink::createStation()
{
    m_station = m_makeStation();
    if (!m_station)
        return;
    connect(
        m_station.get(), &Station::eventRaised, this,
        [this](const StationEvent &event) { emit eventReceived({}, event); }, Qt::QueuedConnection);
    const auto goUp = [this] {
        m_up = true;
        emit upChanged(true);
    };
    QMetaObject::invokeMethod(this, goUp, Qt::QueuedConnection);
}

void EmbeddedLink::carryOut(quint64 correlation, const StationCommand &command)
{
    if (m_thread.isInterruptionRequested())
        return;
    m_station->handle(command, [this, correlation](const StationReply &reply) {
        const auto hand = [this, correlation, reply] { emit replyReceived(correlation, reply); };
        QMetaObject::invokeMethod(this, hand, Qt::QueuedConnection);
    });
}
