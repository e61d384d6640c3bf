#include "LocalPaths.h"

#include "Directories.h"
#include "StationProtocol.h"
#include "VolumeSource.h"

#include <QThread>
#include <QUuid>

#include <cerrno>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {
constexpr size_t probeSize = 4096; // less may find room beside a file's name on a volume that is full

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

bool writeAll(int file)
{
    const std::vector<char> content(probeSize);
    size_t written = 0;
    while (written < content.size()) {
        const ssize_t count = write(file, content.data() + written, content.size() - written);
        if (count < 0 && errno != EINTR)
            return false;
        written += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return fsync(file) == 0; // network and thin volumes say only then that they are full
}

/// Writes a small file into @p folder; 0, or the number of the error that stopped it.
int tryToWrite(const fs::path &folder)
{
    const QByteArray name = ".recording-station-" + QUuid::createUuid().toByteArray(QUuid::Id128);
    const fs::path path = folder / name.toStdString();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        return errno;
    // Removed before it is written: nothing is left in the folder even when the station is killed here.
    int error = unlink(path.c_str()) == 0 && writeAll(file) ? 0 : errno;
    if (close(file) != 0 && error == 0)
        error = errno;
    return error;
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
    if (const int error = place.isReadOnly ? EROFS : tryToWrite(path.toStdString()))
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
