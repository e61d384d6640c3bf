#include "UsageFigures.h"

#include "SaturatedSum.h"
#include "ServerVocabulary.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <numeric>

const QString UsageGroup::backup = QStringLiteral("backupID");

namespace {
constexpr qint64 unknown = -1;
constexpr qint64 bytesPerKilobyte = 1024;
constexpr qsizetype averagedDays = 7; // a week has every kind of day once
constexpr qint64 leastMove = 1000; // of a volume's size, the free space that is told anew

using Storage = UsagePlace::Storage;

struct Figures
{
    qint64 size = unknown;
    qint64 available = unknown;
    qint64 oneDayUsage = unknown;
    qint64 recordedDays = unknown;
};

/// Which of the places share something: their group, or the volume that they lie on.
using Sharing = QMap<QString, QList<qsizetype>>;

/// Of values that are not negative.
qint64 sumOf(const QList<qint64> &values)
{
    return std::accumulate(values.cbegin(), values.cend(), qint64(0), saturatedSum);
}

/// Free space of a volume in equal parts to its groups, whatever number of paths each of them has there.
QList<qint64> equalParts(qint64 free, const QList<UsagePlace> &places, const QList<qsizetype> &sharers)
{
    QMap<QString, qint64> pathsOfGroup;
    for (const qsizetype index : sharers)
        ++pathsOfGroup[places.at(index).groupId];
    const QList<qint64> groupParts = partsOf(free, QList<qint64>(pathsOfGroup.size(), 1));
    QHash<QString, QList<qint64>> partsOfGroup;
    qsizetype number = 0;
    for (auto group = pathsOfGroup.cbegin(); group != pathsOfGroup.cend(); ++group)
        partsOfGroup.insert(group.key(), partsOf(groupParts.at(number++), QList<qint64>(group.value(), 1)));
    QList<qint64> parts;
    for (const qsizetype index : sharers)
        parts.append(partsOfGroup[places.at(index).groupId].takeFirst());
    return parts;
}

void shareVolume(const QList<UsagePlace> &places, const QList<qsizetype> &sharers, QList<Figures> &figures)
{
    QList<qint64> reserves;
    for (const qsizetype index : sharers)
        reserves.append(places.at(index).reservedMegabytes);
    const qint64 free = places.at(sharers.constFirst()).volume.bytesAvailable / bytesPerKilobyte;
    const QList<qint64> parts = sumOf(reserves) > 0 ? partsOf(free, reserves) : equalParts(free, places, sharers);
    for (qsizetype i = 0; i < sharers.size(); ++i)
        figures[sharers.at(i)].available = parts.at(i);
}

/// The latest days that are over and have recordings.
QList<QDate> averagedDaysOf(const QSet<QDate> &days, const QDate &today)
{
    QList<QDate> over;
    std::copy_if(days.cbegin(), days.cend(), std::back_inserter(over), [&](const QDate &day) { return day < today; });
    std::sort(over.begin(), over.end(), std::greater<>());
    return over.mid(0, averagedDays);
}

/// Whether the days of @p place are known. Those on a NAS server that does not answer are as they were.
bool isCounted(const UsagePlace &place)
{
    if (place.isNas)
        return place.days.has_value();
    return place.storage == Storage::Gone || (place.storage == Storage::Present && place.days);
}

void shareUsage(const QList<UsagePlace> &places, const QList<qsizetype> &members, const QDate &today,
                QList<Figures> &figures)
{
    if (!today.isValid())
        return;
    QSet<QDate> allDays;
    QSet<QDate> daysAtHand;
    qsizetype first = -1;
    bool isFreeSpaceKnown = true;
    for (const qsizetype index : members) {
        const UsagePlace &place = places.at(index);
        // Half of a group's figures would be a false alarm, or a false calm.
        if (!isCounted(place))
            return;
        isFreeSpaceKnown = isFreeSpaceKnown && place.storage != Storage::Unknown;
        QList<QDate> days = place.days.value_or(DaySums()).keys();
        days.removeIf([&today](const QDate &day) { return isOfTheFuture(day, today); });
        allDays.unite({days.cbegin(), days.cend()});
        if (place.storage == Storage::Present || place.isNas) {
            daysAtHand.unite({days.cbegin(), days.cend()});
            first = first < 0 ? index : first;
        }
    }
    if (first >= 0)
        figures[first].recordedDays = daysAtHand.size();
    // Days of usage without the space that is left for them would make no remaining days at all.
    if (!isFreeSpaceKnown)
        return;

    const QList<QDate> averaged = averagedDaysOf(allDays, today);
    if (averaged.isEmpty())
        return;
    QList<qint64> weights;
    for (const qsizetype index : members) {
        const DaySums days = places.at(index).days.value_or(DaySums());
        qint64 bytes = 0;
        for (const QDate &day : averaged)
            bytes = saturatedSum(bytes, days.value(day).bytes);
        weights.append(bytes);
    }
    const QList<qint64> parts = partsOf(sumOf(weights) / averaged.size(), weights);
    for (qsizetype i = 0; i < members.size(); ++i)
        figures[members.at(i)].oneDayUsage = parts.at(i);
}

QVariantMap entry(const UsagePlace &place, const Figures &figures)
{
    return {
        {FieldKey::recordingGroupID, place.groupId},
        {FieldKey::recordingGroupName, place.groupName},
        {FieldKey::recordingGroupReservedTime, place.reservedMinutes},
        {FieldKey::recordingPath, place.path},
        {FieldKey::volumeName, place.volume.name},
        {FieldKey::volumeSize, figures.size},
        {FieldKey::volumeAvailableSize, figures.available},
        {FieldKey::volumeOneDayUsage, figures.oneDayUsage},
        {FieldKey::volumeRecordedDays, figures.recordedDays},
        {FieldKey::volumeIsSystem, place.volume.isSystem},
        {FieldKey::volumeIsNAS, place.isNas},
    };
}
} // namespace

QList<qint64> partsOf(qint64 total, const QList<qint64> &weights)
{
    const auto sum = static_cast<long double>(sumOf(weights));
    QList<qint64> parts;
    qint64 weighed = 0;
    qint64 given = 0;
    for (const qint64 weight : weights) {
        weighed = saturatedSum(weighed, weight);
        const auto upTo = sum > 0
            ? static_cast<qint64>(static_cast<long double>(total) * (static_cast<long double>(weighed) / sum))
            : 0;
        parts.append(upTo - given);
        given = upTo;
    }
    return parts;
}

QVariantList usageEntries(const QList<UsagePlace> &places, const QDate &today)
{
    QList<Figures> figures(places.size());
    Sharing volumes;
    Sharing groups;
    for (qsizetype i = 0; i < places.size(); ++i) {
        const UsagePlace &place = places.at(i);
        if (place.storage != Storage::Unknown) {
            const bool isGone = place.storage == Storage::Gone;
            figures[i].size = isGone ? 0 : place.volume.bytesTotal / bytesPerKilobyte;
            figures[i].available = 0;
        }
        if (place.groupId.isEmpty())
            continue;
        groups[place.groupId].append(i);
        if (place.storage == Storage::Present)
            volumes[place.volume.path].append(i);
    }
    for (const QList<qsizetype> &sharers : std::as_const(volumes))
        shareVolume(places, sharers, figures);
    for (const QList<qsizetype> &members : std::as_const(groups))
        shareUsage(places, members, today, figures);

    QVariantList entries;
    QSet<QString> pathsWithoutGroup;
    for (qsizetype i = 0; i < places.size(); ++i) {
        const UsagePlace &place = places.at(i);
        if (place.groupId.isEmpty() && pathsWithoutGroup.contains(place.path))
            continue;
        if (place.groupId.isEmpty())
            pathsWithoutGroup.insert(place.path);
        entries.append(entry(place, figures.at(i)));
    }
    return entries;
}

bool isOfTheFuture(const QDate &day, const QDate &today)
{
    return day > today.addDays(1);
}

bool isWorthTelling(const QVariantList &sent, const QVariantList &now)
{
    if (sent.size() != now.size())
        return true;
    for (qsizetype i = 0; i < now.size(); ++i) {
        QVariantMap before = sent.at(i).toMap();
        QVariantMap after = now.at(i).toMap();
        const qint64 size = after.value(FieldKey::volumeSize).toLongLong();
        const qint64 free = after.take(FieldKey::volumeAvailableSize).toLongLong();
        const qint64 freeBefore = before.take(FieldKey::volumeAvailableSize).toLongLong();
        const bool cameToOrFromNothing = (free <= 0) != (freeBefore <= 0);
        if (before != after || cameToOrFromNothing || qAbs(free - freeBefore) > size / leastMove)
            return true;
    }
    return false;
}
