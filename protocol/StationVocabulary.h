#pragma once

#include <QString>

/// The station's own words, which the plug-in does not know, each once and named after its text; the others stand in
/// ServerVocabulary.h. docs/station-protocol.md says what they mean together.

/// Commands of the station's own, which begin with "station.": for whoever sets it up.
namespace StationCommandName {
extern const QString listCameras; ///< "station.listCameras"
extern const QString addCamera; ///< "station.addCamera"
extern const QString removeCamera; ///< "station.removeCamera"
extern const QString createSampleSite; ///< "station.createSampleSite"
extern const QString listAlarms; ///< "station.listAlarms"
extern const QString listStorage; ///< "station.listStorage"
extern const QString forecast; ///< "station.forecast"
extern const QString listPastAlarms; ///< "station.listPastAlarms"
extern const QString listActivity; ///< "station.listActivity"
extern const QString readHistory; ///< "station.readHistory"
extern const QString listUnassignedRecordings; ///< "station.listUnassignedRecordings"
extern const QString assignRecordings; ///< "station.assignRecordings"
extern const QString deleteRecordings; ///< "station.deleteRecordings"
extern const QString cancelDeletion; ///< "station.cancelDeletion"
extern const QString acknowledgeAlarm; ///< "station.acknowledgeAlarm"
extern const QString withdrawAcknowledgement; ///< "station.withdrawAcknowledgement"
} // namespace StationCommandName

/// Events that no plug-in knows.
namespace StationEventName {
extern const QString AlarmsChanged; ///< "station.AlarmsChanged"
extern const QString ActivityAdded; ///< "station.ActivityAdded"
extern const QString DeletionProgress; ///< "station.DeletionProgress"
extern const QString Heartbeat; ///< "station.Heartbeat"; over a broker alone
extern const QString StorageScanProgress;
} // namespace StationEventName

/// Keys of what the station is asked and of what it answers.
namespace StationKey {
extern const QString streams;
extern const QString keptBytes;
extern const QString element;
extern const QString index;
extern const QString value;
extern const QString returnCode;
extern const QString reason;
extern const QString id;
extern const QString total;
extern const QString used;
// Storage usage.
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
extern const QString until;
extern const QString acknowledgedAt;
extern const QString acknowledgedBy;
extern const QString note;
// Activity.
extern const QString number;
extern const QString time;
extern const QString client;
extern const QString user;
extern const QString duration;
extern const QString from;
extern const QString limit;
extern const QString before;
// What was.
extern const QString resolution;
extern const QString samples;
extern const QString gaps;
extern const QString moreFrom;
extern const QString recordedDays;
extern const QString remainingDays;
extern const QString oneDayUsage;
extern const QString recordedBytes;
// Sample site.
extern const QString created;
// What volumes hold.
extern const QString state;
extern const QString size;
extern const QString free;
extern const QString reservedForRoot;
extern const QString groups;
extern const QString paths;
extern const QString bytesPerDay;
extern const QString counted;
extern const QString countedAt;
extern const QString backupBytes;
extern const QString withoutGroupBytes;
extern const QString otherBytes;
extern const QString unknownBytes;
extern const QString excessBytes;
// Forecasts.
extern const QString command;
extern const QString data;
extern const QString errors;
extern const QString volumes;
extern const QString now;
extern const QString then;
// Recordings of no group.
extern const QString place;
extern const QString folder;
extern const QString cameras;
extern const QString recordedFiles;
extern const QString oldestDay;
extern const QString newestDay;
extern const QString deletion;
extern const QString begun;
extern const QString ended;
extern const QString confirmation;
extern const QString movedDays;
extern const QString deletedBytes;
extern const QString leftFiles;
extern const QString leftBytes;
extern const QString leftEntries;
extern const QString left;
} // namespace StationKey

/// Why a deletion left something in its place, where no return code says it.
namespace StationLeftReason {
extern const QString NotARecording; ///< the index does not have it
extern const QString CannotDelete; ///< the disk fails, or something else is in the way
} // namespace StationLeftReason

/// Where a volume is.
namespace StationVolumeKind {
extern const QString local; ///< mounted on the station's machine
extern const QString NAS; ///< a share of a NAS server
} // namespace StationVolumeKind

/// How a volume stands.
namespace StationVolumeState {
extern const QString there;
extern const QString readOnly; ///< there, and mounted so that nothing can be written
extern const QString gone; ///< not mounted; a share that its server refuses or does not have
extern const QString notAnswering; ///< it says nothing
extern const QString unknown; ///< nobody knows yet
} // namespace StationVolumeState

/// Whose figures "station.readHistory" reads.
namespace StationHistoryKind {
extern const QString recordingGroup;
extern const QString volume;
} // namespace StationHistoryKind

/// How far apart the samples are that it reads.
namespace StationResolution {
extern const QString hour;
extern const QString day;
} // namespace StationResolution

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
extern const QString InsufficientRecordingDays; ///< a recording group will not reach its reserved time
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

/// What a StationReply says in its return code where it is neither ReturnCode::Success nor one of NasReturnCode: a word
/// for each kind of refusal.
namespace StationReturnCode {
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
extern const QString StationStopping; ///< the station ended before it was done; an edit may have taken effect
extern const QString RequestIdInUse; ///< the id was given to another command, or to this one with other data
extern const QString OperatorNeeded; ///< the broker's user is a viewer, and the command changes something
extern const QString UserRefused; ///< the station's table of roles takes no commands of the broker's user
extern const QString TooManyCommands; ///< too many commands that came over the broker are under way
extern const QString ReplyTooLarge; ///< the reply is larger than the broker, or a message, may be
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
extern const QString ForecastRefused; ///< the command is no edit of a recording group
// What was.
extern const QString NoHistory; ///< no figures of that recording group or volume are kept
// Recordings of no group.
extern const QString PlaceNotFound; ///< no such place holds recordings that belong to no group
extern const QString PlaceInUse; ///< a recording group, or the backup area, has that folder
extern const QString PlaceOnNas; ///< that is done on the station's own disks only
extern const QString PlaceBusy; ///< recordings of no group are being deleted or moved
extern const QString PlaceNotCounted; ///< nobody knows yet what it holds
extern const QString ConfirmationRefused; ///< another name than that of the folder was typed
extern const QString NoPathOnVolume; ///< the recording group has no path on the file system of the place
extern const QString RecordingsExist; ///< the recording group has recordings of that camera and day there
extern const QString CannotMove; ///< the disk refuses
extern const QString DeletionCancelled; ///< it was told to stop
extern const QString RecordingsLeft; ///< some could not be deleted
extern const QString NoDeletion; ///< none goes on there
// Alarms.
extern const QString AlarmNotFound; ///< nothing of that kind and subject troubles the station
extern const QString AlarmNotAcknowledged; ///< there is nothing to withdraw
extern const QString NoteRefused; ///< it is too long
// NAS servers.
extern const QString NasServerNotResponding; ///< no such host, nothing listens there, or it says nothing
extern const QString NasServerNotFound; ///< no NAS server is registered under that id, or for the host of the path
extern const QString NasHostRefused; ///< empty, or not written as a host name is
extern const QString NasPasswordNeeded; ///< a token was given for another host: the password is needed again
extern const QString NasKeyUnusable; ///< the key of the stored passwords is lost or damaged; the log says how
} // namespace StationReturnCode
