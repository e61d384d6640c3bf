#include "StorageUsage.h"

#include "IndexWorker.h"
#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "StorageTroubles.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QSet>

#include <algorithm>
#include <utility>

StorageUsage::StorageUsage(const VolumeSource &volumes, StationData &data, NasAccounts &accounts, TimedWork &work,
                           UsageSettings settings, QObject *parent)
    : QObject(parent)
    , m_volumes(volumes)
    , m_data(data)
    , m_settings(std::move(settings))
    , m_places(data, volumes)
    , m_nasVolumes(accounts, work, m_settings.nasInterval, this)
    , m_nasRecordings(accounts, m_nasVolumes, work.limit(), m_settings, this)
    , m_clock(data.folder(), m_settings.now)
    , m_mark(std::make_shared<ReadingMark>())
    , m_pause(m_settings.retryTime)
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
    connect(&m_nasVolumes, &NasVolumes::troublesChanged, this, &StorageUsage::troublesChanged);
    connect(&m_nasVolumes, &NasVolumes::answered, this, [this] {
        m_nasRecordings.look();
        tell();
        answerReload();
    });
    connect(&m_nasRecordings, &NasRecordings::listed, this, &StorageUsage::giveListing);
    connect(&m_nasRecordings, &NasRecordings::changed, this, [this] {
        emit troublesChanged();
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
    table.insert(ServerCommand::reloadStorageUsageInfo,
                 [this](const QVariant &data, const Answer &answer) { reload(data, answer); });
}

void StorageUsage::reload(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    // An edit that came before is to be seen in the figures, and figures of groups that cannot be read are none.
    m_areGroupsRead = false;
    useLatestGroups();
    answer(lastPart(ReturnCode::Success));
    QMetaObject::invokeMethod(this, &StorageUsage::readThrough, Qt::QueuedConnection);
}

void StorageUsage::readThrough()
{
    look();
    m_nasVolumes.askAll();
    m_nasRecordings.readAll();
    // What is known before the answer waits for it, as long as events are apart anyway.
    if (!std::exchange(m_isAwaited, true))
        m_tellTimer.start(m_settings.tellInterval);
    if (m_worker) {
        m_isReading = true;
        m_readingSince = QDateTime::currentDateTimeUtc();
        ++m_ticket;
        QMetaObject::invokeMethod(m_worker.get(),
                                  [worker = m_worker.get(), ticket = m_ticket] { worker->reconcile(ticket); });
    }
    answerReload();
}

void StorageUsage::answerReload()
{
    if (!m_isAwaited || m_isReading || m_nasVolumes.isAsking() || m_nasRecordings.isAwaited())
        return;
    m_isAwaited = false;
    m_isOwed = true;
    m_tellTimer.stop();
    tell();
}

void StorageUsage::useLatestGroups()
{
    if (!m_data.isDatabaseThere() || (m_areGroupsRead && !m_groupsTimer.isActive()))
        return;
    m_groupsTimer.stop();
    try {
        readGroups();
    } catch (const DatabaseError &error) {
        takeFailure(error);
        throw;
    }
    useGroups();
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
        return takeFailure(error);
    }
    useGroups();
}

void StorageUsage::readGroups()
{
    m_groups = GroupStore(m_data.database()).groups();
    m_places.update(m_groups, m_settings.backupFolder);
    m_nasVolumes.setGroups(m_groups);
    m_nasRecordings.setPlaces(nasPlaces());
    m_pause = m_settings.retryTime;
    m_groupsFailure.reset();
    m_areGroupsRead = true;
}

void StorageUsage::useGroups()
{
    const bool isAnything = !m_places.places().isEmpty();
    if (isAnything && !m_worker)
        startWorker();
    m_arePlacesNew = true; // the worker gets every change of the places
    look();
    if (isAnything)
        m_volumeTimer.start();
    else
        m_volumeTimer.stop();
}

/// Reads the groups again after a while that grows, unless they never can be.
void StorageUsage::takeFailure(const DatabaseError &error)
{
    constexpr std::chrono::milliseconds longestPause = std::chrono::seconds(30);
    qCInfo(stationLog, "Storage usage: %s", error.what());
    m_groupsFailure = error;
    m_data.note(error);
    if (error.trouble() != DatabaseTrouble::Damaged && error.trouble() != DatabaseTrouble::Replaced) {
        m_groupsTimer.start(m_pause);
        m_pause = std::min(2 * m_pause, longestPause);
    } else {
        leaveDatabase(error);
    }
    emit troublesChanged();
}

void StorageUsage::leaveDatabase(const DatabaseError &reason)
{
    if (m_worker)
        QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get(), reason] { worker->leaveDatabase(reason); });
}

void StorageUsage::startWorker()
{
    m_worker = std::make_unique<IndexWorker>(m_data.folder(), m_settings, m_mark);
    m_worker->moveToThread(&m_thread);
    connect(m_worker.get(), &IndexWorker::sumsChanged, this, &StorageUsage::takeSums);
    connect(m_worker.get(), &IndexWorker::failed, this, [this](const DatabaseError &error) {
        m_indexFailure = error;
        m_isUpToDate = false;
        if (error.trouble() == DatabaseTrouble::Damaged)
            m_data.note(error);
        emit troublesChanged();
    });
    connect(m_worker.get(), &IndexWorker::worked, this, [this](const QStringList &unreadable) {
        m_indexFailure.reset();
        m_unreadable = unreadable;
        emit troublesChanged();
    });
    connect(m_worker.get(), &IndexWorker::reconciled, this, [this](quint64 ticket) {
        if (ticket != m_ticket)
            return;
        m_isReading = false;
        answerReload();
    });
    connect(m_worker.get(), &IndexWorker::finished, this, [this](quint64 places) {
        m_isUpToDate = places == m_givenPlaces && !m_indexFailure;
        noteCounted();
    });
    connect(m_worker.get(), &IndexWorker::listingTaken, &m_nasRecordings, &NasRecordings::taken);
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
    QHash<qint64, PlaceState> states;
    try {
        states = m_places.look();
    } catch (const DatabaseError &error) {
        return takeFailure(error);
    } catch (...) {
        qCWarning(stationLog, "Storage usage: the volumes could not be looked at.");
        return;
    }
    m_clock.look(m_newestDay);
    m_isLookedAt = true;
    const QHash<qint64, PlaceState> before = std::exchange(m_states, states);
    const auto isSamePlace = [&before](const RecordingPlace &place, const PlaceState &now) {
        const auto found = before.constFind(place.number);
        return found != before.cend() && found->storage == now.storage && found->device == now.device;
    };
    bool isSame = !m_arePlacesNew && before.size() == states.size();
    for (const RecordingPlace &place : m_places.places())
        isSame = isSame && (place.isNas() || isSamePlace(place, states.value(place.number)));
    if (!isSame)
        giveToWorker();
    tell();
}

void StorageUsage::giveToWorker()
{
    if (!m_worker)
        return;
    QList<IndexedPlace> places;
    for (const RecordingPlace &place : m_places.places()) {
        if (place.isNas())
            continue;
        const PlaceState state = m_states.value(place.number);
        places.append(
            {place.number, place.path, place.root(), state.storage == UsagePlace::Storage::Present, state.device});
    }
    m_isUpToDate = false;
    m_arePlacesNew = false;
    ++m_givenPlaces;
    QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get(), places] { worker->setPlaces(places); });
}

void StorageUsage::giveListing(const RemoteListing &listing)
{
    if (m_worker)
        QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get(), listing] { worker->take(listing); });
    else
        m_nasRecordings.taken(listing.place, false);
}

QList<NasPlace> StorageUsage::nasPlaces() const
{
    QList<NasPlace> places;
    for (const RecordingPlace &place : m_places.places()) {
        if (!place.isNas())
            continue;
        const auto group = std::find_if(m_groups.cbegin(), m_groups.cend(),
                                        [&place](const RecordingGroup &other) { return other.id == place.groupId; });
        if (group == m_groups.cend())
            continue;
        for (const GroupPath &path : group->paths) {
            if (path.path == place.path)
                places.append({place.number, path, place.folder, place.readAt});
        }
    }
    return places;
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
    const bool isOwed = std::exchange(m_isOwed, false);
    const QVariantList now = entries();
    const bool isTold = isOwed || isWorthTelling(m_told, now);
    if (isTold) {
        m_told = now;
        m_shortGroups.judge(now);
    }
    emit troublesChanged();
    if (!isTold)
        return;
    m_toldAt.start();
    emit eventRaised({ServerEvent::VolumeChanged, now});
}

QDate StorageUsage::today() const
{
    return m_settings.today ? m_settings.today() : QDate::currentDate();
}

void StorageUsage::takeSums(const PlaceSums &sums)
{
    m_sums = sums;
    m_areSumsTold = true;
    QDate newest;
    QSet<QDate> future;
    for (const PlaceSum &sum : std::as_const(m_sums)) {
        for (auto day = sum.days.cbegin(); day != sum.days.cend(); ++day) {
            if (isOfTheFuture(day.key(), today()))
                future.insert(day.key());
            else if (!newest.isValid() || day.key() > newest)
                newest = day.key();
        }
    }
    m_newestDay = newest;
    m_futureDays = static_cast<int>(future.size());
    m_clock.look(newest);
    tell();
}

bool StorageUsage::isClockTrusted()
{
    m_clock.look(m_newestDay);
    return m_clock.troubles().isEmpty();
}

QDate StorageUsage::currentDay() const
{
    return m_clock.isBehind() ? QDate() : today();
}

QVariantList StorageUsage::entries() const
{
    QList<UsagePlace> told = places();
    told.removeIf([](const UsagePlace &place) { // what was taken away with its disk troubles nobody
        const bool isAnything = place.days && !place.days->isEmpty();
        return place.groupId.isEmpty() && (place.storage != UsagePlace::Storage::Present || !isAnything);
    });
    return usageEntries(told, currentDay());
}

bool StorageUsage::isFollowed(const RecordingPlace &place) const
{
    if (place.isNas())
        return m_nasRecordings.isCurrent(place.number);
    return m_isUpToDate && m_states.value(place.number).storage == UsagePlace::Storage::Present && isReadable(place);
}

bool StorageUsage::isReadable(const RecordingPlace &place) const
{
    return std::none_of(m_unreadable.cbegin(), m_unreadable.cend(), [root = place.root()](const QString &folder) {
        return folder == root || folder.startsWith(root + u'/');
    });
}

void StorageUsage::noteCounted()
{
    if (!m_isUpToDate)
        return;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const RecordingPlace &place : m_places.places()) {
        if (m_states.value(place.number).storage == UsagePlace::Storage::Present && isReadable(place))
            m_countedAt.insert(place.number, now);
    }
}

PlaceState StorageUsage::stateOf(const RecordingPlace &place) const
{
    PlaceState notLookedAt;
    notLookedAt.storage = UsagePlace::Storage::Unknown;
    return m_states.value(place.number, notLookedAt);
}

UsagePlace StorageUsage::usageOf(const RecordingPlace &place) const
{
    const PlaceState state = stateOf(place);
    const PlaceSum sum = m_sums.value(place.number);
    UsagePlace usage;
    usage.groupId = place.groupId;
    usage.path = place.path;
    usage.storage = state.storage;
    usage.volume = state.volume;
    const bool isPartTold = place.groupId.isEmpty() && !sum.days.isEmpty();
    if (sum.isRead || isPartTold)
        usage.days = sum.days;
    usage.isNas = place.isNas();
    usage.isCounted = sum.isRead && isFollowed(place);
    usage.countedAt =
        usage.isNas ? std::max(m_nasRecordings.readAt(place.number), place.readAt) : m_countedAt.value(place.number);
    return usage;
}

/// A place that the index has forgotten held nothing when it was read last.
QList<UnassignedPlace> StorageUsage::unassignedPlaces() const
{
    QList<UnassignedPlace> list;
    for (const RecordingPlace &place : m_places.places()) {
        const UsagePlace usage = usageOf(place);
        const bool isForgotten = m_areSumsTold && !m_sums.contains(place.number);
        const bool isEmpty = isForgotten || (usage.days && usage.days->isEmpty());
        if (place.groupId.isEmpty() && !isEmpty)
            list.append({place, stateOf(place), usage.days, usage.isCounted, usage.countedAt});
    }
    return list;
}

void StorageUsage::readAgain(const QStringList &roots)
{
    QList<qint64> numbers;
    for (const RecordingPlace &place : m_places.places()) {
        if (roots.contains(place.root()))
            numbers.append(place.number);
    }
    if (!m_worker || numbers.isEmpty())
        return;
    m_isUpToDate = false;
    ++m_givenPlaces;
    QMetaObject::invokeMethod(m_worker.get(), [worker = m_worker.get(), numbers] { worker->readPlaces(numbers); });
}

QList<UsagePlace> StorageUsage::places() const
{
    QHash<std::pair<QString, QString>, UsagePlace> found; // by group and path
    QList<UsagePlace> withoutGroup;
    for (const RecordingPlace &place : m_places.places()) {
        const UsagePlace usage = usageOf(place);
        if (!place.groupId.isEmpty())
            found.insert({place.groupId, place.path}, usage);
        else
            withoutGroup.append(usage);
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

std::optional<qint64> StorageUsage::countedBytes(const QString &path, const QString &folder) const
{
    const QList<RecordingPlace> &places = m_places.places();
    const auto place = std::find_if(places.cbegin(), places.cend(), [&](const RecordingPlace &known) {
        return known.path == path && known.folder == folder;
    });
    if (place == places.cend() || !m_sums.value(place->number).isRead)
        return {};
    const bool isFollowed = m_isUpToDate && m_states.value(place->number).storage == UsagePlace::Storage::Present;
    if (!place->isNas() && !isFollowed)
        return {};
    qint64 bytes = 0;
    const DaySums days = m_sums.value(place->number).days;
    for (const DaySum &day : days)
        bytes = saturatedSum(bytes, day.bytes);
    return bytes;
}

bool StorageUsage::isSettled() const
{
    return m_isLookedAt && !m_groupsFailure && (!m_worker || m_isUpToDate) && !m_nasVolumes.isAsking()
        && !m_tellTimer.isActive();
}

QList<StationTrouble> StorageUsage::troubles() const
{
    QList<StationTrouble> troubles = placeTroubles(m_places.places(), m_states, m_groups);
    troubles += readingTroubles() + m_clock.troubles();
    troubles += m_nasRecordings.withTimes(m_nasVolumes.troubles()) + m_nasRecordings.troubles();
    troubles += m_shortGroups.troubles() + groupTroubles(m_groups);
    for (const std::optional<DatabaseError> &failure : {m_groupsFailure, m_indexFailure}) {
        if (failure)
            troubles.append(troubleOf(*failure, Database::pathIn(m_data.folder())));
    }
    if (m_futureDays > 0 && !m_clock.isBehind())
        troubles.append(futureTrouble(m_futureDays));
    return troubles;
}

QList<StationTrouble> StorageUsage::readingTroubles() const
{
    QList<StationTrouble> troubles = unreadableTroubles(m_unreadable);
    const ReadingMark::Reading reading = m_mark->reading();
    const bool isHanging = !reading.path.isEmpty()
        && reading.since.addDuration(m_settings.folderPatience) < QDateTime::currentDateTimeUtc();
    if (isHanging)
        troubles.append(hangingTrouble(reading.path, reading.since));
    else if (m_isReading || m_isOwed) // not counted, or counted and not told
        troubles.append(countingTrouble(m_isReading ? reading.path : QString(), m_readingSince));
    return troubles;
}
