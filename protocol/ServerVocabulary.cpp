#include "ServerVocabulary.h"

const QString ServerCommand::GetNasServers = QStringLiteral("GetNasServers");
const QString ServerCommand::AddNasServer = QStringLiteral("AddNasServer");
const QString ServerCommand::UpdateNASServer = QStringLiteral("UpdateNASServer");
const QString ServerCommand::RemoveNASServer = QStringLiteral("RemoveNASServer");
const QString ServerCommand::GetNasDir = QStringLiteral("GetNasDir");
const QString ServerCommand::GetNasCapacity = QStringLiteral("GetNasCapacity");
const QString ServerCommand::addNASPathsToVolume = QStringLiteral("addNASPathsToVolume");
const QString ServerCommand::getVolume = QStringLiteral("getVolume");
const QString ServerCommand::getServerDir = QStringLiteral("getServerDir");
const QString ServerCommand::createDirectory = QStringLiteral("createDirectory");
const QString ServerCommand::reloadStorageUsageInfo = QStringLiteral("reloadStorageUsageInfo");
const QString ServerCommand::getRecordingGroup = QStringLiteral("getRecordingGroup");
const QString ServerCommand::addRecordingGroup = QStringLiteral("addRecordingGroup");
const QString ServerCommand::addPathToRecordingGroup = QStringLiteral("addPathToRecordingGroup");
const QString ServerCommand::removePathFromRecordingGroup = QStringLiteral("removePathFromRecordingGroup");
const QString ServerCommand::removeRecordingGroup = QStringLiteral("removeRecordingGroup");
const QString ServerCommand::addRecordingGroupWithCompleteInfo = QStringLiteral("addRecordingGroupWithCompleteInfo");
const QString ServerCommand::updateRecordingGroup = QStringLiteral("updateRecordingGroup");
const QString ServerCommand::retrieveRecordingGroupTreeModel = QStringLiteral("retrieveRecordingGroupTreeModel");

const QString ServerEvent::VolumeChanged = QStringLiteral("VolumeChanged");

const QString ReturnCode::Success = QStringLiteral("0");

const QString NasReturnCode::LogonNASServerFaled = QStringLiteral("LogonNASServerFaled");
const QString NasReturnCode::NASServerExist = QStringLiteral("NASServerExist");
const QString NasReturnCode::GetNasDirFailed = QStringLiteral("GetNasDirFailed");
const QString NasReturnCode::GetNasCapacityFailed = QStringLiteral("GetNasCapacityFailed");

const QString FieldKey::host = QStringLiteral("host");
const QString FieldKey::logonDomain = QStringLiteral("logonDomain");
const QString FieldKey::userName = QStringLiteral("userName");
const QString FieldKey::password = QStringLiteral("password");
const QString FieldKey::relayPath = QStringLiteral("relayPath");
const QString FieldKey::basePath = QStringLiteral("basePath");
const QString FieldKey::dirFolderList = QStringLiteral("dirFolderList");
const QString FieldKey::pathList = QStringLiteral("pathList");
const QString FieldKey::diskName = QStringLiteral("diskName");
const QString FieldKey::diskTotal = QStringLiteral("diskTotal");
const QString FieldKey::diskUsed = QStringLiteral("diskUsed");
const QString FieldKey::recordingGroupID = QStringLiteral("recordingGroupID");
const QString FieldKey::recordingGroupIDList = QStringLiteral("recordingGroupIDList");
const QString FieldKey::recordingGroupName = QStringLiteral("recordingGroupName");
const QString FieldKey::recordingGroupPathList = QStringLiteral("recordingGroupPathList");
const QString FieldKey::recordingGroupNASPathList = QStringLiteral("recordingGroupNASPathList");
const QString FieldKey::recordingGroupRecoveryPathList = QStringLiteral("recordingGroupRecoveryPathList");
const QString FieldKey::recordingGroupNodeIdList = QStringLiteral("recordingGroupNodeIdList");
const QString FieldKey::recordingGroupMemberList = QStringLiteral("recordingGroupMemberList");
const QString FieldKey::recordingGroupReservedTime = QStringLiteral("recordingGroupReservedTime");
const QString FieldKey::recordingGroupReservedTimeEnabled = QStringLiteral("recordingGroupReservedTimeEnabled");
const QString FieldKey::reserveSpace = QStringLiteral("reserveSpace");
const QString FieldKey::path = QStringLiteral("path");
const QString FieldKey::pathType = QStringLiteral("pathType");
const QString FieldKey::pathInfoList = QStringLiteral("pathInfoList");
const QString FieldKey::deviceInfos = QStringLiteral("deviceInfos");
const QString FieldKey::isRecoveryMode = QStringLiteral("isRecoveryMode");
const QString FieldKey::errorAction = QStringLiteral("errorAction");
const QString FieldKey::updateAddCameraList = QStringLiteral("updateAddCameraList");
const QString FieldKey::updateRmCameraList = QStringLiteral("updateRmCameraList");
const QString FieldKey::updateAddPathList = QStringLiteral("updateAddPathList");
const QString FieldKey::updateRmPathList = QStringLiteral("updateRmPathList");
const QString FieldKey::updateSetPathList = QStringLiteral("updateSetPathList");
const QString FieldKey::updateSetRecordingGroup = QStringLiteral("updateSetRecordingGroup");
const QString FieldKey::streamIndex = QStringLiteral("streamIndex");
const QString FieldKey::enableTimeShift = QStringLiteral("enableTimeShift");
const QString FieldKey::enableSeamless = QStringLiteral("enableSeamless");
const QString FieldKey::camName = QStringLiteral("camName");
const QString FieldKey::volumeName = QStringLiteral("volumeName");
const QString FieldKey::volumePath = QStringLiteral("volumePath");
const QString FieldKey::volumeSize = QStringLiteral("volumeSize");
const QString FieldKey::volumeAvailableSize = QStringLiteral("volumeAvailableSize");
const QString FieldKey::volumeIsSystem = QStringLiteral("volumeIsSystem");
const QString FieldKey::volumeIsNAS = QStringLiteral("volumeIsNAS");
const QString FieldKey::volumeRecordedDays = QStringLiteral("volumeRecordedDays");
const QString FieldKey::volumeOneDayUsage = QStringLiteral("volumeOneDayUsage");
const QString FieldKey::recordingPath = QStringLiteral("recordingPath");
const QString FieldKey::backupID = QStringLiteral("backupID");

const QString NodeType::RecordingGroup = QStringLiteral("RecordingGroup");

const QString Unused::ClientID = QStringLiteral("ClientID");
const QString Unused::InnContext = QStringLiteral("InnContext");
const QString Unused::cameraId = QStringLiteral("cameraId");
const QString Unused::cameraName = QStringLiteral("cameraName");
const QString Unused::deviceIdList = QStringLiteral("deviceIdList");
const QString Unused::deviceNameList = QStringLiteral("deviceNameList");
const QString Unused::preEvent = QStringLiteral("preEvent");
const QString Unused::postEvent = QStringLiteral("postEvent");
const QString Unused::recordingGroupRevision = QStringLiteral("recordingGroupRevision");
const QString Unused::setRecordingGroup = QStringLiteral("setRecordingGroup");
const QString Unused::unsupportID = QStringLiteral("unsupportID");
const QString Unused::FrameworkInternalError =
    QStringLiteral("{2C85B19D-AE6F-45D9-B8FE-DC436FCBEABE}FrameworkInternalError");
