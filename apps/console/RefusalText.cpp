#include "RefusalText.h"

#include "CommandKind.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"

#include <QCoreApplication>
#include <QSet>

namespace {
struct Refusal
{
    const QString &returnCode;
    const char *sentence;
};

const Refusal refusals[] = {
    {HostReturnCode::LinkDown, QT_TRANSLATE_NOOP("Refusal", "There is no connection to the station.")},
    {HostReturnCode::StationLost, QT_TRANSLATE_NOOP("Refusal", "The station was lost before it answered.")},
    {HostReturnCode::NoAnswer, QT_TRANSLATE_NOOP("Refusal", "The station did not answer in time.")},
    {HostReturnCode::CannotBeSent, QT_TRANSLATE_NOOP("Refusal", "The request is too large to be sent.")},
    {HostReturnCode::TooLargeForBroker, QT_TRANSLATE_NOOP("Refusal", "The request is larger than the broker takes.")},
    {HostReturnCode::BrokerRefused,
     QT_TRANSLATE_NOOP("Refusal", "The broker does not let this user send commands to the station.")},
    {HostReturnCode::BadReply, QT_TRANSLATE_NOOP("Refusal", "What the station answered cannot be read.")},
    {StationReturnCode::OperatorNeeded,
     QT_TRANSLATE_NOOP("Refusal", "This user may look and change nothing: an operator can.")},
    {StationReturnCode::UserRefused, QT_TRANSLATE_NOOP("Refusal", "The station takes no commands of this user.")},
    {StationReturnCode::TooManyCommands,
     QT_TRANSLATE_NOOP("Refusal", "The station has too much to do at the moment; try again.")},
    {StationReturnCode::ReplyTooLarge,
     QT_TRANSLATE_NOOP("Refusal", "What the station would answer is too large to be sent.")},
    {StationReturnCode::StationStopping, QT_TRANSLATE_NOOP("Refusal", "The station ended before it was done.")},
    {HostReturnCode::UnknownStation, QT_TRANSLATE_NOOP("Refusal", "No station can be reached under that path.")},
    {HostReturnCode::OtherStation,
     QT_TRANSLATE_NOOP("Refusal", "Another station was chosen before this one answered.")},
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
    {NasReturnCode::LogonNASServerFaled,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server refused this user name and password.")},
    {NasReturnCode::NASServerExist, QT_TRANSLATE_NOOP("Refusal", "This user of the host is registered already.")},
    {NasReturnCode::GetNasDirFailed,
     QT_TRANSLATE_NOOP("Refusal", "There is no such folder on the NAS server, or this user may not see it.")},
    {NasReturnCode::GetNasCapacityFailed,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server does not tell how much this folder holds.")},
    {StationReturnCode::NasServerNotResponding,
     QT_TRANSLATE_NOOP("Refusal", "The NAS server does not answer, or no host has this name.")},
    {StationReturnCode::NasServerNotFound, QT_TRANSLATE_NOOP("Refusal", "The station knows no such NAS server.")},
    {StationReturnCode::NasHostRefused,
     QT_TRANSLATE_NOOP("Refusal", "A host is a name or an IPv4 address, and may have a port: nas-1 or nas-1:445.")},
    {StationReturnCode::NasPasswordNeeded,
     QT_TRANSLATE_NOOP("Refusal", "Another host needs the password again: the station sends it to no other.")},
    {StationReturnCode::RequestIdInUse,
     QT_TRANSLATE_NOOP("Refusal", "Another request has the number of this one: nothing was changed. Try again.")},
    {StationReturnCode::ForecastRefused,
     QT_TRANSLATE_NOOP("Refusal", "The station can only forecast edits of recording groups.")},
    {StationReturnCode::NoHistory, QT_TRANSLATE_NOOP("Refusal", "The station has no earlier figures of this.")},
    {StationReturnCode::PlaceNotFound,
     QT_TRANSLATE_NOOP("Refusal", "There are no recordings of no group in this folder any more.")},
    {StationReturnCode::PlaceInUse,
     QT_TRANSLATE_NOOP("Refusal", "A recording group or the backup area uses this folder.")},
    {StationReturnCode::PlaceOnNas,
     QT_TRANSLATE_NOOP("Refusal",
                       "The station moves and deletes recordings on its own disks only, not on NAS servers.")},
    {StationReturnCode::PlaceBusy,
     QT_TRANSLATE_NOOP("Refusal", "The station is deleting or moving recordings already. Try again when it is done.")},
    {StationReturnCode::PlaceNotCounted,
     QT_TRANSLATE_NOOP("Refusal", "The station has not counted the recordings in this folder yet.")},
    {StationReturnCode::ConfirmationRefused, QT_TRANSLATE_NOOP("Refusal", "This is not the name of the folder.")},
    {StationReturnCode::NoPathOnVolume,
     QT_TRANSLATE_NOOP("Refusal", "The group has no path on the volume of these recordings.")},
    {StationReturnCode::RecordingsExist,
     QT_TRANSLATE_NOOP("Refusal", "The group has recordings of the same days already: nothing was moved.")},
    {StationReturnCode::CannotMove,
     QT_TRANSLATE_NOOP("Refusal", "The disk refused to move the recordings: they are where they were.")},
    {StationReturnCode::DeletionCancelled, QT_TRANSLATE_NOOP("Refusal", "The deletion was cancelled.")},
    {StationReturnCode::RecordingsLeft, QT_TRANSLATE_NOOP("Refusal", "Some recordings could not be deleted.")},
    {StationReturnCode::NoDeletion, QT_TRANSLATE_NOOP("Refusal", "The deletion has ended already.")},
    {StationReturnCode::AlarmNotFound, QT_TRANSLATE_NOOP("Refusal", "This alarm does not stand any more.")},
    {StationReturnCode::AlarmNotAcknowledged, QT_TRANSLATE_NOOP("Refusal", "Nobody has acknowledged this alarm.")},
    {StationReturnCode::NoteRefused, QT_TRANSLATE_NOOP("Refusal", "A note has at most 1000 characters.")},
    {StationReturnCode::NasKeyUnusable,
     QT_TRANSLATE_NOOP("Refusal", "The station cannot read the passwords that it keeps; its log says why.")},
};

struct PluginFact
{
    const char *fact;
    const char *sentence;
};

constexpr PluginFact pluginFacts[] = {
    {"", QT_TRANSLATE_NOOP("Refusal", "The request could not be sent.")},
    {"Send command failed", QT_TRANSLATE_NOOP("Refusal", "The request could not be sent.")},
    {"out of memory", QT_TRANSLATE_NOOP("Refusal", "The request could not be sent: memory ran out.")},
    {"host is empty", QT_TRANSLATE_NOOP("Refusal", "The host is missing.")},
    {"basePath is empty", QT_TRANSLATE_NOOP("Refusal", "The path is missing.")},
    {"Group name is empty", QT_TRANSLATE_NOOP("Refusal", "A recording group needs a name.")},
    {"No any path is given", QT_TRANSLATE_NOOP("Refusal", "A recording group needs a path.")},
    {"Reserved time's config is error",
     QT_TRANSLATE_NOOP("Refusal", "The reserved time has to be at least one minute.")},
    {"Reserve space must be multiple of 1024",
     QT_TRANSLATE_NOOP("Refusal", "The reserved space has to be a multiple of 1024 MB, or 0.")},
};
} // namespace

QString refusalText(const QString &returnCode)
{
    if (returnCode == ReturnCode::Success)
        return {};
    for (const Refusal &refusal : refusals) {
        if (refusal.returnCode == returnCode)
            return QCoreApplication::translate("Refusal", refusal.sentence);
    }
    return QCoreApplication::translate("Refusal", "The station refused: %1").arg(returnCode);
}

QString unsentText(const QString &fact)
{
    for (const PluginFact &known : pluginFacts) {
        if (fact == QLatin1String(known.fact))
            return QCoreApplication::translate("Refusal", known.sentence);
    }
    return QCoreApplication::translate("Refusal", "The request was not sent: %1.").arg(fact);
}

QString outcomeHint(const QString &command, const QString &returnCode)
{
    static const QSet<QString> openCodes{HostReturnCode::NoAnswer,           HostReturnCode::StationLost,
                                         HostReturnCode::OtherStation,       HostReturnCode::BadReply,
                                         StationReturnCode::StationStopping, StationReturnCode::ReplyTooLarge};
    if (!isEdit(command) || !openCodes.contains(returnCode))
        return {};
    return u' ' + QCoreApplication::translate("Refusal", "The change may take effect all the same.");
}
