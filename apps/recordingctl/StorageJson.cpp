#include "StorageJson.h"

#include "JsonFields.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <functional>

namespace {
QJsonArray eachJson(const QVariant &list, const std::function<QJsonObject(const QVariantMap &map)> &json)
{
    QJsonArray array;
    const QVariantList maps = list.toList();
    for (const QVariant &map : maps)
        array.append(json(map.toMap()));
    return array;
}

QJsonObject groupOnVolumeJson(const QVariantMap &group)
{
    return fieldsJson({{QStringLiteral("id"), group.value(FieldKey::recordingGroupID)},
                       {QStringLiteral("name"), group.value(FieldKey::recordingGroupName)},
                       {QStringLiteral("paths"), group.value(StationKey::paths)},
                       {QStringLiteral("recordedBytes"), group.value(StationKey::recordedBytes)},
                       {QStringLiteral("recordedDays"), group.value(StationKey::recordedDays)},
                       {QStringLiteral("oneDayUsageBytes"), group.value(StationKey::bytesPerDay)},
                       {QStringLiteral("reservedSpaceMegabytes"), group.value(FieldKey::reserveSpace)},
                       {QStringLiteral("isCounted"), group.value(StationKey::counted)}});
}

QJsonObject volumeJson(const QVariantMap &volume)
{
    QJsonObject json = fieldsJson({{QStringLiteral("path"), volume.value(FieldKey::volumePath)},
                                   {QStringLiteral("name"), volume.value(FieldKey::volumeName)},
                                   {QStringLiteral("isSystem"), volume.value(FieldKey::volumeIsSystem)},
                                   {QStringLiteral("isNas"), volume.value(StationKey::kind) == StationVolumeKind::NAS},
                                   {QStringLiteral("state"), volume.value(StationKey::state)},
                                   {QStringLiteral("since"), volume.value(StationKey::since)},
                                   {QStringLiteral("sizeBytes"), volume.value(StationKey::size)},
                                   {QStringLiteral("availableBytes"), volume.value(StationKey::free)},
                                   {QStringLiteral("reservedForRootBytes"), volume.value(StationKey::reservedForRoot)},
                                   {QStringLiteral("backupBytes"), volume.value(StationKey::backupBytes)},
                                   {QStringLiteral("withoutGroupBytes"), volume.value(StationKey::withoutGroupBytes)},
                                   {QStringLiteral("otherBytes"), volume.value(StationKey::otherBytes)},
                                   {QStringLiteral("unknownBytes"), volume.value(StationKey::unknownBytes)},
                                   {QStringLiteral("excessBytes"), volume.value(StationKey::excessBytes)},
                                   {QStringLiteral("isCounted"), volume.value(StationKey::counted)},
                                   {QStringLiteral("countedAt"), volume.value(StationKey::countedAt)}});
    json.insert(QStringLiteral("groups"), eachJson(volume.value(StationKey::groups), groupOnVolumeJson));
    return json;
}

/// Null where there is no group at that time.
QJsonValue groupThenJson(const QVariantMap &group, const QString &time)
{
    if (!group.contains(time))
        return {};
    const QVariantMap figures = group.value(time).toMap();
    return fieldsJson({{QStringLiteral("name"), figures.value(FieldKey::recordingGroupName)},
                       {QStringLiteral("recordedDays"), figures.value(StationKey::recordedDays)},
                       {QStringLiteral("remainingDays"), figures.value(StationKey::remainingDays)},
                       {QStringLiteral("oneDayUsageBytes"), figures.value(StationKey::bytesPerDay)},
                       {QStringLiteral("reservedTimeMinutes"), figures.value(FieldKey::recordingGroupReservedTime)}});
}

QJsonObject forecastGroupJson(const QVariantMap &group)
{
    return {{QStringLiteral("id"), textJson(group.value(FieldKey::recordingGroupID).toString())},
            {QStringLiteral("now"), groupThenJson(group, StationKey::now)},
            {QStringLiteral("then"), groupThenJson(group, StationKey::then)}};
}

QVariantMap reserveOf(const QVariantMap &volume, const QString &time)
{
    return {{QStringLiteral("reservedSpaceMegabytes"), volume.value(time).toMap().value(FieldKey::reserveSpace)}};
}

QJsonObject forecastVolumeJson(const QVariantMap &volume)
{
    return fieldsJson({{QStringLiteral("path"), volume.value(FieldKey::volumePath)},
                       {QStringLiteral("name"), volume.value(FieldKey::volumeName)},
                       {QStringLiteral("sizeBytes"), volume.value(StationKey::size)},
                       {QStringLiteral("now"), reserveOf(volume, StationKey::now)},
                       {QStringLiteral("then"), reserveOf(volume, StationKey::then)}});
}
} // namespace

QJsonArray storageJson(const QVariantList &volumes)
{
    return eachJson(volumes, volumeJson);
}

QJsonObject forecastJson(const QString &edit, const QVariantMap &forecast)
{
    return {{QStringLiteral("edit"), edit},
            {QStringLiteral("groups"), eachJson(forecast.value(StationKey::groups), forecastGroupJson)},
            {QStringLiteral("volumes"), eachJson(forecast.value(StationKey::volumes), forecastVolumeJson)}};
}
