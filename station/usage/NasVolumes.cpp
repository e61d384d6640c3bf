#include "NasVolumes.h"

#include "StationLog.h"
#include "StationProtocol.h"
#include "TimedWork.h"
#include "nas/NasAccounts.h"

namespace {
using Storage = UsagePlace::Storage;

PlaceState stateOf(Storage storage, const QString &path)
{
    PlaceState state;
    state.storage = storage;
    state.volume.name = QStringLiteral("//") + path.section(u'/', 2, 3);
    return state;
}
} // namespace

NasVolumes::NasVolumes(NasAccounts &accounts, TimedWork &work, std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_work(work)
    , m_timer(this)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &NasVolumes::askAll);
}

void NasVolumes::setGroups(const QList<RecordingGroup> &groups)
{
    const QMap<Key, Known> before = std::exchange(m_volumes, {});
    for (const RecordingGroup &group : groups) {
        for (const GroupPath &path : group.paths) {
            const Key key{path.kind, path.path};
            if (path.kind != PathKind::Local)
                m_volumes.insert(key, before.value(key, {stateOf(Storage::Unknown, path.path), false}));
        }
    }
    const QList<Key> keys = m_volumes.keys();
    for (const Key &key : keys) {
        if (!before.contains(key))
            ask(key);
    }
    if (keys.isEmpty())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

void NasVolumes::askAll()
{
    const QList<Key> keys = m_volumes.keys();
    for (const Key &key : keys)
        ask(key);
    if (!keys.isEmpty())
        emit answered(); // where no server is registered
}

PlaceState NasVolumes::state(const GroupPath &path) const
{
    const auto known = m_volumes.constFind({path.kind, path.path});
    return known == m_volumes.cend() ? stateOf(Storage::Unknown, path.path) : known->state;
}

void NasVolumes::ask(const Key &key)
{
    Known &known = m_volumes[key];
    if (known.isAsked)
        return;
    const std::optional<SmbPath> place = SmbPath::parse(key.second);
    std::optional<SmbLogon> logon;
    try {
        if (place) {
            logon = m_accounts.registered(
                *place, key.first == PathKind::NetHost ? NasAccounts::Account::OfHost : NasAccounts::Account::OfDomain);
        }
    } catch (const std::exception &error) {
        qCWarning(stationLog, "The capacity of %s: %s", qPrintable(key.second), error.what());
        return;
    }
    if (!logon) {
        known.state = stateOf(Storage::Gone, key.second);
        return;
    }
    known.isAsked = true;
    ++m_asked;
    const auto question = [place = *place, logon = *logon, limit = m_work.limit()] {
        return SmbClient(logon, limit).space(place);
    };
    m_work.run<SmbSpace>(place->hostKey(), question, {StationReturnCode::NasServerNotResponding, 0, 0},
                         [this, key, place = *place](const SmbSpace &space) {
                             const bool isThere = space.returnCode == StationReturnCode::Success;
                             PlaceState state = stateOf(isThere ? Storage::Present : Storage::Gone, key.second);
                             SmbPath share = place;
                             share.folders.clear();
                             // Names on these servers are the same in capitals and small letters.
                             state.volume.path = share.text().toCaseFolded();
                             state.volume.bytesTotal = space.bytesTotal;
                             state.volume.bytesAvailable = space.bytesAvailable;
                             take(key, state);
                         });
}

void NasVolumes::take(const Key &key, const PlaceState &state)
{
    --m_asked;
    const auto known = m_volumes.find(key);
    if (known != m_volumes.end()) // else no group has the path any more
        *known = {state, false};
    emit answered();
}
