#pragma once

#include <QFile>
#include <QString>

#include <algorithm>

#include <sys/statvfs.h>

/// The size of a file system, and what a user without privileges may still write to it.
struct DiskSpace
{
    qint64 total = 0;
    qint64 available = 0;

    /// Others write to the disks of this machine while a test runs: what was told between two looks of the system is
    /// right if it is one of them or lies between them. The space may also rise and fall again meanwhile; then ask once
    /// more, a few times.
    /// @param ownUse what the one who is asked may itself take and give back meanwhile
    bool isBetween(const DiskSpace &before, const DiskSpace &after, qint64 ownUse = 0) const
    {
        const auto [leastTotal, mostTotal] = std::minmax(before.total, after.total);
        const auto [leastAvailable, mostAvailable] = std::minmax(before.available, after.available);
        return total >= leastTotal && total <= mostTotal && available >= leastAvailable - ownUse
            && available <= mostAvailable + ownUse;
    }

    QString text() const { return QStringLiteral("%1 free of %2").arg(available).arg(total); }
};

/// What the system says of the file system that holds @p path, in units of so many bytes; nothing equals it where that
/// fails.
inline DiskSpace diskSpaceOf(const QString &path, qint64 unit)
{
    struct statvfs figures = {};
    if (statvfs(QFile::encodeName(path).constData(), &figures) != 0)
        return {-1, -1};
    const auto units = [&figures, unit](fsblkcnt_t blocks) {
        return static_cast<qint64>(blocks * figures.f_frsize) / unit;
    };
    return {units(figures.f_blocks), units(figures.f_bavail)};
}
