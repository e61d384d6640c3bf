#pragma once

#include <QString>

/// The words of the station's protocol, each once and named after its text; docs/station-protocol.md says what they
/// mean together. The station knows no client, so it has its own copy of them.

/// Commands that the station carries out.
namespace StationCommandName {
extern const QString getVolume;
extern const QString getServerDir;
extern const QString createDirectory;
extern const QString getRecordingGroup;
extern const QString retrieveRecordingGroupTreeModel;
extern const QString addRecordingGroup;
extern const QString addPathToRecordingGroup;
extern const QString removePathFromRecordingGroup;
extern const QString removeRecordingGroup;
extern const QString addRecordingGroupWithCompleteInfo;
extern const QString updateRecordingGroup;
extern const QString GetNasServers;
extern const QString AddNasServer;
extern const QString UpdateNASServer;
extern const QString RemoveNASServer;
extern const QString GetNasDir;
extern const QString GetNasCapacity;
extern const QString addNASPathsToVolume;
extern const QString reloadStorageUsageInfo;
} // namespace StationCommandName

/// Commands of the station's own, which begin with "station.": for whoever sets it up.
namespace StationOwnCommandName {
extern const QString listCameras; ///< "station.listCameras"
extern const QString addCamera; ///< "station.addCamera"
extern const QString removeCamera; ///< "station.removeCamera"
extern const QString createSampleSite; ///< "station.createSampleSite"
extern const QString listAlarms;
} // namespace StationOwnCommandName

/// Events that no plug-in knows.
namespace StationOwnEventName {
extern const QString AlarmsChanged;
} // namespace StationOwnEventName

/// Events that the station raises.
namespace StationEventName {
extern const QString VolumeChanged;
extern const QString StorageScanProgress;
} // namespace StationEventName

/// Keys of what the station is asked and of what it answers.
namespace StationKey {
extern const QString volumePath;
extern const QString volumeName;
extern const QString volumeSize;
extern const QString volumeAvailableSize;
extern const QString volumeIsSystem;
extern const QString basePath;
extern const QString dirFolderList;
extern const QString relayPath;
extern const QString recordingGroupID;
extern const QString recordingGroupIDList;
extern const QString recordingGroupName;
extern const QString recordingGroupPathList;
extern const QString recordingGroupNASPathList;
extern const QString recordingGroupRecoveryPathList;
extern const QString recordingGroupNodeIdList;
extern const QString recordingGroupMemberList;
extern const QString recordingGroupReservedTime;
extern const QString recordingGroupReservedTimeEnabled;
extern const QString reserveSpace;
extern const QString path;
extern const QString pathType;
extern const QString isRecoveryMode;
extern const QString pathInfoList;
extern const QString deviceInfos;
extern const QString updateRmCameraList;
extern const QString updateAddCameraList;
extern const QString updateRmPathList;
extern const QString updateAddPathList;
extern const QString updateSetPathList;
extern const QString updateSetRecordingGroup;
extern const QString camName;
extern const QString streamIndex;
extern const QString enableTimeShift;
extern const QString enableSeamless;
extern const QString streams;
extern const QString keptBytes;
extern const QString errorAction;
extern const QString element;
extern const QString index;
extern const QString value;
extern const QString returnCode;
extern const QString reason;
extern const QString id;
extern const QString host;
extern const QString logonDomain;
extern const QString userName;
extern const QString password;
extern const QString total;
extern const QString used;
extern const QString pathList;
extern const QString diskName;
extern const QString diskTotal;
extern const QString diskUsed;
// Storage usage.
extern const QString recordingPath;
extern const QString volumeOneDayUsage;
extern const QString volumeRecordedDays;
extern const QString volumeIsNAS;
extern const QString done;
extern const QString running;
// Alarms.
extern const QString alarms;
extern const QString pending;
extern const QString kind;
extern const QString severity;
extern const QString subject;
extern const QString text;
extern const QString remedy;
extern const QString since;
// Sample site.
extern const QString created;
} // namespace StationKey

/// How bad an alarm is.
namespace StationSeverity {
extern const QString error; ///< something is broken
extern const QString warning; ///< it works, and will not for long or not as expected
} // namespace StationSeverity

/// What an alarm is about. Those of the database are the words of its return codes.
namespace StationAlarmKind {
extern const QString VolumeGone; ///< a recording group's path is not there, or not on its volume
extern const QString VolumeNotAnswering; ///< a mount says nothing
extern const QString PathNotWritable; ///< a recording group's path is there, and nothing can be recorded to it
extern const QString GroupWithoutPath; ///< a recording group with cameras has lost its paths
extern const QString FolderNotReadable; ///< recordings that the station may not read, or that the disk does not give
extern const QString FolderNotAnswering; ///< the disk takes longer than a disk does
extern const QString RecordingsNotCounted; ///< all folders of recordings are being read
extern const QString ShareNotAnswering; ///< a NAS server is silent
extern const QString ShareRefused; ///< it refuses the registered account
extern const QString ShareMissing; ///< there is no such share or folder on it, or it is not registered
extern const QString SharePending; ///< it was asked and has not answered yet
extern const QString NasKeyUnusable; ///< the stored passwords cannot be read
extern const QString ClockBehind; ///< the machine's clock was ahead of what it says now
extern const QString ClockAhead; ///< it is far ahead of everything that was recorded
extern const QString RecordingsOfTheFuture; ///< folders of days that have not come yet
} // namespace StationAlarmKind

/// What a StationReply says in its return code: "0" for success, else one word for each kind of refusal.
namespace StationReturnCode {
extern const QString Success; ///< "0"
// Any command.
extern const QString UnknownCommand; ///< the station has no command of that name
extern const QString BadRequest; ///< the data is not of the type that the command takes
extern const QString DatabaseMissing; ///< the station's database is gone; there was one before
extern const QString DatabaseDamaged; ///< it is damaged: what can be read is read, nothing is written any more
extern const QString DatabaseNewer; ///< a newer station wrote it
extern const QString DatabaseNotAllowed; ///< the station's user may not read or write it
extern const QString DatabaseNotOwned; ///< it belongs to another user
extern const QString DatabaseFull; ///< its disk is full: it can be read, and nothing can be changed
extern const QString DatabaseReadOnly; ///< its disk is mounted read-only: the same
extern const QString DatabaseBusy; ///< another program keeps it locked
extern const QString DatabaseReplaced; ///< the data folder or the database was replaced while the station ran
extern const QString DatabaseFailed; ///< it cannot be used for another reason; the station's log says why
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
extern const QString VolumeNotAnswering; ///< the disk that the path is on does not answer
extern const QString VolumeReadOnly; ///< nothing can be written there
extern const QString VolumeFull; ///< no space, or no quota, is left
extern const QString PermissionDenied; ///< the station's user may not write there
extern const QString CannotCreate; ///< any other failure, of the disk for instance
// Recording groups and cameras.
extern const QString RecordingGroupNotFound; ///< no recording group has that id
extern const QString EmptyRecordingGroupName; ///< a recording group needs a name
extern const QString RecordingGroupNameInUse; ///< another recording group has that name
extern const QString PathNotWritable; ///< a small file could not be written into the folder; "reason" says why
extern const QString PathTypeRefused; ///< there is no such kind of path, or the path is not written as that kind is
extern const QString PathInGroup; ///< the recording group has that path already
extern const QString PathNotInGroup; ///< the recording group has no such path
extern const QString ReservedSpaceRefused; ///< the reserved space is negative or no multiple of 1024 MB
extern const QString
    ReservedSpaceExceedsVolume; ///< the reserves of all recording groups on that volume come to more than it holds
extern const QString LastPathOfGroup; ///< a recording group with members needs a path
extern const QString ReservedTimeRefused; ///< the reserved time applies and is below one minute
extern const QString CameraNotFound; ///< the station has no camera of that name
extern const QString StreamNotFound; ///< the camera has no stream of that index
extern const QString CameraInGroup; ///< the recording group has that stream of the camera already
extern const QString CameraNotInGroup; ///< the recording group has no such member
extern const QString UnknownStation; ///< the relay path names another station
extern const QString EmptyCameraName; ///< a camera needs a name
extern const QString CameraExists; ///< a camera of that name exists
extern const QString CameraInUse; ///< a recording group has the camera among its members
extern const QString SiteNotEmpty; ///< the station has cameras or recording groups already
// NAS servers. The first four are spelt as clients expect them.
extern const QString LogonNASServerFaled; ///< the NAS server refused user name and password
extern const QString NASServerExist; ///< that user of that host is registered already
extern const QString GetNasDirFailed; ///< the folder cannot be listed: missing, no share, not allowed, no path
extern const QString GetNasCapacityFailed; ///< the same for its capacity
extern const QString NasServerNotResponding; ///< no such host, nothing listens there, or it says nothing
extern const QString NasServerNotFound; ///< no NAS server is registered under that id, or for the host of the path
extern const QString NasHostRefused; ///< empty, or not written as a host name is
extern const QString NasPasswordNeeded; ///< a token was given for another host: the password is needed again
extern const QString NasKeyUnusable; ///< the key of the stored passwords is lost or damaged; the log says how
} // namespace StationReturnCode
