#pragma once

#include <QByteArray>
#include <QHash>

/// The roles of the item models, numbered from 257, and the names under which QML delegates read them.
///
/// Sizes are in the station's unit (KB from the station of this repository), the usage of a day is in units 1024 times
/// smaller, the reserved time in minutes. In the storage-usage models -1 days or usage mean unknown; in the
/// recording-group model these roles and the reserved time are always 0.

/// One row for each volume, or for each storage path of a recording group.
namespace VolumeRole {
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string: a UUID made for the row, new with every reply
    RootPath, ///< "rootPathRole", string
    Name, ///< "nameRole", string
    Size, ///< "sizeRole", qlonglong
    AvailableSize, ///< "availableSizeRole", qlonglong
    IsSystem, ///< "isSystemRole", bool
    IsNas, ///< "isNASRole", bool
};
}

/// One row for each recording group, in the recording-group model and the storage-usage models.
namespace RecordingGroupRole {
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
}

/// One row for each NAS server.
namespace NasServerRole {
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string
    Host, ///< "nameRole", string: the server's host
    LogonDomain, ///< "logonDomainRole", string
    UserName, ///< "userNameRole", string
    Password, ///< "passwordRole", string
};
}

/// One row for each folder; both roles hold the folder's name.
namespace DirectoryRole {
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", string
    Name, ///< "nameRole", string
};
}

/// Stations and, below them, their recording groups.
namespace TreeRole {
enum Role {
    Id = Qt::UserRole + 1, ///< "idRole", a UUID: text for a station, QUuid for a recording group
    Data, ///< "dataRole", QVariantMap computed from the others
    Name, ///< "nameRole", string
    RelayPath, ///< "relayPathRole", string
    Type, ///< "typeRole", string: "RecordingGroup" or the station's own type
    StationIp, ///< "stationIPRole", string, stations only
    RecordingGroupId, ///< "recordingGroupIDRole", string, recording groups only
};
}

const QHash<int, QByteArray> &volumeRoleNames();
const QHash<int, QByteArray> &recordingGroupRoleNames();
const QHash<int, QByteArray> &nasServerRoleNames();
const QHash<int, QByteArray> &directoryRoleNames();
const QHash<int, QByteArray> &treeRoleNames();
