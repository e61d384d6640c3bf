#include "IndexWorker.h"

#include "StationLog.h"
#include "UsageSettings.h"
#include "store/Database.h"

#include <QThread>

#include <algorithm>
#include <utility>

namespace {
bool isEnding()
{
    return QThread::currentThread()->isInterruptionRequested();
}
} // namespace

IndexWorker::IndexWorker(QString dataFolder, const UsageSettings &settings, std::shared_ptr<ReadingMark> mark)
    : m_dataFolder(std::move(dataFolder))
    , m_sliceTime(settings.sliceTime)
    , m_progressInterval(settings.progressInterval)
    , m_mark(std::move(mark))
    , m_watch(this)
    , m_settle(this)
    , m_turn(this)
    , m_retry(this)
    , m_pause(settings.retryTime)
    , m_firstPause(settings.retryTime)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] {
        enqueueAll();
        m_turn.start();
    });
    m_settle.setSingleShot(true);
    m_settle.setInterval(settings.settleTime);
    m_turn.setInterval(0);
    m_told.start();
    connect(&m_settle, &QTimer::timeout, this, &IndexWorker::enqueueChanges);
    connect(&m_turn, &QTimer::timeout, this, &IndexWorker::work);
    connect(&m_watch, &FolderWatch::changed, this, [this](const QString &path) {
        m_changed.insert(path);
        if (!m_settle.isActive())
            m_settle.start();
    });
}

IndexWorker::~IndexWorker() = default;

void IndexWorker::open()
{
    if (m_reader)
        return;
    m_database = std::make_unique<Database>(m_dataFolder);
    m_index.emplace(*m_database);
    if (const std::optional<DatabaseError> limitation = m_database->limitation()) {
        tellSums(); // as they were when it could be written
        throw *limitation;
    }
    // What a loss of power takes of the index is read from the folders again.
    m_database->run(QStringLiteral("PRAGMA synchronous = NORMAL"));
    m_reader.emplace(*m_index, m_watch);
}

void IndexWorker::setPlaces(const QList<IndexedPlace> &places)
{
    ++m_timesPlaced;
    const QHash<qint64, IndexedPlace> before = std::exchange(m_places, {});
    QSet<QString> paths;
    for (const IndexedPlace &place : places) {
        m_places.insert(place.number, place);
        if (place.isPresent)
            paths.insert(place.path);
    }
    for (const IndexedPlace &place : before) {
        if (m_places.value(place.number) == place)
            continue;
        m_watch.forget(place.root);
        if (!paths.contains(place.path))
            m_watch.forget(place.path);
    }
    for (const IndexedPlace &place : places) {
        if (place.isPresent && before.value(place.number) != place)
            enqueuePlace(place);
    }
    m_areAllSumsOld = true;
    m_turn.start();
}

void IndexWorker::reconcile(quint64 ticket)
{
    m_ticket = ticket;
    m_retry.stop(); // somebody asks: now
    enqueueAll();
    m_turn.start();
}

void IndexWorker::readPlaces(const QList<qint64> &numbers)
{
    ++m_timesPlaced;
    for (const qint64 number : numbers) {
        const auto place = m_places.constFind(number);
        if (place != m_places.cend() && place->isPresent)
            enqueuePlace(*place);
    }
    m_turn.start();
}

void IndexWorker::leaveDatabase(const DatabaseError &reason)
{
    if (!m_end)
        giveUp(reason);
}

void IndexWorker::take(const RemoteListing &listing)
{
    bool isKept = false;
    if (!m_end && !m_retry.isActive() && !isEnding()) {
        try {
            open();
            applyListing(*m_index, listing);
            m_oldSums.insert(listing.place);
            tellSums();
            isKept = true;
        } catch (const DatabaseError &error) {
            giveUp(error);
        }
    }
    emit listingTaken(listing.place, isKept);
}

void IndexWorker::enqueueAll()
{
    m_tasks.clear();
    for (const IndexedPlace &place : std::as_const(m_places)) {
        if (place.isPresent)
            enqueuePlace(place);
    }
    m_areAllSumsOld = true;
}

void IndexWorker::enqueuePlace(const IndexedPlace &place)
{
    m_tasks.push_back({{ReadTask::Kind::Place, place.number}});
    m_tasks.push_back({{ReadTask::Kind::Place, place.number}, true});
}

void IndexWorker::enqueueChanges()
{
    const QSet<QString> changed = std::exchange(m_changed, {});
    for (const QString &path : changed) {
        for (const IndexedPlace &place : std::as_const(m_places)) {
            if (path == place.path || path == place.root || path.startsWith(place.root + u'/'))
                m_tasks.push_back({ReadTask::of(path, place)});
        }
    }
    m_turn.start();
}

void IndexWorker::work()
{
    if (isEnding() || m_retry.isActive())
        return m_turn.stop();
    try {
        if (m_end)
            throw DatabaseError(*m_end);
        workSlice();
    } catch (const DatabaseError &error) {
        giveUp(error);
    }
}

void IndexWorker::giveUp(const DatabaseError &error)
{
    constexpr std::chrono::milliseconds longestPause = std::chrono::seconds(30);
    qCInfo(stationLog, "The index of recorded files: %s", error.what());
    m_mark->end();
    m_reader.reset();
    m_index.reset();
    m_database.reset();
    m_tasks.clear();
    m_areAllSumsOld = true;
    m_unreadable.reset();
    emit failed(error);
    finishRun();
    if (error.trouble() == DatabaseTrouble::Damaged || error.trouble() == DatabaseTrouble::Replaced) {
        m_end = error;
        return;
    }
    m_retry.start(m_pause);
    m_pause = std::min(2 * m_pause, longestPause);
}

void IndexWorker::workSlice()
{
    open();
    if (!m_run.isValid()) {
        m_run.start();
        m_readBefore = m_reader->filesRead();
        tellSums();
        const qint64 known = fileCount(m_sums);
        m_expected = known > 0 ? known : -1;
    }
    QElapsedTimer slice;
    slice.start();
    while (!m_tasks.empty() && !isEnding()) {
        const Task task = std::move(m_tasks.front());
        m_tasks.pop_front();
        runTask(task);
        if (slice.elapsed() >= m_sliceTime.count())
            break;
    }
    if (isEnding())
        return m_turn.stop();
    m_reader->write();
    if (m_reader->takeHasLeft())
        emit placeLeft();
    const bool isDone = m_tasks.empty();
    const bool isTimeToTell =
        m_run.elapsed() >= m_progressInterval.count() && m_told.elapsed() >= m_progressInterval.count();
    if (isDone || isTimeToTell)
        tellSums();
    if (isDone) {
        m_pause = m_firstPause;
        const QStringList unreadable = m_reader->unreadable();
        if (m_unreadable != unreadable)
            emit worked(*(m_unreadable = unreadable));
        return finishRun();
    }
    if (isTimeToTell) {
        tellProgress(true);
        m_told.start();
    }
}

void IndexWorker::runTask(const Task &task)
{
    const auto place = m_places.constFind(task.read.place);
    if (place == m_places.cend() || !place->isPresent)
        return;
    m_oldSums.insert(place->number);
    if (task.isEndOfPlace) {
        m_reader->write();
        if (m_reader->isComplete(place->number))
            m_index->markRead(place->number);
        return;
    }
    m_mark->begin(place->root);
    const QList<ReadTask> below = m_reader->read(task.read, *place);
    m_mark->end();
    for (auto next = below.crbegin(); next != below.crend(); ++next)
        m_tasks.push_front({*next});
}

void IndexWorker::finishRun()
{
    m_turn.stop();
    m_run.invalidate();
    if (m_isProgressTold)
        tellProgress(false);
    emit finished(m_timesPlaced);
    if (m_ticket)
        emit reconciled(*std::exchange(m_ticket, {}));
}

void IndexWorker::tellSums()
{
    if (!m_areAllSumsOld && m_oldSums.isEmpty())
        return;
    if (std::exchange(m_areAllSumsOld, false))
        m_sums = m_index->sums();
    else
        for (const qint64 place : std::as_const(m_oldSums))
            m_index->updateSum(m_sums, place);
    m_oldSums.clear();
    emit sumsChanged(m_sums);
}

void IndexWorker::tellProgress(bool isRunning)
{
    const qint64 done = m_reader ? m_reader->filesRead() - m_readBefore : 0;
    m_isProgressTold = isRunning;
    emit progressed(done, done <= m_expected ? m_expected : -1, isRunning);
}
