#pragma once

#include "OpenFile.h"

#include <QString>

/// A folder that is held open while files are made in it, for the station's user alone whatever the umask. Names in it
/// are taken as they are: a link that somebody put there is never followed. Functions that fail leave errno.
class PrivateFolder
{
public:
    /// Opens the folder @p path; its last name must be no link.
    explicit PrivateFolder(const QString &path);

    bool isOpen() const { return m_folder.isOpen(); }

    /// The folder @p name in this one, made unless it is there.
    PrivateFolder folder(const QString &name) const;
    /// The new file @p name, open to be written; closed when something of that name is there.
    OpenFile newFile(const QString &name) const;
    /// Moves the folder @p name of this one to the name @p to, where nothing may be.
    bool rename(const QString &name, const QString &to) const;

    /// Makes the folder @p path and the parents that are missing; one that is there stays as it is.
    static bool make(const QString &path);

private:
    explicit PrivateFolder(OpenFile folder);

    OpenFile m_folder;
};

/// Takes @p path away with all that is in it. Links are removed, and not followed.
void removeTree(const QString &path);

/// Whether anything is called @p path, a link that leads nowhere included.
bool isNameTaken(const QString &path);
