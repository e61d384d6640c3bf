#pragma once

#include <QString>

#include <optional>

/// A figure that the station does not know.
constexpr qlonglong unknownFigure = -1;

/// Sums and differences of 64-bit figures wrap around.
qlonglong wrappingSum(qlonglong left, qlonglong right);
qlonglong wrappingDifference(qlonglong left, qlonglong right);

/// Rows keep the low 32 bits of a number of days.
int lowBits(qlonglong days);

/// Whole days of recording that fit into @p available at @p oneDayUsage a day, which counts in units 1024 times
/// smaller; unknownFigure when the usage is not positive, 0 when the quotient is infinite or does not fit 64 bits.
qlonglong remainingDays(qlonglong available, qlonglong oneDayUsage);

/// Whether @p recorded and @p remaining days together cover @p reserveTime minutes, counted in whole days.
bool coverReserve(qlonglong recorded, qlonglong remaining, int reserveTime);

/// What the entries of one recording group add up to. Sizes and usage are in the station's units.
struct GroupUsage
{
    int reserveTime = 0; ///< minutes, of the last entry
    QString name; ///< of the last entry
    qlonglong availableSize = 0;
    std::optional<qlonglong> recordedDays; ///< empty while every entry's figure is unknown
    std::optional<qlonglong> oneDayUsage; ///< likewise

    /// Adds @p value to @p sum unless it is unknown, that is negative.
    static void addKnown(std::optional<qlonglong> &sum, qlonglong value);
};
