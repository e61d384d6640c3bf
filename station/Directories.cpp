#include "Directories.h"

#include "NameOrder.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "VolumeSource.h"
#include "disk/DiskPath.h"
#include "disk/DiskVisit.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <optional>
#include <vector>

namespace fs = std::filesystem;

namespace {
/// @p text as the file system writes it; none when it can not: a NUL, or half of a surrogate pair.
std::optional<fs::path> nativePath(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    if (bytes.contains('\0') || QString::fromUtf8(bytes) != text)
        return {};
    return fs::path(bytes.toStdString());
}

/// @p name as text; none when no command could carry it.
std::optional<QString> carriedName(const fs::path &name)
{
    const QByteArray bytes = QByteArray::fromStdString(name.native());
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() != bytes || text.contains(u'\\'))
        return {};
    return text;
}

QString listFailure(const std::error_code &error)
{
    switch (error.value()) {
    case ENOENT:
    case ELOOP:
        return StationReturnCode::DirectoryNotFound;
    case ENOTDIR:
        return StationReturnCode::NotADirectory;
    case ENAMETOOLONG:
        return StationReturnCode::NameRefused;
    case ETIMEDOUT:
        return StationReturnCode::VolumeNotAnswering;
    default:
        return StationReturnCode::DirectoryNotReadable;
    }
}

/// Folders made for one command, taken away again unless they are kept.
class FoldersMade
{
public:
    FoldersMade() = default;
    FoldersMade(const FoldersMade &) = delete;
    FoldersMade &operator=(const FoldersMade &) = delete;
    ~FoldersMade()
    {
        std::error_code ignored; // a folder that someone filled meanwhile stays
        for (auto folder = m_folders.rbegin(); folder != m_folders.rend(); ++folder)
            fs::remove(*folder, ignored);
    }

    void append(const fs::path &folder) { m_folders.push_back(folder); }
    void keep() { m_folders.clear(); }

private:
    std::vector<fs::path> m_folders;
};

/// "0" when @p path is absolute and holds plain names only.
QString checkNames(const QString &path)
{
    if (path.isEmpty())
        return StationReturnCode::EmptyName;
    if (!path.startsWith(u'/'))
        return StationReturnCode::PathNotAbsolute;
    const QStringList names = path.mid(1).split(u'/');
    for (const QString &name : names) {
        if (name.isEmpty())
            return StationReturnCode::EmptyName;
        if (name == QStringLiteral(".") || name == QStringLiteral(".."))
            return StationReturnCode::NameRefused;
    }
    return ReturnCode::Success;
}

std::error_code systemError(int error)
{
    return {error, std::generic_category()};
}

/// Whether an entry of a listing is a folder, or a link to one. A link to a disk that does not answer counts: it is
/// there, and whoever opens it learns why it cannot be read.
bool isFolder(const fs::directory_entry &entry, DiskVisit &visit)
{
    std::error_code unknown; // the entry went away
    // What the listing itself told of the type is enough: a disk that is mounted there may not answer.
    if (!entry.is_symlink(unknown))
        return entry.is_directory(unknown);
    const DiskPath target = resolved(entry.path(), visit);
    return target.error == ETIMEDOUT || (target.error == 0 && target.isFolder);
}
} // namespace

FolderList listFolders(const QString &path, DiskVisit &visit)
{
    if (!path.startsWith(u'/'))
        return {StationReturnCode::PathNotAbsolute, {}};
    const std::optional<fs::path> native = nativePath(path);
    if (!native)
        return {StationReturnCode::NameRefused, {}};
    const DiskPath folder = resolved(*native, visit);
    if (folder.error != 0)
        return {listFailure(systemError(folder.error)), {}};

    const QString canonical = QString::fromStdString(folder.canonical.native());
    QStringList names;
    std::error_code error;
    std::error_code unknown; // an entry went away
    for (fs::directory_iterator entry(folder.canonical, error), end; !error && entry != end; entry.increment(error)) {
        const std::optional<QString> name = carriedName(entry->path().filename());
        if (name && !name->startsWith(u'.') && isFolder(*entry, visit))
            names.append(*name);
        const bool wasElsewhere = entry->is_symlink(unknown);
        if (!visit.goesOn() || (wasElsewhere && !visit.enter(canonical)))
            return {StationReturnCode::VolumeNotAnswering, {}};
    }
    if (error)
        return {listFailure(error), {}};
    std::sort(names.begin(), names.end(), nameLess);
    return {ReturnCode::Success, names};
}

NewFolder planFolder(const QString &path, DiskVisit &visit)
{
    const QString refusal = checkNames(path);
    if (refusal != ReturnCode::Success)
        return {refusal, {}, {}};
    const std::optional<fs::path> native = nativePath(path);
    if (!native)
        return {StationReturnCode::NameRefused, {}, {}};
    fs::path existing = "/";
    const fs::path names = native->relative_path();
    for (auto name = names.begin(); name != names.end(); ++name) {
        const fs::path next = existing / *name;
        const DiskPath place = resolved(next, visit);
        const bool isLast = std::next(name) == names.end();
        std::error_code error;
        if (place.error == 0 && place.isFolder)
            existing = place.canonical;
        else if (place.error == ENOENT && fs::symlink_status(next, error).type() == fs::file_type::not_found)
            return {ReturnCode::Success, existing, {name, names.end()}};
        else if (place.error == 0 || place.error == ENOENT || place.error == ENOTDIR)
            return {isLast ? StationReturnCode::FileExists : StationReturnCode::NotADirectory, {}, {}};
        else
            return {createFailure(systemError(place.error)), {}, {}};
    }
    return {StationReturnCode::DirectoryExists, {}, {}};
}

QString checkVolume(const NewFolder &folder, const VolumeSource &volumes)
{
    const QString existing = QString::fromStdString(folder.existing.native());
    const std::optional<Volume> volume = volumes.volumeHolding(existing);
    if (!volume)
        return volumes.isSilent(existing) ? StationReturnCode::VolumeNotAnswering : StationReturnCode::OutsideVolumes;
    return volume->isReadOnly ? StationReturnCode::VolumeReadOnly : ReturnCode::Success;
}

QString makeFolder(const NewFolder &planned, DiskVisit &visit)
{
    FoldersMade made;
    fs::path folder = planned.existing;
    bool isNew = false;
    for (const fs::path &name : planned.missing) {
        folder /= name;
        if (!visit.enter(QString::fromStdString(folder.native())))
            return StationReturnCode::VolumeNotAnswering;
        std::error_code error;
        isNew = fs::create_directory(folder, error);
        if (error)
            return createFailure(error);
        if (isNew)
            made.append(folder);
    }
    if (!isNew)
        return StationReturnCode::DirectoryExists; // someone else made it meanwhile
    if (!visit.settle())
        return StationReturnCode::VolumeNotAnswering;
    made.keep();
    return ReturnCode::Success;
}

QString createFailure(const std::error_code &error)
{
    static const struct
    {
        int error;
        const QString &returnCode;
    } failures[] = {
        {EACCES, StationReturnCode::PermissionDenied}, {EPERM, StationReturnCode::PermissionDenied},
        {EROFS, StationReturnCode::VolumeReadOnly},    {ENOSPC, StationReturnCode::VolumeFull},
        {EDQUOT, StationReturnCode::VolumeFull},       {ENAMETOOLONG, StationReturnCode::NameRefused},
        {EINVAL, StationReturnCode::NameRefused},      {EILSEQ, StationReturnCode::NameRefused},
        {EEXIST, StationReturnCode::FileExists},       {ENOTDIR, StationReturnCode::NotADirectory},
        {ELOOP, StationReturnCode::NotADirectory},     {ETIMEDOUT, StationReturnCode::VolumeNotAnswering},
    };
    for (const auto &failure : failures) {
        if (error.value() == failure.error)
            return failure.returnCode;
    }
    return StationReturnCode::CannotCreate;
}
