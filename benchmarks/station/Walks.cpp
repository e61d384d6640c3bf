#include "Walks.h"

#include <QDirIterator>
#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <sys/stat.h>

namespace {
struct CloseFolder
{
    void operator()(DIR *folder) const { closedir(folder); }
};

qint64 walk(int parent, const char *name)
{
    const int descriptor = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, CloseFolder> folder(descriptor < 0 ? nullptr : fdopendir(descriptor));
    if (!folder)
        throw std::runtime_error(std::string(name) + " cannot be read");
    qint64 bytes = 0;
    while (const dirent *entry = readdir(folder.get())) {
        if (entry->d_name[0] == '.')
            continue;
        struct stat status = {};
        if (entry->d_type == DT_DIR)
            bytes += walk(descriptor, entry->d_name);
        else if (fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            bytes += status.st_size;
    }
    return bytes;
}
} // namespace

qint64 walk(const std::string &path)
{
    return walk(AT_FDCWD, path.c_str());
}

QMap<QString, DaySums> readPlainly(const QString &path)
{
    QMap<QString, DaySums> groups;
    QDirIterator files(path, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const QFileInfo file = files.fileInfo();
        const QStringList names = file.filePath().mid(path.size()).split(u'/', Qt::SkipEmptyParts);
        if (names.size() != 4)
            continue;
        const QDate day = QDate::fromString(names.at(2), Qt::ISODate);
        if (!day.isValid())
            continue;
        DaySum &sum = groups[names.at(0)][day];
        ++sum.files;
        sum.bytes += file.size();
    }
    return groups;
}
