#pragma once

#include <qnamespace.h>

/// The roles of the item models, numbered from 257, and the names under which QML delegates read them.
///
/// Sizes are in the station's unit (KB from the station of this repository), the usage of a day is in units 1024 times
/// smaller, the reserved time in minutes. In the storage-usage models -1 days or usage mean unknown; in the
/// recording-group model these roles and the reserved time are always 0.
namespace Recording {

/// One row for each volume, or for each storage path of a recording group.
namespace VolumeRole {
/// Numbers from 257.
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string: a UUID made for the row, new with every reply
    RootPath, ///< "rootPathRole", string
    Name, ///< "nameRole", string
    Size, ///< "sizeRole", qlonglong
    AvailableSize, ///< "availableSizeRole", qlonglong
    IsSystem, ///< "isSystemRole", bool
    IsNas, ///< "isNASRole", bool
};
} // namespace VolumeRole

/// One row for each recording group, in the recording-group model and the storage-usage models.
namespace RecordingGroupRole {
/// Numbers from 257.
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string
    Name, ///< "nameRole", string
    PathList, ///< "pathListRole", QStringList
    NodeIdList, ///< "nodeIdListRole", QStringList
    NasPathList, ///< "nasPathListRole", QStringList
    RecordedDays, ///< "recordedDaysRole", int
    RemainDays, ///< "remainDaysRole", int
    OneDayUsage, ///< "oneDayUsageRole", qlonglong
    ReserveTime, ///< "reserveTimeRole", int, minutes
};
} // namespace RecordingGroupRole

/// One row for each NAS server.
namespace NasServerRole {
/// Numbers from 257.
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string
    Host, ///< "nameRole", string: the server's host
    LogonDomain, ///< "logonDomainRole", string
    UserName, ///< "userNameRole", string
    Password, ///< "passwordRole", string: as the station sent it, a token from the one of this repository
};
} // namespace NasServerRole

/// One row for each folder; both roles hold the folder's name.
namespace DirectoryRole {
/// Numbers from 257.
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string
    Name, ///< "nameRole", string
};
} // namespace DirectoryRole

/// Stations and, below them, their recording groups.
namespace TreeRole {
/// Numbers from 257.
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", a UUID: text for a station, QUuid for a recording group, new with every reply
    Data, ///< "dataRole", QVariantMap computed from the others: "nameRole", "idRole", "stationIPRole", "typeRole"
    Name, ///< "nameRole", string
    RelayPath, ///< "relayPathRole", string
    Type, ///< "typeRole", string: "RecordingGroup" or the station's own type
    StationIp, ///< "stationIPRole", string, stations only
    RecordingGroupId, ///< "recordingGroupIDRole", string, recording groups only
};
} // namespace TreeRole

} // namespace Recording
