#include "UsageFigures.h"

namespace {

constexpr int bytesPerKb = 1024;
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
    // Whole KB first, as the figures always were: below one KB a day the quotient is infinite and counts as 0.
    const double days = static_cast<double>(available) / static_cast<double>(oneDayUsage / bytesPerKb);
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

QVariantMap GroupUsage::toMap() const
{
    QVariantMap map{
        {QStringLiteral("reserveTime"), reserveTime},
        {QStringLiteral("groupName"), name},
        {QStringLiteral("availableSize"), availableSize},
    };
    if (recordedDays)
        map.insert(QStringLiteral("recordedDays"), *recordedDays);
    if (oneDayUsage)
        map.insert(QStringLiteral("oneDayUsage"), *oneDayUsage);
    return map;
}
