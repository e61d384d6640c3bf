#include "ItemRoles.h"

const QHash<int, QByteArray> &volumeRoleNames()
{
    static const QHash<int, QByteArray> names{
        {VolumeRole::Id, "idRole"},
        {VolumeRole::RootPath, "rootPathRole"},
        {VolumeRole::Name, "nameRole"},
        {VolumeRole::Size, "sizeRole"},
        {VolumeRole::AvailableSize, "availableSizeRole"},
        {VolumeRole::IsSystem, "isSystemRole"},
        {VolumeRole::IsNas, "isNASRole"},
    };
    return names;
}

const QHash<int, QByteArray> &recordingGroupRoleNames()
{
    static const QHash<int, QByteArray> names{
        {RecordingGroupRole::Id, "idRole"},
        {RecordingGroupRole::Name, "nameRole"},
        {RecordingGroupRole::PathList, "pathListRole"},
        {RecordingGroupRole::NodeIdList, "nodeIdListRole"},
        {RecordingGroupRole::NasPathList, "nasPathListRole"},
        {RecordingGroupRole::RecordedDays, "recordedDaysRole"},
        {RecordingGroupRole::RemainDays, "remainDaysRole"},
        {RecordingGroupRole::OneDayUsage, "oneDayUsageRole"},
        {RecordingGroupRole::ReserveTime, "reserveTimeRole"},
    };
    return names;
}

const QHash<int, QByteArray> &nasServerRoleNames()
{
    static const QHash<int, QByteArray> names{
        {NasServerRole::Id, "idRole"},
        {NasServerRole::Host, "nameRole"},
        {NasServerRole::LogonDomain, "logonDomainRole"},
        {NasServerRole::UserName, "userNameRole"},
        {NasServerRole::Password, "passwordRole"},
    };
    return names;
}

const QHash<int, QByteArray> &directoryRoleNames()
{
    static const QHash<int, QByteArray> names{
        {DirectoryRole::Id, "idRole"},
        {DirectoryRole::Name, "nameRole"},
    };
    return names;
}

const QHash<int, QByteArray> &treeRoleNames()
{
    static const QHash<int, QByteArray> names{
        {TreeRole::Id, "idRole"},
        {TreeRole::Data, "dataRole"},
        {TreeRole::Name, "nameRole"},
        {TreeRole::RelayPath, "relayPathRole"},
        {TreeRole::Type, "typeRole"},
        {TreeRole::StationIp, "stationIPRole"},
        {TreeRole::RecordingGroupId, "recordingGroupIDRole"},
    };
    return names;
}
