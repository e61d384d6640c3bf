#include "FolderReader.h"

#include "files/FileName.h"

#include <QThread>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <utility>

namespace {
constexpr int filesBetweenLooks = 1024; // whether the thread shall end

struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

ReadResult failure()
{
    return errno == ENOENT || errno == ENOTDIR ? ReadResult::Missing : ReadResult::Failed;
}

bool isDots(const dirent &entry)
{
    const QByteArrayView name(entry.d_name);
    return name == "." || name == "..";
}

/// Calls @p take for every entry of @p path until it gives false.
template<typename Take>
ReadResult readEntries(const QString &path, const Take &take)
{
    const Folder folder(opendir(encodedName(path).constData()));
    if (!folder)
        return failure();
    while (true) {
        errno = 0;
        const dirent *entry = readdir(folder.get());
        if (!entry)
            return errno == 0 ? ReadResult::Done : ReadResult::Failed;
        if (!isDots(*entry) && !take(dirfd(folder.get()), *entry))
            return ReadResult::Failed;
    }
}

bool isFolder(int folder, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}
} // namespace

SubFolders readFolders(const QString &path)
{
    SubFolders list;
    list.result = readEntries(path, [&list](int folder, const dirent &entry) {
        if (isFolder(folder, entry))
            list.folders.append({decodedName(entry.d_name), entry.d_ino});
        return true;
    });
    return list;
}

RecordedFiles readFiles(const QString &path)
{
    RecordedFiles list;
    std::pair<qint64, qint64> newestTime{-1, -1};
    int count = 0;
    list.result = readEntries(path, [&](int folder, const dirent &entry) {
        if (++count % filesBetweenLooks == 0 && QThread::currentThread()->isInterruptionRequested())
            return false;
        struct stat status = {};
        // A file that went away in the meantime is none.
        if (fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return errno == ENOENT;
        if (!S_ISREG(status.st_mode))
            return true;
        const QString name = decodedName(entry.d_name);
        list.sizes.insert(name, status.st_size);
        const std::pair<qint64, qint64> time{status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
        if (time > newestTime || (time == newestTime && name > list.newest)) {
            newestTime = time;
            list.newest = name;
        }
        return true;
    });
    return list;
}

qint64 fileSize(const QString &path)
{
    struct stat status = {};
    if (lstat(encodedName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return -1;
    return status.st_size;
}

FolderIdentity identify(const QString &path)
{
    struct stat status = {};
    if (stat(encodedName(path).constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return {};
    return {status.st_ino, status.st_dev};
}
