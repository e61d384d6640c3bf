#pragma once

#include <QString>
#include <QStringList>

#include <filesystem>
#include <system_error>
#include <vector>

class DiskVisit;
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
FolderList listFolders(const QString &path, DiskVisit &visit);

/// A folder that is to be made, as planFolder() found it.
struct NewFolder
{
    QString returnCode; ///< a word of StationReturnCode: not "0" when no folder can be made there
    std::filesystem::path existing; ///< the nearest parent that exists, symbolic links resolved
    std::vector<std::filesystem::path> missing; ///< the names below it, the new folder's last
};

/// What is to be made for the folder @p path.
/// @param path with forward slashes; refused unless it is absolute and no name in it is empty, "." or ".."
NewFolder planFolder(const QString &path, DiskVisit &visit);

/// "0" when the parent of @p folder lies on one of @p volumes and can be written there, else a word of
/// StationReturnCode.
QString checkVolume(const NewFolder &folder, const VolumeSource &volumes);

/// Makes what is missing; all of it or nothing. Returns a word of StationReturnCode.
QString makeFolder(const NewFolder &planned, DiskVisit &visit);

/// The word of StationReturnCode for a folder that could not be made because of @p error, a number of the system
/// (errno).
QString createFailure(const std::error_code &error);
