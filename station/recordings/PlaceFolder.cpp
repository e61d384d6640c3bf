#include "PlaceFolder.h"

#include "files/FileName.h"

#include <QByteArray>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};

/// Empty, with EINVAL, where @p name would lead elsewhere than to an entry of a folder.
QByteArray entryName(const QString &name)
{
    const QByteArray bytes = encodedName(name);
    const bool isEntry =
        !bytes.isEmpty() && bytes != "." && bytes != ".." && !bytes.contains('/') && !bytes.contains('\0');
    if (!isEntry)
        errno = EINVAL;
    return isEntry ? bytes : QByteArray();
}

OpenFile closed(int error)
{
    errno = error;
    return OpenFile();
}
} // namespace

PlaceFolder::PlaceFolder(OpenFile folder)
    : m_folder(std::move(folder))
{
    if (!m_folder.isOpen())
        return;
    struct statx status = {};
    if (statx(m_folder.get(), "", AT_EMPTY_PATH, STATX_TYPE | STATX_MNT_ID, &status) == 0) {
        if ((status.stx_mask & STATX_MNT_ID) != 0)
            m_mount = status.stx_mnt_id;
    }
    struct stat plain = {};
    if (fstat(m_folder.get(), &plain) == 0)
        m_device = plain.st_dev;
    else
        m_folder = closed(errno);
}

PlaceFolder PlaceFolder::of(const QString &path, const QString &name)
{
    PlaceFolder above(OpenFile(open(encodedName(path).constData(), folderFlags)));
    return name.isEmpty() || !above.isOpen() ? std::move(above) : above.folder(name);
}

bool PlaceFolder::isOnMountOf(const PlaceFolder &other) const
{
    return m_device == other.m_device && m_mount == other.m_mount;
}

PlaceFolder PlaceFolder::folder(const QString &name) const
{
    const QByteArray entry = entryName(name);
    if (entry.isEmpty())
        return {};
    PlaceFolder found(OpenFile(openat(m_folder.get(), entry.constData(), folderFlags | O_NOFOLLOW)));
    if (found.isOpen() && !found.isOnMountOf(*this))
        return PlaceFolder(closed(EXDEV));
    return found;
}

PlaceFolder PlaceFolder::madeFolder(const QString &name, const PlaceFolder &example) const
{
    constexpr mode_t permissions = 07777;
    const QByteArray entry = entryName(name);
    struct stat status = {};
    if (entry.isEmpty() || fstat(example.m_folder.get(), &status) != 0)
        return {};
    const bool isNew = mkdirat(m_folder.get(), entry.constData(), S_IRWXU) == 0;
    if (!isNew && errno != EEXIST)
        return {};
    PlaceFolder made = folder(name);
    if (isNew && made.isOpen() && fchmod(made.m_folder.get(), status.st_mode & permissions) != 0)
        return {};
    return made;
}

std::optional<QStringList> PlaceFolder::names() const
{
    OpenFile again(openat(m_folder.get(), ".", folderFlags));
    if (!again.isOpen())
        return {};
    const std::unique_ptr<DIR, CloseFolder> entries(fdopendir(again.get()));
    if (!entries)
        return {};
    again.release();
    QStringList names;
    while (true) {
        errno = 0;
        const dirent *entry = readdir(entries.get());
        if (!entry)
            break;
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            names.append(decodedName(entry->d_name));
    }
    if (errno != 0)
        return {};
    names.sort();
    return names;
}

std::optional<QStringList> PlaceFolder::folders() const
{
    std::optional<QStringList> found = names();
    if (found) {
        found->removeIf([this](const QString &name) {
            struct stat status = {};
            return fstatat(m_folder.get(), encodedName(name).constData(), &status, AT_SYMLINK_NOFOLLOW) != 0
                || !S_ISDIR(status.st_mode);
        });
    }
    return found;
}

bool PlaceFolder::isTaken(const QString &name) const
{
    struct stat status = {};
    return fstatat(m_folder.get(), encodedName(name).constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

qint64 PlaceFolder::fileSize(const QString &name) const
{
    const QByteArray entry = entryName(name);
    struct stat status = {};
    if (entry.isEmpty() || fstatat(m_folder.get(), entry.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return -1;
    if (S_ISREG(status.st_mode) && status.st_dev == m_device)
        return status.st_size;
    errno = EINVAL;
    return -1;
}

bool PlaceFolder::removeFile(const QString &name) const
{
    const QByteArray entry = entryName(name);
    return !entry.isEmpty() && unlinkat(m_folder.get(), entry.constData(), 0) == 0;
}

bool PlaceFolder::removeEmptyFolder(const QString &name) const
{
    const QByteArray entry = entryName(name);
    return !entry.isEmpty() && unlinkat(m_folder.get(), entry.constData(), AT_REMOVEDIR) == 0;
}

bool PlaceFolder::moveFolder(const QString &name, const PlaceFolder &target) const
{
    const QByteArray entry = entryName(name);
    if (entry.isEmpty())
        return false;
    if (renameat2(m_folder.get(), entry.constData(), target.m_folder.get(), entry.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // A file system without that flag: a folder takes the place of nothing but an empty folder even so.
    return renameat(m_folder.get(), entry.constData(), target.m_folder.get(), entry.constData()) == 0;
}
