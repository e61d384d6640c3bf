#pragma once

#include <QString>

/// @p kilobytes with the unit that fits, two decimals: "1.54 GB"; "unknown" for a negative number.
QString sizeText(qlonglong kilobytes);

/// How much of @p size is not @p available: "71 %"; "-" for an empty volume, "unknown" when either is not known.
QString usedText(qlonglong size, qlonglong available);

/// "1 day", "12 days"; "unknown" for a negative number.
QString daysText(qlonglong days);

/// A reserved time of @p minutes: "3 days", "90 min"; "-" for none.
QString minutesText(qlonglong minutes);
