#pragma once

#include <QString>

/// The words of the station's protocol, each once and named after its text; docs/station-protocol.md says what they
/// mean together. The station knows no client, so it has its own copy of them.

/// Commands that the station carries out.
namespace StationCommandName {
extern const QString getVolume;
extern const QString getServerDir;
extern const QString createDirectory;
} // namespace StationCommandName

/// Keys of what the station answers.
namespace StationKey {
extern const QString volumePath;
extern const QString volumeName;
extern const QString volumeSize;
extern const QString volumeAvailableSize;
extern const QString volumeIsSystem;
extern const QString basePath;
extern const QString dirFolderList;
} // namespace StationKey

/// What a StationReply says in its return code: "0" for success, else one word for each kind of refusal.
namespace StationReturnCode {
extern const QString Success; ///< "0"
// Any command.
extern const QString UnknownCommand; ///< the station has no command of that name
extern const QString BadRequest; ///< the data is not of the type that the command takes
extern const QString DatabaseFailed; ///< the station could not read or write its database; its log says why
extern const QString InternalError; ///< the station failed where it should not have, out of memory for instance
// Paths.
extern const QString PathNotAbsolute; ///< the path does not start with a slash
extern const QString DirectoryNotFound; ///< nothing exists under the path
extern const QString NotADirectory; ///< the path, or a parent in it, is something else than a folder
extern const QString DirectoryNotReadable; ///< the folder exists and may not, or can not, be read
extern const QString NameRefused; ///< the station or its file system takes no such name
// Making a folder.
extern const QString EmptyName; ///< the path is empty, or a name in it is
extern const QString DirectoryExists; ///< a folder of that name exists
extern const QString FileExists; ///< something else of that name exists
extern const QString OutsideVolumes; ///< the place lies on none of the station's volumes
extern const QString VolumeReadOnly; ///< nothing can be written there
extern const QString VolumeFull; ///< no space, or no quota, is left
extern const QString PermissionDenied; ///< the station's user may not write there
extern const QString CannotCreate; ///< any other failure, of the disk for instance
} // namespace StationReturnCode
