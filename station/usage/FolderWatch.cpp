#include "FolderWatch.h"

#include "StationLog.h"

#include <QFileInfo>

#include <utility>

namespace {
QString inFolder(const QString &path, const QString &name)
{
    return path + u'/' + name;
}
} // namespace

FolderWatch::FolderWatch(QObject *parent)
    : QObject(parent)
    , m_watcher(this) // a child moves with this object to another thread
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FolderWatch::changed);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FolderWatch::changed);
}

void FolderWatch::add(const QString &path)
{
    // A path that is watched is not added twice; one whose folder was away, and is dropped by the system, is.
    if (m_watcher.addPath(path) || m_hasToldOfLimit || m_watcher.directories().contains(path)
        || m_watcher.files().contains(path) || !QFileInfo::exists(path))
        return;
    m_hasToldOfLimit = true;
    qCWarning(stationLog,
              "The system watches no more folders (fs.inotify.max_user_watches): changes in some folders of recordings "
              "are found by reading all of them only.");
}

bool FolderWatch::watch(const QString &path, quint64 inode)
{
    const auto before = m_inodes.constFind(path);
    const bool isNew = before == m_inodes.cend() || *before != inode;
    if (isNew && before != m_inodes.cend())
        m_watcher.removePath(path);
    m_inodes.insert(path, inode);
    add(path);
    return isNew;
}

void FolderWatch::watchFile(const QString &path, const QString &name)
{
    const QString before = m_files.value(path);
    if (!before.isEmpty() && before != name)
        m_watcher.removePath(inFolder(path, before));
    if (name.isEmpty()) {
        m_files.remove(path);
        return;
    }
    m_files.insert(path, name);
    add(inFolder(path, name));
}

void FolderWatch::forget(const QString &path)
{
    const QString below = path + u'/';
    QStringList paths;
    if (m_inodes.contains(path))
        paths.append(path);
    for (auto folder = m_inodes.lowerBound(below); folder != m_inodes.cend() && folder.key().startsWith(below);
         ++folder)
        paths.append(folder.key());
    for (const QString &folder : std::as_const(paths)) {
        m_inodes.remove(folder);
        if (const QString file = m_files.take(folder); !file.isEmpty())
            m_watcher.removePath(inFolder(folder, file));
        m_watcher.removePath(folder);
    }
}
