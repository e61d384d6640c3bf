#include "RecordingCommands.h"

#include "DayMove.h"
#include "DeletionStore.h"
#include "PlaceClaims.h"
#include "RequestMap.h"
#include "SaturatedSum.h"
#include "ServerVocabulary.h"
#include "StationData.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "UnassignedRecordings.h"
#include "groups/GroupStore.h"
#include "service/Edit.h"
#include "store/Database.h"
#include "usage/RecordingIndex.h"
#include "usage/StorageUsage.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <utility>

namespace {
using namespace std::chrono_literals;

constexpr auto movePatience = 5s; // with a disk that says nothing
constexpr auto deletionPatience = 60s; // a large file may take a disk a while
constexpr auto endPatience = 2s;

PlaceTask taskOf(const UnassignedPlace &place)
{
    return {place.place.number, place.place.path, place.place.folder, place.state.device};
}

/// What an operator types before a place is emptied.
QString nameOf(const RecordingPlace &place)
{
    return place.folder.isEmpty() ? place.path.section(u'/', -1) : place.folder;
}

QVariantList leftList(const QList<LeftEntry> &left)
{
    QVariantList list;
    for (const LeftEntry &entry : left)
        list.append(QVariantMap{{FieldKey::path, entry.path}, {StationKey::reason, entry.reason}});
    return list;
}

QVariantMap sumsOf(const UnassignedPlace &place)
{
    qint64 files = 0;
    qint64 bytes = 0;
    for (const DaySum &day : *place.days) {
        files += day.files;
        bytes = saturatedSum(bytes, day.bytes);
    }
    return {{StationKey::place, place.place.root()},
            {StationKey::recordedFiles, files},
            {StationKey::recordedBytes, bytes}};
}
} // namespace

/// A deletion that goes on; both threads have a part of it.
struct RecordingCommands::Deletion
{
    struct Shared
    {
        DeletionProgress progress;
        std::mutex mutex;
        std::condition_variable ended;
        bool hasEnded = false;
    };

    UnassignedPlace place;
    QVariantMap sums; ///< of the place when it began
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
};

RecordingCommands::RecordingCommands(StationData &data, StorageUsage &usage, const UsageSettings &settings,
                                     RecordSettings records, QObject *parent)
    : QObject(parent)
    , m_data(data)
    , m_usage(usage)
    , m_backupFolder(settings.backupFolder)
    , m_records(std::move(records))
    , m_checks(movePatience)
    , m_deletions(deletionPatience)
    , m_progressTimer(this)
{
    m_progressTimer.setInterval(settings.progressInterval);
    connect(&m_progressTimer, &QTimer::timeout, this, [this] { tellProgress({}); });
}

RecordingCommands::~RecordingCommands()
{
    if (!m_deletion)
        return;
    Deletion::Shared &shared = *m_deletion->shared;
    shared.progress.isCancelled = true;
    std::unique_lock lock(shared.mutex);
    shared.ended.wait_for(lock, endPatience, [&shared] { return shared.hasEnded; });
}

void RecordingCommands::enterInto(CommandTable &table)
{
    table.insert(StationCommandName::listUnassignedRecordings,
                 [this](const QVariant &data, const Answer &answer) { listUnassigned(data, answer); });
    table.insert(StationCommandName::cancelDeletion,
                 [this](const QVariant &data, const Answer &answer) { cancel(data, answer); });
    table.insert(StationCommandName::assignRecordings, [this](const std::shared_ptr<Edit> &edit) { assign(edit); });
    table.insert(StationCommandName::deleteRecordings, [this](const std::shared_ptr<Edit> &edit) { remove(edit); });
}

void RecordingCommands::listUnassigned(const QVariant &data, const Answer &answer)
{
    if (!data.isNull())
        return answer(lastPart(StationReturnCode::BadRequest));
    QVariantList list;
    if (m_data.isDatabaseThere()) {
        m_usage.useLatestGroups();
        Database &database = m_data.database();
        const RecordingIndex index(database);
        const QHash<qint64, KeptDeletion> deletions = DeletionStore(database).all();
        const QList<UnassignedPlace> places = m_usage.unassignedPlaces();
        for (const UnassignedPlace &place : places) {
            const qint64 number = place.place.number;
            const auto deletion = deletions.constFind(number);
            const bool isRunning = m_deletion && m_deletion->place.place.number == number;
            list.append(unassignedMap(place, index.recordedCameras(number),
                                      deletion == deletions.cend() ? std::nullopt : std::optional(*deletion),
                                      isRunning));
        }
    }
    answer(lastPart(ReturnCode::Success, list));
}

/// The place that is called @p name, where recordings of it can be moved or deleted; else the code of the refusal.
std::optional<UnassignedPlace> RecordingCommands::find(const QString &name, QString *returnCode) const
{
    m_usage.useLatestGroups();
    const QList<UnassignedPlace> places = m_usage.unassignedPlaces();
    for (const UnassignedPlace &place : places) {
        if (place.place.root() != name)
            continue;
        if (place.place.isNas())
            *returnCode = StationReturnCode::PlaceOnNas;
        else if (m_busy == name)
            *returnCode = StationReturnCode::PlaceBusy;
        else if (place.state.isSilent)
            *returnCode = StationReturnCode::VolumeNotAnswering;
        else if (place.state.storage != UsagePlace::Storage::Present)
            *returnCode = StationReturnCode::DirectoryNotFound;
        else if (!place.days)
            *returnCode = StationReturnCode::PlaceNotCounted;
        else
            return place;
        return {};
    }
    const QStringList claimed = claimedFolders(GroupStore(m_data.database()).groups(), m_backupFolder);
    *returnCode = claimed.contains(name) ? StationReturnCode::PlaceInUse : StationReturnCode::PlaceNotFound;
    return {};
}

void RecordingCommands::assign(const std::shared_ptr<Edit> &edit)
{
    const RequestMap request(edit->data());
    const QString name = request.string(StationKey::place);
    const QString groupId = request.string(FieldKey::recordingGroupID);
    edit->setSubject({groupId, {}, name});
    QString refusal;
    const std::optional<UnassignedPlace> place = find(name, &refusal);
    if (!place)
        return edit->answer(lastPart(refusal));
    const QList<RecordingGroup> groups = GroupStore(m_data.database()).groups();
    const auto group = std::find_if(groups.cbegin(), groups.cend(),
                                    [&groupId](const RecordingGroup &other) { return other.id == groupId; });
    if (group == groups.cend())
        return edit->answer(lastPart(StationReturnCode::RecordingGroupNotFound));
    edit->setSubject({groupId, group->name, name});
    DayMove move{taskOf(*place), {}, group->folder, claimedFolders(groups, m_backupFolder)};
    for (const GroupPath &path : group->paths) {
        if (path.kind != PathKind::Local)
            continue;
        if (path.path == place->place.path)
            move.targets.prepend(path.path);
        else
            move.targets.append(path.path);
    }
    if (!m_busy.isEmpty())
        return edit->answer(lastPart(StationReturnCode::PlaceBusy));
    if (isClaimed(move.place.root(), move.claimed))
        return edit->answer(lastPart(StationReturnCode::PlaceInUse));
    m_busy = name;
    startWork([&] {
        m_checks.run<DayMoveResult>([move](DiskVisit &visit) { return move.run(visit); },
                                    {StationReturnCode::VolumeNotAnswering},
                                    [this, edit, place = *place, groupId](const DayMoveResult &result) {
                                        m_busy.clear();
                                        edit->attempt([&] { moved(edit, place, groupId, result); });
                                    });
    });
}

/// Work that cannot be started keeps no place busy.
void RecordingCommands::startWork(const std::function<void()> &start)
{
    try {
        start();
    } catch (...) {
        m_busy.clear();
        throw;
    }
}

void RecordingCommands::moved(const std::shared_ptr<Edit> &edit, const UnassignedPlace &place, const QString &groupId,
                              const DayMoveResult &result)
{
    const QString root = place.place.root();
    if (result.returnCode == ReturnCode::Success) {
        edit->answer(lastPart(ReturnCode::Success,
                              QVariantMap{{StationKey::place, root},
                                          {FieldKey::recordingGroupID, groupId},
                                          {FieldKey::path, result.target},
                                          {StationKey::movedDays, result.days}}));
        m_usage.readAgain({root, result.target});
        return;
    }
    QVariantList errors;
    for (const QString &path : result.existing) {
        errors.append(QVariantMap{{StationKey::element, StationKey::place},
                                  {StationKey::index, -1},
                                  {StationKey::value, path},
                                  {StationKey::returnCode, result.returnCode}});
    }
    edit->answer(
        lastPart(result.returnCode, errors.isEmpty() ? QVariant() : QVariantMap{{FieldKey::errorAction, errors}}));
}

void RecordingCommands::remove(const std::shared_ptr<Edit> &edit)
{
    const RequestMap request(edit->data());
    const QString name = request.string(StationKey::place);
    const QString confirmation = request.string(StationKey::confirmation);
    edit->setSubject({{}, {}, name});
    QString refusal;
    const std::optional<UnassignedPlace> place = find(name, &refusal);
    if (!place)
        return edit->answer(lastPart(refusal));
    if (confirmation != nameOf(place->place))
        return edit->answer(lastPart(StationReturnCode::ConfirmationRefused));
    if (!m_busy.isEmpty())
        return edit->answer(lastPart(StationReturnCode::PlaceBusy));
    const QStringList claimed = claimedFolders(GroupStore(m_data.database()).groups(), m_backupFolder);
    if (isClaimed(name, claimed))
        return edit->answer(lastPart(StationReturnCode::PlaceInUse));
    m_busy = name;
    startWork([&] {
        m_checks.run<QString>(
            [task = taskOf(*place), claimed](DiskVisit &visit) { return PlaceDeletion::check(task, claimed, visit); },
            StationReturnCode::VolumeNotAnswering,
            [this, edit, place = *place](const QString &returnCode) {
                edit->attempt([&] {
                    if (returnCode == ReturnCode::Success)
                        begin(edit, place);
                    else
                        edit->answer(lastPart(returnCode));
                });
                if (!m_deletion)
                    m_busy.clear();
            });
    });
}

/// The deletion is kept as begun together with the answer, and begins after that.
void RecordingCommands::begin(const std::shared_ptr<Edit> &edit, const UnassignedPlace &place)
{
    auto deletion = std::make_unique<Deletion>();
    deletion->place = place;
    deletion->sums = sumsOf(place);
    {
        Database &database = m_data.database();
        Transaction transaction(database);
        if (isClaimed(place.place.root(), claimedFolders(GroupStore(database).groups(), m_backupFolder)))
            deletion.reset();
        else
            DeletionStore(database).begin(place.place.number, m_records.currentTime());
        if (deletion)
            edit->commit(transaction, lastPart(ReturnCode::Success, deletion->sums));
    }
    if (!deletion)
        return edit->answer(lastPart(StationReturnCode::PlaceInUse));
    m_deletion = std::move(deletion);
    m_progressTimer.start();
    const PlaceDeletion task{taskOf(place), m_data.folder(), m_backupFolder};
    try {
        m_deletions.run<DeletionResult>(
            [task, shared = m_deletion->shared](DiskVisit &visit) {
                const DeletionResult result = task.run(shared->progress, visit);
                const std::lock_guard lock(shared->mutex);
                shared->hasEnded = true;
                shared->ended.notify_all();
                return result;
            },
            {StationReturnCode::VolumeNotAnswering}, [this](const DeletionResult &result) { end(result); });
    } catch (const std::system_error &) { // there can be no more threads
        end({StationReturnCode::InternalError});
    }
}

void RecordingCommands::end(const DeletionResult &result)
{
    m_progressTimer.stop();
    keepEnd(result);
    tellProgress(result);
    const QString root = m_deletion->place.place.root();
    m_deletion.reset();
    m_busy.clear();
    m_usage.readAgain({root});
}

void RecordingCommands::keepEnd(const DeletionResult &result)
{
    const QString root = m_deletion->place.place.root();
    qCInfo(stationLog, "The deletion of the recordings in %s ended with %s.", qPrintable(root),
           qPrintable(result.returnCode));
    try {
        Database &database = m_data.database();
        Transaction transaction(database, Transaction::Patience::Short);
        DeletionStore(database).end(m_deletion->place.place.number, result.returnCode, m_records.currentTime());
        transaction.commit();
    } catch (const DatabaseError &error) { // it is told as cut off
        qCWarning(stationLog, "The end of the deletion in %s could not be kept: %s", qPrintable(root), error.what());
    }
}

void RecordingCommands::tellProgress(const std::optional<DeletionResult> &result)
{
    const DeletionProgress &progress = m_deletion->shared->progress;
    const qint64 done = progress.files;
    const qint64 total = m_deletion->sums.value(StationKey::recordedFiles).toLongLong();
    QVariantMap map{{StationKey::place, m_deletion->place.place.root()},
                    {StationKey::done, done},
                    {StationKey::total, done <= total ? total : -1},
                    {StationKey::deletedBytes, progress.bytes.load()},
                    {StationKey::running, !result}};
    if (result) {
        map.insert(StationKey::returnCode, result->returnCode);
        map.insert(StationKey::leftFiles, result->leftFiles);
        map.insert(StationKey::leftBytes, result->leftBytes);
        map.insert(StationKey::leftEntries, result->leftEntries);
        map.insert(StationKey::left, leftList(result->left));
    }
    emit eventRaised({StationEventName::DeletionProgress, map});
}

void RecordingCommands::cancel(const QVariant &data, const Answer &answer)
{
    const QString name = RequestMap(data).string(StationKey::place);
    if (!m_deletion || m_deletion->place.place.root() != name)
        return answer(lastPart(StationReturnCode::NoDeletion));
    m_deletion->shared->progress.isCancelled = true;
    answer(lastPart(ReturnCode::Success));
}
