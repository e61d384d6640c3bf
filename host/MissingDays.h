#pragma once

#include <QtGlobal>

#include <algorithm>

/// How many days a recording group is short of its reserved time, judged as the plug-in does: in whole days. Negative
/// where one of the figures is unknown, that is negative.
/// @param reservedMinutes 0: no reserved time
inline qint64 missingDays(qint64 reservedMinutes, qint64 recordedDays, qint64 remainingDays)
{
    if (reservedMinutes < 0 || recordedDays < 0 || remainingDays < 0)
        return -1;
    constexpr qint64 minutesPerDay = qint64(24) * 60;
    return std::max<qint64>(reservedMinutes / minutesPerDay - recordedDays - remainingDays, 0);
}
