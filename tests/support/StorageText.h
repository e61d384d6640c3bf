#pragma once

#include "StationVocabulary.h"

#include <QStringList>
#include <QVariantMap>

/// What one volume of "station.listStorage" is known to hold and what is left of it come to its size: the difference.
inline qint64 gapOf(const QVariantMap &volume)
{
    const auto known = [&volume](const QString &key) { return qMax<qint64>(0, volume.value(key).toLongLong()); };
    qint64 sum = known(StationKey::free) + known(StationKey::reservedForRoot) + known(StationKey::backupBytes)
        + known(StationKey::withoutGroupBytes) + known(StationKey::otherBytes) + known(StationKey::unknownBytes)
        - known(StationKey::excessBytes);
    const QVariantList groups = volume.value(StationKey::groups).toList();
    for (const QVariant &group : groups)
        sum += qMax<qint64>(0, group.toMap().value(StationKey::recordedBytes).toLongLong());
    return volume.value(StationKey::size).toLongLong() - sum;
}

/// "size free root backup none other unknown excess", in bytes.
inline QString partsText(const QVariantMap &volume)
{
    QStringList parts;
    for (const QString &key :
         {StationKey::size, StationKey::free, StationKey::reservedForRoot, StationKey::backupBytes,
          StationKey::withoutGroupBytes, StationKey::otherBytes, StationKey::unknownBytes, StationKey::excessBytes})
        parts.append(volume.value(key).toString());
    return parts.join(u' ');
}

/// "name bytes days perDay reserve counted", one for each group.
inline QStringList groupTexts(const QVariantMap &volume)
{
    QStringList lines;
    const QVariantList groups = volume.value(StationKey::groups).toList();
    for (const QVariant &value : groups) {
        const QVariantMap group = value.toMap();
        QStringList parts;
        for (const QString &key :
             {QStringLiteral("recordingGroupName"), StationKey::recordedBytes, StationKey::recordedDays,
              StationKey::bytesPerDay, QStringLiteral("reserveSpace"), StationKey::counted})
            parts.append(group.value(key).toString());
        lines.append(parts.join(u' '));
    }
    return lines;
}
