#pragma once

#include <vector>

/// Which rows of a list can stay while all of them are brought into another order, as many as possible; the others have
/// to move. @p wanted says for each row at which of @p count places it belongs, each place at most once; the answer is
/// by place.
std::vector<bool> placesInOrder(const std::vector<int> &wanted, std::size_t count);
