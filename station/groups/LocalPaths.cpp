#include "LocalPaths.h"

#include "Directories.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeSource.h"
#include "WriteTrial.h"
#include "disk/DiskPath.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <memory>
#include <vector>

namespace fs = std::filesystem;

namespace {
PathFacts refused(const QString &returnCode, const QString &reason = {})
{
    return {returnCode, reason, {}, 0, {}};
}

PathFacts notWritable(int error)
{
    static const QString &other = StationReturnCode::CannotCreate;
    const QString word = createFailure(std::error_code(error, std::generic_category()));
    const bool isReason = word == StationReturnCode::PermissionDenied || word == StationReturnCode::VolumeReadOnly
        || word == StationReturnCode::VolumeFull || word == StationReturnCode::VolumeNotAnswering;
    return refused(StationReturnCode::PathNotWritable, isReason ? word : other);
}

PathFacts notFound(int error)
{
    switch (error) {
    case ENOENT:
    case ELOOP:
        return refused(StationReturnCode::DirectoryNotFound);
    case ENOTDIR:
        return refused(StationReturnCode::NotADirectory);
    case ENAMETOOLONG:
        return refused(StationReturnCode::NameRefused);
    default:
        return notWritable(error);
    }
}

/// Bytes of the files below @p top, added to @p bytes while it goes.
void countBytes(const fs::path &top, std::atomic<qint64> &bytes, DiskVisit &visit)
{
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    std::vector<fs::path> folders{top};
    std::error_code error;
    if (!visit.enter(QString::fromStdString(top.native()))
        || fs::symlink_status(top, error).type() != fs::file_type::directory)
        return;
    while (!folders.empty()) {
        const fs::path current = folders.back();
        folders.pop_back();
        if (!visit.enter(QString::fromStdString(current.native())))
            continue;
        for (fs::directory_iterator entry(current, error), end; !error && entry != end; entry.increment(error)) {
            std::error_code gone;
            if (!visit.goesOn())
                return;
            const fs::file_type type = entry->symlink_status(gone).type();
            if (type == fs::file_type::directory)
                folders.push_back(entry->path());
            if (type != fs::file_type::regular)
                continue;
            const auto size = static_cast<qint64>(entry->file_size(gone));
            if (!gone)
                bytes = size > most - bytes ? most : bytes + size;
        }
        error.clear(); // a folder that cannot be read is left out, not those behind it
    }
}
} // namespace

LocalPaths::LocalPaths(const VolumeSource &volumes, std::chrono::milliseconds limit)
    : m_volumes(volumes)
    , m_disks(limit)
{
}

LocalPaths::Place LocalPaths::placeOf(const QString &path) const
{
    if (!path.startsWith(u'/'))
        return {refused(StationReturnCode::PathNotAbsolute)};
    const QByteArray bytes = path.toUtf8();
    if (bytes.contains('\0') || QString::fromUtf8(bytes) != path)
        return {refused(StationReturnCode::NameRefused)};

    const auto follow = [native = bytes.toStdString()](DiskVisit &visit) { return resolved(native, visit); };
    const DiskPath place = m_disks.await<DiskPath>(follow, {{}, false, ETIMEDOUT});
    if (place.error != 0)
        return {notFound(place.error)};
    if (!place.isFolder)
        return {refused(StationReturnCode::NotADirectory)};
    const QString folder = QString::fromStdString(place.canonical.native());
    const std::optional<Volume> volume = m_volumes.volumeHolding(folder);
    if (!volume && m_volumes.isSilent(folder))
        return {notWritable(ETIMEDOUT)};
    if (!volume)
        return {refused(StationReturnCode::OutsideVolumes)};
    return {{ReturnCode::Success, {}, volume->path, volume->bytesTotal, folder, volume->name, volume->bytesAvailable},
            volume->isReadOnly};
}

PathFacts LocalPaths::look(const QString &path) const
{
    const Place place = placeOf(path);
    if (place.facts.returnCode != ReturnCode::Success)
        return place.facts;
    if (place.isReadOnly)
        return notWritable(EROFS);
    const auto trial = [folder = place.facts.folder](DiskVisit &visit) {
        return visit.enter(folder) ? WriteTrial::tryFolder(folder.toStdString()) : ETIMEDOUT;
    };
    const int error = m_disks.await<int>(trial, ETIMEDOUT);
    return error == 0 ? place.facts : notWritable(error);
}

PathFacts LocalPaths::volumeOf(const QString &path) const
{
    return placeOf(path).facts;
}

qint64 LocalPaths::bytesBelow(const QString &folder) const
{
    const auto bytes = std::make_shared<std::atomic<qint64>>(0);
    m_disks.await<bool>(
        [bytes, top = folder.toStdString()](DiskVisit &visit) {
            countBytes(top, *bytes, visit);
            return true;
        },
        false);
    return *bytes;
}
