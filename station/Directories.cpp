#include "Directories.h"

#include "NameOrder.h"
#include "StationProtocol.h"
#include "VolumeSource.h"

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
    default:
        return StationReturnCode::DirectoryNotReadable;
    }
}

/// Folders made for one command, taken away again unless they are kept.
class NewFolders
{
public:
    NewFolders() = default;
    NewFolders(const NewFolders &) = delete;
    NewFolders &operator=(const NewFolders &) = delete;
    ~NewFolders()
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

/// A path, split where it ceases to exist.
struct SplitPath
{
    fs::path existing; ///< a folder
    std::vector<fs::path> missing;
    QString returnCode; ///< not "0": no folder can be made there
};

SplitPath split(const fs::path &path)
{
    SplitPath result;
    for (auto name = path.begin(); name != path.end(); ++name) {
        const fs::path next = result.existing / *name;
        std::error_code error;
        std::error_code linkError;
        const fs::file_type type = fs::status(next, error).type();
        if (type == fs::file_type::directory) {
            result.existing = next;
        } else if (type == fs::file_type::none) {
            result.returnCode = createFailure(error);
            return result;
        } else if (fs::symlink_status(next, linkError).type() == fs::file_type::not_found) {
            result.missing.assign(name, path.end());
            result.returnCode = StationReturnCode::Success;
            return result;
        } else {
            const bool isLast = std::next(name) == path.end();
            result.returnCode = isLast ? StationReturnCode::FileExists : StationReturnCode::NotADirectory;
            return result;
        }
    }
    result.returnCode = StationReturnCode::DirectoryExists;
    return result;
}

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
    return StationReturnCode::Success;
}

/// "0" when a folder can be made in @p folder, as far as its volume is concerned.
QString checkVolume(const fs::path &folder, const VolumeSource &volumes)
{
    std::error_code error;
    const fs::path canonical = fs::canonical(folder, error);
    if (error)
        return createFailure(error);
    const std::optional<Volume> volume = volumes.volumeHolding(QString::fromStdString(canonical.native()));
    if (!volume)
        return StationReturnCode::OutsideVolumes;
    return volume->isReadOnly ? StationReturnCode::VolumeReadOnly : StationReturnCode::Success;
}
} // namespace

FolderList listFolders(const QString &path)
{
    if (!path.startsWith(u'/'))
        return {StationReturnCode::PathNotAbsolute, {}};
    const std::optional<fs::path> folder = nativePath(path);
    if (!folder)
        return {StationReturnCode::NameRefused, {}};

    QStringList names;
    std::error_code error;
    for (fs::directory_iterator entry(*folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::optional<QString> name = carriedName(entry->path().filename());
        std::error_code unknown; // the entry went away, or its link leads nowhere
        if (name && !name->startsWith(u'.') && entry->is_directory(unknown))
            names.append(*name);
    }
    if (error)
        return {listFailure(error), {}};
    std::sort(names.begin(), names.end(), nameLess);
    return {StationReturnCode::Success, names};
}

QString createFolder(const QString &path, const VolumeSource &volumes)
{
    QString returnCode = checkNames(path);
    if (returnCode != StationReturnCode::Success)
        return returnCode;
    const std::optional<fs::path> native = nativePath(path);
    if (!native)
        return StationReturnCode::NameRefused;
    const SplitPath target = split(*native);
    if (target.returnCode != StationReturnCode::Success)
        return target.returnCode;
    returnCode = checkVolume(target.existing, volumes);
    if (returnCode != StationReturnCode::Success)
        return returnCode;

    NewFolders made;
    fs::path folder = target.existing;
    bool isNew = false;
    for (const fs::path &name : target.missing) {
        folder /= name;
        std::error_code error;
        isNew = fs::create_directory(folder, error);
        if (error)
            return createFailure(error);
        if (isNew)
            made.append(folder);
    }
    if (!isNew)
        return StationReturnCode::DirectoryExists; // someone else made it meanwhile
    made.keep();
    return StationReturnCode::Success;
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
        {ELOOP, StationReturnCode::NotADirectory},
    };
    for (const auto &failure : failures) {
        if (error.value() == failure.error)
            return failure.returnCode;
    }
    return StationReturnCode::CannotCreate;
}
