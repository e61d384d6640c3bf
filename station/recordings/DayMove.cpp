#include "DayMove.h"

#include "PlaceClaims.h"
#include "PlaceFolder.h"
#include "ServerVocabulary.h"
#include "StationLog.h"
#include "StationVocabulary.h"
#include "disk/DiskPath.h"
#include "disk/DiskVisit.h"
#include "files/FileName.h"
#include "usage/RecordingIndex.h"

#include <QList>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {
constexpr qsizetype mostListed = 1000;

struct CameraDays
{
    QString camera;
    QStringList days;
};

/// The folders of days in @p place; none where it could not be read.
std::optional<QList<CameraDays>> daysIn(const PlaceFolder &place)
{
    const std::optional<QStringList> cameras = place.folders();
    if (!cameras)
        return {};
    QList<CameraDays> list;
    for (const QString &camera : *cameras) {
        const PlaceFolder folder = place.folder(camera);
        std::optional<QStringList> days = folder.isOpen() ? folder.folders() : std::nullopt;
        if (!days)
            return {};
        days->removeIf([](const QString &name) { return !isDayFolder(name); });
        if (!days->isEmpty())
            list.append({camera, *days});
    }
    return list;
}

/// What in @p target, the folder @p root, would have to be overwritten.
QStringList inTheWay(const QList<CameraDays> &list, const PlaceFolder &target, const QString &root)
{
    QStringList existing;
    for (const CameraDays &camera : list) {
        const QString path = root + u'/' + camera.camera;
        const PlaceFolder folder = target.folder(camera.camera);
        if (!folder.isOpen()) {
            if (target.isTaken(camera.camera))
                existing.append(path);
            continue;
        }
        for (const QString &day : camera.days) {
            if (folder.isTaken(day))
                existing.append(path + u'/' + day);
        }
    }
    return existing.mid(0, mostListed);
}

QString refusal(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return StationReturnCode::PermissionDenied;
    case EROFS:
        return StationReturnCode::VolumeReadOnly;
    case ENOSPC:
    case EDQUOT:
        return StationReturnCode::VolumeFull;
    case EEXIST:
    case ENOTEMPTY:
        return StationReturnCode::RecordingsExist;
    default:
        return StationReturnCode::CannotMove;
    }
}

/// Moves days from one folder to another, and back.
class Mover
{
public:
    Mover(const PlaceFolder &from, const PlaceFolder &to)
        : m_from(from)
        , m_to(to)
    {
    }

    bool move(const QString &camera, const QString &day)
    {
        const PlaceFolder source = m_from.folder(camera);
        if (!source.isOpen())
            return false;
        const bool isNew = !m_to.isTaken(camera);
        const PlaceFolder target = m_to.madeFolder(camera, source);
        if (isNew && m_to.isTaken(camera))
            m_made.append(camera);
        if (!target.isOpen() || !source.moveFolder(day, target))
            return false;
        m_moved.append({camera, day});
        return true;
    }

    /// Leaves what cannot be moved back, with a line in the log: it is in one of the two folders, whole.
    void takeBack()
    {
        while (!m_moved.isEmpty()) {
            const auto [camera, day] = m_moved.takeLast();
            const PlaceFolder source = m_to.folder(camera);
            const PlaceFolder target = m_from.folder(camera);
            if (!source.isOpen() || !target.isOpen() || !source.moveFolder(day, target)) {
                qCWarning(stationLog, "%s of %s could not be moved back: %s", qPrintable(day), qPrintable(camera),
                          strerror(errno));
            }
        }
        for (const QString &camera : std::as_const(m_made))
            m_to.removeEmptyFolder(camera);
    }

    qint64 days() const { return m_moved.size(); }

private:
    const PlaceFolder &m_from;
    const PlaceFolder &m_to;
    QList<std::pair<QString, QString>> m_moved;
    QStringList m_made;
};

/// Whether all days of @p list were moved; else none is, and errno is left.
bool moveAll(Mover &mover, const QList<CameraDays> &list, DiskVisit &visit)
{
    for (const CameraDays &camera : list) {
        for (const QString &day : camera.days) {
            if (visit.goesOn() && mover.move(camera.camera, day))
                continue;
            const int error = visit.goesOn() ? errno : ETIMEDOUT;
            mover.takeBack();
            errno = error;
            return false;
        }
    }
    if (visit.settle())
        return true;
    mover.takeBack();
    errno = ETIMEDOUT;
    return false;
}
} // namespace

DayMoveResult DayMove::run(DiskVisit &visit) const
{
    if (const QString refused = placeRefusal(place.root(), claimed, visit); refused != ReturnCode::Success)
        return {refused};
    const PlaceFolder source = PlaceFolder::of(place.path, place.folder);
    if (!source.isOpen() || source.device() != place.device)
        return {!source.isOpen() && errno == EACCES ? StationReturnCode::PermissionDenied
                                                    : StationReturnCode::DirectoryNotFound};
    for (const QString &path : targets) {
        if (resolved(encodedName(path).toStdString(), visit).error != 0)
            continue;
        const PlaceFolder above = PlaceFolder::of(path, {});
        if (!above.isOpen() || !above.isOnMountOf(source))
            continue;
        const QString root = path + u'/' + targetFolder;
        const std::optional<QList<CameraDays>> list = daysIn(source);
        if (!list)
            return {StationReturnCode::DirectoryNotReadable};
        const bool isNew = !above.isTaken(targetFolder);
        const PlaceFolder target = above.madeFolder(targetFolder, source);
        if (!target.isOpen())
            return {isNew ? refusal(errno) : StationReturnCode::RecordingsExist, root, 0, {root}};
        if (const QStringList existing = inTheWay(*list, target, root); !existing.isEmpty())
            return {StationReturnCode::RecordingsExist, root, 0, existing};
        Mover mover(source, target);
        if (!moveAll(mover, *list, visit)) {
            const QString code = refusal(errno);
            if (isNew)
                above.removeEmptyFolder(targetFolder);
            return {code, root};
        }
        for (const CameraDays &camera : *list)
            source.removeEmptyFolder(camera.camera);
        if (!place.folder.isEmpty())
            PlaceFolder::of(place.path, {}).removeEmptyFolder(place.folder);
        return {ReturnCode::Success, root, mover.days()};
    }
    return {StationReturnCode::NoPathOnVolume};
}
