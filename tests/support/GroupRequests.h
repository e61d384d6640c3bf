#pragma once

#include <QString>
#include <QVariantList>
#include <QVariantMap>

/// A path as the plug-in sends it; the reserve in MB.
inline QVariantMap pathMap(const QString &path, qint64 reserve = 0, bool isRecovery = false, int kind = 0)
{
    return {
        {QStringLiteral("path"), path},
        {QStringLiteral("pathType"), kind},
        {QStringLiteral("reserveSpace"), reserve},
        {QStringLiteral("isRecoveryMode"), isRecovery},
    };
}

/// A member as the plug-in sends it.
inline QVariantMap memberMap(const QString &camera, int stream, bool timeShift = false, bool seamless = false)
{
    return {
        {QStringLiteral("camName"), camera},
        {QStringLiteral("streamIndex"), stream},
        {QStringLiteral("enableTimeShift"), timeShift},
        {QStringLiteral("enableSeamless"), seamless},
    };
}

/// A new group with everything; @p minutes are its reserved time.
inline QVariantMap groupMap(const QString &name, const QVariantList &paths, const QVariantList &members = {},
                            bool enabled = false, int minutes = 0)
{
    return {
        {QStringLiteral("recordingGroupName"), name},
        {QStringLiteral("recordingGroupReservedTimeEnabled"), enabled},
        {QStringLiteral("recordingGroupReservedTime"), minutes},
        {QStringLiteral("pathInfoList"), paths},
        {QStringLiteral("deviceInfos"), members},
    };
}

/// What the plug-in sends: all six parts, most of them empty.
inline QVariantMap updateMap(const QString &id, const QVariantMap &parts)
{
    QVariantMap map{{QStringLiteral("recordingGroupID"), id},
                    {QStringLiteral("updateSetRecordingGroup"), QVariantMap()}};
    for (const char *list :
         {"updateRmCameraList", "updateAddCameraList", "updateRmPathList", "updateAddPathList", "updateSetPathList"})
        map.insert(QString::fromLatin1(list), QVariantList());
    map.insert(parts);
    return map;
}

/// The id of a group alone.
inline QVariantMap idMap(const QString &id)
{
    return {{QStringLiteral("recordingGroupID"), id}};
}
