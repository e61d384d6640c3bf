#pragma once

#include <QString>

/// The words that the plug-in shares with the server, each once and named after its text, odd spellings included.

/// Commands that the plug-in sends; a reply comes back under the same name. The mixed spellings are the protocol's own.
namespace ServerCommand {
extern const QString GetNasServers;
extern const QString AddNasServer;
extern const QString UpdateNASServer;
extern const QString RemoveNASServer;
extern const QString GetNasDir;
extern const QString GetNasCapacity;
extern const QString addNASPathsToVolume;
extern const QString getVolume;
extern const QString getServerDir;
extern const QString createDirectory;
extern const QString reloadStorageUsageInfo;
extern const QString getRecordingGroup;
extern const QString addRecordingGroup;
extern const QString addPathToRecordingGroup;
extern const QString removePathFromRecordingGroup;
extern const QString removeRecordingGroup;
extern const QString addRecordingGroupWithCompleteInfo;
extern const QString updateRecordingGroup;
extern const QString retrieveRecordingGroupTreeModel;
} // namespace ServerCommand

/// Events that a station sends unasked.
namespace ServerEvent {
extern const QString VolumeChanged;
}

/// How every reply says success; anything else is a failure.
namespace ReturnCode {
extern const QString Success;
}

/// Failure words of the NAS replies. The first is misspelt on the wire and must be matched as it stands.
namespace NasReturnCode {
extern const QString LogonNASServerFaled;
extern const QString NASServerExist;
extern const QString GetNasDirFailed;
extern const QString GetNasCapacityFailed;
} // namespace NasReturnCode

/// Keys of requests, replies and events.
namespace FieldKey {
extern const QString host;
extern const QString logonDomain;
extern const QString userName;
extern const QString password;
extern const QString relayPath;
extern const QString basePath;
extern const QString dirFolderList;
extern const QString pathList;
extern const QString diskName;
extern const QString diskTotal;
extern const QString diskUsed;
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
extern const QString pathInfoList;
extern const QString deviceInfos;
extern const QString isRecoveryMode;
extern const QString errorAction;
extern const QString updateAddCameraList;
extern const QString updateRmCameraList;
extern const QString updateAddPathList;
extern const QString updateRmPathList;
extern const QString updateSetPathList;
extern const QString updateSetRecordingGroup;
extern const QString streamIndex;
extern const QString enableTimeShift;
extern const QString enableSeamless;
extern const QString camName;
extern const QString volumeName;
extern const QString volumePath;
extern const QString volumeSize;
extern const QString volumeAvailableSize;
extern const QString volumeIsSystem;
extern const QString volumeIsNAS;
extern const QString volumeRecordedDays;
extern const QString volumeOneDayUsage;
extern const QString recordingPath;
extern const QString backupID;
} // namespace FieldKey

/// Types of nodes in the station tree.
namespace NodeType {
extern const QString RecordingGroup;
}

/// Words of the shared vocabulary that no request of this plug-in carries and no reply is routed by.
namespace Unused {
extern const QString ClientID;
extern const QString InnContext;
extern const QString cameraId;
extern const QString cameraName;
extern const QString deviceIdList;
extern const QString deviceNameList;
extern const QString preEvent;
extern const QString postEvent;
extern const QString recordingGroupRevision;
extern const QString setRecordingGroup;
extern const QString unsupportID;
extern const QString FrameworkInternalError;
} // namespace Unused
