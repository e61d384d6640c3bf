#include "Units.h"

#include <iterator>

namespace {
const QString unknown = QStringLiteral("unknown");
}

QString sizeText(qlonglong kilobytes)
{
    if (kilobytes < 0)
        return unknown;
    constexpr const char *units[] = {"KB", "MB", "GB", "TB"};
    double value = static_cast<double>(kilobytes);
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < std::size(units)) {
        value /= 1024;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(value, 0, 'f', 2).arg(QLatin1String(units[unit]));
}

QString usedText(qlonglong size, qlonglong available)
{
    if (size < 0 || available < 0)
        return unknown;
    if (size == 0)
        return QStringLiteral("-");
    return QStringLiteral("%1 %").arg(100.0 * static_cast<double>(size - available) / static_cast<double>(size), 0, 'f',
                                      0);
}

QString daysText(qlonglong days)
{
    if (days < 0)
        return unknown;
    return days == 1 ? QStringLiteral("1 day") : QStringLiteral("%1 days").arg(days);
}

QString minutesText(qlonglong minutes)
{
    constexpr int day = 24 * 60;
    if (minutes <= 0)
        return QStringLiteral("-");
    return minutes % day == 0 ? daysText(minutes / day) : QStringLiteral("%1 min").arg(minutes);
}
