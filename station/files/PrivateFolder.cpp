#include "PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace {
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
} // namespace

PrivateFolder::PrivateFolder(const QString &path)
    : m_folder(open(QFile::encodeName(path).constData(), folderFlags))
{
}

PrivateFolder::PrivateFolder(OpenFile folder)
    : m_folder(std::move(folder))
{
}

PrivateFolder PrivateFolder::folder(const QString &name) const
{
    const QByteArray bytes = QFile::encodeName(name);
    const bool isNew = mkdirat(m_folder.get(), bytes.constData(), folderMode) == 0;
    if (!isNew && errno != EEXIST)
        return PrivateFolder(OpenFile());
    OpenFile opened(openat(m_folder.get(), bytes.constData(), folderFlags));
    if (isNew && opened.isOpen() && fchmod(opened.get(), folderMode) != 0) // a umask may have taken of it
        return PrivateFolder(OpenFile());
    return PrivateFolder(std::move(opened));
}

OpenFile PrivateFolder::newFile(const QString &name) const
{
    OpenFile file(openat(m_folder.get(), QFile::encodeName(name).constData(),
                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
    if (file.isOpen() && fchmod(file.get(), fileMode) != 0)
        return OpenFile();
    return file;
}

bool PrivateFolder::rename(const QString &name, const QString &to) const
{
    const QByteArray from = QFile::encodeName(name);
    const QByteArray target = QFile::encodeName(to);
    if (renameat2(m_folder.get(), from.constData(), m_folder.get(), target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL) // EINVAL: this file system cannot refuse to replace
        return false;
    struct stat facts = {};
    const bool isTaken = fstatat(m_folder.get(), target.constData(), &facts, AT_SYMLINK_NOFOLLOW) == 0;
    return !isTaken && renameat(m_folder.get(), from.constData(), m_folder.get(), target.constData()) == 0;
}

bool PrivateFolder::make(const QString &path)
{
    const QString clean = QDir::cleanPath(path);
    if (QFileInfo(clean).isDir())
        return true;
    const QString parent = QFileInfo(clean).path();
    if (clean.isEmpty() || !QDir().mkpath(parent))
        return false;
    const QByteArray bytes = QFile::encodeName(clean);
    if (mkdir(bytes.constData(), folderMode) != 0)
        return errno == EEXIST && QFileInfo(clean).isDir();
    const OpenFile opened(open(bytes.constData(), folderFlags));
    return opened.isOpen() && fchmod(opened.get(), folderMode) == 0;
}

void removeTree(const QString &path)
{
    std::error_code ignored; // what cannot be removed stays
    std::filesystem::remove_all(QFile::encodeName(path).toStdString(), ignored);
}

bool isNameTaken(const QString &path)
{
    struct stat facts = {};
    return lstat(QFile::encodeName(path).constData(), &facts) == 0;
}
