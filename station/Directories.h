#pragma once

#include <QString>
#include <QStringList>

#include <system_error>

class VolumeSource;

/// What listFolders() found.
struct FolderList
{
    QString returnCode; ///< a word of StationReturnCode, "0" for success
    QStringList names; ///< empty unless it succeeded
};

/// The names of the folders in @p path, sorted by nameLess(); symbolic links to folders among them.
///
/// Left out are names that start with a dot, and names that no command could carry: not valid UTF-8, or with a
/// backslash.
/// @param path absolute, with forward slashes
FolderList listFolders(const QString &path);

/// Makes the folder @p path and the parents that are missing; all of them or none. Returns a word of StationReturnCode.
///
/// The nearest parent that exists, symbolic links resolved, must lie on one of @p volumes.
/// @param path with forward slashes; refused unless it is absolute and no name in it is empty, "." or ".."
QString createFolder(const QString &path, const VolumeSource &volumes);

/// The word of StationReturnCode for a folder that could not be made because of @p error, a number of the system
/// (errno).
QString createFailure(const std::error_code &error);
