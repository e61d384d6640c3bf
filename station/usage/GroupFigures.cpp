#include "GroupFigures.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"

#include <QVariantMap>

namespace {
constexpr qint64 unknown = -1;
constexpr qint64 bytesPerKilobyte = 1024;

void addKnown(qint64 &sum, const QVariant &figure)
{
    const qint64 value = figure.toLongLong();
    if (value >= 0)
        sum = saturatedSum(qMax<qint64>(0, sum), value);
}
} // namespace

QHash<QString, GroupFigures> groupFigures(const QVariantList &entries)
{
    QHash<QString, GroupFigures> figures;
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        GroupFigures &group = figures[entry.value(FieldKey::recordingGroupID).toString()];
        addKnown(group.recordedDays, entry.value(FieldKey::volumeRecordedDays));
        addKnown(group.bytesPerDay, entry.value(FieldKey::volumeOneDayUsage));
        addKnown(group.available, entry.value(FieldKey::volumeAvailableSize));
    }
    for (GroupFigures &group : figures)
        group.remainingDays = remainingDays(group.available, group.bytesPerDay);
    return figures;
}

qint64 remainingDays(qint64 availableKilobytes, qint64 bytesPerDay)
{
    if (bytesPerDay <= 0)
        return unknown;
    const qint64 perDay = bytesPerDay / bytesPerKilobyte;
    return perDay > 0 ? availableKilobytes / perDay : 0;
}
