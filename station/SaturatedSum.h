#pragma once

#include <QtGlobal>

#include <limits>

/// @p left and @p right, neither below 0, together; the largest number where that is more than 64 bits hold.
inline qint64 saturatedSum(qint64 left, qint64 right)
{
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    return left > most - right ? most : left + right;
}
