#pragma once

#include <QString>
#include <QStringList>

#include <system_error>

class VolumeSource;

/// What became of a directory operation: a word of StationReturnCode, "0" for success.
struct FolderList
{
    QString returnCode;
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
/// @param path absolute, with forward slashes, every name in it plain: not empty, no ".", no ".."
QString createFolder(const QString &path, const VolumeSource &volumes);

/// The word of StationReturnCode for the failure @p error of making a folder.
QString createFailure(const std::error_code &error);
