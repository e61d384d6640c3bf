#pragma once

#include "files/OpenFile.h"

#include <QString>
#include <QStringList>

#include <optional>

/// A folder of recordings that is held open while what is in it is moved or deleted. Names in it are taken as they are:
/// no symbolic link is followed, and no folder of another file system, or of another mount, is entered. Functions that
/// fail leave errno. Names are texts as decodedName() makes them.
class PlaceFolder
{
public:
    /// Opens the folder @p name in the folder @p path, whose own links are followed; the path itself where @p name is
    /// empty.
    static PlaceFolder of(const QString &path, const QString &name);

    bool isOpen() const { return m_folder.isOpen(); }
    quint64 device() const { return m_device; } ///< of the file system that it is on
    bool isOnMountOf(const PlaceFolder &other) const;

    /// The folder @p name in this one; closed with ELOOP or ENOTDIR where it is none, with EXDEV where something else
    /// is mounted there.
    PlaceFolder folder(const QString &name) const;
    /// The same; the folder is made where nothing is called so, with the mode of @p example.
    PlaceFolder madeFolder(const QString &name, const PlaceFolder &example) const;
    /// The names of all that is in it; none where it could not be read to its end.
    std::optional<QStringList> names() const;
    /// The names of the folders among them; symbolic links are none.
    std::optional<QStringList> folders() const;
    bool isTaken(const QString &name) const; ///< a link that leads nowhere included

    /// Bytes of the regular file @p name; -1 with EINVAL where it is something else.
    qint64 fileSize(const QString &name) const;
    /// Deletes what is called @p name and is no folder; a link itself, not what it leads to.
    bool removeFile(const QString &name) const;
    bool removeEmptyFolder(const QString &name) const;
    /// Moves the folder @p name into @p target, where nothing may be called so.
    bool moveFolder(const QString &name, const PlaceFolder &target) const;

private:
    PlaceFolder() = default;
    explicit PlaceFolder(OpenFile folder);

    OpenFile m_folder;
    quint64 m_device = 0;
    quint64 m_mount = 0; // 0 where the system does not tell
};
