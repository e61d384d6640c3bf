#include "PlaceRemover.h"

#include "StationVocabulary.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {
constexpr qsizetype mostListed = 100;
} // namespace

QString leftReason(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return StationReturnCode::PermissionDenied;
    case EROFS:
        return StationReturnCode::VolumeReadOnly;
    case ELOOP:
    case ENOTDIR:
    case EINVAL:
    case EISDIR:
    case EXDEV:
        return StationLeftReason::NotARecording;
    default:
        return StationLeftReason::CannotDelete;
    }
}

PlaceRemover::PlaceRemover(QString root, const PlaceFolder &place, Questions questions, DeletionProgress &progress)
    : m_root(std::move(root))
    , m_place(place)
    , m_questions(std::move(questions))
    , m_progress(progress)
{
    m_result.leftFiles = 0;
    m_result.leftBytes = 0;
    m_result.leftEntries = 0;
}

bool PlaceRemover::remove(const Days &days)
{
    for (auto camera = days.cbegin(); camera != days.cend(); ++camera) {
        if (!removeCamera(camera.key(), *camera)) {
            m_result.leftFiles = m_result.leftBytes = m_result.leftEntries = -1;
            return false;
        }
    }
    const QStringList cameras = days.keys();
    leaveRest(m_place, m_root, QSet<QString>(cameras.cbegin(), cameras.cend()));
    return true;
}

bool PlaceRemover::removeCamera(const QString &camera, const QStringList &days)
{
    const PlaceFolder folder = m_place.folder(camera);
    const int error = errno;
    const QString path = m_root + u'/' + camera;
    if (!folder.isOpen()) {
        if (m_place.isTaken(camera)) {
            for (const QString &day : days)
                leaveFiles(m_questions.files(camera, day));
            leave(path, leftReason(error));
        }
        return m_questions.goesOn();
    }
    for (const QString &day : days) {
        if (!removeDay(folder, camera, day))
            return false;
    }
    if (!m_place.removeEmptyFolder(camera) && errno != ENOENT)
        leaveRest(folder, path, QSet<QString>(days.cbegin(), days.cend()));
    return true;
}

bool PlaceRemover::removeDay(const PlaceFolder &camera, const QString &cameraName, const QString &day)
{
    const QString path = QStringList{m_root, cameraName, day}.join(u'/');
    const QHash<QString, qint64> files = m_questions.files(cameraName, day);
    const PlaceFolder folder = camera.folder(day);
    if (!folder.isOpen()) {
        const int error = errno;
        if (camera.isTaken(day)) {
            leaveFiles(files);
            leave(path, leftReason(error));
        }
        return m_questions.goesOn();
    }
    QStringList names = files.keys();
    names.sort();
    QSet<QString> told;
    for (const QString &name : std::as_const(names)) {
        if (!m_questions.goesOn())
            return false;
        const qint64 bytes = folder.fileSize(name);
        if (bytes >= 0 && folder.removeFile(name)) {
            m_progress.files += 1;
            m_progress.bytes += bytes;
        } else if (errno != ENOENT) {
            const int error = errno;
            if (bytes >= 0)
                leaveFiles({{name, bytes}});
            leave(path + u'/' + name, leftReason(error));
            told.insert(name);
        }
    }
    if (!camera.removeEmptyFolder(day) && errno != ENOENT)
        leaveRest(folder, path, told);
    return m_questions.goesOn();
}

void PlaceRemover::leaveFiles(const QHash<QString, qint64> &files)
{
    for (const qint64 bytes : files) {
        ++m_result.leftFiles;
        m_result.leftBytes += bytes;
    }
}

void PlaceRemover::leave(const QString &path, const QString &reason)
{
    ++m_result.leftEntries;
    if (m_result.left.size() < mostListed)
        m_result.left.append({path, reason});
}

/// What is in @p folder, @p known aside, is nothing that the index has.
void PlaceRemover::leaveRest(const PlaceFolder &folder, const QString &path, const QSet<QString> &known)
{
    const std::optional<QStringList> names = folder.names();
    if (!names)
        return leave(path, leftReason(errno));
    bool isAnything = false;
    for (const QString &name : *names) {
        isAnything = true;
        if (!known.contains(name))
            leave(path + u'/' + name, StationLeftReason::NotARecording);
    }
    // An empty folder of a place stays where what holds it may not be written.
    if (!isAnything && &folder != &m_place)
        leave(path, StationReturnCode::PermissionDenied);
}
