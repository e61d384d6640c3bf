#include "SamplePlan.h"

#include <QRandomGenerator>

#include <algorithm>
#include <iterator>

namespace {
constexpr qint64 megabyte = 1024 * 1024;
constexpr qint64 gigabyte = 1024 * megabyte;
constexpr qint64 leastForReserves = 20 * gigabyte; // of a smaller volume a reserve of whole gigabytes takes too much
constexpr qint64 leastPerDay = 4 * megabyte; // of a group, where the volume is full
constexpr int filesPerDay = 24;
constexpr int percent = 100;

struct Row
{
    const char *name;
    QStringList cameras;
    int reservedDays;
    int recordedDays;
    int remainingDays;
    int reservedPercent; // of the volume
};

/// Where the volume is full, there are no remaining days: the recorded days alone have to tell who is short.
const QList<Row> &rows()
{
    static const QList<Row> table{
        {"Entrances", {QStringLiteral("Main entrance"), QStringLiteral("Side entrance")}, 10, 14, 30, 10},
        {"Parking", {QStringLiteral("Parking deck")}, 30, 9, 8, 10},
        {"Warehouse", {QStringLiteral("Warehouse")}, 7, 12, 21, 5},
    };
    return table;
}

qint64 reservedMegabytes(const Row &row, const Volume &volume)
{
    if (volume.bytesTotal < leastForReserves)
        return 0;
    return volume.bytesTotal / gigabyte * row.reservedPercent / percent * (gigabyte / megabyte);
}
} // namespace

QList<SampleGroup> sampleGroups(const Volume &volume)
{
    QList<SampleGroup> groups;
    qint64 allReserved = 0;
    for (const Row &row : rows()) {
        groups.append({QString::fromLatin1(row.name), row.cameras, row.reservedDays, row.recordedDays,
                       reservedMegabytes(row, volume), 0});
        allReserved += groups.constLast().reservedMegabytes;
    }
    for (qsizetype i = 0; i < groups.size(); ++i) {
        // What the usage figures make the group's share of the free space.
        const double share = allReserved > 0
            ? static_cast<double>(groups.at(i).reservedMegabytes) / static_cast<double>(allReserved)
            : 1.0 / static_cast<double>(groups.size());
        const auto room = static_cast<qint64>(static_cast<double>(volume.bytesAvailable) * share);
        groups[i].bytesPerDay = std::max(room / rows().at(i).remainingDays, leastPerDay);
    }
    return groups;
}

QList<SampleFile> sampleFiles(const SampleGroup &group, const QDate &date, const QDateTime &now, quint32 seed)
{
    const qint64 average = group.bytesPerDay / group.cameras.size() / filesPerDay;
    QRandomGenerator generator(seed);
    QList<SampleFile> files;
    for (int hour = 0; hour < filesPerDay; ++hour) {
        const QDateTime start(date, QTime(hour, 0));
        const QDateTime end = std::min(start.addSecs(60 * 60 - 1), now);
        const qint64 bytes = average / percent * generator.bounded(85, 116);
        if (start <= now)
            files.append({QStringLiteral("%1-00.rec").arg(hour, 2, 10, QLatin1Char('0')), bytes, end});
    }
    return files;
}
