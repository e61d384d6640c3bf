#include "PlaceReader.h"

#include "FolderWatch.h"
#include "StationLog.h"

#include <QSet>
#include <QThread>

#include <algorithm>
#include <utility>

namespace {
constexpr qsizetype watchedDays = 8; // today and the week that the one-day usage is taken from

QString folderOf(const IndexedPlace &place, const QString &camera, const QString &day = {})
{
    const QString folder = place.root + u'/' + camera;
    return day.isEmpty() ? folder : folder + u'/' + day;
}

/// Those of @p names that no folder has.
QStringList without(QStringList names, const QList<SubFolder> &folders)
{
    QSet<QString> there;
    for (const SubFolder &folder : folders)
        there.insert(folder.name);
    names.removeIf([&there](const QString &name) { return there.contains(name); });
    return names;
}
} // namespace

ReadTask ReadTask::of(const QString &path, const IndexedPlace &place)
{
    ReadTask task{Kind::Place, place.number, false};
    const QStringList names = path.mid(place.root.size()).split(u'/', Qt::SkipEmptyParts);
    if (names.size() > 0) {
        task.kind = Kind::Camera;
        task.camera = names.at(0);
    }
    if (names.size() > 1) {
        task.kind = Kind::Day;
        task.day = names.at(1);
    }
    if (names.size() > 2) {
        task.kind = Kind::File;
        task.file = names.at(2);
    }
    return task;
}

PlaceReader::PlaceReader(RecordingIndex &index, FolderWatch &watch)
    : m_index(index)
    , m_watch(watch)
{
}

QList<ReadTask> PlaceReader::read(const ReadTask &task, const IndexedPlace &place)
{
    switch (task.kind) {
    case ReadTask::Kind::Place:
        return readPlace(task, place);
    case ReadTask::Kind::Camera:
        return readCamera(task, place);
    case ReadTask::Kind::Day:
        readDay(task, place);
        return {};
    case ReadTask::Kind::File:
        return readFile(task, place);
    }
    return {};
}

void PlaceReader::write()
{
    if (!m_changes.isEmpty())
        m_index.apply(std::exchange(m_changes, {}));
}

QStringList PlaceReader::unreadable() const
{
    QStringList folders = m_incomplete.values();
    folders.removeAll(QString());
    folders.sort();
    return folders;
}

/// Asked after the reading: a disk that was unmounted leaves an empty folder, or none, and that is no reason to forget
/// what is on it.
bool PlaceReader::isUsable(ReadResult result, const IndexedPlace &place, const QString &path)
{
    const bool hasLeft = identify(place.path).device != place.device;
    m_hasLeft |= hasLeft;
    if (!hasLeft && result != ReadResult::Failed)
        return true;
    const bool isEnding = QThread::currentThread()->isInterruptionRequested();
    m_incomplete.insert(place.number, hasLeft || isEnding ? QString() : path);
    if (!hasLeft && !isEnding)
        qCWarning(stationLog, "The recordings in %s cannot be read.", qPrintable(path));
    return false;
}

/// The folders in @p path, which is watched from now on; none where it cannot be read. Where it was not watched before,
/// it is read again: what came in between was told to nobody.
std::optional<SubFolders> PlaceReader::readWatched(const QString &path, const IndexedPlace &place)
{
    while (true) {
        SubFolders read = readFolders(path);
        if (!isUsable(read.result, place, path))
            return {};
        if (read.result == ReadResult::Missing) {
            m_watch.forget(path);
            return read;
        }
        if (!m_watch.watch(path, identify(path).inode))
            return read;
    }
}

QList<ReadTask> PlaceReader::readPlace(const ReadTask &task, const IndexedPlace &place)
{
    if (task.isDeep)
        m_incomplete.remove(place.number);
    const bool isAnother = !m_watch.isWatched(place.root, identify(place.root).inode);
    std::optional<SubFolders> cameras = readWatched(place.root, place);
    if (cameras && m_watch.watch(place.path, identify(place.path).inode))
        cameras = readWatched(place.root, place); // it may be new
    if (!cameras)
        return {};

    const QStringList gone = without(m_index.cameras(place.number), cameras->folders);
    if (!gone.isEmpty()) {
        write();
        m_index.removeCameras(place.number, gone);
    }
    for (const QString &camera : gone)
        m_watch.forget(folderOf(place, camera));
    QList<ReadTask> tasks;
    for (const SubFolder &camera : std::as_const(cameras->folders)) {
        if (task.isDeep || isAnother || !m_watch.isWatched(folderOf(place, camera.name), camera.inode))
            tasks.append({ReadTask::Kind::Camera, place.number, true, camera.name});
    }
    return tasks;
}

QList<ReadTask> PlaceReader::readCamera(const ReadTask &task, const IndexedPlace &place)
{
    const QString path = folderOf(place, task.camera);
    std::optional<SubFolders> days = readWatched(path, place);
    if (!days)
        return {};
    days->folders.removeIf([](const SubFolder &folder) { return !isDayFolder(folder.name); });

    const QStringList known = m_index.days(place.number, task.camera);
    const QStringList gone = without(known, days->folders);
    if (!gone.isEmpty()) {
        write();
        m_index.removeDays(place.number, task.camera, gone);
    }
    for (const QString &day : gone)
        m_watch.forget(folderOf(place, task.camera, day));
    QList<ReadTask> tasks;
    for (const SubFolder &day : std::as_const(days->folders)) {
        const QString folder = folderOf(place, task.camera, day.name);
        const bool isAnother = m_watch.isWatched(folder) && !m_watch.isWatched(folder, day.inode);
        if (task.isDeep || isAnother || !known.contains(day.name))
            tasks.append({ReadTask::Kind::Day, place.number, true, task.camera, day.name});
    }
    if (days->result == ReadResult::Done)
        watchDays(place, task.camera, std::move(days->folders));
    return tasks;
}

void PlaceReader::watchDays(const IndexedPlace &place, const QString &camera, QList<SubFolder> days)
{
    std::sort(days.begin(), days.end(), [](const SubFolder &a, const SubFolder &b) { return a.name > b.name; });
    for (qsizetype i = 0; i < days.size(); ++i) {
        const QString folder = folderOf(place, camera, days.at(i).name);
        if (i < watchedDays || i == days.size() - 1)
            m_watch.watch(folder, days.at(i).inode);
        else
            m_watch.forget(folder);
        if (i > 0)
            m_watch.watchFile(folder, {});
    }
    m_newestDay.insert(folderOf(place, camera), days.isEmpty() ? QString() : days.constFirst().name);
}

void PlaceReader::readDay(const ReadTask &task, const IndexedPlace &place)
{
    const QString path = folderOf(place, task.camera, task.day);
    RecordedFiles files = readFiles(path);
    if (!isUsable(files.result, place, path))
        return;
    m_filesRead += files.sizes.size();
    const DayFolder folder{place.number, task.camera, task.day};
    if (files.result == ReadResult::Missing) {
        write();
        m_index.removeDays(place.number, task.camera, {task.day});
        m_watch.forget(path);
        return;
    }
    if (m_newestDay.value(folderOf(place, task.camera)) == task.day) {
        m_watch.watchFile(path, files.newest);
        // It may have grown before it was watched.
        if (const qint64 bytes = files.newest.isEmpty() ? -1 : fileSize(path + u'/' + files.newest); bytes >= 0)
            files.sizes.insert(files.newest, bytes);
    }
    const std::optional<QHash<QString, qint64>> before = m_index.files(folder);
    DayChange change = difference(folder, before.value_or(QHash<QString, qint64>()), files.sizes);
    if (!before || !change.written.isEmpty() || !change.removed.isEmpty())
        m_changes.append(std::move(change));
}

QList<ReadTask> PlaceReader::readFile(const ReadTask &task, const IndexedPlace &place)
{
    write();
    const QString path = folderOf(place, task.camera, task.day);
    m_watch.watchFile(path, task.file); // before it is looked at: nothing is missed in between
    const qint64 bytes = fileSize(path + u'/' + task.file);
    if (bytes < 0 || !m_index.resize({place.number, task.camera, task.day}, task.file, bytes))
        return {{ReadTask::Kind::Day, place.number, true, task.camera, task.day}};
    return {};
}
