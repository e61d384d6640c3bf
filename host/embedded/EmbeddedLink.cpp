#include "EmbeddedLink.h"

#include "LocalEndpoint.h"
#include "Station.h"
#include "files/PrivateFolder.h"
#include "framework/HostReturnCode.h"
#include "service/FolderLock.h"
#include "service/LocalSocket.h"

#include <QCoreApplication>

#include <unistd.h>
#include <utility>

namespace {
/// Keeps the data folder for the station that it makes, as long as that lives.
class LockedStation : public Station
{
public:
    LockedStation(StationSettings settings, FolderLock lock)
        : Station(std::move(settings))
        , m_lock(std::move(lock))
    {
    }

private:
    FolderLock m_lock;
};
} // namespace

EmbeddedLink::EmbeddedLink(MakeStation makeStation, QString relayPath, QObject *parent)
    : StationLink(parent)
    , m_relayPath(std::move(relayPath))
    , m_user(userName(geteuid()))
    , m_station(std::move(makeStation))
{
    connect(&m_station, &StationThread::started, this, [this] { setState({StationState::Kind::Up}); });
    connect(&m_station, &StationThread::failed, this, [this] {
        setState({StationState::Kind::Down, QStringLiteral("The station could not be started.")});
    });
    connect(&m_station, &StationThread::eventRaised, this,
            [this](const StationEvent &event) { emit eventReceived({}, event); });
}

StationLink::Kind EmbeddedLink::kind()
{
    const auto open = [](const QString &place, const Client &client, QString *error) -> std::unique_ptr<StationLink> {
        const QString folder = place.isEmpty() ? defaultStationFolder() : normalizedFolder(place);
        if (folder.isEmpty()) {
            *error =
                QStringLiteral("There is no folder for the station's data: HOME is not set. Name one: embedded:DIR.");
            return {};
        }
        if (!PrivateFolder::make(folder)) {
            *error = QStringLiteral("The folder %1 cannot be made.").arg(folder);
            return {};
        }
        const auto lock = std::make_shared<FolderLock>(folder);
        if (!lock->isHeld()) {
            *error = lock->reason();
            return {};
        }
        const auto makeStation = [folder, lock, relayPath = client.relayPath] {
            return std::make_unique<LockedStation>(StationSettings{folder, relayPath, {}}, std::move(*lock));
        };
        return std::make_unique<EmbeddedLink>(makeStation, client.relayPath);
    };
    return {QStringLiteral("embedded"), QStringLiteral("embedded:DIR"), open};
}

StationLink::Kind EmbeddedLink::kind(const MakeStation &makeStation)
{
    const auto open = [makeStation](const QString &, const Client &client, QString *) {
        return std::make_unique<EmbeddedLink>(makeStation, client.relayPath);
    };
    return {QStringLiteral("embedded"), QStringLiteral("embedded:"), open};
}

void EmbeddedLink::start()
{
    if (m_state.kind != StationState::Kind::Unknown)
        return;
    m_state = {StationState::Kind::Connecting};
    m_station.start();
}

StationState EmbeddedLink::state(const QString &) const
{
    return m_state;
}

void EmbeddedLink::setState(const StationState &state)
{
    m_state = state;
    emit stateChanged({}, state);
}

void EmbeddedLink::send(quint64 correlation, const QString &relayPath, const StationCommand &command)
{
    if (m_state.kind == StationState::Kind::Unknown)
        return;
    if (relayPath.isEmpty() || relayPath == m_relayPath) {
        StationCommand sent = command;
        sent.client = QCoreApplication::applicationName();
        sent.user = m_user;
        m_station.handle(sent,
                         [this, correlation](const StationReply &reply) { emit replyReceived(correlation, reply); });
        return;
    }
    const auto refuse = [this, correlation] { emit replyReceived(correlation, {HostReturnCode::UnknownStation, {}}); };
    QMetaObject::invokeMethod(this, refuse, Qt::QueuedConnection);
}
