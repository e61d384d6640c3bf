#include "NameOrder.h"

namespace {
bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// Takes the digits at @p position of @p text, without leading zeros, and moves the position behind them.
QStringView takeNumber(QStringView text, qsizetype &position)
{
    while (position < text.size() && text[position] == u'0')
        ++position;
    const qsizetype start = position;
    while (position < text.size() && isDigit(text[position]))
        ++position;
    return text.sliced(start, position - start);
}

int compareNumbers(QStringView left, QStringView right)
{
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

int compareNaturally(QStringView left, QStringView right)
{
    qsizetype l = 0;
    qsizetype r = 0;
    while (l < left.size() && r < right.size()) {
        if (isDigit(left[l]) && isDigit(right[r])) {
            if (const int order = compareNumbers(takeNumber(left, l), takeNumber(right, r)))
                return order;
        } else if (left[l] != right[r]) {
            return left[l] < right[r] ? -1 : 1;
        } else {
            ++l;
            ++r;
        }
    }
    if ((l < left.size()) == (r < right.size()))
        return 0;
    return r < right.size() ? -1 : 1;
}
} // namespace

bool nameLess(const QString &left, const QString &right)
{
    if (const int order = compareNaturally(left.toCaseFolded(), right.toCaseFolded()))
        return order < 0;
    return left < right;
}
