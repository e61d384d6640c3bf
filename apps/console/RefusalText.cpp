#include "RefusalText.h"

#include "StationProtocol.h"
#include "framework/HostReturnCode.h"

#include <QCoreApplication>

namespace {
struct Refusal
{
    const QString &returnCode;
    const char *sentence;
};

const Refusal refusals[] = {
    {HostReturnCode::LinkDown, QT_TRANSLATE_NOOP("Refusal", "There is no connection to the station.")},
    {HostReturnCode::NoAnswer, QT_TRANSLATE_NOOP("Refusal", "The station did not answer in time.")},
    {HostReturnCode::UnknownStation, QT_TRANSLATE_NOOP("Refusal", "No station can be reached under that path.")},
    {HostReturnCode::Closing, QT_TRANSLATE_NOOP("Refusal", "The console is closing.")},
    {StationReturnCode::UnknownCommand, QT_TRANSLATE_NOOP("Refusal", "The station does not know this command.")},
    {StationReturnCode::BadRequest, QT_TRANSLATE_NOOP("Refusal", "The station did not understand the request.")},
    {StationReturnCode::DatabaseMissing, QT_TRANSLATE_NOOP("Refusal", "The station's database is missing.")},
    {StationReturnCode::DatabaseDamaged, QT_TRANSLATE_NOOP("Refusal", "The station's database is damaged.")},
    {StationReturnCode::DatabaseNewer,
     QT_TRANSLATE_NOOP("Refusal", "A newer version of the station wrote the station's database.")},
    {StationReturnCode::DatabaseNotAllowed,
     QT_TRANSLATE_NOOP("Refusal", "The station's user may not use the station's database.")},
    {StationReturnCode::DatabaseNotOwned,
     QT_TRANSLATE_NOOP("Refusal", "The station's database belongs to another user.")},
    {StationReturnCode::DatabaseFull,
     QT_TRANSLATE_NOOP("Refusal", "The disk of the station's data is full: nothing can be changed.")},
    {StationReturnCode::DatabaseReadOnly,
     QT_TRANSLATE_NOOP("Refusal", "The disk of the station's data is read-only: nothing can be changed.")},
    {StationReturnCode::DatabaseBusy,
     QT_TRANSLATE_NOOP("Refusal", "Another program keeps the station's database locked.")},
    {StationReturnCode::DatabaseReplaced,
     QT_TRANSLATE_NOOP("Refusal",
                       "The station's database was replaced while the station ran: start the station again.")},
    {StationReturnCode::DatabaseFailed,
     QT_TRANSLATE_NOOP("Refusal", "The station could not use its database; its log says why.")},
    {StationReturnCode::InternalError, QT_TRANSLATE_NOOP("Refusal", "The station failed; its log says why.")},
    {StationReturnCode::PathNotAbsolute, QT_TRANSLATE_NOOP("Refusal", "The path has to start with a slash.")},
    {StationReturnCode::DirectoryNotFound, QT_TRANSLATE_NOOP("Refusal", "There is no such folder.")},
    {StationReturnCode::NotADirectory,
     QT_TRANSLATE_NOOP("Refusal", "This is not a folder, or a part of its path is not.")},
    {StationReturnCode::DirectoryNotReadable, QT_TRANSLATE_NOOP("Refusal", "The station may not read this folder.")},
    {StationReturnCode::NameRefused, QT_TRANSLATE_NOOP("Refusal", "The station does not take this name.")},
    {StationReturnCode::EmptyName, QT_TRANSLATE_NOOP("Refusal", "A folder needs a name.")},
    {StationReturnCode::DirectoryExists, QT_TRANSLATE_NOOP("Refusal", "A folder of this name exists already.")},
    {StationReturnCode::FileExists, QT_TRANSLATE_NOOP("Refusal", "A file of this name exists already.")},
    {StationReturnCode::OutsideVolumes,
     QT_TRANSLATE_NOOP("Refusal", "This place lies on none of the station's volumes.")},
    {StationReturnCode::VolumeNotAnswering,
     QT_TRANSLATE_NOOP("Refusal", "The disk that this folder is on does not answer.")},
    {StationReturnCode::VolumeReadOnly, QT_TRANSLATE_NOOP("Refusal", "This volume cannot be written to.")},
    {StationReturnCode::VolumeFull, QT_TRANSLATE_NOOP("Refusal", "This volume is full.")},
    {StationReturnCode::PermissionDenied, QT_TRANSLATE_NOOP("Refusal", "The station may not write here.")},
    {StationReturnCode::CannotCreate, QT_TRANSLATE_NOOP("Refusal", "The station could not make the folder.")},
    {StationReturnCode::RecordingGroupNotFound,
     QT_TRANSLATE_NOOP("Refusal", "There is no such recording group any more.")},
    {StationReturnCode::EmptyRecordingGroupName, QT_TRANSLATE_NOOP("Refusal", "A recording group needs a name.")},
    {StationReturnCode::RecordingGroupNameInUse,
     QT_TRANSLATE_NOOP("Refusal", "Another recording group has this name.")},
    {StationReturnCode::PathNotWritable, QT_TRANSLATE_NOOP("Refusal", "The station cannot write into this folder.")},
    {StationReturnCode::PathTypeRefused, QT_TRANSLATE_NOOP("Refusal", "This kind of storage does not fit the path.")},
    {StationReturnCode::PathInGroup, QT_TRANSLATE_NOOP("Refusal", "The group has this path already.")},
    {StationReturnCode::PathNotInGroup, QT_TRANSLATE_NOOP("Refusal", "The group does not have this path.")},
    {StationReturnCode::ReservedSpaceRefused,
     QT_TRANSLATE_NOOP("Refusal", "The reserved space has to be a multiple of 1024 MB, or 0.")},
    {StationReturnCode::ReservedSpaceExceedsVolume,
     QT_TRANSLATE_NOOP("Refusal", "All reserves on this volume together would be more than it holds.")},
    {StationReturnCode::LastPathOfGroup, QT_TRANSLATE_NOOP("Refusal", "A group with cameras needs at least one path.")},
    {StationReturnCode::ReservedTimeRefused,
     QT_TRANSLATE_NOOP("Refusal", "The reserved time has to be at least one minute.")},
    {StationReturnCode::CameraNotFound, QT_TRANSLATE_NOOP("Refusal", "The station does not know this camera.")},
    {StationReturnCode::StreamNotFound, QT_TRANSLATE_NOOP("Refusal", "This camera has no such stream.")},
    {StationReturnCode::CameraInGroup,
     QT_TRANSLATE_NOOP("Refusal", "The group records this stream of the camera already.")},
    {StationReturnCode::CameraNotInGroup, QT_TRANSLATE_NOOP("Refusal", "The group does not record this camera.")},
    {StationReturnCode::EmptyCameraName, QT_TRANSLATE_NOOP("Refusal", "A camera needs a name.")},
    {StationReturnCode::CameraExists, QT_TRANSLATE_NOOP("Refusal", "A camera of this name exists already.")},
    {StationReturnCode::CameraInUse, QT_TRANSLATE_NOOP("Refusal", "A recording group records this camera.")},
    {StationReturnCode::SiteNotEmpty,
     QT_TRANSLATE_NOOP("Refusal", "The station has cameras or recording groups already.")},
    {StationReturnCode::LogonNASServerFaled,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server refused this user name and password.")},
    {StationReturnCode::NASServerExist, QT_TRANSLATE_NOOP("Refusal", "This user of the host is registered already.")},
    {StationReturnCode::GetNasDirFailed,
     QT_TRANSLATE_NOOP("Refusal", "There is no such folder on the NAS server, or this user may not see it.")},
    {StationReturnCode::GetNasCapacityFailed,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server does not tell how much this folder holds.")},
    {StationReturnCode::NasServerNotResponding,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server does not answer, or no host has this name.")},
    {StationReturnCode::NasServerNotFound, QT_TRANSLATE_NOOP("Refusal", "The station knows no such NAS server.")},
    {StationReturnCode::NasHostRefused,
     QT_TRANSLATE_NOOP("Refusal", "A host is a name or an IPv4 address, and may have a port: nas-1 or nas-1:445.")},
    {StationReturnCode::NasPasswordNeeded,
     QT_TRANSLATE_NOOP("Refusal", "Another host needs the password again: the station sends it to no other.")},
    {StationReturnCode::NasKeyUnusable,
     QT_TRANSLATE_NOOP("Refusal", "The station cannot read the passwords that it keeps; its log says why.")},
};
} // namespace

QString refusalText(const QString &returnCode)
{
    if (returnCode == StationReturnCode::Success)
        return {};
    for (const Refusal &refusal : refusals) {
        if (refusal.returnCode == returnCode)
            return QCoreApplication::translate("Refusal", refusal.sentence);
    }
    return QCoreApplication::translate("Refusal", "The station refused: %1").arg(returnCode);
}
