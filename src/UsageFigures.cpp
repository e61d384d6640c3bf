#include "UsageFigures.h"

namespace {

constexpr int usageUnitsPerSizeUnit = 1024;
constexpr int minutesPerDay = 24 * 60;

} // namespace

qlonglong wrappingSum(qlonglong left, qlonglong right)
{
    return static_cast<qlonglong>(static_cast<qulonglong>(left) + static_cast<qulonglong>(right));
}

qlonglong wrappingDifference(qlonglong left, qlonglong right)
{
    return static_cast<qlonglong>(static_cast<qulonglong>(left) - static_cast<qulonglong>(right));
}

int lowBits(qlonglong days)
{
    return static_cast<int>(days);
}

qlonglong remainingDays(qlonglong available, qlonglong oneDayUsage)
{
    if (oneDayUsage <= 0)
        return unknownFigure;
    // Integer division first: a usage below one unit of size makes the quotient infinite, which counts as 0.
    const qlonglong oneDay = oneDayUsage / usageUnitsPerSizeUnit;
    const double days = static_cast<double>(available) / static_cast<double>(oneDay);
    constexpr double limit = 9223372036854775808.0; // 2^63
    return days >= -limit && days < limit ? static_cast<qlonglong>(days) : 0;
}

bool coverReserve(qlonglong recorded, qlonglong remaining, int reserveTime)
{
    return recorded + remaining >= reserveTime / minutesPerDay;
}

void GroupUsage::addKnown(std::optional<qlonglong> &sum, qlonglong value)
{
    if (value >= 0)
        sum = wrappingSum(value, sum.value_or(0));
}
