#include "RowOrder.h"

#include <algorithm>
#include <iterator>

// The rows of the longest ascending run, not necessarily side by side.
QList<bool> placesInOrder(const QList<int> &wanted, qsizetype count)
{
    QList<int> ends; // the row that ends the best run of each length so far
    QList<int> before(wanted.size(), -1); // the row before each one in its run
    for (int row = 0; row < int(wanted.size()); ++row) {
        const auto end = std::partition_point(ends.begin(), ends.end(),
                                              [&](int candidate) { return wanted[candidate] < wanted[row]; });
        if (end != ends.begin())
            before[row] = *std::prev(end);
        if (end == ends.end())
            ends.push_back(row);
        else
            *end = row;
    }
    QList<bool> stays(count, false);
    for (int row = ends.empty() ? -1 : ends.back(); row >= 0; row = before[row])
        stays[wanted[row]] = true;
    return stays;
}
