#include "StationProtocol.h"

const QString StationCommandName::getVolume = QStringLiteral("getVolume");
const QString StationCommandName::getServerDir = QStringLiteral("getServerDir");
const QString StationCommandName::createDirectory = QStringLiteral("createDirectory");

const QString StationKey::volumePath = QStringLiteral("volumePath");
const QString StationKey::volumeName = QStringLiteral("volumeName");
const QString StationKey::volumeSize = QStringLiteral("volumeSize");
const QString StationKey::volumeAvailableSize = QStringLiteral("volumeAvailableSize");
const QString StationKey::volumeIsSystem = QStringLiteral("volumeIsSystem");
const QString StationKey::basePath = QStringLiteral("basePath");
const QString StationKey::dirFolderList = QStringLiteral("dirFolderList");

const QString StationReturnCode::Success = QStringLiteral("0");
const QString StationReturnCode::UnknownCommand = QStringLiteral("UnknownCommand");
const QString StationReturnCode::BadRequest = QStringLiteral("BadRequest");
const QString StationReturnCode::DatabaseFailed = QStringLiteral("DatabaseFailed");
const QString StationReturnCode::InternalError = QStringLiteral("InternalError");
const QString StationReturnCode::PathNotAbsolute = QStringLiteral("PathNotAbsolute");
const QString StationReturnCode::DirectoryNotFound = QStringLiteral("DirectoryNotFound");
const QString StationReturnCode::NotADirectory = QStringLiteral("NotADirectory");
const QString StationReturnCode::DirectoryNotReadable = QStringLiteral("DirectoryNotReadable");
const QString StationReturnCode::NameRefused = QStringLiteral("NameRefused");
const QString StationReturnCode::EmptyName = QStringLiteral("EmptyName");
const QString StationReturnCode::DirectoryExists = QStringLiteral("DirectoryExists");
const QString StationReturnCode::FileExists = QStringLiteral("FileExists");
const QString StationReturnCode::OutsideVolumes = QStringLiteral("OutsideVolumes");
const QString StationReturnCode::VolumeReadOnly = QStringLiteral("VolumeReadOnly");
const QString StationReturnCode::VolumeFull = QStringLiteral("VolumeFull");
const QString StationReturnCode::PermissionDenied = QStringLiteral("PermissionDenied");
const QString StationReturnCode::CannotCreate = QStringLiteral("CannotCreate");
