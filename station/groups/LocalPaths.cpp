#include "LocalPaths.h"

#include "Directories.h"
#include "StationProtocol.h"
#include "VolumeSource.h"
#include "WriteTrial.h"

#include <QThread>

#include <cerrno>
#include <filesystem>
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
        || word == StationReturnCode::VolumeFull;
    return refused(StationReturnCode::PathNotWritable, isReason ? word : other);
}

PathFacts notFound(const std::error_code &error)
{
    switch (error.value()) {
    case ENOENT:
    case ELOOP:
        return refused(StationReturnCode::DirectoryNotFound);
    case ENOTDIR:
        return refused(StationReturnCode::NotADirectory);
    case ENAMETOOLONG:
        return refused(StationReturnCode::NameRefused);
    default:
        return notWritable(error.value());
    }
}

struct Place
{
    PathFacts facts;
    bool isReadOnly = false;
};

Place placeOf(const QString &path, const VolumeSource &volumes)
{
    if (!path.startsWith(u'/'))
        return {refused(StationReturnCode::PathNotAbsolute)};
    const QByteArray bytes = path.toUtf8();
    if (bytes.contains('\0') || QString::fromUtf8(bytes) != path)
        return {refused(StationReturnCode::NameRefused)};

    std::error_code error;
    const fs::path canonical = fs::canonical(bytes.toStdString(), error);
    if (error)
        return {notFound(error)};
    if (!fs::is_directory(canonical, error))
        return {refused(StationReturnCode::NotADirectory)};
    const QString folder = QString::fromStdString(canonical.native());
    const std::optional<Volume> volume = volumes.volumeHolding(folder);
    if (!volume)
        return {refused(StationReturnCode::OutsideVolumes)};
    return {{StationReturnCode::Success, {}, volume->path, volume->bytesTotal, folder}, volume->isReadOnly};
}
} // namespace

LocalPaths::LocalPaths(const VolumeSource &volumes)
    : m_volumes(volumes)
{
}

PathFacts LocalPaths::look(const QString &path) const
{
    const Place place = placeOf(path, m_volumes);
    if (place.facts.returnCode != StationReturnCode::Success)
        return place.facts;
    if (const int error = place.isReadOnly ? EROFS : WriteTrial::tryFolder(path.toStdString()))
        return notWritable(error);
    return place.facts;
}

PathFacts LocalPaths::volumeOf(const QString &path) const
{
    return placeOf(path, m_volumes).facts;
}

qint64 LocalPaths::bytesBelow(const QString &folder) const
{
    qint64 bytes = 0;
    std::vector<fs::path> folders{folder.toStdString()};
    std::error_code error;
    if (fs::symlink_status(folders.front(), error).type() != fs::file_type::directory)
        return 0;
    while (!folders.empty() && !QThread::currentThread()->isInterruptionRequested()) {
        const fs::path current = folders.back();
        folders.pop_back();
        for (fs::directory_iterator entry(current, error), end; !error && entry != end; entry.increment(error)) {
            std::error_code gone;
            const fs::file_type type = entry->symlink_status(gone).type();
            if (type == fs::file_type::directory)
                folders.push_back(entry->path());
            if (type != fs::file_type::regular)
                continue;
            const auto size = entry->file_size(gone);
            bytes += gone ? 0 : static_cast<qint64>(size);
        }
        error.clear(); // a folder that cannot be read is left out, not those behind it
    }
    return bytes;
}
