#pragma once

#include <QList>

/// Which rows of a list can stay while all of them are brought into another order, as many as possible; the others have
/// to move. @p wanted says for each row at which of @p count places it belongs, each place at most once; the answer is
/// by place.
QList<bool> placesInOrder(const QList<int> &wanted, qsizetype count);
