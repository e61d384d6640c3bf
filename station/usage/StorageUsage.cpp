#include "StorageUsage.h"

#include "IndexWorker.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationProtocol.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <utility>

StorageUsage::StorageUsage(const VolumeSource &volumes, StationData &data, NasAccounts &accounts, TimedWork &work,
                           UsageSettings settings, QObject *parent)
    : QObject(parent)
    , m_volumes(volumes)
    , m_data(data)
    , m_settings(std::move(settings))
    , m_nasVolumes(accounts, work, m_settings.nasInterval, this)
    , m_groupsTimer(this)
    , m_tellTimer(this)
    , m_volumeTimer(this)
{
    m_tellTimer.setSingleShot(true);
    m_tellTimer.setTimerType(Qt::PreciseTimer); // never early
    connect(&m_tellTimer, &QTimer::timeout, this, &StorageUsage::tellNow);
    m_volumeTimer.setInterval(m_settings.volumeInterval);
    connect(&m_volumeTimer, &QTimer::timeout, this, &StorageUsage::look);
    m_groupsTimer.setSingleShot(true);
    connect(&m_groupsTimer, &QTimer::timeout, this, &StorageUsage::followGroups);
    connect(&m_nasVolumes, &NasVolumes::answered, this, [this] {
        tell();
        answerReload();
    });
    const auto start = [this] {
        if (m_data.isDatabaseThere()) // else there are no groups
            groupsChanged();
    };
    QMetaObject::invokeMethod(this, start, Qt::QueuedConnection);
}

StorageUsage::~StorageUsage()
{
    m_thread.requestInterruption();
    m_thread.quit();
    m_thread.wait();
}

void StorageUsage::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::reloadStorageUsageInfo,
                 [this](const QVariant &data, const Answer &answer) { reload(data, answer); });
}

void StorageUsage::reload(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    answer(lastPart(StationReturnCode::Success));
    QMetaObject::invokeMethod(this, &StorageUsage::readThrough, Qt::QueuedConnection);
}

void StorageUsage::readThrough()
{
    if (m_groupsTimer.isActive()) { // an edit that came before is to be seen in the answer
        m_groupsTimer.stop();
        followGroups();
    }
    look();
    m_nasVolumes.askAll();
    // What is known before the answer waits for it, as long as events are apart anyway.
    if (!std::exchange(m_isAwaited, true))
        m_tellTimer.start(m_settings.tellInterval);
    if (m_worker) {
        m_isReading = true;
        ++m_ticket;
        QMetaObject::invokeMethod(m_worker.get(),
                                  [worker = m_worker.get(), ticket = m_ticket] { worker->reconcile(ticket); });
    }
    answerReload();
}

void StorageUsage::answerReload()
{
    if (!m_isAwaited || m_isReading || m_nasVolumes.isAsking())
        return;
    m_isAwaited = false;
    m_isOwed = true;
    m_tellTimer.stop();
    tell();
}

void StorageUsage::groupsChanged()
{
    m_groupsTimer.start(0); // many edits in a row are followed once
}

void StorageUsage::followGroups()
{
    try {
        readGroups();
    } catch (const DatabaseError &error) {
        qCWarning(stationLog, "Storage usage: %s", error.what());
        return;
    }
    const bool isAnything = !m_places->places().isEmpty();
    if (isAnything && !m_worker)
        startWorker();
    m_states.clear(); // the worker gets every change of the places
    look();
    if (isAnything)
        m_volumeTimer.start();
    else
        m_volumeTimer.stop();
}

void StorageUsage::readGroups()
{
    Database &database = m_data.database();
    if (!m_places)
        m_places.emplace(database, m_volumes);
    m_groups = GroupStore(database).groups();
    m_places->update(m_groups, m_settings.backupFolder);
    m_nasVolumes.setGroups(m_groups);
}

void StorageUsage::startWorker()
{
    m_worker = std::make_unique<IndexWorker>(m_data.folder(), m_settings);
    m_worker->moveToThread(&m_thread);
    connect(m_worker.get(), &IndexWorker::sumsChanged, this, [this](const PlaceSums &sums) {
        m_sums = sums;
        tell();
    });
    connect(m_worker.get(), &IndexWorker::reconciled, this, [this](quint64 ticket) {
        if (ticket != m_ticket)
            return;
        m_isReading = false;
        answerReload();
    });
    connect(m_worker.get(), &IndexWorker::placeLeft, this, &StorageUsage::look);
    connect(m_worker.get(), &IndexWorker::progressed, this, [this](qint64 done, qint64 total, bool isRunning) {
        const QVariantMap progress{
            {StationKey::done, done}, {StationKey::total, total}, {StationKey::running, isRunning}};
        emit eventRaised({StationEventName::StorageScanProgress, progress});
    });
    // Its watches, timers and database connection end on the thread that they were made on.
    connect(
        &m_thread, &QThread::finished, &m_thread, [this] { m_worker.reset(); }, Qt::DirectConnection);
    m_thread.setObjectName(QStringLiteral("recording index"));
    m_thread.start();
}

/// Looks where the places are now, and hands on what is different.
void StorageUsage::look()
{
    if (!m_places)
        return;
    QHash<qint64, PlaceState> states;
    try {
        states = m_places->look();
    } catch (const DatabaseError &error) {
        qCWarning(stationLog, "Storage usage: %s", error.what());
        return;
    } catch (...) {
        qCWarning(stationLog, "Storage usage: the volumes could not be looked at.");
        return;
    }
    const QHash<qint64, PlaceState> before = std::exchange(m_states, states);
    const auto isSamePlace = [&before](const RecordingPlace &place, const PlaceState &now) {
        const auto found = before.constFind(place.number);
        return found != before.cend() && found->storage == now.storage && found->device == now.device;
    };
    bool isSame = before.size() == states.size();
    for (const RecordingPlace &place : m_places->places())
        isSame = isSame && isSamePlace(place, states.value(place.number));
    if (!isSame)
        giveToWorker();
    tell();
}

void StorageUsage::giveToWorker()
{
    if (!m_worker)
        return;
    QList<IndexedPlace> places;
    for (const RecordingPlace &place : m_places->places()) {
        const PlaceState state = m_states.value(place.number);
        places.append(
            {place.number, place.path, place.root(), state.storage == UsagePlace::Storage::Present, state.device});
    }
    QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get(), places] { worker->setPlaces(places); });
}

/// At once, or when the last event is long enough ago; figures that come until then go with it.
void StorageUsage::tell()
{
    if (m_tellTimer.isActive())
        return;
    const qint64 interval = m_settings.tellInterval.count();
    const qint64 ago = m_toldAt.isValid() ? m_toldAt.elapsed() : interval;
    m_tellTimer.start(static_cast<int>(qMax<qint64>(0, interval - ago)));
}

void StorageUsage::tellNow()
{
    const QVariantList now = entries();
    if (!m_isOwed && !isWorthTelling(m_told, now))
        return;
    m_isOwed = false;
    m_told = now;
    m_toldAt.start();
    emit eventRaised({StationEventName::VolumeChanged, now});
}

QVariantList StorageUsage::entries() const
{
    return usageEntries(usagePlaces(), m_settings.today ? m_settings.today() : QDate::currentDate());
}

QList<UsagePlace> StorageUsage::usagePlaces() const
{
    if (!m_places)
        return {};
    QHash<std::pair<QString, QString>, UsagePlace> found; // by group and path
    QList<UsagePlace> withoutGroup;
    for (const RecordingPlace &place : m_places->places()) {
        const PlaceState state = m_states.value(place.number);
        const PlaceSum sum = m_sums.value(place.number);
        UsagePlace usage;
        usage.groupId = place.groupId;
        usage.path = place.path;
        usage.storage = state.storage;
        usage.volume = state.volume;
        if (sum.isRead)
            usage.days = sum.days;
        if (!place.groupId.isEmpty())
            found.insert({place.groupId, place.path}, usage);
        else if (state.storage == UsagePlace::Storage::Present && !sum.days.isEmpty())
            withoutGroup.append(usage); // whose disk was taken away troubles nobody
    }

    QList<UsagePlace> places;
    for (const RecordingGroup &group : m_groups) {
        for (const GroupPath &path : group.paths) {
            UsagePlace usage = found.take({group.id, path.path});
            usage.groupId = group.id;
            usage.groupName = group.name;
            usage.reservedMinutes = group.isReservedTimeEnabled ? group.reservedMinutes : 0;
            usage.path = path.path;
            usage.reservedMegabytes = path.reservedMegabytes;
            usage.isNas = path.kind != PathKind::Local;
            if (usage.isNas) {
                const PlaceState state = m_nasVolumes.state(path);
                usage.storage = state.storage;
                usage.volume = state.volume;
            }
            places.append(usage);
        }
    }
    places += withoutGroup;
    places += found.values(); // the backup area
    return places;
}
