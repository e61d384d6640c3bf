#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QMap>
#include <QObject>

/// Hears of changes directly in folders, and of the growth of single files. Each folder is one watch of the system,
/// each file another.
class FolderWatch : public QObject
{
    Q_OBJECT
public:
    explicit FolderWatch(QObject *parent = nullptr);

    /// Watches the folder @p path, anew where @p inode is another than before or the folder was away in between. True
    /// where this very folder was not watched under that name: what changed in it so far was told to nobody.
    bool watch(const QString &path, quint64 inode);
    /// Whether this very folder is watched under that name.
    bool isWatched(const QString &path, quint64 inode) const { return m_inodes.value(path) == inode; }
    bool isWatched(const QString &path) const { return m_inodes.contains(path); }
    /// Watches one file of the folder @p path in place of the one before; an empty @p name: none.
    void watchFile(const QString &path, const QString &name);
    /// Watches @p path and all that lies below it no more.
    void forget(const QString &path);

signals:
    /// @param path of a watched folder or file
    void changed(const QString &path);

private:
    void add(const QString &path);

    QFileSystemWatcher m_watcher;
    QMap<QString, quint64> m_inodes; // of the folders, those below one behind each other
    QHash<QString, QString> m_files; // name by folder
    bool m_hasToldOfLimit = false;
};
